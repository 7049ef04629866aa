#include "fit/check_all.h"

#include "core/file_io.h"
#include "core/codec/text_bytes.h"
#include "core/ini_document.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <unordered_set>

namespace quillon::fit {
CheckReport CheckTexts(std::string_view image, std::string_view offsetFileText, const Font& font,
                       const MeasureOptions& options) {
    CheckReport report;
    report.checked = true;
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
            const std::string_view text = image.substr(static_cast<std::size_t>(offset), kMaxTextBytes);
            ++report.entries;
            const Measure m = MeasureBytes(text, font, options);
            if (m.overCount == 0) continue;
            const Line& widest = m.lines[static_cast<std::size_t>(m.widestLine)];
            report.rows.push_back({std::string(section.name), std::string(key.name), value, m.widestLine,
                                   widest.width, m.overCount,
                                   DecodeText(std::string_view(m.bytes).substr(widest.begin, widest.end - widest.begin),
                                              false)});
        }
    }
    return report;
}

CheckReport CheckRom(const std::filesystem::path& rom, const std::filesystem::path& offsetFile,
                     std::optional<FontPlace> named, const MeasureOptions& options) {
    const std::string image = ReadImage(rom);
    FontResult font = LocateFont(image, named);
    if (!font.font) {
        CheckReport report;
        report.why = font.why;
        return report;
    }
    const std::string offsets = FileExists(offsetFile) ? io::ReadAll(offsetFile) : std::string();
    return CheckTexts(image, offsets, *font.font, options);
}

}  // namespace quillon::fit
