#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace kestrune::practice {

// The threads of one site, one for each open connection, made as they are needed and then kept. A browser
// holds several connections open at once and some of them hang for ever, so a fixed handful would run dry.
class ConnectionThreads : public httplib::TaskQueue {
public:
    explicit ConnectionThreads(std::size_t limit) : limit_(limit) {}

    // Versions of the server library differ in what this returns: nothing, or whether the task was taken.
    using Taken = decltype(std::declval<httplib::TaskQueue&>().enqueue({}));
    Taken enqueue(std::function<void()> task) override;
    // Serves what is queued, then ends every thread.
    void shutdown() override;

private:
    void serve();

    const std::size_t limit_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> tasks_;
    std::size_t idle_ = 0;
    bool ending_ = false;
    std::vector<std::thread> threads_;
};

} // namespace kestrune::practice
