#pragma once

#include <deque>
#include <functional>
#include <memory>

namespace kestrune {

// Runs the handlers of one window one at a time. What arrives while a handler runs (a question it asks serves
// events meanwhile) waits and is run, in order, when that handler has returned. An exception ends its
// handler, silently but for the diagnostic channel; the next one runs all the same.
class EventQueue {
public:
    using Handler = std::function<void()>;

    // Runs the handler now, or queues it when another one is running.
    void handle(Handler handler);

    // Drops what waits and whatever is still to come; the handler that runs goes on to its end.
    void close();

    [[nodiscard]] bool busy() const { return state_->busy; }

private:
    // Outlives the queue when a handler destroys its own window.
    struct State {
        std::deque<Handler> waiting;
        bool busy = false;
        bool closed = false;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace kestrune
