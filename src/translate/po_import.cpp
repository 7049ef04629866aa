#include "translate/po_import.h"
#include "core/hex_text.h"

#include "core/file_io.h"
#include "core/zeroed_array.h"
#include "edit/free_space.h"
#include "fit/measure.h"
#include "fit/reflow.h"
#include "game/game_model.h"
#include "repoint/model_cache.h"
#include "repoint/rewrites.h"
#include "translate/offset_entries.h"
#include "translate/po_file.h"
#include "translate/rom_texts.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace quillon {
namespace {

// The bytes the plan writes, one bit each; no two writes may overlap.
class Ranges {
public:
    explicit Ranges(std::size_t size) : words_((size + 63) / 64) {}  // all clear
    bool Overlaps(std::uint64_t begin, std::uint64_t end) const {
        bool any = false;
        Spans(begin, end, [&](std::size_t word, std::uint64_t mask) { any = any || (words_[word] & mask) != 0; });
        return any;
    }
    void Add(std::uint64_t begin, std::uint64_t end) {
        Spans(begin, end, [this](std::size_t word, std::uint64_t mask) { words_[word] |= mask; });
    }
    void Remove(std::uint64_t begin, std::uint64_t end) {
        Spans(begin, end, [this](std::size_t word, std::uint64_t mask) { words_[word] &= ~mask; });
    }

private:
    // Calls `f` with each word that holds bits of [begin, end) and the mask of those bits.
    template <class F>
    static void Spans(std::uint64_t begin, std::uint64_t end, F f) {
        for (std::uint64_t at = begin; at < end;) {
            const std::uint64_t bit = at % 64, count = std::min<std::uint64_t>(64 - bit, end - at);
            f(static_cast<std::size_t>(at / 64), (count == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1) << bit);
            at += count;
        }
    }
    ZeroedArray<std::uint64_t> words_;
};

// A text saved as a special dialog has every line break as 0xFE; a normal
// one has 0xFE only for its first line break and after an empty line (0xFB),
// so two of them without 0xFA or 0xFB tell the form. Its translation keeps it.
bool SavedAsSpecialDialog(std::string_view bytes) {
    std::size_t fe = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b == 0xFC || b == 0xFD) ++i;  // the parameter byte is no line break
        else if (b == 0xFA || b == 0xFB) return false;
        else if (b == 0xFE) ++fe;
    }
    return fe >= 2;
}

// Writes closer than this are joined into one, with the unchanged bytes
// between them, so that a whole import is a few large writes.
constexpr std::uint64_t kJoinGap = 256;

// A text that outgrew its room, waiting for its pointers and free space.
struct Move {
    std::size_t change;   // index into the plan's changes
    std::size_t pending;  // the write that frees its old place
    const EntryText* text;
    std::string bytes;    // new bytes, without terminator
};

// A translated message worked out ahead of the plan: its entry, its text and
// what that text turns into. Encoding and its checks are most of the work of
// planning; each part of the PO file is worked out as soon as it is read.
struct Translated {
    static constexpr std::size_t kNoText = static_cast<std::size_t>(-1);
    std::size_t text = kNoText;  // index of its entry's text, when usable
    std::string newText;         // as editor text
    bool same = false;           // equal to the current text
    Encoded encoded;             // the new text's bytes, or why it cannot be written
    ImportKind kind = ImportKind::InPlace;
    std::size_t newLength = 0;   // of the encoded text, without terminator
    std::string after;           // the bytes written at the text's place
};

// A part of the PO file as read, and what its messages turn into.
struct ReadPart {
    enum class State { Read, Working, Done };
    PoCatalog catalog;
    std::vector<Translated> translated;  // one per message, once worked out
    State state = State::Read;
};

// The PO file's parts as the reading thread hands them over. The planning
// thread takes them in the file's order and works out each one no other
// thread has taken; threads done with their own work help by working out
// the latest parts, so that no core idles while parts wait.
class PartBoard {
public:
    using Work = std::function<void(ReadPart&)>;

