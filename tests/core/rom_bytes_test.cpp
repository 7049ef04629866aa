#include <quillon/core.h>

#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using namespace quillon::test;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

class RomBytes : public ::testing::Test {
protected:
    TempDir dir;
    std::filesystem::path rom = dir / "rom.gba";
};

TEST_F(RomBytes, ReadBytesUntilReturnsTheBytesBeforeTheTerminator) {
    WriteFile(rom, Bytes("FF4100420A42FF"));
    EXPECT_EQ(ReadBytesUntil(rom, "0", 100, "FF"), "");
    EXPECT_EQ(ReadBytesUntil(rom, "1", 100, "FF"), std::string("\x41\x00\x42\x0A\x42", 5));
    // The terminator is compared as unpadded upper-case hex.
    EXPECT_EQ(ReadBytesUntil(rom, "1", 100, "0"), "A");
    EXPECT_EQ(ReadBytesUntil(rom, "1", 100, "A"), std::string("\x41\x00\x42", 3));
    EXPECT_EQ(ReadBytesUntil(rom, "1", 100, "00"), std::string("\x41\x00\x42\x0A\x42\xFF", 6));
    EXPECT_EQ(ReadBytesUntil(rom, "1", 100, "ff"), std::string("\x41\x00\x42\x0A\x42\xFF", 6));
    EXPECT_EQ(ReadBytesUntil(rom, "1", 2, "FF"), std::string("\x41\x00", 2));
    EXPECT_EQ(ReadBytesUntil(rom, "5", 100, "0"), "B\xFF");  // runs into the end of the file
}

TEST_F(RomBytes, FindByteBackwardFindsTheStartOfTheText) {
    RomBuilder image(2000, 'A');
    image.Put(100, "\xFF").Save(rom);
    EXPECT_EQ(FindByteBackward(rom, PadHex(101), 500, "FF"), "101");  // byte just before is 0xFF
    EXPECT_EQ(FindByteBackward(rom, PadHex(150), 500, "FF"), "101");
    EXPECT_EQ(FindByteBackward(rom, PadHex(601), 500, "FF"), "101");  // 0xFF is the 501st byte back
    EXPECT_EQ(FindByteBackward(rom, PadHex(602), 500, "FF"), "0");    // one byte out of reach
    EXPECT_EQ(FindByteBackward(rom, PadHex(100), 500, "FF"), "0");    // never reads before offset 0
    EXPECT_EQ(FindByteBackward(rom, "0", 500, "FF"), "0");
    EXPECT_EQ(FindByteBackward(rom, PadHex(5000), 500, "FF"), "0");   // past the end
}

TEST_F(RomBytes, WriteBytesHexOverwritesInPlace) {
    WriteFile(rom, Bytes("0000000000"));
    WriteBytesHex(rom, "1", "aBFf");
    EXPECT_EQ(ReadFile(rom), Bytes("00ABFF0000"));
    WriteBytesHex(rom, "4", "ABC");  // lengthens the file; odd digit is a byte of its own
    EXPECT_EQ(ReadFile(rom), Bytes("00ABFF00AB0C"));
    WriteBytesHex(rom, "0", "");
    EXPECT_EQ(ReadFile(rom), Bytes("00ABFF00AB0C"));
}

TEST_F(RomBytes, FailuresWriteNothing) {
    WriteFile(rom, Bytes("00112233"));
    EXPECT_THROW(WriteBytesHex(rom, "1", "12G4"), TypeMismatch);
    EXPECT_THROW(WriteBytesHex(rom, "x", "1234"), TypeMismatch);
    EXPECT_THROW(ReadBytesHex(rom, "1 ", 2), TypeMismatch);
    MakeReadOnly(rom);
    EXPECT_THROW(WriteBytesHex(rom, "0", "FF"), FileError);
    EXPECT_EQ(ReadFile(rom), Bytes("00112233"));
    EXPECT_EQ(ReadBytesHex(rom, "0", 2), "0011");  // reading a protected file is fine

    // A missing file raises a FileError with its path and the reason.
    auto missing = dir / "nope.gba";
    EXPECT_THAT([&] { ReadBytesHex(missing, "0", 4); },
                ThrowsMessage<FileError>(::testing::AllOf(HasSubstr("nope.gba"), HasSubstr("No such file"))));
    EXPECT_THROW(WriteBytesHex(missing, "0", "00"), FileError);
    EXPECT_FALSE(FileExists(missing));  // a failed write creates nothing
    EXPECT_FALSE(FileExists(""));
    EXPECT_TRUE(FileExists(dir.path()));  // a folder exists, though it is no ROM
    std::int32_t start = 1;
    EXPECT_THROW(FindBytes(missing, "A", start), FileError);
    EXPECT_THROW(ReadBytesUntil(dir.path(), "0", 4, "FF"), FileError);  // a folder is no ROM
}
