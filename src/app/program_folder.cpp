#include "app/program_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace quillon {

namespace fs = std::filesystem;

bool FolderTakesFiles(const fs::path& folder) {
    const fs::path probe = folder / (".quillon-probe-" + std::to_string(::getpid()));
    const int fd = ::open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) return false;
    ::close(fd);
    ::unlink(probe.c_str());
    return true;
}

ProgramFolder ChooseProgramFolder(const fs::path& exeFolder, std::string_view xdgDataHome, std::string_view home) {
    std::error_code ec;
    const fs::path installedData = (exeFolder / kInstalledDataFromBin).lexically_normal();
    ProgramFolder choice{exeFolder, exeFolder / "ini", false};
    if (!fs::is_directory(exeFolder / "ini", ec) && fs::is_directory(installedData / "ini", ec))
        choice.shipped = installedData / "ini";
    else if (FolderTakesFiles(exeFolder))
        return choice;

    // The XDG base directory rules: a relative value is ignored.
    fs::path dataHome(xdgDataHome);
    if (dataHome.empty() || !dataHome.is_absolute()) {
        if (home.empty()) return choice;  // nowhere better: the program's own folder
        dataHome = fs::path(home) / ".local" / "share";
    }
    choice.folder = dataHome / "quillon";
    choice.installed = true;
    return choice;
}

bool CopyShippedFiles(const ProgramFolder& choice) {
    if (!choice.installed) return true;
    std::error_code ec;
    const fs::path ini = choice.folder / "ini";
    if (fs::exists(ini / "settings.ini", ec)) return true;
    fs::create_directories(ini, ec);
    if (ec) return false;
    fs::directory_iterator files(choice.shipped, ec);
    if (ec) return false;
    bool ok = true;
    for (const auto& entry : files) {
        if (!entry.is_regular_file(ec) || entry.path().extension() != ".ini") continue;
        const fs::path copy = ini / entry.path().filename();
        // The copy is the user's to change, whatever the shipped file's bits.
        (void)fs::copy_file(entry.path(), copy, fs::copy_options::skip_existing, ec);
        ok = ok && !ec;
        fs::permissions(copy, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add, ec);
    }
    return ok;
}

}  // namespace quillon
