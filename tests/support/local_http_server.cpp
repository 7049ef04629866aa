#include "support/local_http_server.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cctype>

namespace quillon::test {

HttpReply Body(std::string body) {
    HttpReply r;
    r.body = std::move(body);
    return r;
}

HttpReply Status(int status, std::string reason) {
    HttpReply r;
    r.status = status;
    r.body = reason;
    r.reason = std::move(reason);
    return r;
}

HttpReply Redirect(std::string location, int status) {
    HttpReply r;
    r.status = status;
    r.reason = "Found";
    r.headers.emplace_back("Location", std::move(location));
    return r;
}

struct LocalHttpServer::Impl {
    QTcpServer server;
    QString address;
    quint16 port = 0;
    std::map<std::string, HttpReply> replies;
    std::vector<HttpRequest> requests;

    void Accept();
    void Answer(QTcpSocket* socket, const HttpReply& reply);
    static void SendBody(QPointer<QTcpSocket> socket, std::string body, std::size_t chunk, int gapMs);
};

namespace {

HttpRequest Parse(const QByteArray& head) {
    HttpRequest req;
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    req.method = first.value(0).toStdString();
    req.path = first.value(1).toStdString();
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0) continue;
        std::string name = line.left(colon).trimmed().toStdString();
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
        req.headers[name] = line.mid(colon + 1).trimmed().toStdString();
    }
    return req;
}

}  // namespace

void LocalHttpServer::Impl::Accept() {
    while (QTcpSocket* socket = server.nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            if (socket->property("answered").toBool()) return;
            QByteArray seen = socket->property("head").toByteArray() + socket->readAll();
            const qsizetype end = seen.indexOf("\r\n\r\n");
            if (end < 0) {
                socket->setProperty("head", seen);
                return;
            }
            socket->setProperty("answered", true);
            HttpRequest req = Parse(seen.left(end));
            requests.push_back(req);
            auto found = replies.find(req.path);
            HttpReply reply = found != replies.end() ? found->second : Status(404, "Not Found");
            QTimer::singleShot(reply.delayMs, socket, [this, socket, reply] { Answer(socket, reply); });
        });
    }
}

void LocalHttpServer::Impl::Answer(QTcpSocket* socket, const HttpReply& reply) {
    std::string head = "HTTP/1.1 " + std::to_string(reply.status) + " " + reply.reason + "\r\n";
    if (reply.contentLength) head += "Content-Length: " + std::to_string(reply.body.size()) + "\r\n";
    for (const auto& [name, value] : reply.headers) head += name + ": " + value + "\r\n";
    head += "Connection: close\r\n\r\n";
    socket->write(head.data(), static_cast<qint64>(head.size()));
    std::string body = reply.body.substr(0, std::min(reply.cutAfter, reply.body.size()));
    SendBody(socket, std::move(body), reply.chunkSize ? reply.chunkSize : std::string::npos, reply.chunkGapMs);
}

void LocalHttpServer::Impl::SendBody(QPointer<QTcpSocket> socket, std::string body, std::size_t chunk, int gapMs) {
    if (!socket) return;
    const std::size_t n = std::min(chunk, body.size());
    socket->write(body.data(), static_cast<qint64>(n));
    socket->flush();
    if (n == body.size()) {
        socket->disconnectFromHost();  // after the written bytes went out
        return;
    }
    QTimer::singleShot(gapMs, socket, [socket, rest = body.substr(n), chunk, gapMs]() mutable {
        SendBody(socket, std::move(rest), chunk, gapMs);
    });
}

LocalHttpServer::LocalHttpServer(const char* address) : impl_(std::make_unique<Impl>()) {
    impl_->address = QString::fromLatin1(address);
    QObject::connect(&impl_->server, &QTcpServer::newConnection, &impl_->server, [this] { impl_->Accept(); });
    impl_->server.listen(QHostAddress(impl_->address), 0);
    impl_->port = impl_->server.serverPort();
}

LocalHttpServer::~LocalHttpServer() = default;

void LocalHttpServer::Serve(std::string path, HttpReply reply) { impl_->replies[std::move(path)] = std::move(reply); }

std::string LocalHttpServer::Url(std::string_view path) const {
    return "http://" + impl_->address.toStdString() + ":" + std::to_string(impl_->port) + std::string(path);
}

void LocalHttpServer::Close() { impl_->server.close(); }

const std::vector<HttpRequest>& LocalHttpServer::Requests() const { return impl_->requests; }

std::vector<std::string> LocalHttpServer::Paths() const {
    std::vector<std::string> paths;
    for (const HttpRequest& r : impl_->requests) paths.push_back(r.path);
    return paths;
}

bool WaitUntil(const std::function<bool()>& done, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

}  // namespace quillon::test