    void Put(PoCatalog part) {
        {
            const std::lock_guard lock(mutex_);
            parts_.push_back(std::make_unique<ReadPart>());
            parts_.back()->catalog = std::move(part);
        }
        changed_.notify_all();
    }
    // The reader is done; `error` is why it stopped early, or null.
    void Finish(std::exception_ptr error) {
        {
            const std::lock_guard lock(mutex_);
            finished_ = true;
            error_ = std::move(error);
        }
        changed_.notify_all();
    }
    // How a part is worked out, once it can be; helpers start then.
    void Open(Work work) {
        {
            const std::lock_guard lock(mutex_);
            work_ = std::move(work);
        }
        changed_.notify_all();
    }
    // No part is worked out any more: the plan is done or stopped. Helpers leave.
    void Close() {
        {
            const std::lock_guard lock(mutex_);
            closed_ = true;
        }
        changed_.notify_all();
    }
    // Waits for the reader; throws its error.
    void WaitRead() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return finished_; });
        if (error_) std::rethrow_exception(error_);
    }

    // Part `k`, worked out; null when the file has no more, or the reader's error then.
    ReadPart* Worked(std::size_t k) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return parts_.size() > k || finished_; });
        if (parts_.size() <= k) {
            if (error_) std::rethrow_exception(error_);
            return nullptr;
        }
        ReadPart& part = *parts_[k];
        if (part.state == ReadPart::State::Read) WorkOn(part, lock);
        // While a helper finishes it, the latest waiting parts are worked out here.
        while (part.state != ReadPart::State::Done) {
            if (ReadPart* waiting = LatestWaiting()) WorkOn(*waiting, lock);
            else changed_.wait(lock);
        }
        return &part;
    }

    // Works out waiting parts, latest first, until the reader is done and
    // none waits, or the board closes.
    void Help() {
        std::unique_lock lock(mutex_);
        while (true) {
            ReadPart* waiting = nullptr;
            changed_.wait(lock, [&] {
                if (closed_) return true;
                if (!work_) return false;
                waiting = LatestWaiting();
                return waiting || finished_;
            });
            if (closed_ || !waiting) return;
            WorkOn(*waiting, lock);
        }
    }

    std::deque<std::unique_ptr<ReadPart>> TakeParts() {
        const std::lock_guard lock(mutex_);
        return std::move(parts_);
    }

private:
    // Called with the lock held.
    ReadPart* LatestWaiting() {
        for (auto it = parts_.rbegin(); it != parts_.rend(); ++it)
            if ((*it)->state == ReadPart::State::Read) return it->get();
        return nullptr;
    }
    // Called with the lock held; works without it.
    void WorkOn(ReadPart& part, std::unique_lock<std::mutex>& lock) {
        part.state = ReadPart::State::Working;
        lock.unlock();
        work_(part);  // only the board changes `work_`, and never after Open
        lock.lock();
        part.state = ReadPart::State::Done;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::unique_ptr<ReadPart>> parts_;
    Work work_;
    bool finished_ = false, closed_ = false;
    std::exception_ptr error_;
};

// What a plan no longer needs once every part of the PO file is planned.
// The reading thread, idle by then, releases it while the plan is finished.
struct Leftovers {
    std::deque<std::unique_ptr<ReadPart>> parts;
    std::unordered_map<std::uint32_t, const Translated*> plannedAt;
};
using LeftoversPromise = std::promise<std::unique_ptr<Leftovers>>;

// Hands the leftovers over once; when the plan stops before, the reading
// thread is told there are none rather than left waiting.
class HandOver {
public:
    explicit HandOver(LeftoversPromise& to) : to_(to) {}
    HandOver(const HandOver&) = delete;
    HandOver& operator=(const HandOver&) = delete;
    ~HandOver() {
        if (!done_) to_.set_value(nullptr);
    }
    void operator()(std::unique_ptr<Leftovers> leftovers) {
        to_.set_value(std::move(leftovers));
        done_ = true;
    }

private:
    LeftoversPromise& to_;
    bool done_ = false;
};

std::string Plural(std::size_t n, std::string_view one, std::string_view many) {
    return std::to_string(n) + " " + std::string(n == 1 ? one : many);
}

}  // namespace

std::size_t ImportPlan::Count(ImportKind kind) const {
    return static_cast<std::size_t>(
        std::count_if(changes.begin(), changes.end(), [kind](const ImportChange& c) { return c.kind == kind; }));
}

