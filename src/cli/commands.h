#pragma once
// The sub-commands of quillon-cli. Each lives in a file of its own,
// cmd_NAME.cpp, which defines one function that adds the sub-command, its
// options and its action to the program. main.cpp calls each once.
//
// To add a sub-command: write cmd_NAME.cpp with `void RegisterName(CLI::App&,
// CliContext&)`, declare it below and call it from main.cpp (one line each;
// the build picks up every cmd_*.cpp). The action throws CommandFailed (or
// lets FileError through) to end with a one-line reason and exit status 1.
#include <CLI/CLI.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace quillon::cli {

// What every sub-command may use, filled in by main.cpp before parsing.
struct CliContext {
    std::filesystem::path programFolder;          // the executable's folder, holding ini/
    std::optional<std::int64_t> freeSpaceOffset;  // --free-space-offset, over settings.ini
    bool terminal = false;                        // standard error is a terminal
};

// Ends the program with this one-line reason and exit status 1.
struct CommandFailed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void RegisterInfo(CLI::App& app, CliContext& ctx);    // info ROM [--json]
void RegisterRead(CLI::App& app, CliContext& ctx);    // read ROM OFFSET
void RegisterSearch(CLI::App& app, CliContext& ctx);  // search ROM TEXT
void RegisterCheck(CLI::App& app, CliContext& ctx);   // check ROM [--ini FILE] [--format plain|tsv|json] [--json]
void RegisterPatch(CLI::App& app, CliContext& ctx);   // patch create|apply ...
void RegisterExport(CLI::App& app, CliContext& ctx);  // export ROM --po OUT [--ini FILE]
void RegisterImport(CLI::App& app, CliContext& ctx);  // import ROM --po IN [--ini FILE] [--dry-run] [--reflow]
void RegisterScan(CLI::App& app, CliContext& ctx);    // scan ROM [--ini FILE] [--json]
void RegisterRefs(CLI::App& app, CliContext& ctx);    // refs ROM [OFFSET...] [--ini FILE] [--json]
void RegisterReflow(CLI::App& app, CliContext& ctx);  // reflow ROM [--ini FILE] [--section S] [--dry-run]
void RegisterWrite(CLI::App& app, CliContext& ctx);   // write ROM SECTION/KEY TEXT [--ini FILE]
void RegisterHistory(CLI::App& app, CliContext& ctx); // history ROM [--json]
void RegisterUndo(CLI::App& app, CliContext& ctx);    // undo ROM [--ini FILE] [--yes]
void RegisterRedo(CLI::App& app, CliContext& ctx);    // redo ROM [--ini FILE] [--yes]

}  // namespace quillon::cli
