#include <gtest/gtest.h>
#include <quillon/codec.h>

#include "support/rom_builder.h"

namespace {

using quillon::DecodeText;
using quillon::test::Bytes;

struct DecodeCase {
    const char* hex;
    const char* european;  // nullptr: not checked with this table
    const char* japanese;
};

// A meaningful sample of every row of both tables, and the edge cases of decoding.
const DecodeCase kCases[] = {
    {"", "", ""},
    // One or two cells per row.
    {"00010A0F", " À[&H0A]Ô", " akoso"},
    {"15181F", "ß[&H18][&H1F]", "nanema"},
    {"2C2D2F", "·&[&H2F]", "wawoa"},
    {"3435363D", "[Lv]=;[&H3D]", "yayuyoji"},
    {"404250", "[&H40][&H42][&H50]", "zoditsu"},
    {"515A5B5C5D5E", "¿Í%()[&H5E]", "AKOSASHISUSE"},
    {"61686F", "[&H61]âí", "CHINEMA"},
    {"797C7F", "[U][R][&H7F]", "RUWAa"},
    {"808D8F", "[&H80][&H8D][&H8F]", "iZIZE"},
    {"9093", "[&H90][&H93]", "ZODU"},
    {"A0A1ABAF", "[&HA0]0!·", "TSU0!·"},
    {"B0B1B2B3B4B8", "[...]\"\"'',", "···[][]."},
    {"B5B6B7B9BABB", "[m][f]$[x]/A", "[m][f]$[x]/A"},
    {"C0CF", "FU", "FU"},
    {"D5DF", "ak", "ak"},
    {"E0EF", "l[>]", "l[>]"},
    {"F0F1F6F7F8F9", ":Äü[u][d][l]", ":Äü[u][d][l]"},
    // Line breaks and the end-of-text byte.
    {"FA", "\r\n", "\r\n"},
    {"FE", "\r\n", "\r\n"},
    {"FB", "\r\n\r\n", "\r\n\r\n"},
    {"FF", "\\x", "\\x"},
    // Parameter bytes are hex tags whatever their value; only one byte is a parameter.
    {"FDFF", "\\v[&HFF]", "\\v[&HFF]"},
    {"FCFA", "\\c[&HFA]", "\\c[&HFA]"},
    {"FD05", "\\v[&H05]", "\\v[&H05]"},
    {"FCFC0106", "\\c[&HFC]ÀÉ", "\\c[&HFC]aka"},
    {"FD", "\\v", "\\v"},
    {"C2FC", "H\\c", "H\\c"},
    // Named tags.
    {"FD01FD06", "[PLAYER][RIVAL]", "[PLAYER][RIVAL]"},
    {"FD07FD08FD09", "[VERSION][TEAM1][TEAM2]", "[VERSION][TEAM1][TEAM2]"},
    {"FD0AFD0BFD0CFD0D", "[LEADER1][LEADER2][LEGEND1][LEGEND2]", "[LEADER1][LEADER2][LEGEND1][LEGEND2]"},
    {"FC0106", "[RED]", "\\c[&H01]ka"},
    {"FC0602FC0108FC0102", "[SMALL][BLUE][BLACK]", "\\c[&H06]i\\c[&H01]ku\\c[&H01]i"},
    {"5556575859", "[POKéBLOCK]", "OKAKIKUKE"},
    {"55", "[PO]", "O"},
    {"555657585955", "[POKéBLOCK][PO]", nullptr},
    // Japanese bracket bytes and letters spelling "[PO][Ke][BL][OC][K]".
    {"B1CAC9B2B3C5D9B4B1BCC6B2B3C9BDB4B1C5B2", nullptr, "[POKéBLOCK]"},
};

TEST(DecodeText, TableSamplesAndEdgeCases) {
    for (const DecodeCase& c : kCases) {
        SCOPED_TRACE(c.hex);
        const std::string bytes = Bytes(c.hex);
        if (c.european) {
            EXPECT_EQ(DecodeText(bytes, false), c.european);
        }
        if (c.japanese) {
            EXPECT_EQ(DecodeText(bytes, true), c.japanese);
        }
    }
}

}  // namespace
