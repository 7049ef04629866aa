#include "repoint/model_cache.h"

#include <mutex>
#include <optional>

namespace quillon::repoint {
namespace {

// One model, of the file as it was at `stamp`. The lock is held while a
// model is read, so that two callers do not read the same file twice.
struct Kept {
    std::mutex mutex;
    std::optional<io::FileStamp> stamp;
    std::shared_ptr<const game::GameModel> model;

    [[nodiscard]] bool Holds(const std::optional<io::FileStamp>& now) const { return model && now && now == stamp; }
    std::shared_ptr<const game::GameModel> Keep(const std::optional<io::FileStamp>& now, std::string_view image) {
        model = std::make_shared<const game::GameModel>(game::GameModel::Read(image));
        stamp = now;
        return model;
    }
};

Kept& Cache() {
    static Kept kept;
    return kept;
}

}  // namespace

std::shared_ptr<const game::GameModel> ModelOf(const std::filesystem::path& rom) {
    const auto now = io::FileStamp::Of(rom);
    Kept& kept = Cache();
    const std::lock_guard lock(kept.mutex);
    return kept.Holds(now) ? kept.model : kept.Keep(now, io::ReadAll(rom));
}

std::shared_ptr<const game::GameModel> ModelOf(const io::FileStamp& stamp, std::string_view image) {
    Kept& kept = Cache();
    const std::lock_guard lock(kept.mutex);
    return kept.Holds(stamp) ? kept.model : kept.Keep(stamp, image);
}

std::shared_ptr<const game::GameModel> KeptModel(const io::FileStamp& stamp) {
    Kept& kept = Cache();
    const std::lock_guard lock(kept.mutex);
    return kept.Holds(stamp) ? kept.model : nullptr;
}

}  // namespace quillon::repoint
