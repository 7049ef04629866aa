#include "edit/save_journal.h"

#include <quillon/errors.h>
#include <quillon/rom.h>

#include <cerrno>
#include <sstream>

namespace quillon {
namespace {

constexpr std::string_view kMagic = "QUILLON SAVE JOURNAL 1";

std::string ToHex(std::string_view bytes) {
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (char b : bytes) hex += ByteHex(b);
    return hex;
}

// What must be put back to undo a plan.
struct Undo {
    std::uint64_t romSize = 0;
    std::vector<io::Patch> romBytes;  // old bytes, in the order the plan overwrites them
    std::optional<std::filesystem::path> offsetFile;
    bool offsetFileExisted = false;
    std::string offsetFileText;
};

// The old bytes under each patch, seen through the patches before it (they
// may overlap).
Undo Capture(const SavePlan& plan) {
    Undo undo;
    io::InputFile rom(plan.rom);
    undo.romSize = rom.Size();
    std::vector<io::Patch> applied;
    auto capture = [&](const io::Patch& p) {
        std::string old(p.bytes.size(), '\0');
        old.resize(p.offset < rom.Size() ? rom.Read(p.offset, old.data(), old.size()) : 0);
        for (const io::Patch& earlier : applied) {
            for (std::size_t i = 0; i < old.size(); ++i) {
                std::uint64_t at = p.offset + i;
                if (at >= earlier.offset && at < earlier.offset + earlier.bytes.size())
                    old[i] = earlier.bytes[static_cast<std::size_t>(at - earlier.offset)];
            }
        }
        undo.romBytes.push_back({p.offset, std::move(old)});
        applied.push_back(p);
    };
    for (const auto& p : plan.romFirst) capture(p);
    for (const auto& p : plan.romLast) capture(p);
    if (plan.offsetFile) {
        undo.offsetFile = plan.offsetFile;
        undo.offsetFileExisted = std::filesystem::exists(*plan.offsetFile);
        if (undo.offsetFileExisted) undo.offsetFileText = io::ReadAll(*plan.offsetFile);
    }
    return undo;
}

std::string Serialize(const Undo& undo) {
    std::ostringstream out;
    out << kMagic << "\n" << "size " << undo.romSize << "\n";
    if (undo.offsetFile)
        out << "ini " << ToHex(undo.offsetFile->string()) << " " << (undo.offsetFileExisted ? 1 : 0) << " "
            << ToHex(undo.offsetFileText) << "\n";
    for (const auto& p : undo.romBytes) out << "rom " << p.offset << " " << ToHex(p.bytes) << "\n";
    out << "end\n";
    return out.str();
}

Undo Parse(const std::string& text, const std::filesystem::path& journal) {
    std::istringstream in(text);
    std::string line;
    auto bad = [&] { io::ThrowFileError(journal, "read the damaged journal", EINVAL); };
    if (!std::getline(in, line) || line != kMagic) bad();
    Undo undo;
    bool ended = false;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind;
        fields >> kind;
        if (kind == "size") {
            fields >> undo.romSize;
        } else if (kind == "ini") {
            std::string path, existed, contents;
            fields >> path >> existed >> contents;
            undo.offsetFile = std::filesystem::path(HexToBytes(path));
            undo.offsetFileExisted = existed == "1";
            undo.offsetFileText = HexToBytes(contents);
        } else if (kind == "rom") {
            io::Patch p{};
            std::string bytes;
            fields >> p.offset >> bytes;
            p.bytes = HexToBytes(bytes);
            undo.romBytes.push_back(std::move(p));
        } else if (kind == "end") {
            ended = true;
        }
        if (fields.fail()) bad();
    }
    if (!ended) bad();
    return undo;
}

void Restore(const std::filesystem::path& rom, const Undo& undo) {
    std::vector<io::Patch> reversed(undo.romBytes.rbegin(), undo.romBytes.rend());
    io::WritePatches(rom, reversed);
    if (io::FileSize(rom) > undo.romSize) io::ResizeFile(rom, undo.romSize);
    if (undo.offsetFile) {
        if (undo.offsetFileExisted)
            io::ReplaceFile(*undo.offsetFile, undo.offsetFileText);
        else
            io::RemoveFile(*undo.offsetFile);
    }
}

}  // namespace

std::filesystem::path JournalPath(const std::filesystem::path& rom) {
    std::filesystem::path journal = rom;
    journal += ".save-journal";
    return journal;
}

SaveOutcome WriteJournaled(const SavePlan& plan, std::string& error) {
    const auto journal = JournalPath(plan.rom);
    Undo undo = Capture(plan);
    io::ReplaceFile(journal, Serialize(undo));
    try {
        io::WritePatches(plan.rom, plan.romFirst);
        if (plan.offsetFile) io::ReplaceFile(*plan.offsetFile, plan.offsetFileText);
        io::WritePatches(plan.rom, plan.romLast);
    } catch (const FileError& e) {
        error = e.what();
        try {
            Restore(plan.rom, undo);
            io::RemoveFile(journal);
            return SaveOutcome::RolledBack;
        } catch (const FileError&) {
            return SaveOutcome::JournalKept;
        }
    }
    io::RemoveFile(journal);
    return SaveOutcome::Saved;
}

bool RecoverInterruptedSave(const std::filesystem::path& rom) {
    const auto journal = JournalPath(rom);
    if (!std::filesystem::exists(journal)) return false;
    Restore(rom, Parse(io::ReadAll(journal), journal));
    io::RemoveFile(journal);
    return true;
}

}  // namespace quillon
