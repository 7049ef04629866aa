#include "edit/save_text.h"
#include "core/hex_text.h"

#include "app/commit.h"
#include "app/session.h"
#include "edit/name_edit.h"
#include "core/codec/text_bytes.h"
#include "core/file_io.h"
#include "core/ini_document.h"
#include "repoint/model_cache.h"
#include "repoint/repoint_choice.h"
#include "edit/free_space.h"
#include "edit/pointer_scan.h"
#include "edit/text_view.h"
#include "offsets/offset_file.h"
#include "store/disk_check.h"
#include "store/write_plan.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <algorithm>
#include <cstdio>

namespace quillon {
namespace {

constexpr std::string_view kAskTitle = "Do you really want to do that?";

std::string Repeat(std::string_view piece, std::size_t times) {
    std::string out;
    out.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i) out += piece;
    return out;
}

void Refuse(Session& session, const std::string& why) {
    session.prompter.Message(Icon::Critical, why + "\r\nNothing was written.");
}

// Adds the offset file to the plan: the selected entry gets the new offset, but
// only when it is the text being moved (a text opened by its offset need not
// be the selected entry, and an unrelated entry must not change).
void MoveOffsetEntry(Session& session, WritePlan& plan, std::int32_t oldOffset, std::string_view newOffsetText) {
    const TreeNode* node = session.tree.SelectedNode();
    if (!node || IsSectionNodeKey(node->key)) return;
    const std::string section = session.tree.SelectedParentText();
    const std::string key = KeyNameOf(node->key);
    session.ini.SetPath(session.OffsetFile());
    session.ini.SetSection(section);
    session.ini.SetKey(key);
    try {
        if (HexToLong(session.ini.Value()) != oldOffset) return;
    } catch (const TypeMismatch&) {
        return;
    }
    ini::IniDocument doc(io::ReadAll(session.OffsetFile()));
    if (auto after = doc.WithValue(section, key, newOffsetText)) {
        plan.offsetFile = session.OffsetFile();
        plan.offsetBefore = doc.Text();
        plan.offsetAfter = std::move(*after);
    }
}

enum class Step { Done, Stop };

// The shown text's place as the text was loaded there: what a save expects
// to find before it writes anything.
WritePlan AsLoaded(const Session& session) {
    WritePlan plan;
    plan.rom = session.romPath;
    plan.romSize = session.loaded.romSize;
    plan.romWrites.push_back({session.loaded.offset, session.loaded.bytes, session.loaded.bytes});
    return plan;
}

// The writes of `blocks`, expecting the text's place to hold the text as it
// was loaded, so that the writer also notices a change made while the user
// answered a question.
WritePlan PlanFor(const Session& session, std::vector<BytesAt> blocks) {
    WritePlan plan = AsLoaded(session);  // its ranges follow
    plan.command = "Save Text";
    plan.subject = session.tree.SelectedParentText();
    if (const TreeNode* node = session.tree.SelectedNode(); node && !IsSectionNodeKey(node->key))
        plan.subject += " / " + KeyNameOf(node->key);
    plan.romWrites = RangesFor(session.romPath, blocks);
    const LoadedText& loaded = session.loaded;
    for (RomWrite& w : plan.romWrites) {
        const std::uint64_t from = std::max(w.offset, loaded.offset);
        const std::uint64_t to = std::min(w.offset + w.before.size(), loaded.offset + loaded.bytes.size());
        if (from < to) loaded.bytes.copy(w.before.data() + (from - w.offset), to - from, from - loaded.offset);
    }
    return plan;
}

// Offers to show the ROM's text again after another program changed it.
void OfferReload(Session& session) {
    if (session.prompter.AskYesNo("Load the text from the ROM again?\r\nYour changes in the editor will be lost."))
        LoadTextAt(session, session.controls.offsetCaption);
}

bool Write(Session& session, const WritePlan& plan) {
    switch (Commit(session, plan, "The text could not be saved:")) {
        case Committed::Written:
            return true;
        case Committed::ChangedOutside:
            OfferReload(session);
            return false;
        case Committed::NotWritten:
            return false;
    }
    return false;
}

// The text grew past the free bytes behind it: move it and repoint.
Step Repoint(Session& session, std::int32_t newLength, const GivenAnswers* given) {
    auto& c = session.controls;
    const std::int32_t oldOffset = HexToLong(c.offsetCaption);
    auto freeSpaceOffset = given && given->freeSpaceOffset ? given->freeSpaceOffset : ReadFreeSpaceOffset(session);
    if (!freeSpaceOffset) {
        session.prompter.Message(Icon::Critical, kBadFreeSpaceOffset);
        return Step::Stop;
    }
    // A 16 MiB image reaches up to FFFFFF; a larger one up to its end, with
    // pointers of the second half.
    const std::uint64_t romSize = io::FileSize(session.romPath);
    const std::string reach =
        "pointers can only be built for offsets from 100000 to " + PlainHex(HighestPointable(romSize)) + " (Hex).";
    if (!Pointable(oldOffset, romSize)) {
        Refuse(session, "The text at offset " + c.offsetCaption + " can't be re-pointed: " + reach);
        return Step::Stop;
    }
    std::string run = FreeRun(c.gameCode, static_cast<std::size_t>(newLength) + 2);
    std::int32_t found = FindFreeSpace(session.romPath, run, *freeSpaceOffset);
    if (found <= 0) {
        session.prompter.Message(Icon::Critical, "No free space was found!");
        return Step::Stop;
    }
    const std::int32_t newOffset = found + 1;
    const std::string newOffsetText = PlainHex(newOffset);
    if (!Pointable(newOffset, romSize)) {
        Refuse(session, "The free space found at offset " + newOffsetText + " can't be pointed to: " + reach);
        return Step::Stop;
    }
    const std::string oldPointer = HexToBytes(WidePointerHex(static_cast<std::uint32_t>(oldOffset)));
    const std::string newPointer = HexToBytes(WidePointerHex(static_cast<std::uint32_t>(newOffset)));
    // The places come from the game model's index, which the choice below
    // asks for the places' kinds anyway: a look-up instead of a pass.
    const auto model = repoint::ModelOf(session.romPath);
    const auto old = static_cast<std::uint32_t>(oldOffset);
    std::vector<BytesAt> blocks =
        PointerRewritesAt(session.romPath, model->Pointers().PlacesOf(old), oldPointer, newPointer);
    if (given ? !GivenRewrites(session, old, blocks, given->rewrite, given->leaveOthers)
              : !ChooseRewrites(session, old, blocks))
        return Step::Stop;
    if (blocks.empty()) {
        session.prompter.Message(Icon::Critical, "The text pointer wasn't found!\r\nThe text can't be edited!");
        return Step::Stop;
    }
    blocks.push_back({static_cast<std::uint64_t>(oldOffset),
                      FreeRun(c.gameCode, static_cast<std::size_t>(session.oldTextLength) + 1)});
    // The free byte kept in front of the moved text is part of the plan, so a
    // change to it since the search is noticed.
    blocks.push_back({static_cast<std::uint64_t>(found), FreeRun(c.gameCode, 1)});
    blocks.push_back({static_cast<std::uint64_t>(newOffset),
                      HexToBytes(EncodeText(c.text1.Text(), c.specialDialog) + "FF")});
    WritePlan plan = PlanFor(session, std::move(blocks));
    MoveOffsetEntry(session, plan, oldOffset, newOffsetText);
    return Write(session, plan) ? (c.offsetCaption = newOffsetText, Step::Done) : Step::Stop;
}

// Everything up to the final write; Done means the text is on disk.
Step Save(Session& session, const AskBeforeSave& askFirst, const GivenAnswers* given) {
    auto& c = session.controls;
    if (!c.saveRefusal.empty()) {
        Refuse(session, c.saveRefusal);
        return Step::Stop;
    }
    if (!session.readOnlyReason.empty()) {
        Refuse(session, session.readOnlyReason);
        return Step::Stop;
    }
    if (!askFirst(session)) return Step::Stop;
    if (auto changed = ChangedSinceRead(AsLoaded(session))) {
        Refuse(session, *changed);
        OfferReload(session);
        return Step::Stop;
    }
    if (!c.roundTripNote.empty() &&
        !session.prompter.AskYesNo(c.roundTripNote + "\r\n\r\nDo you want to save it anyway?", kAskTitle))
        return Step::Stop;
    if (session.loaded.fixedLength > 0) {  // a name: written in its field, never moved
        auto blocks = NameBlocks(session);
        return blocks && Write(session, PlanFor(session, std::move(*blocks))) ? Step::Done : Step::Stop;
    }
    std::string hex = EncodeText(c.text1.Text(), c.specialDialog);
    const auto newLength = static_cast<std::int32_t>(hex.size() / 2);
    if (newLength > kMaxTextBytes) {
        Refuse(session, "The text is " + std::to_string(newLength) + " bytes long; a text may be at most " +
                            std::to_string(kMaxTextBytes) + " bytes.");
        return Step::Stop;
    }

    if (newLength < session.oldTextLength) {
        if (!given && !session.prompter.AskYesNo(
                "The text you entered is shorter than the old one.\r\n\r\nDo you want to continue?", kAskTitle))
            return Step::Stop;
        // Each missing byte becomes a 0xFF that clears the tail of the old text.
        const auto missing = static_cast<std::size_t>(session.oldTextLength - newLength);
        c.text1.SetText(c.text1.Text() + std::string(missing, '\n'));
        hex += Repeat("FF", missing);
    }

    std::int32_t growth = 0;
    if (newLength > session.oldTextLength) {
        if (!given && !session.prompter.AskYesNo(
                "The text you entered is longer than the old one.\r\n"
                "When you continue, the text needs to be Re-Pointed to another location.\r\n\r\n"
                "Due the fact of that, the INI file will be changed and you can't edit the text of a clean ROM "
                "with that INI file again, until you restore it back to the original one.\r\n\r\n"
                "Do you want to Re-Point?",
                kAskTitle))
            return Step::Stop;
        growth = newLength - session.oldTextLength;  // at most kMaxTextBytes
        const std::int32_t oldOffset = HexToLong(c.offsetCaption);
        const std::string freeByte = FreeSpaceByte(c.gameCode);
        std::string tail = ReadBytesHex(session.romPath, PadHex(std::int64_t{oldOffset} + session.oldTextLength + 1),
                                        static_cast<std::int16_t>(growth + 1));
        if (tail == Repeat(freeByte, static_cast<std::size_t>(growth) + 1)) {
            session.prompter.Message(Icon::Information,
                                     "There's enough space after the Text.\r\nThe Text won't be re-pointed.");
        } else {
            return Repoint(session, newLength, given);
        }
    }
    std::vector<BytesAt> blocks{{static_cast<std::uint64_t>(HexToLong(c.offsetCaption)), HexToBytes(hex + "FF")}};
    if (growth > 0)  // the byte behind the new terminator must still be free
        blocks.push_back({blocks[0].offset + blocks[0].bytes.size(), FreeRun(c.gameCode, 1)});
    return Write(session, PlanFor(session, std::move(blocks))) ? Step::Done : Step::Stop;
}

void Run(Session& session, const AskBeforeSave& askFirst, const GivenAnswers* given) {
    auto& c = session.controls;
    c.saveEnabled = false;
    try {
        if (Save(session, askFirst, given) == Step::Done) {
            session.prompter.Message(Icon::Information, "Text has been saved.", "Saved!");
            c.specialDialog = false;
            session.oldTextLength = 0;
            try {
                LoadTextAt(session, c.offsetCaption);
            } catch (const std::exception&) {
            }
        }
    } catch (const TypeMismatch&) {
        Refuse(session, "The text offset '" + c.offsetCaption + "' is not a hexadecimal number.");
    } catch (const FileError& e) {
        session.prompter.Message(Icon::Critical, std::string("The text could not be saved:\r\n") + e.what());
    }
    c.saveEnabled = c.saveRefusal.empty() && session.readOnlyReason.empty();
    session.Changed();
}

}  // namespace

void SaveText(Session& session, const AskBeforeSave& askFirst) { Run(session, askFirst, nullptr); }

void SaveText(Session& session, const AskBeforeSave& askFirst, const GivenAnswers& given) {
    Run(session, askFirst, &given);
}

}  // namespace quillon
