#pragma once
// The search window as state and commands: finds the bytes of an editor text
// in the open ROM, shows the match's offset and a preview of the text stored
// there, continues behind it, and hands the offset to the add-offset window.
// Outcomes, failures included, are reported in the status line only.
#include "app/text_box.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

class Session;

inline constexpr std::string_view kSearchCaption = "Search for a text";
inline constexpr std::int16_t kMaxPreviewBytes = 5000;
// The longest byte pattern a search text may encode to.
inline constexpr std::size_t kMaxPatternBytes = 16383;

class SearchForm {
public:
    // Opens over the session's ROM; the search text comes from `text1` and is
    // encoded with the main window's "Special Dialog*" choice.
    explicit SearchForm(Session& session);

    TextBox text1;                  // Text1: the text to search for
    std::string text2;              // Text2: offset of the current match, decimal; empty for none
    std::string text4;              // Text4: bytes of the text at that offset, decimal
    std::string text3;              // Text3: preview of the text at that offset
    bool check1 = false;            // "Go to beginning of text*"
    bool japaneseTable = false;     // Option1: index 1 "Japanese Table" chosen for the preview
    bool command1Enabled = true;    // "Search"
    bool command2Enabled = false;   // "Resume"
    bool command3Visible = false;   // "Write to INI"
    bool command4Enabled = true;    // the Japanese character list
    bool matchCase = true;          // "Match case": letters compare exactly
    std::string status;             // StatusBar1
    // The offset-file entry whose text holds the current match; empty for none.
    std::string foundSection, foundKey;

    // "Search": the first match from the start of the file. A match at
    // offset 0 counts as none.
    void SearchText();
    // "Resume": the next match from the last byte of the current text
    // (Text2 + Text4 - 1), but always at least one byte behind the match
    // last shown, so a text of 0 or 1 bytes (Text4 "0" or "1") or a match in
    // the last byte of its text is not reported again.
    void ResumeSearch();
    // Either table option: reloads the preview; the Japanese table disables
    // Search, Resume and the character list while a match is shown.
    void ChooseTable(bool japanese);
    // "Write to INI": the add-offset window with Text2 as its fixed offset.
    void WriteToIni();
    // "Go to entry": selects and loads the entry of the match in the main window.
    void JumpToEntry();
    // The Japanese character list's AddChar and cell click on Text1.
    void AddChar(std::string_view numba);
    void ClickJapaneseCell(int index);

private:
    void Find(std::int64_t start, std::string_view foundText);
    void ShowMatch(std::int32_t match, std::string_view foundText);
    void NotFound();
    void FindEntry(std::int32_t match);

    Session& session_;
    // The match behind the current Text2 before "Go to beginning of text*"
    // moved it, so Resume can step past it.
    std::string shownText2_;
    std::int32_t shownMatch_ = 0;
};

}  // namespace quillon
