#pragma once
// Qt Network plumbing shared by the version check and the downloader.
#include "update/update_error.h"

#include <QNetworkRequest>
#include <QUrl>

#include <memory>
#include <string_view>

class QNetworkReply;

namespace quillon::net {

// A UTF-8 address as a URL, taken strictly: an address that does not parse
// as it stands (stray spaces or line breaks included) is invalid.
QUrl ToUrl(std::string_view address);
bool IsWebUrl(const QUrl& url);  // a valid http or https address with a host
// Whether an address names a host kept for examples (example.org and the
// like, or the names .example, .invalid and .test): a server that never
// answers, such as the update server of a build that names none.
bool IsPlaceholder(const QUrl& url);

// A GET request that always goes to the network (never served from a cache)
// and whose redirects are left to GuardRedirects.
QNetworkRequest MakeRequest(const QUrl& url);

// The most the version check reads of each of its two files.
inline constexpr qint64 kMaxCheckBytes = 4 * 1024;

// Aborts `reply` once it announces or brings more than `cap` bytes; `*tooLarge`
// tells afterwards whether that happened.
void CapSize(QNetworkReply* reply, qint64 cap, std::shared_ptr<bool> tooLarge);

// Whether a finished reply brought its whole body: as many bytes as its
// Content-Length says, or, without one, a chunked body that ended with its
// last chunk (a body ended by closing the connection can't be told from one
// cut short).
bool ArrivedWhole(const QNetworkReply& reply, qint64 received);

// Follows each redirect of `reply` that RedirectAllowed accepts and aborts
// the reply at the first one it refuses.
void GuardRedirects(QNetworkReply* reply);

// The number and description of a failed reply. A server that answered with
// an HTTP error status gives that status and its reason phrase ("404",
// "Not Found"); a transfer that failed below HTTP (no connection, reset,
// time-out) gives Qt's QNetworkReply::NetworkError value and its text
// ("1", "Connection refused"); a refused redirect gives
// QNetworkReply::InsecureRedirectError (11).
UpdateError ReplyError(const QNetworkReply& reply);

}  // namespace quillon::net
