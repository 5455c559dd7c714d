#pragma once

#include "tools/practice/request_log.h"
#include "tools/practice/site.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::practice {

class PracticeServerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Serves the practice sites, each at a loopback address of its own (127.0.1.1, 127.0.1.2 ... in the given
// order) on one common port. Addresses of their own make them sites of different origins, and keep an
// engine's protection against floods of navigations on one host out of the way.
class PracticeServer {
public:
    static constexpr int default_port = 8127;

    // Port 0 chooses one that is free at every address. Returns once every site answers. Throws
    // PracticeServerError when an address is taken or there are more sites than addresses (254).
    explicit PracticeServer(std::vector<Site> sites, int port = 0);
    ~PracticeServer();
    PracticeServer(const PracticeServer&) = delete;
    PracticeServer& operator=(const PracticeServer&) = delete;
    PracticeServer(PracticeServer&&) = delete;
    PracticeServer& operator=(PracticeServer&&) = delete;

    // Ends every connection, hanging ones included, and lets go of the port. Within about a second.
    void stop();

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] const std::vector<Site>& sites() const { return sites_; }
    // Throws std::out_of_range for an unknown name, like the members below.
    [[nodiscard]] const Site& site(std::string_view name) const;
    // "http://127.0.1.N:PORT"
    [[nodiscard]] std::string origin(std::string_view name) const;
    // Address of the site's start page.
    [[nodiscard]] std::string home(std::string_view name) const { return origin(name) + site(name).home; }
    // A path of the site, or an address with placeholders, as a whole address.
    [[nodiscard]] std::string address(std::string_view name, std::string_view path_or_address) const;
    // The text with its placeholders filled in as on a page of that site.
    [[nodiscard]] std::string filled_in(std::string_view name, std::string_view text) const;

    // Lets the answers go that hang at this path, now and later.
    void release(std::string_view name, std::string_view path);

    [[nodiscard]] RequestLog& log() { return log_; }
    [[nodiscard]] const RequestLog& log() const { return log_; }

private:
    class Host;
    struct Shared;

    [[nodiscard]] std::size_t index(std::string_view name) const;
    // Binds every site's address to the port; false when one is taken.
    bool bind_all(int port);
    static int free_port();

    std::vector<Site> sites_;
    int port_ = 0;
    RequestLog log_;
    std::unique_ptr<Shared> shared_;
    std::vector<std::unique_ptr<Host>> hosts_;
};

} // namespace kestrune::practice
