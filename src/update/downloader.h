#pragma once
// The windowless download helper of the live-update window: fetches an
// address into memory in the background, reports progress, and on completion
// writes the bytes to the file named when the transfer began.
#include "update/update_error.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace quillon {

class Downloader {
public:
    using ProgressHandler =
        std::function<void(std::int32_t curBytes, std::int32_t maxBytes, const std::filesystem::path& saveFile)>;
    using ErrorHandler = std::function<void(const std::filesystem::path& saveFile)>;
    using CompleteHandler = std::function<void(std::int32_t maxBytes, const std::filesystem::path& saveFile)>;

    Downloader();
    // Running transfers are abandoned without raising any event; nothing is
    // written for them.
    ~Downloader();
    Downloader(const Downloader&) = delete;
    Downloader& operator=(const Downloader&) = delete;

    // Raised on each progress notice whose total size is known and not 0.
    ProgressHandler DownloadProgress;
    // Raised when a transfer cannot be started (an address that is not a
    // valid http or https address), when it fails (connection, HTTP error
    // status, cut off, refused redirect; nothing is written), and when a
    // finished transfer delivered no bytes (followed by DownloadComplete
    // with maxBytes 0).
    ErrorHandler DownloadError;
    // Raised when a transfer has finished, after its bytes were written to
    // the save file, with their count.
    CompleteHandler DownloadComplete;

    // Starts fetching `url` as bytes, always from the network, and returns
    // at once. Fails with kPathFileAccessError, starting nothing, when the
    // save file's folder is not a folder. Several transfers may run at once.
    // The most a transfer may bring; a larger one fails.
    std::int64_t maxBytes = 64 * 1024 * 1024;

    std::optional<UpdateError> BeginDownload(std::string_view url, const std::filesystem::path& saveFile);

    // Abandons every running transfer as the destructor does.
    void CancelAll();
    std::size_t Running() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace quillon
