#include "repoint/model_cache.h"

#include "core/file_io.h"

#include <mutex>

namespace quillon::repoint {

std::shared_ptr<const game::GameModel> ModelOf(const std::filesystem::path& rom) {
    struct Cached {
        std::filesystem::path rom;
        std::uintmax_t size = 0;
        std::filesystem::file_time_type time;
        std::shared_ptr<const game::GameModel> model;
    };
    static std::mutex mutex;
    static Cached cached;
    std::error_code ec;
    const auto size = std::filesystem::file_size(rom, ec);
    const auto time = std::filesystem::last_write_time(rom, ec);
    std::lock_guard lock(mutex);
    if (!ec && cached.model && cached.rom == rom && cached.size == size && cached.time == time) return cached.model;
    const std::string image = io::ReadAll(rom);
    cached = {rom, size, time, std::make_shared<const game::GameModel>(game::GameModel::Read(image))};
    return cached.model;
}

}  // namespace quillon::repoint
