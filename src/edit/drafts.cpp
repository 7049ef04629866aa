#include "edit/drafts.h"

#include "app/session.h"
#include "core/file_io.h"
#include "core/codec/text_bytes.h"
#include "edit/text_view.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <ctime>
#include <exception>

namespace quillon {
namespace {

std::string Now() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M", &local);
    return buf;
}

// Whether the editor text differs from what the ROM holds for the entry now.
bool Unsaved(Session& session, std::string_view entry) {
    const auto cut = entry.find('\n');
    session.ini.SetPath(session.OffsetFile());
    session.ini.SetSection(std::string(entry.substr(0, cut)));
    session.ini.SetKey(std::string(entry.substr(cut + 1)));
    const std::string offset = session.ini.Value();
    const std::string stored = ReadBytesUntil(session.romPath, offset, kMaxTextBytes, "FF");
    return HexToBytes(EncodeText(session.controls.text1.Text(), session.controls.specialDialog)) != stored;
}

}  // namespace

std::filesystem::path DraftFile(const std::filesystem::path& rom) {
    std::filesystem::path file = rom;
    file += ".drafts";
    return file;
}

std::string DraftKey(std::string_view section, std::string_view key) {
    return std::string(section) + '\n' + std::string(key);
}

void KeepDraft(Session& session) {
    const auto& c = session.controls;
    if (session.shownEntry.empty() || !c.saveEnabled || c.japaneseTable) return;
    try {
        if (Unsaved(session, session.shownEntry)) session.drafts[session.shownEntry] = {c.text1.Text(), Now()};
    } catch (const std::exception&) {
        session.drafts[session.shownEntry] = {c.text1.Text(), Now()};  // the stored text cannot be read
    }
}

void OfferDraft(Session& session) {
    auto found = session.drafts.find(session.shownEntry);
    if (found == session.drafts.end()) {
        session.controls.draftTime.clear();
        return;
    }
    // A draft of today shows its time only.
    const std::string& time = found->second.time;
    const std::string today = Now().substr(0, 10);
    session.controls.draftTime = time.compare(0, 10, today) == 0 && time.size() > 11 ? time.substr(11) : time;
}

void RestoreDraft(Session& session) {
    auto found = session.drafts.find(session.shownEntry);
    if (found != session.drafts.end()) {
        session.controls.text1.SetText(found->second.text);
        session.drafts.erase(found);
        UpdateRepointCounter(session);
    }
    session.controls.draftTime.clear();
    session.Changed();
}

void DiscardDraft(Session& session) {
    session.drafts.erase(session.shownEntry);
    session.controls.draftTime.clear();
    session.Changed();
}

void LeaveRom(Session& session) {
    KeepDraft(session);
    StoreDrafts(session);
    session.drafts.clear();
    session.shownEntry.clear();
    session.controls.draftTime.clear();
}

// File: per draft, a line "entry key (section TAB key) TAB time TAB length"
// and then `length` bytes of text.
void StoreDrafts(const Session& session) {
    if (!session.RomOpen()) return;
    try {
        const auto file = DraftFile(session.romPath);
        if (session.drafts.empty()) {
            if (FileExists(file)) io::RemoveFile(file);
            return;
        }
        std::string out;
        for (const auto& [entry, draft] : session.drafts) {
            std::string name = entry;
            name[name.find('\n')] = '\t';
            out += name + '\t' + draft.time + '\t' + std::to_string(draft.text.size()) + '\n' + draft.text;
        }
        io::ReplaceFile(file, out);
    } catch (const std::exception&) {
    }
}

void LoadDrafts(Session& session) {
    session.drafts.clear();
    session.shownEntry.clear();
    session.controls.draftTime.clear();
    if (!session.RomOpen()) return;
    try {
        const auto file = DraftFile(session.romPath);
        if (!FileExists(file)) return;
        const std::string in = io::ReadAll(file);
        for (std::size_t at = 0; at < in.size();) {
            const auto end = in.find('\n', at);
            if (end == std::string::npos) break;
            const std::string head = in.substr(at, end - at);
            const auto t1 = head.find('\t'), t2 = head.find('\t', t1 + 1), t3 = head.rfind('\t');
            if (t1 == std::string::npos || t2 == std::string::npos || t3 <= t2) break;
            const std::size_t length = std::stoul(head.substr(t3 + 1));
            if (end + 1 + length > in.size()) break;
            session.drafts[DraftKey(head.substr(0, t1), head.substr(t1 + 1, t2 - t1 - 1))] = {
                in.substr(end + 1, length), head.substr(t2 + 1, t3 - t2 - 1)};
            at = end + 1 + length;
        }
    } catch (const std::exception&) {
    }
}

void AnnounceDrafts(Session& session) {
    if (session.drafts.empty()) return;
    constexpr std::size_t kNamed = 5;
    const std::size_t count = session.drafts.size();
    std::string text = (count == 1 ? std::string("1 unsaved edit") : std::to_string(count) + " unsaved edits") +
                       " kept from last time: ";
    std::size_t named = 0;
    for (const auto& [entry, draft] : session.drafts) {
        if (named == kNamed) break;
        const auto cut = entry.find('\n');
        text += (named++ ? ", " : "") + entry.substr(0, cut) + " / " + entry.substr(cut + 1);
    }
    if (count > kNamed) text += " and " + std::to_string(count - kNamed) + " more";
    text += ".\r\nTheir entries show in italics; open one to restore or discard its edit.";
    session.prompter.Message(Icon::Information, text, "Unsaved edits");
}

}  // namespace quillon
