#include "tools/practice/connection_threads.h"

namespace kestrune::practice {

ConnectionThreads::Taken ConnectionThreads::enqueue(std::function<void()> task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    if (tasks_.size() > idle_ && threads_.size() < limit_)
        threads_.emplace_back([this] { serve(); });
    changed_.notify_one();
    return static_cast<Taken>(true);
}

void ConnectionThreads::shutdown() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

void ConnectionThreads::serve() {
    std::unique_lock lock(mutex_);
    for (;;) {
        ++idle_;
        changed_.wait(lock, [this] { return ending_ || !tasks_.empty(); });
        --idle_;
        if (tasks_.empty())
            return;
        const std::function<void()> task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

} // namespace kestrune::practice
