// Loading a large offset file into the tree, and a repoint in a 32 MiB image
// with 1,000 pointers to the moved text.
#include "app/session.h"
#include "discover/find_texts.h"
#include "edit/open_rom.h"
#include "edit/save_text.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "offsets/offset_file.h"

#include <quillon/core.h>

#include "ratio.h"
#include "silent_prompter.h"

#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>

namespace {

using namespace quillon;

std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

}  // namespace

int main() {
    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-offsets";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "ini");
    bench::WriteSynced(folder / "ini" / "settings.ini", "[Settings]\r\nWarningShown=True\r\nFreeSpaceOffset=15728640\r\n");

    // A 32 MiB image: text-like bytes, "Hello" at 0x800000 and 1,000 pointers to
    // it, free space from 0xF00000 to 0xFFFFFF.
    const std::size_t size = 32u << 20;
    std::string image(size, '\0');
    std::mt19937 rng(3);
    for (char& c : image) c = static_cast<char>(0x01 + rng() % 0x7F);
    image.replace(0xAC, 4, "QLNE");
    image.replace(0x800000, 6, "\xC2\xD9\xE0\xE0\xE3\xFF");
    for (int i = 0; i < 1000; ++i) image.replace(0x10000 + i * 7919, 4, "\x00\x00\x80\x08", 4);
    std::fill(image.begin() + 0xF00000, image.begin() + 0x1000000, '\xFF');
    const auto rom = folder / "bench.gba";
    bench::WriteSynced(rom, image);

    // 2,000 sections of 20 keys each.
    std::string offsets = "'head\r\n";
    for (int s = 0; s < 2000; ++s) {
        offsets += "[Map " + std::to_string(s) + "]\r\n";
        for (int k = 0; k < 20; ++k) offsets += "Person " + std::to_string(k) + "=" + std::to_string(100000 + k) + "\r\n";
    }
    bench::WriteSynced(folder / "ini" / "QLNE.ini", offsets);

    bench::YesUser user;
    user.rom = rom;
    Session session(folder, user);
    OpenRom(session, OfferFindTexts);

    bool ok = true;
    std::size_t lines = 0;
    auto tree = bench::Compare([&] { Tree_Load(session); },
                               [&] {
                                   std::string text = Read(folder / "ini" / "QLNE.ini");
                                   std::vector<std::string_view> split;
                                   std::string_view rest(text);
                                   for (auto at = rest.find('\n'); at != std::string_view::npos; at = rest.find('\n')) {
                                       split.push_back(rest.substr(0, at));
                                       rest.remove_prefix(at + 1);
                                   }
                                   lines = split.size();
                               },
                               7);
    ok &= session.tree.Nodes().size() == 42000 && lines == 42001;
    ok &= bench::Report("Tree_Load 2,000 sections, 40,000 keys", tree, 10);

    // Each repoint runs on a fresh copy of the image; the copy and the text's
    // showing are not timed.
    std::vector<double> repoint, pass;
    for (int run = 0; run < 5; ++run) {
        bench::WriteSynced(rom, image);
        bench::WriteSynced(folder / "ini" / "QLNE.ini", "[Town]\r\nMom=800000\r\n");
        Tree_Load(session);
        session.tree.Select(1);
        Text_Load(session);
        (void)fit::SessionFont(session);  // as the window reads the ROM's fit facts when it shows the text
        session.controls.text1.SetText("Hello, a longer text!");
        repoint.push_back(bench::TimeOnce([&] { SaveText(session, fit::ConfirmFitBeforeSave); }));
        std::int32_t found = 0;
        pass.push_back(bench::TimeOnce([&] {
            std::int32_t start = 1;
            found = FindBytes(rom, std::string("\x01\x00\x00\x09", 4), start);
        }));
        ok &= session.controls.offsetCaption == "F00001" && found == 0;
    }
    const std::string after = Read(rom), moved("\x01\x00\xF0\x08", 4);
    std::size_t count = 0;
    for (auto at = after.find(moved); at != std::string::npos; at = after.find(moved, at + 1)) ++count;
    ok &= count == 1000;
    ok &= bench::Report("Repoint, 32 MiB, 1,000 pointers", {bench::Median(repoint), bench::Median(pass)}, 3);
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
