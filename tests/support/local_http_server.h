#pragma once
// A small HTTP/1.1 server on a loopback address for the live-update tests.
// It answers each request from a table of fixed replies (404 for unknown
// paths), can wait before answering, send the body in pieces with pauses, or
// cut the connection half way, and records every request it saw. It runs on
// the test's Qt event loop.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::test {

struct HttpReply {
    int status = 200;
    std::string reason = "OK";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;  // extra header lines
    int delayMs = 0;                      // pause before the answer
    std::size_t chunkSize = 0;            // 0: the body at once, else pieces of this size
    int chunkGapMs = 0;                   // pause between the pieces
    bool contentLength = true;            // false: the end of the connection ends the body
    std::size_t cutAfter = std::string::npos;  // close after this many body bytes
};

struct HttpRequest {
    std::string method;
    std::string path;
    std::map<std::string, std::string> headers;  // names in lower case
};

// A 200 reply with `body`.
HttpReply Body(std::string body);
// An error reply: `status` and `reason` with a short body.
HttpReply Status(int status, std::string reason);
// A redirect to `location`.
HttpReply Redirect(std::string location, int status = 302);

class LocalHttpServer {
public:
    explicit LocalHttpServer(const char* address = "127.0.0.1");
    ~LocalHttpServer();
    LocalHttpServer(const LocalHttpServer&) = delete;
    LocalHttpServer& operator=(const LocalHttpServer&) = delete;

    void Serve(std::string path, HttpReply reply);
    // "http://address:port" followed by `path`.
    std::string Url(std::string_view path = "") const;
    // Stops listening: later connections to the port are refused.
    void Close();

    const std::vector<HttpRequest>& Requests() const;
    std::vector<std::string> Paths() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Runs the event loop until `done()` holds or `timeoutMs` passed; returns
// whether it holds.
bool WaitUntil(const std::function<bool()>& done, int timeoutMs = 5000);

}  // namespace quillon::test
