#include "fit/check_all.h"

#include "core/file_io.h"
#include "core/codec/text_bytes.h"
#include "core/ini_document.h"
#include "game/game_model.h"
#include "game/pointer_index.h"
#include "repoint/model_cache.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <algorithm>
#include <unordered_set>

namespace quillon::fit {

const Finding& CheckRow::First() const {
    const Finding* first = &findings.front();
    for (const Finding& f : findings)
        if (f.names == first->names ? f.width > first->width : !f.names) first = &f;
    return *first;
}

CheckReport CheckTexts(std::string_view image, std::string_view offsetFileText, const FontResult& fonts,
                       const TextBoxes& boxes, std::optional<std::string> playerName) {
    CheckReport report;
    report.checked = true;
    report.messageBox = MessageBox(boxes.family()).width;
    ini::IniDocument doc{std::string(offsetFileText)};
    std::unordered_set<std::string> seen;
    for (const auto& section : doc.Sections()) {
        if (section.name.empty() || !seen.insert(ini::FoldedName(section.name)).second) continue;
        for (const auto& key : doc.Keys(section)) {
            const std::string value(ini::TrimBlanks(key.value));
            std::int32_t offset = -1;
            try {
                if (value.empty()) throw TypeMismatch("empty");
                offset = HexToLong(value);
            } catch (const TypeMismatch&) {
                report.skipped.push_back(std::string(section.name) + "/" + std::string(key.name) +
                                         ": the offset '" + value + "' is not a hexadecimal number");
                continue;
            }
            if (offset < 0 || static_cast<std::size_t>(offset) >= image.size()) {
                report.skipped.push_back(std::string(section.name) + "/" + std::string(key.name) + ": the offset " +
                                         value + " lies past the end of the image");
                continue;
            }
            std::string_view text = image.substr(static_cast<std::size_t>(offset), kMaxTextBytes);
            const Box box = boxes.At(static_cast<std::uint32_t>(offset));
            const Font* font = fonts.Of(box.font, boxes.family());
            if (!font) continue;  // a name drawn in a font not told apart in the image
            ++report.entries;
            std::string drawn;  // the text and what the game draws behind it
            if (!box.after.empty()) {
                drawn.assign(text.substr(0, text.find('\xFF'))).append(box.after);
                text = drawn;
            }
            const Measure m = MeasureBytes(text, *font, OptionsFor(box, boxes.family(), playerName));
            if (m.overCount == 0 && m.namesCount == 0) continue;
            CheckRow row{std::string(section.name), std::string(key.name), value, box, {}, m.overCount > 0};
            for (std::size_t i = 0; i < m.lines.size(); ++i) {
                const Line& l = m.lines[i];
                if (!l.over && !l.names) continue;
                row.findings.push_back({static_cast<int>(i), l.over ? l.width : l.longest, l.names,
                                        DecodeText(std::string_view(m.bytes).substr(l.begin, l.end - l.begin), false)});
            }
            ++(row.over ? report.over : report.names);
            report.rows.push_back(std::move(row));
        }
    }
    return report;
}

CheckReport CheckRom(const std::filesystem::path& rom, const std::filesystem::path& offsetFile,
                     std::optional<FontPlace> named, std::optional<std::string> playerName) {
    const auto stamp = io::FileStamp::Of(rom);
    const std::string image = ReadImage(rom);
    // The model the window keeps for the file as it is, else read from this image.
    const auto kept = stamp ? repoint::ModelOf(*stamp, image) : repoint::ModelOf(rom);
    const game::GameModel& model = *kept;
    FontResult font = LocateFont(image, named, model.Pointers());
    if (!font.font) {
        CheckReport report;
        report.why = font.why;
        return report;
    }
    const std::string offsets = FileExists(offsetFile) ? io::ReadAll(offsetFile) : std::string();
    const TextBoxes boxes = TextBoxes::Read(image, model, true, &*font.font);
    CheckReport report = CheckTexts(image, offsets, font, boxes, std::move(playerName));
    report.fonts = std::move(font.found);
    return report;
}

}  // namespace quillon::fit
