#include "repoint/model_cache.h"

#include "core/file_io.h"

#include <mutex>

namespace quillon::repoint {

std::shared_ptr<const game::GameModel> ModelOf(const std::filesystem::path& rom) {
    static std::mutex mutex;
    static std::optional<io::FileStamp> stamp;
    static std::shared_ptr<const game::GameModel> model;
    const auto now = io::FileStamp::Of(rom);
    std::lock_guard lock(mutex);
    if (model && now && now == stamp) return model;
    const std::string image = io::ReadAll(rom);
    model = std::make_shared<const game::GameModel>(game::GameModel::Read(image));
    stamp = now;
    return model;
}

}  // namespace quillon::repoint
