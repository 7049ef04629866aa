#pragma once
// Patches that carry a hack from one ROM image to another: BPS (created and
// applied) and IPS (applied). Everything works on whole images in memory.
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon {

// A patch that cannot be applied: damaged, of an unknown kind, or made for
// another image. what() is a message for the user.
struct PatchError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::uint32_t Crc32(std::string_view bytes);

// A BPS patch that turns `source` into `target`. Unchanged runs are read from
// the source in place, moved blocks copied from it, runs of one byte repeated
// from the target, and the rest stored literally, so a patch of a few edited
// texts stays a few kilobytes whatever the image's size.
std::string CreateBps(std::string_view source, std::string_view target, std::string_view metadata = {});

// Applies a BPS patch. Checks the patch's own checksum, the source's length
// and checksum, every action's bounds and the result's checksum.
std::string ApplyBps(std::string_view source, std::string_view patch);

// Applies an IPS patch: 24-bit offsets (the first 16 MiB), plain and
// run-length records, the "EOF" marker and an optional truncation length.
std::string ApplyIps(std::string_view source, std::string_view patch);

enum class PatchFormat { Bps, Ips };

// The kind of patch by its signature; throws PatchError for anything else.
PatchFormat DetectPatchFormat(std::string_view patch);
std::string ApplyPatch(std::string_view source, std::string_view patch);

// File forms of the above, for the windows and the command line. The output
// is written whole through a temporary file, so it is never left half done.
// Throw FileError when a file cannot be read or written, PatchError when the
// patch does not apply.
void CreatePatchFile(const std::filesystem::path& original, const std::filesystem::path& modified,
                     const std::filesystem::path& out);
PatchFormat ApplyPatchFile(const std::filesystem::path& rom, const std::filesystem::path& patch,
                           const std::filesystem::path& out);

}  // namespace quillon
