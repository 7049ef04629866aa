#include "update/downloader.h"

#include "core/file_io.h"
#include "update/network.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <algorithm>
#include <limits>
#include <system_error>
#include <vector>

namespace quillon {
namespace {

// Counts are reported in 32 bits.
std::int32_t Count32(qint64 n) {
    return static_cast<std::int32_t>(std::clamp<qint64>(n, 0, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

struct Downloader::Impl {
    // Released with deleteLater, so a handler may destroy the downloader
    // while a reply (a child of the manager) is still emitting.
    std::unique_ptr<QNetworkAccessManager, void (*)(QNetworkAccessManager*)> manager{
        new QNetworkAccessManager, [](QNetworkAccessManager* m) { m->deleteLater(); }};
    std::vector<QNetworkReply*> running;
    // Expires with the downloader: tells a finishing transfer whether the
    // downloader outlived the handlers it just called.
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);

    void Forget(QNetworkReply* reply) {
        running.erase(std::remove(running.begin(), running.end(), reply), running.end());
        reply->deleteLater();
    }
};

Downloader::Downloader() : impl_(std::make_unique<Impl>()) {}

Downloader::~Downloader() { CancelAll(); }

void Downloader::CancelAll() {
    std::vector<QNetworkReply*> replies;
    replies.swap(impl_->running);
    for (QNetworkReply* reply : replies) {
        QObject::disconnect(reply, nullptr, nullptr, nullptr);
        reply->abort();
        reply->deleteLater();
    }
}

std::size_t Downloader::Running() const { return impl_->running.size(); }

std::optional<UpdateError> Downloader::BeginDownload(std::string_view url, const std::filesystem::path& saveFile) {
    std::error_code ec;
    if (!std::filesystem::is_directory(saveFile.parent_path(), ec))
        return UpdateError{kPathFileAccessError, "Path/File access error"};

    const QUrl address = net::ToUrl(url);
    if (!net::IsWebUrl(address)) {
        if (DownloadError) DownloadError(saveFile);
        return std::nullopt;
    }

    QNetworkReply* reply = impl_->manager->get(net::MakeRequest(address));
    impl_->running.push_back(reply);
    net::GuardRedirects(reply);
    auto tooLarge = std::make_shared<bool>(false);
    net::CapSize(reply, maxBytes, tooLarge);

    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [this, saveFile](qint64 cur, qint64 max) {
        if (max <= 0) return;  // no total size (0, or unknown)
        if (DownloadProgress) DownloadProgress(Count32(cur), Count32(max), saveFile);
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply, saveFile, tooLarge] {
        const std::filesystem::path file = saveFile;  // the handlers may end this connection
        QByteArray bytes = reply->error() == QNetworkReply::NoError && !*tooLarge ? reply->readAll() : QByteArray();
        // A transfer cut short, or longer than announced, is a failure: no half file is saved.
        const bool failed = bytes.isEmpty() ? reply->error() != QNetworkReply::NoError || *tooLarge
                                            : !net::ArrivedWhole(*reply, bytes.size());
        impl_->Forget(reply);
        const std::weak_ptr<bool> alive = impl_->alive;

        if (failed) {
            if (DownloadError) DownloadError(file);
            return;
        }
        if (bytes.isEmpty()) {
            if (DownloadError) DownloadError(file);
            if (!alive.expired() && DownloadComplete) DownloadComplete(0, file);
            return;
        }
        // Written whole through a temporary file and a rename; a write that
        // fails leaves any older file as it was and is not reported.
        try {
            io::ReplaceFile(file, std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
        } catch (const std::exception&) {
        }
        if (DownloadComplete) DownloadComplete(Count32(bytes.size()), file);
    });
    return std::nullopt;
}

}  // namespace quillon
