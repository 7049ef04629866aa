#include "tools/add_script.h"
#include "core/hex_text.h"

#include "app/commit.h"
#include "app/session.h"
#include "core/file_io.h"
#include "edit/add_offset_form.h"
#include "edit/free_space.h"
#include "store/write_plan.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <charconv>
#include <cstdio>
#include <optional>

namespace quillon {
namespace {

// Hex digits of either case, leading zeros allowed, as a value a pointer can reach.
std::optional<std::int32_t> PointerTarget(std::string_view hex, std::uint64_t romSize) {
    if (!IsHex(hex) || hex.size() > 8) return std::nullopt;
    std::uint32_t value = 0;
    std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    if (!Pointable(value, romSize)) return std::nullopt;
    return static_cast<std::int32_t>(value);
}

constexpr std::string_view kNothingWritten = "\r\nNothing was written.";

}  // namespace

std::string ScriptHex(std::string_view pointerHex) {
    return "6A5A0F00" + std::string(pointerHex) + "09036C0200";
}

AddScriptForm::AddScriptForm(Session& session) : session_(session) { ChooseOption(0); }

void AddScriptForm::ChooseOption(int index) {
    option = index == 1 ? 1 : 0;
    frame2Enabled = txtOffsetEnabled = option == 0;
    frame3Enabled = txtText.enabled = option == 1;
}

void AddScriptForm::AddScript() {
    const bool fromText = option == 1;
    if (fromText ? txtText.Text().empty() : txtOffset.empty()) return;
    Prompter& prompter = session_.prompter;
    auto refuse = [&](const std::string& why) { prompter.Message(Icon::Critical, why + std::string(kNothingWritten)); };
    const auto& rom = session_.romPath;

    std::uint64_t romSize = 0;
    try {
        romSize = io::FileSize(rom);
    } catch (const FileError& e) {
        return prompter.Message(Icon::Critical, e.what());
    }
    const std::string highest = PlainHex(HighestPointable(romSize));
    std::optional<std::int32_t> target;
    if (!fromText) {
        target = PointerTarget(txtOffset, romSize);
        if (!target)
            return refuse("The text offset '" + txtOffset + "' is not a hexadecimal offset from " +
                          PlainHex(kLowestPointable) + " to " + highest + ".");
    }
    auto freeSpaceOffset = ReadFreeSpaceOffset(session_);
    if (!freeSpaceOffset) return prompter.Message(Icon::Critical, kBadFreeSpaceOffset);

    // From Text measures with a placeholder pointer and fills it in once the place is known.
    const std::string text = fromText ? EncodeText(txtText.Text(), session_.controls.specialDialog) + "FF" : "";
    std::string data = ScriptHex(fromText ? "00000000" : WidePointerHex(static_cast<std::uint32_t>(*target))) + text;
    std::int32_t script = 0;
    std::int32_t record = 0;
    try {
        if (target && static_cast<std::uint64_t>(*target) >= io::FileSize(rom))
            return refuse("The text offset " + PlainHex(*target) + " lies past the end of the ROM.");
        script = FindFreeSpace(rom, FreeRun(session_.controls.gameCode, data.size() / 2 + 1), *freeSpaceOffset);
        if (script <= 0) return prompter.Message(Icon::Critical, "No free space found.");
        record = fromText ? script + kScriptBytes : script;
        if (!Pointable(record, romSize))
            return refuse("The free space found at offset " + PlainHex(script) +
                          " lies outside the offsets a script can use (" + PlainHex(kLowestPointable) + " to " +
                          highest + ").");
        if (fromText) data = ScriptHex(WidePointerHex(static_cast<std::uint32_t>(record))) + text;
        WritePlan plan;
        plan.command = "Insert Dialog-Script";
        plan.subject = PlainHex(script);
        plan.rom = rom;
        plan.romSize = io::FileSize(rom);
        plan.romWrites = RangesFor(rom, {{static_cast<std::uint64_t>(script), HexToBytes(data)}});
        if (Commit(session_, plan, "The script could not be written:") != Committed::Written) return;
    } catch (const PlanRefused& e) {
        return refuse(e.what());
    } catch (const FileError& e) {
        return prompter.Message(Icon::Critical, e.what());
    } catch (const TypeMismatch& e) {
        return prompter.Message(Icon::Critical, e.what());
    }

    prompter.Message(Icon::Information,
                     "Saved script to offset " + PlainHex(script) +
                         "(Hex).\r\nUse this offset in the 'Script' box of your Map-Editor in order to use the "
                         "script.");
    if (check1) {
        AddOffsetForm form(session_, std::to_string(record));
        prompter.ShowAddOffset(form);
    }
    closed_ = true;
}

}  // namespace quillon
