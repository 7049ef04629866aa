#pragma once
// The parsed form of one INI file's bytes, made for one read or one change.
//
// Only the section headers are indexed when the document is built (a search
// for '[' that checks the hits at line starts), and the key lines of a section
// are parsed when that section is asked for. Reading a key, listing a section
// or listing all sections therefore costs one pass over the bytes, however
// many sections the file has.
//
// Line rules, as the platform's profile reader has them:
// - Lines end at LF; a CR before it counts as a blank.
// - Blanks (space, tab, CR, VT, FF) around section names, key names and
//   values are not part of them.
// - A header is a line whose first non-blank character is '[' and that holds
//   a ']'; the name lies between the '[' and the line's last ']'.
// - Lines before the first header belong to no section.
// - Inside a section, a line holding '=' is a key line split at the first
//   '='; lines starting with ';' and lines without '=' are nobody's keys.
// - Names match without regard to ASCII letter case; other bytes as they stand.
// - A UTF-8 byte order mark at the start is passed over (and kept).
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::ini {

bool IsBlank(char c);
std::string_view TrimBlanks(std::string_view s);
// Equal names, letters A-Z matching a-z.
bool NamesEqual(std::string_view a, std::string_view b);
// The name with A-Z as a-z: one key for all the names NamesEqual matches.
std::string FoldedName(std::string_view name);

class IniDocument {
public:
    // A header line and everything up to the next header.
    struct Section {
        std::string_view name;
        std::size_t begin;  // first byte of the header line
        std::size_t body;   // first byte after the header line
        std::size_t end;    // first byte of the next header line, or the end of the text
    };

    // A "name=value" line of a section.
    struct KeyLine {
        std::string_view name;
        std::string_view value;  // as it stands, quotes included
        std::size_t begin;       // first byte of the line
        std::size_t end;         // first byte after its LF, or the end of the text
    };

    explicit IniDocument(std::string text);
    // Names point into the text, so the document stays where it was made.
    IniDocument(const IniDocument&) = delete;
    IniDocument& operator=(const IniDocument&) = delete;

    const std::string& Text() const { return text_; }
    const std::vector<Section>& Sections() const { return sections_; }

    // The first section of that name; blanks around `name` do not count.
    const Section* FindSection(std::string_view name) const;
    // The key lines of a section, in file order.
    std::vector<KeyLine> Keys(const Section& section) const;
    // The first key line of that name.
    static const KeyLine* FindKey(const std::vector<KeyLine>& keys, std::string_view name);

    // Changes return the file's new text, or nothing when the text stays as it
    // is. Lines the change does not concern keep their bytes; lines it writes
    // end with CR LF.
    //
    // Sets a key: rewrites its line, or adds it after the section's last key
    // line (after the header when the section has none), or appends the
    // section with the key at the end.
    std::optional<std::string> WithValue(std::string_view section, std::string_view key,
                                         std::string_view value) const;
    // Removes the first line of the key in the first section of that name.
    std::optional<std::string> WithoutKey(std::string_view section, std::string_view key) const;
    // Removes every section of that name with all its lines.
    std::optional<std::string> WithoutSection(std::string_view section) const;

private:
    std::string text_;
    std::vector<Section> sections_;
};

}  // namespace quillon::ini
