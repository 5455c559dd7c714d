#include "tests/desktop/site_server.h"

#include <httplib.h>

#include <algorithm>
#include <stdexcept>

namespace kestrune {

SiteServer::SiteServer() : server_(std::make_unique<httplib::Server>()) {
    // Requests that are never answered each hold a thread.
    server_->new_task_queue = [] { return new httplib::ThreadPool(24); };
    const auto handle = [this](const httplib::Request& asked, httplib::Response& given) {
        std::unique_lock lock(mutex_);
        Request request{asked.method, asked.target, asked.body, {}, {}};
        for (const auto& [name, value] : asked.headers)
            request.headers[name] = value;
        for (const auto& [name, part] : asked.files)
            request.parts.emplace(name, part.content);
        requests_.push_back(std::move(request));
        if (silent_.contains(asked.path)) {
            ended_.wait(lock, [this] { return ending_; });
            return;
        }
        const auto found = answers_.find(asked.path);
        if (found == answers_.end()) {
            given.status = 404;
            return;
        }
        given.status = found->second.status;
        for (const auto& [name, value] : found->second.headers)
            given.set_header(name.c_str(), value);
        if (given.status != 204)
            given.set_content(found->second.body, found->second.type.c_str());
    };
    server_->Get(".*", handle);
    server_->Post(".*", handle);
    port_ = server_->bind_to_any_port("0.0.0.0");
    if (port_ <= 0)
        throw std::runtime_error("no port for the test server");
    thread_ = std::thread([this] { server_->listen_after_bind(); });
}

SiteServer::~SiteServer() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    ended_.notify_all();
    server_->stop();
    thread_.join();
}

void SiteServer::answer(const std::string& path, Answer answer) {
    const std::lock_guard lock(mutex_);
    answers_[path] = std::move(answer);
}

void SiteServer::redirect(const std::string& path, const std::string& to) {
    answer(path, {"", 302, "text/html", {{"Location", to}}});
}

void SiteServer::never(const std::string& path) {
    const std::lock_guard lock(mutex_);
    silent_[path] = true;
}

std::string SiteServer::url(const std::string& path, const std::string& host) const {
    return "http://" + host + ":" + std::to_string(port_) + path;
}

std::vector<SiteServer::Request> SiteServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

int SiteServer::count_of(const std::string& path) const {
    const std::vector<Request> all = requests();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [&path](const Request& request) {
        return request.target.substr(0, request.target.find('?')) == path;
    }));
}

} // namespace kestrune
