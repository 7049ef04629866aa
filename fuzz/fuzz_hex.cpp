// Hex conversions and header identification on arbitrary input: every call
// either gives a well-formed result or refuses with TypeMismatch.
#include <quillon/core.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

bool UpperHex(const std::string& s) {
    for (char c : s)
        if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'))) return false;
    return true;
}

const std::filesystem::path& HeaderFile() {
    static const std::filesystem::path path = [] {
        std::atexit([] { std::remove(HeaderFile().c_str()); });
        return std::filesystem::temp_directory_path() / ("quillon-fuzz-hex-" + std::to_string(::getpid()));
    }();
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillon;
    const std::string text(reinterpret_cast<const char*>(data), size);

    try {
        std::int32_t v = HexToLong(text);
        // A value that converts prints back to the same number.
        if (HexToLong(PadHex(v < 0 ? static_cast<std::uint32_t>(v) : v)) != v) __builtin_trap();
    } catch (const TypeMismatch&) {
    }
    try {
        std::string bytes = HexToBytes(text);
        if (bytes.size() != (text.size() + 1) / 2) __builtin_trap();
        std::string back;
        for (char b : bytes) back += ByteHex(b);
        if (!UpperHex(back)) __builtin_trap();
    } catch (const TypeMismatch&) {
    }
    try {
        std::string pointer = PointerHex(text);
        if (pointer.size() != 8 || pointer.substr(6) != "08" || !UpperHex(pointer)) __builtin_trap();
        if (text.empty() || text.size() > 6) __builtin_trap();  // only one to six digits make a pointer
    } catch (const TypeMismatch&) {
    }
    try {
        int b = static_cast<unsigned char>(HexByte(text));
        if (ByteHex(static_cast<char>(b)) != PadHex(b)) __builtin_trap();
    } catch (const TypeMismatch&) {
    }
    std::string padded = PadHex(static_cast<std::int64_t>(size) * 0x10001);
    if (padded.size() % 2 || !UpperHex(padded)) __builtin_trap();

    // The header getters on a file of these bytes: short files give what exists.
    {
        std::FILE* f = std::fopen(HeaderFile().c_str(), "wb");
        if (!f) return 0;
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    if (GetRomName(HeaderFile()).size() > 12 || GetRomCode(HeaderFile()).size() > 4) __builtin_trap();
    (void)LanguageName(GetRomLanguage(HeaderFile()));
    (void)MakerName(GetMakerCode(HeaderFile()));
    return 0;
}
