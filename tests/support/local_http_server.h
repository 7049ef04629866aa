#pragma once
// A small HTTP/1.1 server on the loopback address for the live-update tests.
// It answers each request from a table of fixed replies (404 for unknown
// paths), can send the body in pieces with pauses or cut the connection half
// way, and records every request it saw. It runs on the test's Qt event loop.
#include <QTcpServer>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::test {

struct HttpReply {
    int status = 200;
    std::string reason = "OK";
    std::string body;
    std::string location;                      // a redirect's target, when not empty
    std::size_t chunkSize = 0;                 // 0: the body at once, else pieces of this size
    int chunkGapMs = 0;                        // pause between the pieces
    std::size_t cutAfter = std::string::npos;  // close after this many body bytes
    bool sendLength = true;                    // false: no Content-Length, the close ends the body
};
// A 200 reply with `body`; an error reply with its status and reason; a
// redirect to `to`.
inline HttpReply Body(std::string body) {
    HttpReply r;
    r.body = std::move(body);
    return r;
}
inline HttpReply Status(int status, std::string reason) {
    HttpReply r;
    r.status = status;
    r.reason = std::move(reason);
    return r;
}
inline HttpReply Redirect(std::string to) {
    HttpReply r = Status(302, "Found");
    r.location = std::move(to);
    return r;
}

struct HttpRequest {
    std::string path;
    std::string head;  // request line and header lines, in lower case
};

class LocalHttpServer {
public:
    LocalHttpServer();
    void Serve(std::string path, HttpReply reply) { replies_[std::move(path)] = std::move(reply); }
    // "http://127.0.0.1:port" followed by `path`.
    std::string Url(std::string_view path = "") const {
        return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
    }
    // Stops listening: later connections to the port are refused.
    void Close() { server_.close(); }
    const std::vector<HttpRequest>& Requests() const { return requests_; }

private:
    void Accept();

    QTcpServer server_;
    quint16 port_ = 0;
    std::map<std::string, HttpReply> replies_;
    std::vector<HttpRequest> requests_;
};

// Runs the event loop until `done()` holds or `timeoutMs` passed; returns
// whether it holds.
bool WaitUntil(const std::function<bool()>& done, int timeoutMs = 5000);

}  // namespace quillon::test
