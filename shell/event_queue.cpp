#include "shell/event_queue.h"

#include "platform/diagnostics.h"

#include <exception>
#include <utility>

namespace kestrune {
namespace {

void run_guarded(const EventQueue::Handler& handler) {
    try {
        handler();
    } catch (const std::exception& error) {
        diagnostics::report("a handler ended early", error.what());
    }
}

} // namespace

void EventQueue::handle(Handler handler) {
    if (state_->closed)
        return;
    state_->waiting.push_back(std::move(handler));
    run_waiting(std::shared_ptr<State>(state_));
}

bool EventQueue::handle_now(const Handler& handler) {
    const std::shared_ptr<State> state = state_;
    if (state->closed)
        return false;
    const bool inside = std::exchange(state->busy, true);
    run_guarded(handler);
    state->busy = inside;
    return !inside && !state->waiting.empty();
}

EventQueue::Handler EventQueue::drain() {
    return [state = state_] { run_waiting(state); };
}

void EventQueue::run_waiting(const std::shared_ptr<State>& state) {
    if (state->busy)
        return;
    state->busy = true;
    while (!state->waiting.empty()) {
        const Handler next = std::move(state->waiting.front());
        state->waiting.pop_front();
        run_guarded(next);
    }
    state->busy = false;
}

void EventQueue::close() {
    state_->closed = true;
    state_->waiting.clear();
}

} // namespace kestrune
