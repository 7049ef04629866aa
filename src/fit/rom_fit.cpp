#include "fit/rom_fit.h"

#include "repoint/model_cache.h"

#include "game/pointer_index.h"

#include <mutex>

namespace quillon::fit {

std::shared_ptr<const RomFit> FitOf(const std::filesystem::path& rom, std::optional<FontPlace> named) {
    struct Cached {
        std::filesystem::path rom;
        std::uintmax_t size = 0;
        std::filesystem::file_time_type time;
        std::optional<FontPlace> named;
        std::shared_ptr<const RomFit> fit;
    };
    static std::mutex mutex;
    static Cached cached;
    std::error_code ec;
    const auto size = std::filesystem::file_size(rom, ec);
    const auto time = std::filesystem::last_write_time(rom, ec);
    std::lock_guard lock(mutex);
    if (!ec && cached.fit && cached.rom == rom && cached.size == size && cached.time == time && cached.named == named)
        return cached.fit;
    const std::string image = ReadImage(rom);
    auto fit = std::make_shared<RomFit>();
    const auto model = repoint::ModelOf(rom);
    fit->font = LocateFont(image, named, model->Pointers());
    fit->boxes = TextBoxes::Read(image, *model);
    cached = {rom, size, time, named, std::move(fit)};
    return cached.fit;
}

}  // namespace quillon::fit
