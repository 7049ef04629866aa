#include "translate/po_export.h"
#include "core/hex_text.h"

#include "core/file_io.h"
#include "edit/free_space.h"
#include "fit/measure.h"
#include "game/game_model.h"
#include "game/pointer_index.h"
#include "translate/offset_entries.h"
#include "translate/po_file.h"
#include "translate/rom_texts.h"

#include <quillon/codec.h>

#include <stdexcept>

namespace quillon {
namespace {

std::string HeaderString(std::string_view image, std::size_t at, std::size_t count) {
    std::string field(image.substr(std::min(at, image.size()), count));
    field.erase(field.find_last_not_of('\0') + 1);
    return Latin1ToUtf8(field);
}

// A name's notes: how many letters its field holds and which table it is.
std::string NameNotes(const OffsetEntry& e) {
    const FixedLength& f = *e.fixed;
    // A table of more than one section is named once: "Species names (2)" is "Species names".
    std::string_view name = e.section;
    if (const auto open = name.rfind(" ("); open != std::string_view::npos && name.ends_with(')') &&
        name.find_first_not_of("0123456789", open + 2) == name.size() - 1)
        name = name.substr(0, open);
    std::string table = "\nTable: " + Latin1ToUtf8(name) + ", ";
    table += f.stride > f.bytes ? "fields of " + std::to_string(f.bytes) + " bytes in records of " + std::to_string(f.stride)
                                : "records of " + std::to_string(f.bytes) + " bytes";
    return "\nFixed length: " + std::to_string(f.Letters()) + " letters" + table + ", padded with " +
           PlainHex(f.padding, 2);
}

std::string Comments(const EntryText& t, std::size_t pointers, const fit::Font* font,
                     const fit::MeasureOptions& options) {
    std::string out = "Offset: " + PlainHex(t.offset) + "\nBytes: " + std::to_string(t.bytes.size()) +
                      (t.entry->fixed ? NameNotes(*t.entry)
                                      : "\nRoom before a repoint: " + std::to_string(t.room) + " bytes") +
                      "\nPointers: " + std::to_string(pointers);
    if (font)
        out += "\nbox: " + std::to_string(options.box.width) + " px, widest line " +
               std::to_string(fit::MeasureBytes(t.bytes, *font, options).WidestWidth()) + " px";
    return out;
}

}  // namespace

ExportSummary ExportPo(const ExportRequest& request, Progress& progress) {
    const io::FileCopy romFile(request.rom);
    const std::string_view image = romFile.View();
    const std::string offsetText = io::ReadAll(request.offsetFile);
    const std::vector<OffsetEntry> entries = ReadOffsetEntries(offsetText);
    const std::string code = HeaderString(image, 0xAC, 4);
    const char freeByte = FreeRun(code, 1)[0];
    const game::GameModel model = game::GameModel::Read(image);
    const fit::FontResult font = fit::LocateFont(image, request.fit.named, model.Pointers());
    const fit::TextBoxes boxes = fit::TextBoxes::Read(image, model, false, font.font ? &*font.font : nullptr);
    auto measure = [&](std::uint32_t offset) {
        return fit::OptionsFor(boxes.At(offset), boxes.family(), request.fit.PlayerName());
    };

    std::vector<OffsetEntry> chosen;
    for (const OffsetEntry& e : entries)
        if (!request.section || Latin1ToUtf8(e.section) == *request.section) chosen.push_back(e);
    if (request.section && chosen.empty())
        throw std::invalid_argument("The offset file has no section '" + *request.section + "'.");

    // Room is measured against every entry, not only the chosen ones.
    const std::vector<EntryText> all = LoadEntryTexts(image, entries, freeByte, progress);
    std::vector<const EntryText*> texts;
    for (const EntryText& t : all)
        if (!request.section || Latin1ToUtf8(t.entry->section) == *request.section) texts.push_back(&t);

    PoCatalog catalog;
    catalog.header = {{"Project-Id-Version", HeaderString(image, 0xA0, 12) + " (" + code + ")"},
                      {"MIME-Version", "1.0"},
                      {"Content-Type", "text/plain; charset=UTF-8"},
                      {"Content-Transfer-Encoding", "8bit"},
                      {std::string(kGameCodeField), code},
                      {std::string(kGameTitleField), HeaderString(image, 0xA0, 12)}};
    ExportSummary summary;
    ProgressStage stage(progress, "Writing the PO file", texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i % 1024 == 0) stage.Step(i);
        const EntryText& t = *texts[i];
        if (!t.problem.empty()) {
            summary.skipped.push_back({t.context, t.problem});
            continue;
        }
        if (t.bytes.empty()) {
            summary.skipped.push_back({t.context, "its text is empty"});
            continue;
        }
        std::string id = ToPoText(DecodeText(t.bytes, false));
        PoMessage message{t.context, id, request.fillTranslations ? id : std::string(),
                          Comments(t, t.problem.empty() ? model.Pointers().PlacesOf(t.offset).size() : 0, font.font ? &*font.font : nullptr, measure(t.offset)),
                          false};
        catalog.messages.push_back(std::move(message));
        ++summary.exported;
    }
    WritePo(request.po, catalog);
    return summary;
}

}  // namespace quillon
