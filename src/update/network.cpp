#include "update/network.h"

#include "update/redirect_policy.h"

#include <QNetworkReply>
#include <QString>

#include <memory>

namespace quillon {

namespace {

constexpr char kRefusedRedirect[] = "quillonRefusedRedirect";

bool Allowed(const QUrl& source, const QUrl& target) {
    if (!net::IsWebUrl(source) || !net::IsWebUrl(target)) return false;
    const QString scheme = target.scheme().toLower();
    if (scheme == QLatin1String("https")) return true;
    return source.scheme().toLower() == QLatin1String("http") &&
           source.host().compare(target.host(), Qt::CaseInsensitive) == 0 && source.port(80) == target.port(80);
}

}  // namespace

bool RedirectAllowed(std::string_view from, std::string_view to) {
    const QUrl source = net::ToUrl(from);
    return Allowed(source, source.resolved(net::ToUrl(to)));
}

namespace net {

QUrl ToUrl(std::string_view address) {
    return QUrl(QString::fromUtf8(address.data(), static_cast<qsizetype>(address.size())), QUrl::StrictMode);
}

bool IsWebUrl(const QUrl& url) {
    if (!url.isValid() || url.host().isEmpty()) return false;
    const QString scheme = url.scheme().toLower();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https");
}

bool IsPlaceholder(const QUrl& url) {
    const QString host = url.host().toLower();
    for (const char* name : {"example.org", "example.com", "example.net", "example", "invalid", "test"}) {
        const QString reserved = QString::fromLatin1(name);
        if (host == reserved || host.endsWith(QLatin1Char('.') + reserved)) return true;
    }
    return false;
}

QNetworkRequest MakeRequest(const QUrl& url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    // Bodies arrive as sent, so their length can be held against Content-Length.
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

void CapSize(QNetworkReply* reply, qint64 cap, std::shared_ptr<bool> tooLarge) {
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [reply, cap, tooLarge](qint64 got, qint64 total) {
        if (*tooLarge || (got <= cap && total <= cap)) return;
        *tooLarge = true;
        reply->abort();
    });
}

bool ArrivedWhole(const QNetworkReply& reply, qint64 received) {
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid()) return length.toLongLong() == received;
    return reply.rawHeader("Transfer-Encoding").toLower().contains("chunked");
}

void GuardRedirects(QNetworkReply* reply) {
    // The address the next redirect starts from: the request's, then each
    // followed target in turn.
    auto current = std::make_shared<QUrl>(reply->url());
    QObject::connect(reply, &QNetworkReply::redirected, reply, [reply, current](const QUrl& to) {
        const QUrl target = current->resolved(to);
        if (Allowed(*current, target)) {
            *current = target;
            emit reply->redirectAllowed();
            return;
        }
        reply->setProperty(kRefusedRedirect, target);
        reply->abort();
    });
}

UpdateError ReplyError(const QNetworkReply& reply) {
    const QVariant refused = reply.property(kRefusedRedirect);
    if (refused.isValid())
        return {QNetworkReply::InsecureRedirectError,
                "Redirect to " + refused.toUrl().toString().toStdString() + " refused"};
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status >= 400) {
        const QString reason = reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        return {status, (reason.isEmpty() ? reply.errorString() : reason).toStdString()};
    }
    return {static_cast<std::int32_t>(reply.error()), reply.errorString().toStdString()};
}

}  // namespace net
}  // namespace quillon
