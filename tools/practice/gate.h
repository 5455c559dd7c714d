#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace kestrune::practice {

// Where hanging answers wait until somebody lets them go or the server stops.
class Gate {
public:
    // Returns false when the server stops, true when the path was released.
    bool wait(std::string_view site, std::string_view path) {
        std::unique_lock lock(mutex_);
        const std::pair key{std::string(site), std::string(path)};
        changed_.wait(lock, [&] { return stopping_ || released_.contains(key); });
        return !stopping_;
    }

    // Returns false when the server stopped before the time was over.
    bool pause(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return !changed_.wait_for(lock, time, [&] { return stopping_; });
    }

    // From now on nothing hangs at this path.
    void release(std::string_view site, std::string_view path) {
        {
            const std::lock_guard lock(mutex_);
            released_.emplace(site, path);
        }
        changed_.notify_all();
    }

    void stop() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<std::pair<std::string, std::string>> released_;
    bool stopping_ = false;
};

} // namespace kestrune::practice
