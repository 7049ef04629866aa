#include "edit/name_edit.h"

#include "app/session.h"
#include "core/file_io.h"
#include "offsets/fixed_length.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

namespace quillon {

void NoteFixedLength(Session& session) {
    if (!FileExists(session.OffsetFile())) return;
    const auto fixed = FixedLengthAt(io::ReadAll(session.OffsetFile()), static_cast<std::uint32_t>(session.loaded.offset));
    if (!fixed) return;
    session.loaded.fixedLength = fixed->bytes;
    session.loaded.padding = fixed->padding;
}

std::string NameCounterCaption(std::uint32_t letters, std::int32_t length) {
    if (length > static_cast<std::int32_t>(letters))
        return std::to_string(length - static_cast<std::int32_t>(letters)) +
               " letters too many: this name holds at most " + std::to_string(letters) + ".";
    return std::to_string(static_cast<std::int32_t>(letters) - length) + " letters left in this name (at most " +
           std::to_string(letters) + ").";
}

std::optional<std::vector<BytesAt>> NameBlocks(Session& session) {
    const LoadedText& loaded = session.loaded;
    const FixedLength fixed{loaded.fixedLength, loaded.padding, 0};
    const std::string name = HexToBytes(EncodeText(session.controls.text1.Text(), session.controls.specialDialog));
    const std::string field = io::ReadAt(session.romPath, loaded.offset, fixed.bytes);
    const NameWrite write = WriteName(field, name, fixed);
    if (!write.refusal.empty()) {
        const std::string why =
            name.size() > fixed.Letters()
                ? "This name can hold at most " + std::to_string(fixed.Letters()) + " letters, and it has " +
                      std::to_string(name.size()) + ".\r\nA name has a fixed length in its table and is never moved."
                : "The name can't be saved: " + write.refusal + ".";
        session.prompter.Message(Icon::Critical, why + "\r\nNothing was written.");
        return std::nullopt;
    }
    return std::vector<BytesAt>{{loaded.offset, write.bytes}};
}

}  // namespace quillon
