// patch create ORIGINAL MODIFIED OUT.bps, patch apply ROM PATCH OUT: BPS
// patches from a clean ROM to an edited one, and BPS or IPS patches applied.
#include "cli/commands.h"
#include "history/patch.h"

#include <array>
#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterPatch(CLI::App& app, CliContext&) {
    auto* patch = app.add_subcommand("patch", "Create a BPS patch, or apply a BPS or IPS patch");
    patch->require_subcommand(1);

    auto files = std::make_shared<std::array<std::filesystem::path, 3>>();
    auto* create = patch->add_subcommand("create", "Write a BPS patch that turns ORIGINAL into MODIFIED");
    create->add_option("ORIGINAL", (*files)[0], "The clean original ROM")->required();
    create->add_option("MODIFIED", (*files)[1], "The edited ROM")->required();
    create->add_option("OUT", (*files)[2], "The patch file to write")->required();
    create->callback([files] {
        CreatePatchFile((*files)[0], (*files)[1], (*files)[2]);
        std::printf("Patch written: %s\n", (*files)[2].string().c_str());
    });

    auto applied = std::make_shared<std::array<std::filesystem::path, 3>>();
    auto* apply = patch->add_subcommand("apply", "Apply a BPS or IPS patch to ROM and write the result to OUT");
    apply->add_option("ROM", (*applied)[0], "The ROM the patch was made for")->required();
    apply->add_option("PATCH", (*applied)[1], "The BPS or IPS patch")->required();
    apply->add_option("OUT", (*applied)[2], "The patched ROM to write")->required();
    apply->callback([applied] {
        try {
            const PatchFormat format = ApplyPatchFile((*applied)[0], (*applied)[1], (*applied)[2]);
            std::printf("%s patch applied: %s\n", format == PatchFormat::Bps ? "BPS" : "IPS",
                        (*applied)[2].string().c_str());
        } catch (const PatchError& e) {
            throw CommandFailed(e.what());
        }
    });
}

}  // namespace quillon::cli
