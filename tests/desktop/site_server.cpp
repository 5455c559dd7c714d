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
        const Answer answer = found->second(requests_.back());
        given.status = answer.status;
        for (const auto& [name, value] : answer.headers)
            given.set_header(name.c_str(), value);
        if (given.status == 204)
            return;
        if (answer.held)
            hold_back(given, answer);
        else if (answer.endless)
            send_for_ever(given, answer);
        else
            given.set_content(answer.body, answer.type.c_str());
    };
    server_->Get(".*", handle);
    server_->Post(".*", handle);
    port_ = server_->bind_to_any_port("0.0.0.0");
    if (port_ <= 0)
        throw std::runtime_error("no port for the test server");
    thread_ = std::thread([this] { server_->listen_after_bind(); });
    // One that is stopped before it runs would not stop.
    while (!server_->is_running())
        std::this_thread::yield();
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

void SiteServer::hold_back(httplib::Response& given, const Answer& answer) {
    const auto whole = std::make_shared<std::string>(answer.body);
    given.set_content_provider(
        whole->size(), answer.type.c_str(),
        [this, whole, releases = releases_, breaks = breaks_](std::size_t offset, std::size_t length,
                                                              httplib::DataSink& sink) {
            if (offset + 1 < whole->size())
                return sink.write(whole->data() + offset, whole->size() - 1 - offset);
            std::unique_lock lock(mutex_);
            ended_.wait(lock, [&] { return ending_ || releases_ > releases || breaks_ > breaks; });
            return !ending_ && breaks_ == breaks && sink.write(whole->data() + offset, length);
        });
}

void SiteServer::send_for_ever(httplib::Response& given, const Answer& answer) {
    given.set_chunked_content_provider(answer.type.c_str(),
                                       [this, body = answer.body](std::size_t, httplib::DataSink& sink) {
                                           {
                                               const std::lock_guard lock(mutex_);
                                               if (ending_)
                                                   return false;
                                           }
                                           return sink.write(body.data(), body.size());
                                       });
}

void SiteServer::release() {
    {
        const std::lock_guard lock(mutex_);
        ++releases_;
    }
    ended_.notify_all();
}

void SiteServer::break_off() {
    {
        const std::lock_guard lock(mutex_);
        ++breaks_;
    }
    ended_.notify_all();
}

void SiteServer::answer(const std::string& path, Answer answer) {
    answer_by(path, [answer = std::move(answer)](const Request&) { return answer; });
}

void SiteServer::answer_by(const std::string& path, std::function<Answer(const Request&)> decide) {
    const std::lock_guard lock(mutex_);
    answers_[path] = std::move(decide);
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
