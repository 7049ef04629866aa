#include "offsets/ini_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using quillon::ini::IniDocument;

namespace {

std::vector<std::string> SectionNames(const IniDocument& d) {
    std::vector<std::string> names;
    for (const auto& s : d.Sections()) names.emplace_back(s.name);
    return names;
}

}  // namespace

TEST(IniDocument, HeadersAreFoundOnlyAtLineStarts) {
    struct Case { std::string text; std::vector<std::string> sections; };
    const Case cases[] = {
        {"[A]\r\n[B]", {"A", "B"}},
        {"\xEF\xBB\xBF[A]\n", {"A"}},                          // byte order mark passed over
        {" \t[ A b ]  \r\n", {"A b"}},                          // blanks before '[' and inside
        {"[A]b]\n[C] ; note\n", {"A]b", "C"}},                  // up to the line's last ']'
        {"[]\n", {""}},
        {"[A\nx=[B]\n'[C]\nx [D]\n[[E]] [F\n", {"[E]"}},        // no ']', or not first on the line
        {"\r\r[A]\n", {"A"}},                                    // CR counts as a blank
        {"a\r[A]\n", {}},                                        // a lone CR ends no line
        {"[A]\n\n[A]\n", {"A", "A"}},
        {"", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(SectionNames(IniDocument(c.text)), c.sections) << c.text;
}
