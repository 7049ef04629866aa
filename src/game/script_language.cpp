#include "game/script_language.h"

#include "game/words.h"

#include <iterator>

namespace quillon::game {
namespace {

constexpr std::uint8_t RS = 1u << static_cast<int>(Family::RubySapphire);
constexpr std::uint8_t FR = 1u << static_cast<int>(Family::FireRedLeafGreen);
constexpr std::uint8_t EM = 1u << static_cast<int>(Family::Emerald);
constexpr std::uint8_t RE = RS | EM, FE = FR | EM, All = RS | FR | EM;

using F = Flow;
constexpr F C = F::Continue;

// Rows shared by all families come once; where the families differ, each
// variant names the families it belongs to.
constexpr Command kCommands[] = {
    {0x00, All, "nop", C, ""},
    {0x01, All, "nop1", C, ""},
    {0x02, All, "end", F::End, ""},
    {0x03, All, "return", F::Return, ""},
    {0x04, All, "call", F::Call, "S"},
    {0x05, All, "goto", F::Goto, "S"},
    {0x06, All, "goto_if", F::GotoIf, "cS"},
    {0x07, All, "call_if", F::CallIf, "cS"},
    {0x08, All, "gotostd", F::GotoStd, "i"},
    {0x09, All, "callstd", F::CallStd, "i"},
    {0x0A, All, "gotostd_if", F::GotoStdIf, "ci"},
    {0x0B, All, "callstd_if", F::CallStdIf, "ci"},
    {0x0C, RS, "gotoram", F::End, ""},
    {0x0C, FE, "returnram", F::End, ""},
    {0x0D, RS, "killscript", F::End, ""},
    {0x0D, FE, "endram", F::End, ""},
    {0x0E, All, "setmysteryeventstatus", C, "1"},
    {0x0F, All, "loadword", C, "kL"},
    {0x10, All, "loadbyte", C, "k1"},
    {0x11, All, "setptr", C, "1D"},
    {0x12, All, "loadbytefromptr", C, "kD"},
    {0x13, All, "setptrbyte", C, "kD"},
    {0x14, All, "copylocal", C, "kk"},
    {0x15, All, "copybyte", C, "DD"},
    {0x16, All, "setvar", C, "V2"},
    {0x17, All, "addvar", C, "V2"},
    {0x18, All, "subvar", C, "V2"},
    {0x19, All, "copyvar", C, "VV"},
    {0x1A, All, "setorcopyvar", C, "V2"},
    {0x1B, All, "compare_local_to_local", C, "kk"},
    {0x1C, All, "compare_local_to_value", C, "k1"},
    {0x1D, All, "compare_local_to_ptr", C, "kD"},
    {0x1E, All, "compare_ptr_to_local", C, "Dk"},
    {0x1F, All, "compare_ptr_to_value", C, "D1"},
    {0x20, All, "compare_ptr_to_ptr", C, "DD"},
    {0x21, All, "compare_var_to_value", C, "V2"},
    {0x22, All, "compare_var_to_var", C, "VV"},
    {0x23, All, "callnative", C, "C"},
    {0x24, All, "gotonative", C, "C"},
    {0x25, All, "special", C, "2"},
    {0x26, All, "specialvar", C, "V2"},
    {0x27, All, "waitstate", C, ""},
    {0x28, All, "delay", C, "2"},
    {0x29, All, "setflag", C, "F"},
    {0x2A, All, "clearflag", C, "F"},
    {0x2B, All, "checkflag", C, "F"},
    {0x2C, RE, "initclock", C, "22"},
    {0x2C, FR, "initclock", C, ""},  // a stub in FireRed: reads nothing
    {0x2D, All, "dotimebasedevents", C, ""},
    {0x2E, All, "gettime", C, ""},
    {0x2F, All, "playse", C, "2"},
    {0x30, All, "waitse", C, ""},
    {0x31, All, "playfanfare", C, "2"},
    {0x32, All, "waitfanfare", C, ""},
    {0x33, All, "playbgm", C, "21"},
    {0x34, All, "savebgm", C, "2"},
    {0x35, All, "fadedefaultbgm", C, ""},
    {0x36, All, "fadenewbgm", C, "2"},
    {0x37, All, "fadeoutbgm", C, "1"},
    {0x38, All, "fadeinbgm", C, "1"},
    {0x39, All, "warp", C, "11122"},
    {0x3A, All, "warpsilent", C, "11122"},
    {0x3B, All, "warpdoor", C, "11122"},
    {0x3C, All, "warphole", C, "11"},
    {0x3D, All, "warpteleport", C, "11122"},
    {0x3E, All, "setwarp", C, "11122"},
    {0x3F, All, "setdynamicwarp", C, "11122"},
    {0x40, All, "setdivewarp", C, "11122"},
    {0x41, All, "setholewarp", C, "11122"},
    {0x42, All, "getplayerxy", C, "VV"},
    {0x43, All, "getpartysize", C, ""},
    {0x44, All, "additem", C, "22"},
    {0x45, All, "removeitem", C, "22"},
    {0x46, All, "checkitemspace", C, "22"},
    {0x47, All, "checkitem", C, "22"},
    {0x48, All, "checkitemtype", C, "2"},
    {0x49, All, "addpcitem", C, "22"},
    {0x4A, All, "checkpcitem", C, "22"},
    {0x4B, All, "adddecoration", C, "2"},
    {0x4C, All, "removedecoration", C, "2"},
    {0x4D, All, "checkdecor", C, "2"},
    {0x4E, All, "checkdecorspace", C, "2"},
    {0x4F, All, "applymovement", C, "2M"},
    {0x50, All, "applymovementat", C, "2M11"},
    {0x51, All, "waitmovement", C, "2"},
    {0x52, All, "waitmovementat", C, "211"},
    {0x53, All, "removeobject", C, "2"},
    {0x54, All, "removeobjectat", C, "211"},
    {0x55, All, "addobject", C, "2"},
    {0x56, All, "addobjectat", C, "211"},
    {0x57, All, "setobjectxy", C, "222"},
    {0x58, All, "showobjectat", C, "211"},
    {0x59, All, "hideobjectat", C, "211"},
    {0x5A, All, "faceplayer", C, ""},
    {0x5B, All, "turnobject", C, "21"},
    {0x5C, All, "trainerbattle", F::TrainerBattle, "122"},
    {0x5D, All, "dotrainerbattle", C, ""},
    {0x5E, All, "gotopostbattlescript", F::End, ""},
    {0x5F, All, "gotobeatenscript", F::End, ""},
    {0x60, All, "checktrainerflag", C, "2"},
    {0x61, All, "settrainerflag", C, "2"},
    {0x62, All, "cleartrainerflag", C, "2"},
    {0x63, All, "setobjectxyperm", C, "222"},
    {0x64, RS, "moveobjectoffscreen", C, "2"},
    {0x64, FE, "copyobjectxytoperm", C, "2"},
    {0x65, All, "setobjectmovementtype", C, "21"},
    {0x66, All, "waitmessage", C, ""},
    {0x67, All, "message", C, "t"},
    {0x68, All, "closemessage", C, ""},
    {0x69, All, "lockall", C, ""},
    {0x6A, All, "lock", C, ""},
    {0x6B, All, "releaseall", C, ""},
    {0x6C, All, "release", C, ""},
    {0x6D, All, "waitbuttonpress", C, ""},
    {0x6E, All, "yesnobox", C, "11"},
    {0x6F, All, "multichoice", C, "1111"},
    {0x70, All, "multichoicedefault", C, "11111"},
    {0x71, All, "multichoicegrid", C, "11111"},
    {0x72, RS, "drawbox", C, "1111"},
    {0x72, FE, "drawbox", C, ""},
    {0x73, All, "erasebox", C, "1111"},
    {0x74, RE, "drawboxtext", C, "1111"},
    {0x74, FR, "drawboxtext", C, ""},
    {0x75, All, "showmonpic", C, "211"},
    {0x76, All, "hidemonpic", C, ""},
    {0x77, All, "showcontestpainting", C, "1"},
    {0x78, RE, "braillemessage", C, "B"},
    {0x78, FR, "braillemessage", C, "b"},
    {0x79, All, "givemon", C, "212441"},
    {0x7A, All, "giveegg", C, "2"},
    {0x7B, All, "setmonmove", C, "112"},
    {0x7C, All, "checkpartymove", C, "2"},
    {0x7D, All, "bufferspeciesname", C, "s2"},
    {0x7E, All, "bufferleadmonspeciesname", C, "s"},
    {0x7F, All, "bufferpartymonnick", C, "s2"},
    {0x80, All, "bufferitemname", C, "s2"},
    {0x81, All, "bufferdecorationname", C, "s2"},
    {0x82, All, "buffermovename", C, "s2"},
    {0x83, All, "buffernumberstring", C, "s2"},
    {0x84, All, "bufferstdstring", C, "s2"},
    {0x85, All, "bufferstring", C, "sx"},
    {0x86, All, "pokemart", C, "K"},
    {0x87, All, "pokemartdecoration", C, "K"},
    {0x88, All, "pokemartdecoration2", C, "K"},
    {0x89, All, "playslotmachine", C, "2"},
    {0x8A, RE, "setberrytree", C, "111"},
    {0x8A, FR, "setberrytree", C, ""},
    {0x8B, All, "choosecontestmon", C, ""},
    {0x8C, All, "startcontest", C, ""},
    {0x8D, All, "showcontestresults", C, ""},
    {0x8E, All, "contestlinktransfer", C, ""},
    {0x8F, All, "random", C, "2"},
    {0x90, All, "addmoney", C, "41"},
    {0x91, All, "removemoney", C, "41"},
    {0x92, All, "checkmoney", C, "41"},
    {0x93, All, "showmoneybox", C, "111"},
    {0x94, RS, "hidemoneybox", C, "11"},
    {0x94, FE, "hidemoneybox", C, ""},
    {0x95, All, "updatemoneybox", C, "111"},
    {0x96, RS, "getpricereduction", C, "2"},
    {0x96, EM, "getpokenewsactive", C, "2"},
    {0x96, FR, "getpokenewsactive", C, ""},
    {0x97, All, "fadescreen", C, "1"},
    {0x98, All, "fadescreenspeed", C, "11"},
    {0x99, All, "setflashlevel", C, "2"},
    {0x9A, All, "animateflash", C, "1"},
    {0x9B, All, "messageautoscroll", C, "t"},
    {0x9C, All, "dofieldeffect", C, "2"},
    {0x9D, All, "setfieldeffectargument", C, "12"},
    {0x9E, All, "waitfieldeffect", C, "2"},
    {0x9F, All, "setrespawn", C, "2"},
    {0xA0, All, "checkplayergender", C, ""},
    {0xA1, All, "playmoncry", C, "22"},
    {0xA2, All, "setmetatile", C, "2222"},
    {0xA3, All, "resetweather", C, ""},
    {0xA4, All, "setweather", C, "2"},
    {0xA5, All, "doweather", C, ""},
    {0xA6, All, "setstepcallback", C, "1"},
    {0xA7, All, "setmaplayoutindex", C, "2"},
    {0xA8, All, "setobjectsubpriority", C, "2111"},
    {0xA9, All, "resetobjectsubpriority", C, "211"},
    {0xAA, All, "createvobject", C, "112211"},
    {0xAB, All, "turnvobject", C, "11"},
    {0xAC, All, "opendoor", C, "22"},
    {0xAD, All, "closedoor", C, "22"},
    {0xAE, All, "waitdooranim", C, ""},
    {0xAF, All, "setdooropen", C, "22"},
    {0xB0, All, "setdoorclosed", C, "22"},
    {0xB1, RE, "addelevmenuitem", C, "1222"},
    {0xB1, FR, "addelevmenuitem", C, ""},
    {0xB2, All, "showelevmenu", C, ""},
    {0xB3, All, "checkcoins", C, "V"},
    {0xB4, All, "addcoins", C, "2"},
    {0xB5, All, "removecoins", C, "2"},
    {0xB6, All, "setwildbattle", C, "212"},
    {0xB7, All, "dowildbattle", C, ""},
    {0xB8, All, "setvaddress", C, "a"},
    {0xB9, All, "vgoto", F::RelativeGoto, "j"},
    {0xBA, All, "vcall", C, "j"},
    {0xBB, All, "vgoto_if", C, "cj"},
    {0xBC, All, "vcall_if", C, "cj"},
    {0xBD, All, "vmessage", C, "r"},
    {0xBE, All, "vbuffermessage", C, "r"},
    {0xBF, All, "vbufferstring", C, "sr"},
    {0xC0, All, "showcoinsbox", C, "11"},
    {0xC1, All, "hidecoinsbox", C, "11"},
    {0xC2, All, "updatecoinsbox", C, "11"},
    {0xC3, All, "incrementgamestat", C, "1"},
    {0xC4, All, "setescapewarp", C, "11122"},
    {0xC5, All, "waitmoncry", C, ""},
    {0xC6, FE, "bufferboxname", C, "s2"},
    // FireRed/LeafGreen
    {0xC7, FR, "textcolor", C, "1"},
    {0xC8, FR, "loadhelp", C, "t"},
    {0xC9, FR, "unloadhelp", C, ""},
    {0xCA, FR, "signmsg", C, ""},
    {0xCB, FR, "normalmsg", C, ""},
    {0xCC, FR, "comparestat", C, "14"},
    {0xCD, FE, "setmonmodernfatefulencounter", C, "2"},
    {0xCE, FE, "checkmonmodernfatefulencounter", C, "2"},
    {0xCF, FE, "trywondercardscript", C, ""},
    {0xD0, FR, "setworldmapflag", C, "2"},
    {0xD1, FE, "warpspinenter", C, "11122"},
    {0xD2, FE, "setmonmetlocation", C, "21"},
    {0xD3, FR, "getbraillestringwidth", C, "b"},
    {0xD4, FR, "bufferitemnameplural", C, "s22"},
    // Emerald
    {0xC7, EM, "nop1", C, ""},
    {0xC8, EM, "nop1", C, ""},
    {0xC9, EM, "nop1", C, ""},
    {0xCA, EM, "nop1", C, ""},
    {0xCB, EM, "nop1", C, ""},
    {0xCC, EM, "nop1", C, ""},
    {0xD0, EM, "nop1", C, ""},
    {0xD3, EM, "moverotatingtileobjects", C, "2"},
    {0xD4, EM, "turnrotatingtileobjects", C, ""},
    {0xD5, EM, "initrotatingtilepuzzle", C, "2"},
    {0xD6, EM, "freerotatingtilepuzzle", C, ""},
    {0xD7, EM, "warpmossdeepgym", C, "11122"},
    {0xD8, EM, "selectapproachingtrainer", C, ""},
    {0xD9, EM, "lockfortrainer", C, ""},
    {0xDA, EM, "closebraillemessage", C, ""},
    {0xDB, EM, "messageinstant", C, "t"},
    {0xDC, EM, "fadescreenswapbuffers", C, "1"},
    {0xDD, EM, "buffertrainerclassname", C, "s2"},
    {0xDE, EM, "buffertrainername", C, "s2"},
    {0xDF, EM, "pokenavcall", C, "t"},
    {0xE0, EM, "warpwhitefade", C, "11122"},
    {0xE1, EM, "buffercontestname", C, "s2"},
    {0xE2, EM, "bufferitemnameplural", C, "s22"},
};

using Table = std::array<const Command*, 256>;

const Table& TableOf(Family family) {
    static const std::array<Table, 3> tables = [] {
        std::array<Table, 3> all{};
        for (const Command& command : kCommands)
            for (int f = 0; f < 3; ++f)
                if (command.families & (1u << f)) all[f][command.code] = &command;
        return all;
    }();
    return tables[static_cast<int>(family)];
}

// Pointer layouts after trainerbattle's head, by type. Types 0-8 are common
// to all; FireRed adds 9 (early rival: defeat and victory texts), Emerald
// 9-12 (pyramid, set trainer A/B, trainer hill), all with two texts.
constexpr std::string_view kBattleTails[] = {"tt", "ttS", "ttS", "t", "ttt", "tt", "tttS", "ttt", "tttS"};

// A script has four banks for loadword and its kin, and three string
// buffers (STR_VAR_1-3) for the buffer commands; the handlers index arrays
// of those sizes without a check.
constexpr std::uint32_t kBanks = 4, kStringVars = 3;

// Variables a handler writes through (GetVarPointer, which has no bounds
// check): the saved ones from 0x4000 and the special ones from 0x8000.
// Flags: the saved ones below 0x1000 and the special ones from 0x4000.
[[nodiscard]] bool IsVar(std::uint32_t id) { return (id >= 0x4000 && id < 0x4100) || (id >= 0x8000 && id < 0x8020); }
[[nodiscard]] bool IsFlag(std::uint32_t id) { return id < 0x1000 || (id >= 0x4000 && id < 0x4100); }

// EWRAM (256 KiB) or IWRAM (32 KiB): where the RAM a script touches lies.
[[nodiscard]] bool InRam(std::uint32_t address) {
    return (address >= 0x02000000 && address < 0x02040000) || (address >= 0x03000000 && address < 0x03008000);
}

}  // namespace

Operand OperandOf(char letter) {
    switch (letter) {
        case '1': case 'c': case 'i': case 'k': case 's': return {1, Role::Data, Pointer::None};
        case '2': case 'V': case 'F': return {2, Role::Data, Pointer::None};
        case '4': case 'a': return {4, Role::Data, Pointer::None};
        case 'j': return {4, Role::Script, Pointer::Relative};
        case 'r': return {4, Role::Text, Pointer::Relative};
        case 'S': return {4, Role::Script, Pointer::Required};
        case 'M': return {4, Role::Movement, Pointer::Required};
        case 'K': return {4, Role::Mart, Pointer::Required};
        case 't': return {4, Role::Text, Pointer::Nullable};
        case 'x': return {4, Role::Text, Pointer::Loose};
        case 'B': return {4, Role::BrailleText, Pointer::Required};
        case 'b': return {4, Role::BrailleText, Pointer::Nullable};
        case 'C': return {4, Role::Data, Pointer::Code};
        default: return {4, Role::Data, Pointer::Loose};  // 'D', 'L'
    }
}

const Command* FindCommand(Family family, std::uint8_t code) { return TableOf(family)[code]; }

std::string_view CommandName(Family family, std::uint8_t code) {
    const Command* command = FindCommand(family, code);
    return command ? command->name : std::string_view{};
}

std::optional<std::string_view> TrainerBattleTail(Family family, std::uint8_t type) {
    if (type < std::size(kBattleTails)) return kBattleTails[type];
    const std::uint8_t last = family == Family::Emerald ? 12 : family == Family::FireRedLeafGreen ? 9 : 8;
    if (type <= last) return std::string_view{"tt"};
    return std::nullopt;
}

std::uint8_t StandardScriptCount(Family family) {
    switch (family) {
        case Family::RubySapphire: return 8;
        case Family::FireRedLeafGreen: return 10;
        case Family::Emerald: return 11;
    }
    return 0;
}

std::optional<Instruction> DecodeCommand(std::string_view image, Family family, std::uint32_t at) {
    if (at >= image.size()) return std::nullopt;
    Instruction out;
    out.command = FindCommand(family, Byte(image, at));
    if (!out.command) return std::nullopt;
    out.offset = at;

    std::string_view tail;
    if (out.command->flow == Flow::TrainerBattle) {
        if (std::size_t{at} + 2 > image.size()) return std::nullopt;
        const auto battle = TrainerBattleTail(family, Byte(image, at + 1));
        if (!battle) return std::nullopt;
        tail = *battle;
    }
    std::uint32_t next = at + 1;
    for (const std::string_view part : {out.command->layout, tail}) {
        for (const char letter : part) {
            const Operand operand = OperandOf(letter);
            if (std::size_t{next} + operand.size > image.size()) return std::nullopt;
            const std::uint32_t value = operand.size == 1 ? Byte(image, next)
                                        : operand.size == 2 ? Half(image, next)
                                                            : Word(image, next);
            const bool cartridge = Target(value, image.size()).has_value();
            switch (letter) {
                case 'c': if (value > 5) return std::nullopt; break;
                case 'i': if (value >= StandardScriptCount(family)) return std::nullopt; break;
                case 'k': if (value >= kBanks) return std::nullopt; break;
                case 's': if (value >= kStringVars) return std::nullopt; break;
                case 'V': if (!IsVar(value)) return std::nullopt; break;
                case 'F': if (!IsFlag(value)) return std::nullopt; break;
                case 'D': case 'x': if (!cartridge && !InRam(value)) return std::nullopt; break;
                case 'K': if (value & 1) return std::nullopt; break;
                case 'C': if (!cartridge || !(value & 1)) return std::nullopt; break;
                default: break;
            }
            if (operand.pointer == Pointer::Required && !cartridge) return std::nullopt;
            if (operand.pointer == Pointer::Nullable && value != 0 && !cartridge) return std::nullopt;
            out.arguments[out.count++] = {next, letter, operand, value};
            next += operand.size;
        }
    }
    out.size = next - at;
    return out;
}

}  // namespace quillon::game
