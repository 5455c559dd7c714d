#include "tools/practice/request_log.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace kestrune::practice {
namespace {

bool same_name(std::string_view left, std::string_view right) {
    return std::ranges::equal(
        left, right, [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

} // namespace

std::string Request::header(std::string_view name) const {
    const auto found =
        std::ranges::find_if(headers, [&](const auto& field) { return same_name(field.first, name); });
    return found == headers.end() ? "" : found->second;
}

void RequestLog::add(Request request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
    if (listener_)
        listener_(requests_.back());
    arrived_.notify_all();
}

std::vector<Request> RequestLog::all() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::vector<Request> RequestLog::of_site(std::string_view site) const {
    const std::lock_guard lock(mutex_);
    std::vector<Request> result;
    std::ranges::copy_if(requests_, std::back_inserter(result),
                         [&](const Request& request) { return request.site == site; });
    return result;
}

bool RequestLog::was_asked(std::string_view site, std::string_view path) const {
    const std::lock_guard lock(mutex_);
    return std::ranges::any_of(
        requests_, [&](const Request& request) { return request.site == site && request.path == path; });
}

void RequestLog::clear() {
    const std::lock_guard lock(mutex_);
    requests_.clear();
}

std::optional<Request> RequestLog::wait_for(const Test& test, std::chrono::milliseconds time) const {
    std::unique_lock lock(mutex_);
    std::optional<Request> result;
    arrived_.wait_for(lock, time, [&] {
        const auto found = std::ranges::find_if(requests_, test);
        if (found != requests_.end())
            result = *found;
        return result.has_value();
    });
    return result;
}

std::optional<Request> RequestLog::wait_for(std::string_view site, std::string_view path,
                                            std::chrono::milliseconds time) const {
    return wait_for([&](const Request& request) { return request.site == site && request.path == path; },
                    time);
}

void RequestLog::set_listener(std::function<void(const Request&)> listener) {
    const std::lock_guard lock(mutex_);
    listener_ = std::move(listener);
}

} // namespace kestrune::practice
