#include "offsets/startup.h"

#include "app/session.h"

#include <quillon/rom.h>

#include <algorithm>
#include <cctype>
#include <charconv>

namespace quillon {
namespace {

// "True"/"False" in any letter case, or a number (0 is false); anything else
// is unusable and counts as false, so the warning is shown.
bool WordIsTrue(std::string value) {
    auto first = value.find_first_not_of(" \t");
    if (first == std::string::npos) return false;
    value = value.substr(first, value.find_last_not_of(" \t") - first + 1);
    std::string lower = value;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (lower == "true") return true;
    if (lower == "false") return false;
    double number = 0;
    auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), number);
    return ec == std::errc() && end == value.data() + value.size() && number != 0;
}

}  // namespace

bool StartUp(Session& session) {
    std::error_code ec;
    if (!FileExists(session.IniFolder())) std::filesystem::create_directories(session.IniFolder(), ec);

    if (!FileExists(session.SettingsFile())) {
        session.prompter.Message(Icon::Critical,
                                 "Settings file 'settings.ini' could not be found.\r\n"
                                 "Please re-download Quillon from the Official Website.");
        return false;
    }

    session.ini.SetPath(session.SettingsFile());
    session.ini.SetSection("Settings");
    session.ini.SetKey("WarningShown");
    if (!WordIsTrue(session.ini.Value())) {
        session.prompter.Message(
            Icon::Warning,
            "Warning: Before using any ROM-Hacking tools, always remember to create Backup copies of your ROM!\r\n"
            "The creator of this Tool doesn't take any responsibility for what might happen to your ROM!");
        session.ini.SetPath(session.SettingsFile());
        session.ini.SetSection("Settings");
        session.ini.SetKey("WarningShown");
        session.ini.SetValue("True");
    }
    return true;
}

}  // namespace quillon
