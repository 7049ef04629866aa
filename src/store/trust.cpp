#include "store/trust.h"

#include "store/history.h"
#include "store/writer.h"

namespace quillon {
namespace fs = std::filesystem;

namespace {

// The path with every link of its folders resolved; the last part stays as named.
fs::path Resolved(const fs::path& path) {
    std::error_code ec;
    const fs::path absolute = fs::absolute(path, ec);
    fs::path folder = fs::weakly_canonical(absolute.parent_path(), ec);
    if (ec) folder = absolute.parent_path();
    return folder / absolute.filename();
}

}  // namespace

std::optional<std::string> Untrusted(const WritePlan& plan, const fs::path& rom, const fs::path& offsetFile) {
    std::error_code ec;
    if (!fs::equivalent(plan.rom, rom, ec)) return "it names another ROM";
    if (plan.offsetFile) {
        if (Resolved(*plan.offsetFile) != Resolved(offsetFile))
            return "it names the file '" + plan.offsetFile->string() + "', which is not this ROM's offset file '" +
                   offsetFile.string() + "'";
        const auto status = fs::symlink_status(*plan.offsetFile, ec);
        if (fs::is_symlink(status)) return "its offset file is a link";
        if (fs::exists(status) && !fs::is_regular_file(status)) return "its offset file is no plain file";
    }
    try {
        CheckShape(plan);
    } catch (const PlanRefused& e) {
        return std::string(e.what());
    }
    return std::nullopt;
}

std::optional<std::string> UntrustedHistoryFolder(const fs::path& rom) {
    std::error_code ec;
    const fs::path folder = HistoryFolder(rom);
    if (fs::is_symlink(fs::symlink_status(folder, ec)))
        return "the history folder '" + folder.string() +
               "' is a link; Quillon keeps its history only in a folder of its own";
    return std::nullopt;
}

std::optional<std::string> UntrustedEntry(const fs::path& rom, const fs::path& file) {
    if (auto why = UntrustedHistoryFolder(rom)) return why;
    std::error_code ec;
    const fs::path folder = HistoryFolder(rom);
    if (Resolved(file).parent_path() != Resolved(folder / "x").parent_path())
        return "'" + file.string() + "' lies outside the history folder";
    const auto status = fs::symlink_status(file, ec);
    if (fs::is_symlink(status)) return "'" + file.filename().string() + "' is a link, not an entry Quillon wrote";
    if (!fs::is_regular_file(status)) return "'" + file.filename().string() + "' is no plain file";
    return std::nullopt;
}

}  // namespace quillon
