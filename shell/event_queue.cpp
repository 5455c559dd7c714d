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
    const std::shared_ptr<State> state = state_;
    if (state->closed)
        return;
    if (state->busy) {
        state->waiting.push_back(std::move(handler));
        return;
    }
    state->busy = true;
    run_guarded(handler);
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
