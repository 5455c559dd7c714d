#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace httplib {
class Server;
struct Response;
} // namespace httplib

namespace kestrune {

// A web server on loopback, reached under every 127.x.y.z address and as "localhost", so that one server is
// many origins.
class SiteServer {
public:
    struct Answer {
        std::string body;
        int status = 200;
        std::string type = "text/html; charset=utf-8";
        std::map<std::string, std::string> headers = {};
        // The last byte is kept back until `release`.
        bool held = false;
        // The body is sent again and again, and no length told.
        bool endless = false;
    };
    struct Request {
        std::string method;
        std::string target; // path and query as sent
        std::string body;   // empty for multipart data, which stands in `parts`
        std::map<std::string, std::string> headers;
        std::multimap<std::string, std::string> parts = {};
    };

    SiteServer();
    ~SiteServer();
    SiteServer(const SiteServer&) = delete;
    SiteServer& operator=(const SiteServer&) = delete;
    SiteServer(SiteServer&&) = delete;
    SiteServer& operator=(SiteServer&&) = delete;

    void page(const std::string& path, std::string body) { answer(path, {std::move(body)}); }
    void answer(const std::string& path, Answer answer);
    // Each request of the path is answered as the function says; called on a thread of the server's.
    void answer_by(const std::string& path, std::function<Answer(const Request&)> decide);
    void release();   // what is held back now
    void break_off(); // the connections of what is held back now
    void redirect(const std::string& path, const std::string& to);
    // A path that is asked for and never answered while the server lives.
    void never(const std::string& path);

    [[nodiscard]] std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;
    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::vector<Request> requests() const;
    [[nodiscard]] int count_of(const std::string& path) const;

private:
    void hold_back(httplib::Response& given, const Answer& answer);
    void send_for_ever(httplib::Response& given, const Answer& answer);

    std::unique_ptr<httplib::Server> server_;
    std::thread thread_;
    int port_ = 0;
    mutable std::mutex mutex_;
    std::condition_variable ended_;
    bool ending_ = false;
    std::map<std::string, std::function<Answer(const Request&)>> answers_;
    int releases_ = 0;
    int breaks_ = 0;
    std::map<std::string, bool> silent_;
    std::vector<Request> requests_;
};

} // namespace kestrune
