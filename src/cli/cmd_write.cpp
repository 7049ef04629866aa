// write ROM SECTION/KEY TEXT [--ini FILE]: one text saved as "Save Text" in
// the window saves it, moving it to free space when it outgrows its place.
#include "cli/cli_session.h"
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "edit/save_text.h"
#include "edit/tag_marks.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "offsets/offset_file.h"
#include "translate/rom_texts.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {
namespace {

// Selects the entry named "SECTION/KEY" and loads its text; either name may
// hold a "/", so each split is tried in turn.
bool SelectEntry(Session& session, std::string_view entry) {
    for (std::size_t slash = entry.find('/'); slash != std::string_view::npos; slash = entry.find('/', slash + 1)) {
        const std::string_view section = entry.substr(0, slash), key = entry.substr(slash + 1);
        if (key.empty()) continue;
        Tree_Load(session, section, key);
        const TreeNode* node = session.tree.SelectedNode();
        if (node && !IsSectionNodeKey(node->key) && KeyNameOf(node->key) == key &&
            session.tree.SelectedParentText() == section)
            return true;
    }
    return false;
}

}  // namespace

void RegisterWrite(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom, ini;
        std::string entry, text;
        bool specialDialog = false, force = false;
        bool onlyReferences = false;
        repoint::RewritePolicy rewrite;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand(
        "write", "Save one text of the offset file as the window's Save Text does, moving it when it outgrows its place");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("ENTRY", args->entry, "The entry of the offset file, as SECTION/KEY")->required();
    sub->add_option("TEXT", args->text, "The new text as the editor writes it: tags in brackets, real line breaks")
        ->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/GAMECODE.ini beside quillon-cli)");
    sub->add_flag("--special-dialog", args->specialDialog, "Encode line breaks as in special dialogs");
    sub->add_flag("--force", args->force,
                  "Save even a text with characters the game does not know, a line wider than its box, or old bytes "
                  "the editor can't write back unchanged (without it each is refused, named)");
    sub->add_flag("--only-references", args->onlyReferences,
                  "When the text moves, leave the places that hold its pointer but are no references alone");
    AddRewriteOptions(*sub, args->rewrite);
    sub->callback([args, &ctx] {
        CliPrompter user(args->force);
        Session session(ctx.programFolder, user);
        OpenForCommand(session, user, ctx, args->rom, args->ini);
        const std::filesystem::path offsets = session.OffsetFile();
        if (!FileExists(offsets)) throw CommandFailed("The offset file " + offsets.string() + " does not exist.");
        if (!SelectEntry(session, args->entry))
            throw CommandFailed("The offset file " + offsets.string() + " has no entry '" + args->entry +
                                "' (give it as SECTION/KEY).");
        auto& c = session.controls;
        if (!c.saveRefusal.empty()) throw CommandFailed(c.saveRefusal);
        if (c.japaneseTable)
            throw CommandFailed("The texts of a Japanese ROM are shown read-only; they can't be written.");
        const std::string text = FromPoText(args->text);
        const std::string bytes = HexToBytes(EncodeText(text, args->specialDialog));
        if (bytes + '\xFF' == session.loaded.bytes)
            throw CommandFailed(args->entry + " holds this text already. Nothing was written.");

        const std::string oldOffset = c.offsetCaption;
        c.specialDialog = args->specialDialog;
        c.text1.SetText(text);
        GivenAnswers given{args->rewrite, args->onlyReferences, {}};
        if (ctx.freeSpaceOffset) given.freeSpaceOffset = FreeSpaceOffset(ctx);
        if (ConfirmUnencodable(session)) SaveText(session, fit::ConfirmFitBeforeSave, given);
        user.ThrowIfRefused("--force saves it all the same.");
        if (c.offsetCaption != oldOffset)
            std::printf("%s moved from %s to %s; the offset file says so.\n", args->entry.c_str(), oldOffset.c_str(),
                        c.offsetCaption.c_str());
    });
}

}  // namespace quillon::cli
