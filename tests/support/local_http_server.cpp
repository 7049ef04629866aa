#include "support/local_http_server.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace quillon::test {
namespace {

// Writes `chunk` bytes of `body` now and the rest after `gapMs`; closes the
// connection after the last byte.
void SendBody(QPointer<QTcpSocket> socket, std::string body, std::size_t chunk, int gapMs) {
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

}  // namespace

LocalHttpServer::LocalHttpServer() {
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { Accept(); });
    server_.listen(QHostAddress::LocalHost, 0);
    port_ = server_.serverPort();  // kept for Url() after Close()
}

void LocalHttpServer::Accept() {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            if (socket->property("answered").toBool()) return;
            const QByteArray seen = socket->property("head").toByteArray() + socket->readAll();
            const qsizetype end = seen.indexOf("\r\n\r\n");
            socket->setProperty("head", seen);
            if (end < 0) return;
            socket->setProperty("answered", true);
            const QByteArray head = seen.left(end);
            const std::string path = head.left(head.indexOf('\n')).split(' ').value(1).toStdString();
            requests_.push_back({path, head.toLower().toStdString()});
            const auto found = replies_.find(path);
            const HttpReply reply = found != replies_.end() ? found->second : Status(404, "Not Found");
            std::string out = "HTTP/1.1 " + std::to_string(reply.status) + " " + reply.reason + "\r\n";
            if (reply.sendLength) out += "Content-Length: " + std::to_string(reply.body.size()) + "\r\n";
            if (!reply.location.empty()) out += "Location: " + reply.location + "\r\n";
            out += "Connection: close\r\n\r\n";
            socket->write(out.data(), static_cast<qint64>(out.size()));
            SendBody(socket, reply.body.substr(0, std::min(reply.cutAfter, reply.body.size())),
                     reply.chunkSize ? reply.chunkSize : std::string::npos, reply.chunkGapMs);
        });
    }
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
