#pragma once

#include "tools/practice/gate.h"
#include "tools/practice/practice_server.h"

#include <httplib.h>

#include <functional>
#include <future>
#include <string>
#include <string_view>
#include <thread>

namespace kestrune::practice {

// A socket of our own, closed when let go.
class Socket {
public:
    // Takes 127.x.x.x:port without listening, so that connections are refused; port 0 chooses one.
    Socket(const std::string& address, int port);
    ~Socket();
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    Socket(Socket&&) = delete;
    Socket& operator=(Socket&&) = delete;

    [[nodiscard]] bool bound() const { return port_ != 0; }
    [[nodiscard]] int port() const { return port_; }
    void close();

private:
    int handle_ = -1;
    int port_ = 0;
};

struct PracticeServer::Shared {
    using FillIn = std::function<std::string(std::string_view site, std::string_view text)>;
    Shared(RequestLog& requests, FillIn filler) : log(requests), fill_in(std::move(filler)) {}

    RequestLog& log;
    FillIn fill_in;
    Gate gate;
};

// One site at its address.
class PracticeServer::Host {
public:
    Host(const Site& site, std::string address, Shared& shared);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    Host(Host&&) = delete;
    Host& operator=(Host&&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    // False when the port is taken.
    bool bind(int port);
    // Serves on threads of its own; returns once connections are taken.
    void start();
    void begin_stop();
    void stop();

private:
    void answer(const httplib::Request& request, httplib::Response& response, std::string body);
    void answer_file(const std::string& path, const Behaviour& behaviour, httplib::Response& response);
    void answer_half(std::string content, const std::string& type, const std::string& path,
                     httplib::Response& response);
    void note(const httplib::Request& request, std::string body);

    const Site& site_;
    const std::string address_;
    Shared& shared_;
    std::unique_ptr<Socket> refusing_;
    httplib::Server server_;
    bool bound_ = false; // and not yet let go
    std::promise<void> started_;
    std::thread thread_;
};

} // namespace kestrune::practice