// The ROM as the plan reads it: its bytes and its game's free byte.
struct RomImage {
    explicit RomImage(const std::filesystem::path& path)
        : stamp(io::FileStamp::Of(path)),
          rom(path),
          image(rom.View()),
          code(image.size() >= 0xB0 ? image.substr(0xAC, 4) : std::string_view()),
          freeByte(FreeRun(code, 1)[0]) {
        if (stamp != io::FileStamp::Of(path)) stamp.reset();  // changed while it was read
    }

    std::optional<io::FileStamp> stamp;  // of the file as `image` holds it; nothing when unknown
    io::FileCopy rom;
    std::string_view image;
    std::string code;
    char freeByte;
};

// What the plan needs first of the ROM and the offset file: the entries'
// texts and their names, and to reflow the texts, the game model, the font
// and the texts' boxes. It is made while the PO file is read.
struct RomSide {
    RomSide(const RomImage& image, const ImportRequest& request, Progress& progress)
        : rom(image),
          offsetText(io::ReadAll(request.offsetFile)),
          entries(ReadOffsetEntries(offsetText)),
          texts(LoadEntryTexts(rom.image, entries, rom.freeByte, progress)) {
        if (request.reflow) {
            model = rom.stamp ? repoint::ModelOf(*rom.stamp, rom.image)
                              : std::make_shared<const game::GameModel>(game::GameModel::Read(rom.image));
            font = fit::LocateFont(rom.image, request.fit.named, model->Pointers());
            boxes = fit::TextBoxes::Read(rom.image, *model, false, font.font ? &*font.font : nullptr);
        }
        byContext.reserve(texts.size());
        firstOfName.resize(texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            firstOfName[i] = byContext.emplace(texts[i].context, i).second;
            if (texts[i].problem.empty())
                taken.push_back({texts[i].offset, texts[i].offset + texts[i].bytes.size() + 1});
        }
    }

    const RomImage& rom;
    std::string offsetText;
    std::vector<OffsetEntry> entries;
    std::vector<EntryText> texts;  // point into `entries`
    // Read first when the texts are reflowed; else beside the PO file's reading.
    std::shared_ptr<const game::GameModel> model;
    fit::FontResult font;
    fit::TextBoxes boxes;
    std::unordered_map<std::string_view, std::size_t> byContext;  // entry name: index into `texts`
    std::vector<bool> firstOfName;                                // the entry `byContext` names
    std::vector<FreeSpace::Range> taken;                          // the texts' bytes and terminators

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    // The entry of that name, or kNone. A file exported from the offset file
    // lists the entries in its order, so the one at `hint` is tried first.
    [[nodiscard]] std::size_t IndexOf(std::string_view context, std::size_t hint) const {
        if (hint < texts.size() && firstOfName[hint] && texts[hint].context == context) return hint;
        const auto found = byContext.find(context);
        return found == byContext.end() ? kNone : found->second;
    }
};

// What moved texts need: the game model, which knows every place that holds
// a text's pointer and its kind, and the free-space runs; and for the
// widths of the new texts, the font and the box of every text. A model kept
// for the file as it was read serves as it is; else it is read here, for the
// references alone when no font is found, as no width is measured then.
struct RomScan {
    // `side`: the texts' side when it read the model first, else null.
    RomScan(const RomImage& rom, const RomSide* side, const ImportRequest& request, Progress& progress)
        : freeSpace(rom.image, rom.freeByte,
                    std::max<std::uint64_t>(static_cast<std::uint64_t>(std::max(request.freeSpaceOffset, 1) - 1),
                                            kLowestPointable),
                    std::uint64_t{HighestPointable(rom.image.size())} + 1, progress) {
        if (side && side->model) {
            model = side->model, font = side->font, boxes = side->boxes;
            return;
        }
        model = rom.stamp ? repoint::KeptModel(*rom.stamp) : nullptr;
        game::PointerIndex pointers = model ? game::PointerIndex() : game::PointerIndex(rom.image);
        font = fit::LocateFont(rom.image, request.fit.named, model ? model->Pointers() : pointers);
        if (!model)
            model = std::make_shared<const game::GameModel>(game::GameModel::Read(
                rom.image, font.font ? game::ModelParts::All : game::ModelParts::References, std::move(pointers)));
        if (font.font) boxes = fit::TextBoxes::Read(rom.image, *model, false, &*font.font);
    }

