#pragma once
// The live-update window as state and commands: asks the update server
// whether a newer version exists and downloads the update file into the
// updates folder beside the program. The window only mirrors this state.
//
// The network work runs in the background on the caller's event loop; every
// change of state is announced through the OnChanged listener. Check is
// refused while a check is running, so a second click cannot enter it half
// way.
#include "update/downloader.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quillon {

class Prompter;

inline constexpr std::string_view kUpdateCaption = "Tarnwick-Soft | Live-Update";
// Paths of the two server files below the update server's base address.
inline constexpr std::string_view kVersionFilePath = "/updates/quillon.txt";
inline constexpr std::string_view kAddressFilePath = "/updates/quillon2.txt";
// How often a download is restarted after a path/file access failure before
// the failure is reported.
inline constexpr int kMaxDownloadRestarts = 3;

class UpdateForm {
public:
    // `baseUrl` is the update server's address without a trailing path
    // ("https://host"); `currentVersion` the running program's version text.
    UpdateForm(Prompter& prompter, std::filesystem::path programFolder, std::string baseUrl,
               std::string currentVersion);
    ~UpdateForm();
    UpdateForm(const UpdateForm&) = delete;
    UpdateForm& operator=(const UpdateForm&) = delete;

    std::string lblUpdateMsg = "Ready.";
    std::string label1 = "Downloaded: 0 / 0 Bytes.";
    std::int32_t progValue = 0;  // Prog
    std::int32_t progMax = 100;
    bool cmdCheckVisible = true;
    bool cmdCheckEnabled = true;
    bool cmdDownloadVisible = false;
    bool cmdDownloadEnabled = true;
    bool busy = false;  // the window shows the busy pointer

    std::string remoteVersion;             // body of the version file
    std::string updateURL;                 // body of the download-address file
    std::filesystem::path updateSavePath;  // updates folder + file name; empty for a refused name
    const std::string currentVersion;

    std::filesystem::path UpdatesFolder() const { return programFolder_ / "updates"; }

    // "&Check": creates the updates folder when missing, fetches the version
    // file and then the download-address file, and compares the versions.
    void Check();
    // "&Download": starts the transfer of UpdateURL into the updates folder.
    void Download();
    // "&Cancel": the buttons back to Ready and the normal pointer. A check or
    // transfer still running is abandoned, as the window closes with it.
    void Cancel();

    bool Checking() const;
    Downloader& DL() { return dl_; }

    void OnChanged(std::function<void()> listener) { changed_ = std::move(listener); }

private:
    struct Fetcher;

    void Changed() const;
    void Fetch(std::string_view path, std::function<void(std::string)> onBody);
    void CheckFailed(const UpdateError& error);
    void Evaluate();
    void ReadyButtons();
    void OnProgress(std::int32_t curBytes, std::int32_t maxBytes);
    void OnError();
    void OnComplete(std::int32_t maxBytes);

    Prompter& prompter_;
    const std::filesystem::path programFolder_;
    const std::string baseUrl_;
    std::function<void()> changed_;
    std::unique_ptr<Fetcher> fetcher_;
    Downloader dl_;
};

}  // namespace quillon
