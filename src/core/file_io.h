#pragma once
// The one place where the program touches files on disk. Every write goes
// through here so that a test can make any single write fail (as a full disk
// or a pulled cable would) and check what is left behind.
#include "core/bytes_at.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::io {

// Called before each write with the file about to be written; returning false
// makes that write fail with FileError before it touches the file, for the
// system's reason `error` (EIO, or ENOSPC as a full disk gives).
using WriteHook = std::function<bool(const std::filesystem::path&)>;
void SetWriteHook(WriteHook hook, int error = EIO);

// A hook that lets the first `count` writes through and fails every later
// one, as when the machine stops after write `count`.
WriteHook StopAfterWrites(int count);

// Installs a hook for the lifetime of the guard and removes it afterwards.
class ScopedWriteHook {
public:
    explicit ScopedWriteHook(WriteHook hook, int error = EIO) { SetWriteHook(std::move(hook), error); }
    ~ScopedWriteHook() { SetWriteHook({}); }
    ScopedWriteHook(const ScopedWriteHook&) = delete;
    ScopedWriteHook& operator=(const ScopedWriteHook&) = delete;
};

// Throws FileError naming the path, what was being done and the system's reason.
[[noreturn]] void ThrowFileError(const std::filesystem::path& path, std::string_view action, int err);

// A file whose permission bits allow nobody to write counts as write-protected,
// even for a user (root) whom the system would let through.
bool IsWriteProtected(const std::filesystem::path& path);

// Length of a file; throws FileError when it cannot be opened.
std::uint64_t FileSize(const std::filesystem::path& path);

// A file as it stands now: its path, length and time of change. Two equal
// stamps mean the file was not changed in between, so what was read from it
// may be kept; nothing when it cannot be read.
struct FileStamp {
    std::filesystem::path path;
    std::uintmax_t size = 0;
    std::filesystem::file_time_type time;

    [[nodiscard]] static std::optional<FileStamp> Of(const std::filesystem::path& path);
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// Up to `count` bytes at `offset`; fewer at the end of the file.
std::string ReadAt(const std::filesystem::path& path, std::uint64_t offset, std::size_t count);

// A file opened for reading for the span of one operation, for callers that
// read several blocks (the pattern search).
class InputFile {
public:
    explicit InputFile(const std::filesystem::path& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::uint64_t Size() const { return size_; }
    // Reads up to `count` bytes at `offset` into `out`; returns how many were read.
    std::size_t Read(std::uint64_t offset, char* out, std::size_t count);

private:
    std::filesystem::path path_;
    void* file_;
    std::uint64_t size_ = 0;
};

// Whole file; throws FileError when it cannot be read.
std::string ReadAll(const std::filesystem::path& path);

// A whole file read into memory for short read-only work over a large file,
// such as planning a batch of writes. The buffer is a copy, so another program
// cutting the file short cannot fault the reader (a mapping of the file itself
// would); unlike a std::string it is not zero-filled first.
class FileCopy {
public:
    explicit FileCopy(const std::filesystem::path& path);
    ~FileCopy();
    FileCopy(const FileCopy&) = delete;
    FileCopy& operator=(const FileCopy&) = delete;

    std::string_view View() const { return view_; }

private:
    std::string_view view_;
    void* buffer_ = nullptr;
    std::size_t capacity_ = 0;  // of a large copy's buffer, which goes back to be used again
};

// Overwrites bytes in place without truncating; lengthens the file when the
// block reaches past its end. The data is flushed to disk before returning.
void WriteAt(const std::filesystem::path& path, std::uint64_t offset, std::string_view bytes);

// Writes the blocks in order through one opening of the file and flushes them
// to disk once at the end. Each block counts as one write for the hook.
void WritePatches(const std::filesystem::path& path, const std::vector<BytesAt>& patches);

// Replaces (or creates) a whole file through a temporary file in the same
// folder and a rename, so a crash leaves either the old or the new contents.
// The temporary file has a unique name and is created exclusively; a link at
// `path` is written through to its target, and an existing file keeps its
// permissions.
void ReplaceFile(const std::filesystem::path& path, std::string_view contents);

// Creates `path` with `contents`, whole or not at all, and never over an
// existing file or link: false when something is already there.
bool CreateExclusive(const std::filesystem::path& path, std::string_view contents);

// A folder a new file can be made in: it exists and its permission bits let
// someone write (root passes any bits, so they are read, not tried).
bool FolderWritable(const std::filesystem::path& folder);

// Removes a file; a missing file is no error.
void RemoveFile(const std::filesystem::path& path);

}  // namespace quillon::io
