#include "cli/cli_program.h"

#include <sys/wait.h>

#include <cstdlib>

namespace quillon::test {
namespace {

std::string Quoted(std::string_view arg) {
    std::string out = "'";
    for (char c : arg) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

}  // namespace

CliProgram::CliProgram() {
    std::filesystem::create_directory(dir / "ini");
    std::filesystem::copy_file(QUILLON_CLI_PATH, dir / "quillon-cli");
    WriteFile(dir / "ini" / "settings.ini", "[Settings]\r\nFreeSpaceOffset=2097152\r\n");
}

CliRun CliProgram::Run(const std::vector<std::string>& args) const {
    std::string command = Quoted((dir / "quillon-cli").string());
    for (const auto& a : args) command += " " + Quoted(a);
    command += " >" + Quoted((dir / "out.txt").string()) + " 2>" + Quoted((dir / "err.txt").string()) + " </dev/null";
    const int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFile(dir / "out.txt"), ReadFile(dir / "err.txt")};
}

std::size_t LineCount(std::string_view text) {
    std::size_t lines = 0;
    for (char c : text) lines += c == '\n';
    return lines + (!text.empty() && text.back() != '\n');
}

}  // namespace quillon::test
