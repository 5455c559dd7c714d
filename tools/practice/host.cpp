#include "tools/practice/host.h"

#include "tools/practice/connection_threads.h"
#include "tools/practice/pages.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kestrune::practice {
namespace {

// An answer that hangs keeps its thread when the browser has long gone on, and a soak meets a hundred of
// them.
constexpr std::size_t connections_at_once = 512;

// The library takes multipart bodies apart and drops their bytes; under this name it does not recognise them.
constexpr auto hidden_content_type = "X-Practice-Content-Type";

void hide_content_type(httplib::Request& request) {
    auto found = request.headers.find("Content-Type");
    if (found == request.headers.end())
        return;
    std::string type = std::move(found->second);
    request.headers.erase(found);
    request.headers.emplace(hidden_content_type, std::move(type));
}

bool has_body(const std::string& method) { return method == "POST" || method == "PUT" || method == "PATCH"; }

void answer_plainly(httplib::Response& response, int code, const std::string& text) {
    response.status = code;
    response.set_content("<!DOCTYPE html><title>" + text + "</title><h1>" + text + "</h1>\n",
                         "text/html; charset=utf-8");
}

} // namespace

Socket::Socket(const std::string& address, int port)
    : handle_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(port));
    socklen_t size = sizeof place;
    auto* plain = reinterpret_cast<sockaddr*>(&place);
    if (!address.starts_with("127.") || ::inet_pton(AF_INET, address.c_str(), &place.sin_addr) != 1)
        throw PracticeServerError(address + " is no loopback address");
    if (::bind(handle_, plain, size) == 0 && ::getsockname(handle_, plain, &size) == 0)
        port_ = ntohs(place.sin_port);
}

Socket::~Socket() { close(); }

void Socket::close() {
    if (handle_ != -1)
        ::close(handle_);
    handle_ = -1;
}

PracticeServer::Host::Host(const Site& site, std::string address, Shared& shared)
    : site_(site), address_(std::move(address)), shared_(shared) {
    server_.set_keep_alive_timeout(1); // seconds; what an idle connection can hold up `stop`
    server_.set_keep_alive_max_count(1);
    // The library's own options let two servers share a port, each then getting some of the requests.
    server_.set_socket_options([](auto handle) {
        const int yes = 1;
        ::setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    // Called on the serving thread once `stop` has something to stop.
    server_.new_task_queue = [this] {
        started_.set_value();
        return std::make_unique<ConnectionThreads>(connections_at_once).release();
    };
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        if (has_body(request.method)) {
            hide_content_type(
                const_cast<httplib::Request&>(request)); // NOLINT: no other hook comes before the body
            return httplib::Server::HandlerResponse::Unhandled;
        }
        answer(request, response, "");
        return httplib::Server::HandlerResponse::Handled;
    });
    const auto with_body = [this](const httplib::Request& request, httplib::Response& response,
                                  const httplib::ContentReader& read) {
        std::string body;
        read([&](const char* data, std::size_t size) {
            body.append(data, size);
            return true;
        });
        answer(request, response, std::move(body));
    };
    server_.Post("[^]*", with_body);
    server_.Put("[^]*", with_body);
    server_.Patch("[^]*", with_body);
}

PracticeServer::Host::~Host() {
    begin_stop();
    stop();
}

bool PracticeServer::Host::bind(int port) {
    if (site_.served)
        return bound_ = server_.bind_to_port(address_, port);
    refusing_ = std::make_unique<Socket>(address_, port);
    return refusing_->bound();
}

void PracticeServer::Host::start() {
    if (!bound_)
        return;
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    started_.get_future().wait();
}

void PracticeServer::Host::begin_stop() {
    refusing_.reset();
    // The library lets go of the port only of a server that has run.
    if (bound_ && !thread_.joinable())
        start();
    if (bound_)
        server_.stop();
    bound_ = false;
}

void PracticeServer::Host::stop() {
    if (thread_.joinable())
        thread_.join();
}

void PracticeServer::Host::note(const httplib::Request& request, std::string body) {
    Request noted{site_.name, request.method, request.path, request.target, {}, std::move(body)};
    for (const auto& [name, value] : request.headers) {
        // The library adds these four of its own.
        if (name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" || name == "LOCAL_PORT")
            continue;
        noted.headers.emplace_back(name == hidden_content_type ? "Content-Type" : name, value);
    }
    shared_.log.add(std::move(noted));
}

void PracticeServer::Host::answer(const httplib::Request& request, httplib::Response& response,
                                  std::string body) {
    note(request, std::move(body));
    const Behaviour behaviour = site_.behaviour(request.path);
    const auto filled = [&](std::string_view text) { return shared_.fill_in(site_.name, text); };
    for (const auto& [name, value] : behaviour.headers)
        response.set_header(name, filled(value));
    if (behaviour.delay.count() > 0)
        shared_.gate.pause(behaviour.delay);
    if (behaviour.hang == Behaviour::Hang::silent && !shared_.gate.wait(site_.name, request.path)) {
        answer_plainly(response, 503, "The practice server has stopped");
        return;
    }
    if (behaviour.redirect.empty())
        answer_file(request.path, behaviour, response);
    else
        response.set_redirect(filled(behaviour.redirect), behaviour.code == 0 ? 302 : behaviour.code);
}

void PracticeServer::Host::answer_file(const std::string& path, const Behaviour& behaviour,
                                       httplib::Response& response) {
    const auto file = page_file(site_.folder, path);
    if (!file) {
        if (behaviour.code != 0 || behaviour.hang == Behaviour::Hang::silent)
            response.status = behaviour.code == 0 ? 204 : behaviour.code;
        else
            answer_plainly(response, 404, "Not found");
        return;
    }
    std::string content = read_whole(*file);
    if (is_text(*file))
        content = shared_.fill_in(site_.name, content);
    const std::string type = behaviour.type.empty() ? content_type(*file) : behaviour.type;
    response.status = behaviour.code == 0 ? 200 : behaviour.code;
    if (behaviour.hang == Behaviour::Hang::body)
        answer_half(std::move(content), type, path, response);
    else
        response.set_content(content, type);
}

void PracticeServer::Host::answer_half(std::string content, const std::string& type, const std::string& path,
                                       httplib::Response& response) {
    const std::size_t size = content.size();
    response.set_content_provider(size, type,
                                  [this, path, content = std::move(content)](
                                      std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                      if (offset == 0 && length > 1)
                                          return sink.write(content.data(), length / 2);
                                      return shared_.gate.wait(site_.name, path) &&
                                             sink.write(content.data() + offset, length);
                                  });
}

} // namespace kestrune::practice
