// Exporting the editor text to a file.
#include "core/file_io.h"
#include "support/workspace.h"
#include "tools/export_text.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

class Export : public ::testing::Test {
protected:
    // Exports `text` to `target`; what the user was shown after the save dialog.
    std::vector<Shown> Run(std::string text, const std::filesystem::path& target) {
        w.session.controls.text1.SetText(std::move(text));
        w.user.Then(target);
        ExportText(w.session);
        auto shown = w.user.Take();
        EXPECT_EQ(shown.at(0), (Shown{Shown::SaveFile, "Select location to export to...",
                                      "Quillon Export (*.txt)|*.txt", Icon::Information}));
        return {shown.begin() + 1, shown.end()};
    }
    void ExpectFailure(std::string text, const std::filesystem::path& target, std::string_view reason) {
        auto shown = Run(std::move(text), target);
        ASSERT_EQ(shown.size(), 1u);
        EXPECT_EQ(shown[0].icon, Icon::Critical);
        EXPECT_NE(shown[0].text.find(reason), std::string::npos) << shown[0].text;
    }
    const Shown done = Msg(Icon::Information, "Text exported successfully!", "Export done!");
    Workspace w;
};

}  // namespace

TEST_F(Export, ReplacesALongerFileWithTheTextAsLatin1) {
    const auto file = w.dir / "out.txt";
    WriteFile(file, std::string(200, 'x'));
    EXPECT_EQ(Run("[PLAYER] café €\r\nline 2", file), std::vector<Shown>{done});
    EXPECT_EQ(ReadFile(file), "[PLAYER] caf\xE9 ?\r\nline 2");
    // Stray and cut-off bytes, an overlong "A", U+0100, a 4-byte character: one '?' each.
    EXPECT_EQ(ToLatin1("\xC2\xA0" "a\xE9z\xC3|\xC1\x81\xC4\x80\xF0\x9F\x98\x80"), "\xA0" "a?z?|???");
    EXPECT_EQ(Run("", file), std::vector<Shown>{done});
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(ReadFile(file), "");

    w.user.Cancelled();
    ExportText(w.session);
    EXPECT_EQ(w.user.Take().size(), 1u);  // the dialog only
}

TEST_F(Export, FilesThatCannotBeWrittenAreReportedAndNothingElseChanges) {
    ExpectFailure("text", w.dir / "missing" / "out.txt", "No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(w.dir / "missing"));

    const auto folder = w.dir / "folder.txt";
    std::filesystem::create_directory(folder);
    ExpectFailure("text", folder, "Is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(folder));

    const auto locked = w.dir / "locked.txt";
    WriteFile(locked, "old");
    MakeReadOnly(locked);
    ExpectFailure("text", locked, "Permission denied");
    EXPECT_EQ(ReadFile(locked), "old");

    // A failed write keeps the old file: the new one is renamed over it only when whole.
    const auto file = w.dir / "out.txt";
    WriteFile(file, "old");
    io::ScopedWriteHook failing([](const std::filesystem::path&) { return false; });
    ExpectFailure("new", file, "out.txt");
    EXPECT_EQ(ReadFile(file), "old");
}
