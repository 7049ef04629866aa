#include "fit/rom_fit.h"

#include "core/file_io.h"
#include "repoint/model_cache.h"

#include "game/pointer_index.h"

#include <mutex>

namespace quillon::fit {

std::shared_ptr<const RomFit> FitOf(const std::filesystem::path& rom, std::optional<FontPlace> named) {
    static std::mutex mutex;
    static std::optional<io::FileStamp> stamp;
    static std::optional<FontPlace> cachedNamed;
    static std::shared_ptr<const RomFit> cached;
    const auto now = io::FileStamp::Of(rom);
    std::lock_guard lock(mutex);
    if (cached && now && now == stamp && cachedNamed == named) return cached;
    const std::string image = ReadImage(rom);
    auto fit = std::make_shared<RomFit>();
    // The image read here is the model's too, when the file has a stamp.
    const auto model = now ? repoint::ModelOf(*now, image) : repoint::ModelOf(rom);
    fit->font = LocateFont(image, named, model->Pointers());
    fit->boxes = TextBoxes::Read(image, *model, false, fit->font.font ? &*fit->font.font : nullptr);
    stamp = now, cachedNamed = named, cached = std::move(fit);
    return cached;
}

}  // namespace quillon::fit
