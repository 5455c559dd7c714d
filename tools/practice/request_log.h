#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune::practice {

struct Request {
    std::string site;   // name of the practice site that was asked
    std::string method; // "GET"
    std::string path;   // decoded, without the query
    std::string target; // as it stood in the request line, query included
    std::vector<std::pair<std::string, std::string>> headers; // those of one name in the order sent
    std::string body;                                         // bytes as sent

    // Value of the first header with this name (letter case ignored), "" without one.
    [[nodiscard]] std::string header(std::string_view name) const;
};

// What the practice sites were asked, in the order in which it arrived. Usable from any thread. A request is
// in the log before any part of its answer is sent.
class RequestLog {
public:
    using Test = std::function<bool(const Request&)>;

    void add(Request request);
    [[nodiscard]] std::vector<Request> all() const;
    [[nodiscard]] std::vector<Request> of_site(std::string_view site) const;
    [[nodiscard]] bool was_asked(std::string_view site, std::string_view path) const;
    void clear();

    // The first request, already there or still to come, that passes the test; nothing once the time is over.
    // The test must not call the log.
    [[nodiscard]] std::optional<Request> wait_for(const Test& test, std::chrono::milliseconds time) const;
    [[nodiscard]] std::optional<Request> wait_for(std::string_view site, std::string_view path,
                                                  std::chrono::milliseconds time) const;

    // Called after each request, on the thread that serves it; for waits on another loop's events. Null ends
    // it.
    void set_listener(std::function<void(const Request&)> listener);

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    std::vector<Request> requests_;
    std::function<void(const Request&)> listener_;
};

} // namespace kestrune::practice
