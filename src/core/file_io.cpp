#include "core/file_io.h"

#include <quillon/errors.h>

#include <cerrno>
#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>

#if __has_include(<unistd.h>)
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#define QUILLON_HAVE_FSYNC 1
#define QUILLON_HAVE_MMAP 1
#endif

namespace quillon::io {
namespace {

WriteHook& Hook() {
    static WriteHook hook;
    return hook;
}
int& HookError() {
    static int error = EIO;
    return error;
}

void CheckHook(const std::filesystem::path& path) {
    if (Hook() && !Hook()(path)) ThrowFileError(path, "write", HookError());
}

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File Open(const std::filesystem::path& path, const char* mode, std::string_view action) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) ThrowFileError(path, action, EISDIR);
    errno = 0;
    File f(std::fopen(path.c_str(), mode));
    if (!f) ThrowFileError(path, action, errno ? errno : ENOENT);
    return f;
}

// Pushes the stream's data to the disk itself, not only to the system.
void Sync(std::FILE* f, const std::filesystem::path& path) {
    if (std::fflush(f) != 0) ThrowFileError(path, "write", errno);
#ifdef QUILLON_HAVE_FSYNC
    if (::fsync(::fileno(f)) != 0 && errno != EINVAL) ThrowFileError(path, "write", errno);
#endif
}

void SyncFolder([[maybe_unused]] const std::filesystem::path& folder) {
#ifdef QUILLON_HAVE_FSYNC
    int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#endif
}

void Seek(std::FILE* f, std::uint64_t offset, const std::filesystem::path& path, std::string_view action) {
    if (offset > static_cast<std::uint64_t>(INT64_MAX) ||
        std::fseek(f, static_cast<long>(offset), SEEK_SET) != 0)
        ThrowFileError(path, action, errno ? errno : EINVAL);
}

}  // namespace

void SetWriteHook(WriteHook hook, int error) {
    Hook() = std::move(hook);
    HookError() = error;
}

WriteHook StopAfterWrites(int count) {
    auto done = std::make_shared<int>(0);
    return [done, count](const std::filesystem::path&) { return ++*done <= count; };
}

void ThrowFileError(const std::filesystem::path& path, std::string_view action, int err) {
    throw FileError("Cannot " + std::string(action) + " '" + path.string() + "': " +
                    std::generic_category().message(err));
}

bool IsWriteProtected(const std::filesystem::path& path) {
    std::error_code ec;
    auto st = std::filesystem::status(path, ec);
    if (ec || !std::filesystem::is_regular_file(st)) return false;
    using std::filesystem::perms;
    return (st.permissions() & (perms::owner_write | perms::group_write | perms::others_write)) == perms::none;
}

std::optional<FileStamp> FileStamp::Of(const std::filesystem::path& path) {
    std::error_code ec;
    FileStamp stamp{path, std::filesystem::file_size(path, ec), {}};
    if (ec) return std::nullopt;
    stamp.time = std::filesystem::last_write_time(path, ec);
    if (ec) return std::nullopt;
    return stamp;
}

std::uint64_t FileSize(const std::filesystem::path& path) { return InputFile(path).Size(); }

std::string ReadAt(const std::filesystem::path& path, std::uint64_t offset, std::size_t count) {
    InputFile f(path);
    if (offset >= f.Size()) return {};
    std::string out(static_cast<std::size_t>(std::min<std::uint64_t>(count, f.Size() - offset)), '\0');
    out.resize(f.Read(offset, out.data(), out.size()));
    return out;
}

std::string ReadAll(const std::filesystem::path& path) {
    InputFile f(path);
    std::string out(static_cast<std::size_t>(f.Size()), '\0');
    out.resize(f.Read(0, out.data(), out.size()));
    return out;
}

void WriteAt(const std::filesystem::path& path, std::uint64_t offset, std::string_view bytes) {
    WritePatches(path, {BytesAt{offset, std::string(bytes)}});
}

