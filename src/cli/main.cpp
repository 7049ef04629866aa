// quillon-cli: the texts of a ROM image from the command line, through the
// same logic as the program's windows.
#include "cli/cli_support.h"
#include "cli/commands.h"

#include "app/program_folder.h"

#include <quillon/errors.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string_view Env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// Reasons end up on one line: line breaks of multi-line messages become blanks.
std::string OneLine(std::string text) {
    std::string out;
    for (char c : text) {
        if (c == '\r') continue;
        out += c == '\n' ? ' ' : c;
    }
    while (!out.empty() && out.back() == ' ') out.pop_back();
    return out;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace quillon::cli;
    CLI::App app{"quillon-cli: read, search, write, export and import the texts of a ROM image."};
    app.require_subcommand(1);
    app.fallthrough();
    app.failure_message([](const CLI::App*, const CLI::Error& e) {
        return "quillon-cli: " + OneLine(e.what()) + " (see --help)\n";
    });

    CliContext ctx;
    // The same folder as the window's: beside the program, or the user's data
    // folder when installed (filled from the shipped files on a first start).
    const quillon::ProgramFolder folder =
        quillon::ChooseProgramFolder(ExecutableFolder(argv[0]), Env("XDG_DATA_HOME"), Env("HOME"));
    if (folder.installed) (void)quillon::CopyShippedFiles(folder);
    ctx.programFolder = folder.folder;
    ctx.terminal = isatty(STDERR_FILENO) == 1;
    app.set_version_flag("--version", "quillon-cli " QUILLON_VERSION, "Print the version and exit");
    app.add_option("--free-space-offset", ctx.freeSpaceOffset,
                   "Where the search for free space starts (a decimal file position), over settings.ini");

    RegisterInfo(app, ctx);
    RegisterRead(app, ctx);
    RegisterSearch(app, ctx);
    RegisterCheck(app, ctx);
    RegisterPatch(app, ctx);
    RegisterExport(app, ctx);
    RegisterImport(app, ctx);
    RegisterScan(app, ctx);
    RegisterRefs(app, ctx);
    RegisterReflow(app, ctx);
    RegisterWrite(app, ctx);
    RegisterHistory(app, ctx);
    RegisterUndo(app, ctx);
    RegisterRedo(app, ctx);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "quillon-cli: %s\n", OneLine(e.what()).c_str());
        return 1;
    }
    return 0;
}
