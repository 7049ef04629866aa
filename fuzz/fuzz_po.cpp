// Reads any file as a PO file the way an import does: what Quillon does to
// the text before the gettext library reads it (the charset it is declared
// in, escapes of zero bytes, the cut into parts at entry boundaries), the
// library's reading, and each translation turned into game bytes. A file it
// cannot read is refused with a message, never a crash or a read outside it.
#include "translate/po_file.h"
#include "translate/rom_texts.h"

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

#include "scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ScratchFolder folder("po");
    const std::filesystem::path po = folder.path / "texts.po";
    std::ofstream(po, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                  static_cast<std::streamsize>(size));
    quillon::PoCatalog catalog;
    try {
        catalog = quillon::ReadPo(po);
    } catch (const std::runtime_error& e) {  // PoError, or FileError
        if (std::string(e.what()).empty()) __builtin_trap();
        return 0;
    }
    for (const quillon::PoMessage& m : catalog.messages) {
        const quillon::Encoded encoded = quillon::EncodeForImport(quillon::FromPoText(m.str), false);
        if (encoded.refusal.empty() && encoded.bytes.find('\xFF') != std::string::npos) __builtin_trap();
    }
    return 0;
}