void WritePatches(const std::filesystem::path& path, const std::vector<BytesAt>& patches) {
    if (IsWriteProtected(path)) ThrowFileError(path, "write", EACCES);
    File f = Open(path, "r+b", "open for writing");
    for (const BytesAt& p : patches) {
        if (p.bytes.empty()) continue;
        CheckHook(path);
        Seek(f.get(), p.offset, path, "write");
        if (std::fwrite(p.bytes.data(), 1, p.bytes.size(), f.get()) != p.bytes.size())
            ThrowFileError(path, "write", errno);
        // Hand each block to the system at once, so that what was written
        // before a failure is on disk in the order it was written.
        if (std::fflush(f.get()) != 0) ThrowFileError(path, "write", errno);
    }
    Sync(f.get(), path);
}

namespace {

// Writes `contents` to a new file with a unique name beside `target`, created
// exclusively and never through a link, flushed to disk. Returns its path.
std::filesystem::path WriteTemporary(const std::filesystem::path& target, std::string_view contents,
                                     std::filesystem::perms mode) {
    std::filesystem::path pattern = target;
    pattern += ".tmp-XXXXXX";
    std::string name = pattern.string();
#ifdef QUILLON_HAVE_FSYNC
    int fd = ::mkstemp(name.data());  // O_CREAT | O_EXCL, mode 600
    if (fd < 0) ThrowFileError(target, "create a temporary file for", errno);
    std::filesystem::path tmp(name);
    auto fail = [&](int err) {
        ::close(fd);
        ::unlink(tmp.c_str());
        ThrowFileError(target, "write", err);
    };
    for (std::size_t done = 0; done < contents.size();) {
        ssize_t n = ::write(fd, contents.data() + done, contents.size() - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            fail(errno);
        }
        done += static_cast<std::size_t>(n);
    }
    if (::fchmod(fd, static_cast<mode_t>(mode)) != 0) fail(errno);
    if (::fsync(fd) != 0 && errno != EINVAL) fail(errno);
    ::close(fd);
    return tmp;
#else
    std::filesystem::path tmp = target;
    tmp += ".tmp";
    File f = Open(tmp, "wb", "create");
    if (!contents.empty() && std::fwrite(contents.data(), 1, contents.size(), f.get()) != contents.size())
        ThrowFileError(target, "write", errno);
    Sync(f.get(), tmp);
    (void)mode;
    return tmp;
#endif
}

// The file a path names: a link is followed to its target (which may not
// exist yet), so replacing it replaces the target and keeps the link.
std::filesystem::path Resolve(const std::filesystem::path& path) {
    std::filesystem::path p = path;
    for (int depth = 0; depth < 40; ++depth) {
        std::error_code ec;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(p, ec))) return p;
        std::filesystem::path target = std::filesystem::read_symlink(p, ec);
        if (ec) ThrowFileError(path, "follow the link", ec.value());
        p = target.is_absolute() ? target : p.parent_path() / target;
    }
    ThrowFileError(path, "follow the link", ELOOP);
}

}  // namespace

void ReplaceFile(const std::filesystem::path& path, std::string_view contents) {
    const std::filesystem::path target = Resolve(path);
    if (IsWriteProtected(target)) ThrowFileError(path, "write", EACCES);
    std::error_code ec;
    auto status = std::filesystem::status(target, ec);
    if (std::filesystem::is_directory(status)) ThrowFileError(path, "write", EISDIR);
    using std::filesystem::perms;
    perms mode = std::filesystem::exists(status)
                     ? status.permissions() & perms::mask
                     : perms::owner_read | perms::owner_write | perms::group_read | perms::others_read;
    CheckHook(path);
    const std::filesystem::path tmp = WriteTemporary(target, contents, mode);
    std::filesystem::rename(tmp, target, ec);
    if (ec) {
        std::error_code ignored;
        std::filesystem::remove(tmp, ignored);
        ThrowFileError(path, "write", ec.value());
    }
    SyncFolder(target.parent_path());
}

bool CreateExclusive(const std::filesystem::path& path, std::string_view contents) {
    std::error_code ec;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, ec))) return false;
    CheckHook(path);
    using std::filesystem::perms;
    const std::filesystem::path tmp =
        WriteTemporary(path, contents, perms::owner_read | perms::owner_write | perms::group_read | perms::others_read);
