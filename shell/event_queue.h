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

    // Runs the handler at once, in the middle of one that runs if need be: for calls whose caller waits for
    // their outcome. What has come meanwhile is not run from here; true when there is something, and `drain`
    // is to be called later then.
    [[nodiscard]] bool handle_now(const Handler& handler);
    // Runs what waits, unless a handler runs that will do so at its end. May be called when the queue is
    // gone.
    [[nodiscard]] Handler drain();

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
    static void run_waiting(const std::shared_ptr<State>& state);

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace kestrune