    FreeSpace freeSpace;
    std::shared_ptr<const game::GameModel> model;
    fit::FontResult font;
    fit::TextBoxes boxes;
};

namespace {

// Works out one message against the entry it names: its text, whether it is
// the current one, its bytes and what lands at the text's place.
// `next`: the entry after the one the message before named, where this
// message's entry most likely stands; updated.
Translated Translate(const PoMessage& message, const RomSide& side, const ImportRequest& request, std::size_t& next) {
    Translated tr;
    if (message.str.empty() || message.fuzzy) return tr;
    const std::size_t at = side.IndexOf(message.context, next);
    if (at == RomSide::kNone) return tr;
    next = at + 1;
    if (!side.texts[at].problem.empty()) return tr;
    const EntryText& t = side.texts[at];
    tr.text = at;
    tr.newText = FromPoText(message.str);
    tr.encoded = EncodeForImport(tr.newText, SavedAsSpecialDialog(t.bytes));
    if (side.model && side.font.font && tr.encoded.refusal.empty()) {
        const fit::ReflowOptions reflow =
            fit::ReflowFor(side.boxes.At(t.offset), side.boxes.family(), SavedAsSpecialDialog(t.bytes),
                           request.fit.PlayerName(), &*side.font.font, t.bytes);
        std::string reflowed = fit::ReflowBytes(tr.encoded.bytes, *side.font.font, reflow);
        if (reflowed != tr.encoded.bytes) tr.newText = DecodeText(reflowed, false), tr.encoded.bytes = std::move(reflowed);
    }
    // The same bytes are the same text; other bytes may still read as it.
    tr.same = (tr.encoded.refusal.empty() && tr.encoded.bytes == t.bytes) || DecodeText(t.bytes, false) == tr.newText;
    if (tr.same || !tr.encoded.refusal.empty()) return tr;
    // The new text padded to the old length, grown into the free bytes
    // behind it, or, when it moves, free bytes. A name stays in its field.
    const std::size_t oldLength = t.bytes.size();
    tr.newLength = tr.encoded.bytes.size();
    if (t.entry->fixed) {
        NameWrite name = WriteName(side.rom.image.substr(t.offset, t.entry->fixed->bytes), tr.encoded.bytes, *t.entry->fixed);
        tr.kind = tr.newLength < oldLength ? ImportKind::Shorter : tr.newLength == oldLength ? ImportKind::InPlace : ImportKind::Grown;
        tr.encoded.refusal = std::move(name.refusal);
        tr.after = std::move(name.bytes);
        return tr;
    }
    if (tr.newLength <= oldLength) {
        tr.kind = tr.newLength == oldLength ? ImportKind::InPlace : ImportKind::Shorter;
        tr.after = std::move(tr.encoded.bytes);
        tr.after.append(oldLength - tr.newLength + 1, '\xFF');
    } else if (tr.newLength - oldLength <= t.room) {
        tr.kind = ImportKind::Grown;
        tr.after = std::move(tr.encoded.bytes);
        tr.after += '\xFF';
    } else {
        tr.kind = ImportKind::Moved;
        tr.after = FreeRun(side.rom.code, oldLength + 1);
    }
    return tr;
}

}  // namespace