#ifdef QUILLON_HAVE_FSYNC
    // A hard link fails when the name is taken, so the finished file appears
    // whole and never replaces another.
    int linked = ::link(tmp.c_str(), path.c_str());
    int err = errno;
    ::unlink(tmp.c_str());
    if (linked != 0) {
        if (err == EEXIST) return false;
        ThrowFileError(path, "create", err);
    }
#else
    std::filesystem::rename(tmp, path, ec);
    if (ec) ThrowFileError(path, "create", ec.value());
#endif
    SyncFolder(path.parent_path());
    return true;
}

bool FolderWritable(const std::filesystem::path& folder) {
    std::error_code ec;
    auto st = std::filesystem::status(folder.empty() ? std::filesystem::path(".") : folder, ec);
    if (ec || !std::filesystem::is_directory(st)) return false;
    using std::filesystem::perms;
    return (st.permissions() & (perms::owner_write | perms::group_write | perms::others_write)) != perms::none;
}

InputFile::InputFile(const std::filesystem::path& path) : path_(path) {
    File f = Open(path, "rb", "open");
    if (std::fseek(f.get(), 0, SEEK_END) != 0) ThrowFileError(path, "read", errno);
    long size = std::ftell(f.get());
    if (size < 0) ThrowFileError(path, "read", errno);
    size_ = static_cast<std::uint64_t>(size);
    file_ = f.release();
}

InputFile::~InputFile() { std::fclose(static_cast<std::FILE*>(file_)); }

std::size_t InputFile::Read(std::uint64_t offset, char* out, std::size_t count) {
    auto* f = static_cast<std::FILE*>(file_);
    Seek(f, offset, path_, "read");
    std::size_t got = std::fread(out, 1, count, f);
    if (got < count && std::ferror(f)) ThrowFileError(path_, "read", errno);
    return got;
}

namespace {

// The buffer of the last large copy, kept for the next one: the system
// clears fresh memory before it can be used, which for a 16 MiB image costs
// about as much as reading it. One is kept at a time.
struct SpareBuffer {
    std::mutex mutex;
    void* buffer = nullptr;
    std::size_t capacity = 0;
};
SpareBuffer& Spare() {
    static SpareBuffer spare;
    return spare;
}

}  // namespace

FileCopy::FileCopy(const std::filesystem::path& path) {
    InputFile in(path);
    const auto size = static_cast<std::size_t>(in.Size());
    // A large image goes into huge pages where the system has them: eight
    // page faults for 16 MiB instead of four thousand.
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    if (size >= kHugePage) {
        capacity_ = (size + kHugePage - 1) / kHugePage * kHugePage;
        {
            const std::lock_guard lock(Spare().mutex);
            if (Spare().buffer && Spare().capacity >= capacity_) {
                buffer_ = std::exchange(Spare().buffer, nullptr);
                capacity_ = Spare().capacity;
            }
        }
        if (!buffer_) {
            buffer_ = std::aligned_alloc(kHugePage, capacity_);
#if defined(QUILLON_HAVE_MMAP) && defined(MADV_HUGEPAGE)
            if (buffer_) ::madvise(buffer_, capacity_, MADV_HUGEPAGE);  // a hint; without it the copy works alike
#endif
        }
    } else if (size > 0) {
        buffer_ = std::malloc(size);
    }
    if (!buffer_ && size > 0) throw std::bad_alloc();
    view_ = {static_cast<const char*>(buffer_), size > 0 ? in.Read(0, static_cast<char*>(buffer_), size) : 0};
}

FileCopy::~FileCopy() {
    if (capacity_ > 0) {
        const std::lock_guard lock(Spare().mutex);
        if (!Spare().buffer || Spare().capacity <= capacity_) {
            std::swap(Spare().buffer, buffer_);
            Spare().capacity = capacity_;
        }
    }
    std::free(buffer_);
}

void RemoveFile(const std::filesystem::path& path) {
    std::error_code ec;
    std::filesystem::remove(path, ec);
    if (ec) ThrowFileError(path, "delete", ec.value());
}

}  // namespace quillon::io
