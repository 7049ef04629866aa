#include "update/update_form.h"

#include "app/prompter.h"
#include "update/last_slash.h"
#include "update/network.h"
#include "update/version_compare.h"

#include <quillon/core.h>

#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <system_error>

namespace quillon {

// The version check's HTTP fetches: one at a time, each returning the whole
// body as text.
struct UpdateForm::Fetcher {
    std::unique_ptr<QNetworkAccessManager, void (*)(QNetworkAccessManager*)> manager{
        new QNetworkAccessManager, [](QNetworkAccessManager* m) { m->deleteLater(); }};
    QNetworkReply* reply = nullptr;  // the fetch in flight

    void Abandon() {
        if (!reply) return;
        QObject::disconnect(reply, nullptr, nullptr, nullptr);
        reply->abort();
        reply->deleteLater();
        reply = nullptr;
    }
    ~Fetcher() { Abandon(); }
};

UpdateForm::UpdateForm(Prompter& prompter, std::filesystem::path programFolder, std::string baseUrl,
                       std::string currentVersion)
    : currentVersion(std::move(currentVersion)),
      prompter_(prompter),
      programFolder_(std::move(programFolder)),
      baseUrl_(std::move(baseUrl)),
      fetcher_(std::make_unique<Fetcher>()) {
    dl_.DownloadProgress = [this](std::int32_t cur, std::int32_t max, const std::filesystem::path&) {
        OnProgress(cur, max);
    };
    dl_.DownloadError = [this](const std::filesystem::path&) { OnError(); };
    dl_.DownloadComplete = [this](std::int32_t max, const std::filesystem::path&) { OnComplete(max); };
}

UpdateForm::~UpdateForm() = default;

void UpdateForm::Changed() const {
    if (changed_) changed_();
}

bool UpdateForm::Checking() const { return fetcher_->reply != nullptr; }

void UpdateForm::Check() {
    if (Checking()) return;
    if (const QUrl server = net::ToUrl(baseUrl_); net::IsPlaceholder(server)) {
        // Nothing to wait for: the network would only time out.
        lblUpdateMsg = "This build has no update server: " + server.host().toStdString() +
                       " is a placeholder. Updates are switched off.";
        Changed();
        return;
    }
    busy = true;
    cmdCheckEnabled = false;
    lblUpdateMsg = "Please wait...";
    Changed();

    const std::filesystem::path folder = UpdatesFolder();
    if (!FileExists(folder)) {
        std::error_code ec;
        std::filesystem::create_directory(folder, ec);
        if (ec) {
            // A path/file access failure ends the check without a message;
            // the window is left usable for another try.
            busy = false;
            cmdCheckEnabled = true;
            Changed();
            return;
        }
    }
    // Both files are fetched, in this order, before either body is looked at.
    Fetch(kVersionFilePath, [this](std::string version) {
        remoteVersion = std::move(version);
        Fetch(kAddressFilePath, [this](std::string address) {
            updateURL = std::move(address);
            Evaluate();
        });
    });
}

void UpdateForm::Fetch(std::string_view path, std::function<void(std::string)> onBody) {
    std::string address = baseUrl_;
    while (!address.empty() && address.back() == '/') address.pop_back();
    address += path;
    QNetworkReply* reply = fetcher_->manager->get(net::MakeRequest(net::ToUrl(address)));
    fetcher_->reply = reply;
    net::GuardRedirects(reply);
    auto tooLarge = std::make_shared<bool>(false);
    net::CapSize(reply, net::kMaxCheckBytes, tooLarge);
    QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply, tooLarge, onBody = std::move(onBody)] {
        fetcher_->reply = nullptr;
        reply->deleteLater();
        if (*tooLarge) {
            CheckFailed({kOutOfMemoryError, "The server's reply is larger than " +
                                                 std::to_string(net::kMaxCheckBytes / 1024) + " KiB."});
            return;
        }
        if (reply->error() != QNetworkReply::NoError) {
            CheckFailed(net::ReplyError(*reply));
            return;
        }
        const QByteArray body = reply->readAll();
        // The handler may start the next fetch; it gets its own copy.
        auto next = onBody;
        next(std::string(body.constData(), static_cast<std::size_t>(body.size())));
    });
}

void UpdateForm::CheckFailed(const UpdateError& error) {
    busy = false;
    cmdCheckEnabled = true;
    lblUpdateMsg = "Update failed.";
    Changed();
    prompter_.Message(Icon::Critical,
                      "An error has occured. Update failed.\r\n\r\nError description: \r\n" + error.description,
                      "Error #" + std::to_string(error.number));
}

void UpdateForm::Evaluate() {
    if (remoteVersion == "no") {
        lblUpdateMsg = "Update disabled.";
        Changed();
        prompter_.Message(Icon::Critical,
                          "The update feature has been disabled by the author. Please try again later.",
                          kProgramTitle);
    } else if (remoteVersion.empty()) {
        lblUpdateMsg = "Update failed.";
    } else if (IsNewerVersion(remoteVersion, currentVersion)) {
        lblUpdateMsg = "There's an update from v" + currentVersion + " to v" + remoteVersion + " available.";
        cmdDownloadVisible = true;
        cmdCheckVisible = false;
    } else {
        lblUpdateMsg = "There is no update available.";
    }
    busy = false;
    cmdCheckEnabled = true;
    Changed();
}

void UpdateForm::ReadyButtons() {
    cmdDownloadVisible = false;
    cmdDownloadEnabled = true;
    cmdCheckVisible = true;
    busy = false;
}

void UpdateForm::Download() {
    busy = true;
    const std::string name = GetLastSlash(updateURL);
    const bool safeName = IsSafeUpdateFileName(name);
    updateSavePath = safeName ? UpdatesFolder() / name : std::filesystem::path();
    cmdDownloadEnabled = false;
    lblUpdateMsg = "Downloading the update...";
    Changed();

    std::optional<UpdateError> failure;
    if (!safeName) {
        failure = UpdateError{kBadFileNameError, "Bad file name or number"};
    } else {
        for (int restarts = 0;; ++restarts) {
            failure = dl_.BeginDownload(updateURL, updateSavePath);
            if (!failure || failure->number != kPathFileAccessError || restarts == kMaxDownloadRestarts) break;
        }
    }
    if (failure) {
        busy = false;
        lblUpdateMsg = "Update failed.";
        Changed();
        prompter_.Message(Icon::Critical, "The update failed.",
                          "Error " + std::to_string(failure->number) + ": " + failure->description);
    }
    ReadyButtons();
    Changed();
}

void UpdateForm::Cancel() {
    fetcher_->Abandon();
    dl_.CancelAll();
    ReadyButtons();
    cmdCheckEnabled = true;
    Changed();
}

void UpdateForm::OnProgress(std::int32_t curBytes, std::int32_t maxBytes) {
    progMax = maxBytes;
    progValue = curBytes;
    label1 = "Downloaded: " + std::to_string(curBytes) + " / " + std::to_string(maxBytes) + " Bytes.";
    Changed();
}

void UpdateForm::OnError() {
    busy = false;
    lblUpdateMsg = "Update failed.";
    Changed();
    prompter_.Message(Icon::Critical, "The update failed.", "Error");
    ReadyButtons();
    Changed();
}

void UpdateForm::OnComplete(std::int32_t maxBytes) {
    // A transfer that delivered nothing was already reported as failed.
    if (maxBytes == 0) return;
    progValue = 0;
    lblUpdateMsg = "Update successfull.";
    Changed();
    prompter_.Message(Icon::Information, "The update was successfull.\r\nCheck the Updates folder!",
                      "Update downloaded!");
}

}  // namespace quillon