ImportPlan PlanImport(const ImportRequest& request, Progress& progress) {
    // The PO file is read on a second thread, part by part, while the ROM's
    // side is prepared; each part read is worked out here while the next is
    // read. A third thread scans the image for what moved texts need as soon
    // as the image is in memory (when texts are reflowed, once the model
    // they need is read). Both help work parts out once done with their own.
    // A PO file that cannot be read is reported first, as when read first.
    std::unique_ptr<RomImage> rom;   // these two outlive the other threads
    std::unique_ptr<RomSide> side;
    LeftoversPromise leftovers;
    PartBoard parts;
    const std::future<void> reading =
        std::async(std::launch::async, [&request, &parts, released = leftovers.get_future()]() mutable {
            try {
                ReadPo(request.po, [&parts](PoCatalog part) { parts.Put(std::move(part)); });
                parts.Finish(nullptr);
            } catch (...) {
                parts.Finish(std::current_exception());
                return;  // the plan stops at the error
            }
            parts.Help();
            released.get();  // freed here
        });
    HandOver handOver(leftovers);  // before the reading thread is waited for
    std::future<RomScan> scanned;
    struct Closing {
        PartBoard& parts;
        ~Closing() { parts.Close(); }
    } closing{parts};  // helpers leave however the plan ends, before they are waited for
    auto startScan = [&] {
        scanned = std::async(std::launch::async, [&request, &parts, image = rom.get(), texts = side.get()] {
            NoProgress quiet;  // progress is shown on the planning thread
            RomScan result(*image, texts, request, quiet);
            parts.Help();
            return result;
        });
    };
    try {
        rom = std::make_unique<RomImage>(request.rom);
        if (!request.reflow) startScan();
        side = std::make_unique<RomSide>(*rom, request, progress);
    } catch (...) {
        parts.WaitRead();
        throw;
    }
    parts.Open([&request, texts = side.get()](ReadPart& part) {
        part.translated.reserve(part.catalog.messages.size());
        std::size_t next = RomSide::kNone;
        for (const PoMessage& message : part.catalog.messages)
            part.translated.push_back(Translate(message, *texts, request, next));
    });
    if (request.reflow) startScan();
    const std::string_view image = rom->image;
    const std::string& code = rom->code;
    const std::vector<EntryText>& texts = side->texts;
    const auto& byContext = side->byContext;
    std::vector<FreeSpace::Range>& taken = side->taken;

    ImportPlan plan;
    plan.writes.command = "Import Translation";
    plan.writes.subject = request.po.filename().string();
    plan.writes.rom = request.rom;
    plan.writes.romSize = image.size();
    auto refuse = [&plan](const std::string& context, std::string reason) {
        plan.refusals.push_back({context, std::move(reason)});
    };

    PoCatalog catalog;  // the header; the messages stay in their parts
    Ranges written(image.size());
    std::unordered_map<std::uint32_t, const Translated*> plannedAt;  // offset: the text that goes there
    std::vector<Move> moves;
    std::vector<BytesAt> pending;  // new bytes; the old ones are read from the image when they are joined
    std::vector<std::string_view> originals;  // the old text of each change
    // At most one change per entry's text.
    plan.changes.reserve(texts.size());
    pending.reserve(texts.size());
    originals.reserve(texts.size());
    // Messages are planned in the file's order: of two that claim the same
    // bytes, the first one read wins.
    auto planMessage = [&](const PoMessage& message, Translated& tr) {
        if (message.str.empty()) {
            ++plan.untranslated;
            return;
        }
        if (message.fuzzy) {
            ++plan.fuzzy;
            return;
        }
        if (tr.text == Translated::kNoText) {
            const auto found = byContext.find(message.context);
            if (found == byContext.end())
                refuse(message.context, "the offset file has no entry of this name");
            else
                refuse(texts[found->second].context, texts[found->second].problem);
            return;
        }
        const EntryText& t = texts[tr.text];
        if (auto planned = plannedAt.find(t.offset); planned != plannedAt.end()) {
            if (planned->second->newText == tr.newText)
                ++plan.unchanged;
            else
                refuse(t.context, "another entry with the same offset " + PlainHex(t.offset) + " gets another text");
            return;
        }
        if (tr.same) {
            ++plan.unchanged;
            return;
        }
        if (!tr.encoded.refusal.empty()) {
            refuse(t.context, tr.encoded.refusal);
            return;
        }
        const std::uint64_t end = t.offset + tr.after.size();
        if (written.Overlaps(t.offset, end)) {
            refuse(t.context, "it overlaps another changed text");
            return;
        }
        written.Add(t.offset, end);
        plannedAt.emplace(t.offset, &tr);
        if (tr.kind == ImportKind::Grown) taken.push_back({t.offset, end + 1});
        if (tr.kind == ImportKind::Moved)
            moves.push_back({plan.changes.size(), pending.size(), &t, std::move(tr.encoded.bytes)});
        ImportChange change;
        change.context = t.context;
        change.kind = tr.kind;
        change.offset = change.newOffset = t.offset;
        change.oldLength = t.bytes.size();
        change.newLength = tr.newLength;
        change.name = t.entry->fixed.has_value();
        plan.changes.push_back(std::move(change));
        pending.push_back({t.offset, std::move(tr.after)});
        originals.push_back(t.bytes);
    };

    {
        ProgressStage stage(progress, "Planning the import", 0);
        std::size_t planned = 0;
        for (std::size_t k = 0; ReadPart* part = parts.Worked(k); ++k) {
            if (catalog.header.empty()) catalog.header = std::move(part->catalog.header);
            for (std::size_t m = 0; m < part->catalog.messages.size(); ++m, ++planned) {
                if (planned % 1024 == 0) stage.Step(planned);
                planMessage(part->catalog.messages[m], part->translated[m]);
            }
        }
    }
    handOver(std::make_unique<Leftovers>(Leftovers{parts.TakeParts(), std::move(plannedAt)}));
    const std::string poCode = HeaderField(catalog, kGameCodeField);
    if (!poCode.empty() && poCode != Latin1ToUtf8(code))
        throw PoError("The PO file was exported from the game " + poCode + ", not from this ROM (" +
                      Latin1ToUtf8(code) + ").");

    // Moves: their pointers from the one pass over the image, then free space
    // handed out once for all of them.
    RomScan scan = [&] {
        ProgressStage stage(progress, "Finding the pointers", 0);
        return scanned.get();
    }();
    const game::GameModel& model = *scan.model;
    FreeSpace& space = scan.freeSpace;

    // The new texts' widths, each against its box.
    if (scan.font.font) {
        std::vector<const std::string*> moved(plan.changes.size(), nullptr);
        for (const Move& move : moves) moved[move.change] = &move.bytes;
        for (std::size_t i = 0; i < plan.changes.size(); ++i) {
            ImportChange& change = plan.changes[i];
            const fit::Box box = scan.boxes.At(change.offset);
            const std::string& bytes = moved[i] ? *moved[i] : pending[i].bytes;
            const fit::Measure m = fit::MeasureBytes(bytes, *scan.font.font,
                                                     fit::OptionsFor(box, scan.boxes.family(), request.fit.PlayerName()));
            change.limit = m.limit;
            change.linesOver = m.overCount;
            change.linesBelow = m.hiddenLines;
            if (box.context == game::TextContext::Other && !change.name) {
                // A window the game does not name shows as many lines as the old text filled.
                const fit::ReflowOptions window =
                    fit::ReflowFor(box, scan.boxes.family(), SavedAsSpecialDialog(originals[i]),
                                   request.fit.PlayerName(), &*scan.font.font, originals[i]);
                if (window.measure.box.lines > 0)
                    change.linesBelow = fit::MeasureBytes(bytes, *scan.font.font, window.measure).hiddenLines;
            }
            for (const fit::Line& l : m.lines)
                if (l.over) change.widest = std::max(change.widest, l.width);
        }
    } else {
        plan.noFitCheck = scan.font.why;
    }
    for (const Move& move : moves)
        for (std::uint32_t at : model.Pointers().PlacesOf(move.text->offset)) taken.push_back({at, at + 4u});
    space.Exclude(std::move(taken));

    std::vector<bool> dropped(plan.changes.size(), false);
    std::unordered_map<std::uint32_t, std::uint32_t> movedTo;
    for (const Move& move : moves) {
        ImportChange& change = plan.changes[move.change];
        auto drop = [&](std::string reason) {
            written.Remove(move.text->offset, move.text->offset + pending[move.pending].bytes.size());
            dropped[move.change] = true;
            pending[move.pending].bytes.clear();  // the text stays where it is
            refuse(change.context, std::move(reason));
        };
        if (!Pointable(change.offset, image.size())) {
            drop("it needs moving, and pointers can only be rewritten for offsets from " + PlainHex(kLowestPointable) +
                 " to " + PlainHex(HighestPointable(image.size())));
            continue;
        }
        // The references are rewritten; bytes of program code that only
        // look like the pointer are left alone, and places of unknown use
        // keep the text where it is unless the user said to rewrite them.
        const repoint::Rewrites rewrites = repoint::SelectRewrites(
            model.ReferencesTo(change.offset), {request.rewriteCode, request.rewriteUnknown});
        std::vector<std::uint32_t> found;
        for (const game::Place& place : rewrites.rewrite) {
            found.push_back(place.place);
            if (place.kind == game::PlaceKind::Code) change.codeRewritten.push_back(place.place);
        }
        std::string unknown;
        for (const game::Place& place : rewrites.unknown)
            unknown += (unknown.empty() ? "" : ", ") + PlainHex(place.place, 6) + " (" + std::string(place.rule) + ")";
        const std::size_t unknownCount = rewrites.unknown.size(), references = rewrites.references;
        change.codeLeft = rewrites.code.size();
        if (unknownCount > 0) {
            plan.unknownLeft += unknownCount;
            drop("it needs moving, and " + Plural(unknownCount, "place", "places") + " of unknown use hold" +
                 (unknownCount == 1 ? "s" : "") + " its pointer: " + unknown + "; --rewrite-unknown rewrites them");
            continue;
        }
        if (references == 0 && !(request.rewriteCode && !found.empty())) {
            drop("it needs moving, but no pointer to it was found");
            continue;
        }
        std::vector<std::uint32_t> added;
        for (std::uint32_t at : found) {
            if (written.Overlaps(at, at + 4u)) break;
            written.Add(at, at + 4u);
            added.push_back(at);
        }
        if (added.size() != found.size()) {
            for (std::uint32_t at : added) written.Remove(at, at + 4u);
            drop("a pointer to it overlaps another change");
            continue;
        }
        const auto target = space.Allocate(move.bytes.size() + 1);
        if (!target) {
            for (std::uint32_t at : added) written.Remove(at, at + 4u);
            drop("it needs moving, but no free space is left for it");
            continue;
        }
        change.newOffset = *target;
        change.pointers = found.size();
        plan.freeUsed += move.bytes.size() + 1;
        movedTo[change.offset] = *target;
        const std::string newPointer = PointerBytes(*target);
        for (std::uint32_t at : found) pending.push_back({at, newPointer});
        pending.push_back({*target, move.bytes + '\xFF'});
    }
    plan.freeLeft = space.Left();

    // Refused moves leave their text as it was.
    if (std::find(dropped.begin(), dropped.end(), true) != dropped.end()) {
        std::vector<ImportChange> kept;
        for (std::size_t i = 0; i < plan.changes.size(); ++i)
            if (!dropped[i]) kept.push_back(std::move(plan.changes[i]));
        plan.changes = std::move(kept);
        std::erase_if(pending, [](const BytesAt& p) { return p.bytes.empty(); });
    }
    plan.writes.romWrites = RangesFor(image, pending, kJoinGap);

    // Every entry naming a moved text follows it.
    if (!movedTo.empty()) {
        std::vector<std::pair<const OffsetEntry*, std::string>> values;
        for (const EntryText& t : texts) {
            if (!t.problem.empty()) continue;
            if (auto to = movedTo.find(t.offset); to != movedTo.end()) values.emplace_back(t.entry, PlainHex(to->second));
        }
        plan.writes.offsetFile = request.offsetFile;
        plan.writes.offsetBefore = side->offsetText;
        plan.writes.offsetAfter = WithValues(side->offsetText, std::move(values));
    }
    return plan;
}

std::string DescribePlan(const ImportPlan& plan) {
    const std::size_t moved = plan.Count(ImportKind::Moved);
    std::size_t pointers = 0;
    for (const auto& c : plan.changes) pointers += c.pointers;
    std::string out;
    out += Plural(plan.changes.size(), "text changes", "texts change") + ":\n";
    // Names are counted apart: they stay in their fields, padded as the game pads them.
    auto texts = [&plan](ImportKind kind) {
        return std::count_if(plan.changes.begin(), plan.changes.end(),
                             [kind](const ImportChange& c) { return c.kind == kind && !c.name; });
    };
    const auto names = std::count_if(plan.changes.begin(), plan.changes.end(), [](const auto& c) { return c.name; });
    out += "  " + std::to_string(texts(ImportKind::InPlace)) + " in place\n";
    out += "  " + std::to_string(texts(ImportKind::Shorter)) + " shorter, padded with FF\n";
    out += "  " + std::to_string(texts(ImportKind::Grown)) + " grown into free bytes behind them\n";
    out += "  " + std::to_string(moved) + " moved to free space (" + Plural(pointers, "pointer", "pointers") +
           " rewritten)\n";
    if (names > 0)
        out += "  " + Plural(static_cast<std::size_t>(names), "name", "names") +
               " of fixed length, each in its own field, padded as the game pads it\n";
    out += Plural(plan.unchanged, "text is", "texts are") + " unchanged, " + std::to_string(plan.untranslated) +
           " untranslated, " + std::to_string(plan.fuzzy) + " fuzzy (left out).\n";
    std::size_t codeLeft = 0;
    std::string codeRewritten;
    for (const auto& c : plan.changes) {
        codeLeft += c.codeLeft;
        for (std::uint32_t at : c.codeRewritten) codeRewritten += "  " + c.context + ": " + PlainHex(at, 6) + "\n";
    }
    if (codeLeft > 0)
        out += "Left alone: " + Plural(codeLeft, "place", "places") +
               " inside program code that only look like a moved text's pointer.\n";
    if (!codeRewritten.empty()) out += "Rewritten inside program code (--rewrite-code):\n" + codeRewritten;
    out += "Free space: " + std::to_string(plan.freeUsed) + " bytes used, " + std::to_string(plan.freeLeft) +
           " bytes left.\n";
    std::string over;
    std::size_t overCount = 0;
    for (const auto& c : plan.changes)
        if (c.linesOver > 0) {
            ++overCount;
            over += "  " + c.context + ": " + fit::WidthCaption(c.widest, c.limit) + "\n";
        }
    if (!plan.noFitCheck.empty()) {
        std::string why = plan.noFitCheck;
        why[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(why[0])));
        out += why + "\n";
    } else if (overCount == 0) {
        out += "Lines over the message box: none.\n";
    } else {
        out += "Lines over the message box (" + std::to_string(overCount) + "):\n" + over;
    }
    std::string below;
    std::size_t belowCount = 0;
    for (const auto& c : plan.changes)
        if (c.linesBelow > 0) {
            ++belowCount;
            below += "  " + c.context + ": " + Plural(static_cast<std::size_t>(c.linesBelow), "line", "lines") +
                     " past the last its window shows\n";
        }
    if (plan.noFitCheck.empty() && belowCount > 0)
        out += "Lines below their window (" + std::to_string(belowCount) + "), which the game never shows:\n" + below;
    if (plan.refusals.empty()) {
        out += "Refused: none.\n";
    } else {
        out += "Refused (" + std::to_string(plan.refusals.size()) + "):\n";
        for (const auto& r : plan.refusals) out += "  " + r.context + ": " + r.reason + "\n";
    }
    return out;
}

CommitResult ApplyImport(const ImportPlan& plan) {
    if (plan.WritesNothing()) return {};
    try {
        return CommitPlan(plan.writes);
    } catch (const FileError& e) {
        return {CommitOutcome::RolledBack, e.what()};  // the journal could not be made: nothing written
    }
}

std::string DescribeOutcome(const ImportPlan& plan, const CommitResult& result) {
    std::string out = DescribePlan(plan);
    if (plan.WritesNothing()) return out + "Nothing was written: no text changed.\n";
    switch (result.outcome) {
        case CommitOutcome::Written:
            out += "Written: " + Plural(plan.changes.size(), "text", "texts") + " saved";
            if (plan.writes.offsetFile) out += ", the offset file updated for the moved ones";
            return out + ".\n";
        case CommitOutcome::RolledBack:
            return out + "Nothing was written: " + result.error + "\nThe ROM and the offset file were left as they were.\n";
        case CommitOutcome::JournalKept:
            return out + "The import was cut off: " + result.error +
                   "\nThe ROM and the offset file will be put back as they were when the ROM is opened again.\n";
    }
    return out;
}

}  // namespace quillon
