#include "platform/qt/engine_order.h"

#include <QScopedPointer>
#include <QTimer>

#include <algorithm>
#include <deque>
#include <utility>

namespace kestrune {

struct EventOrder::State {
    struct Entry {
        Place place = 0;
        Raise raise; // empty until it is filled
    };
    std::deque<Entry> entries;
    Place next = 1;
    bool closed = false;
    // A timer, not a posted event: from inside one of those a question's event loop would not see what was
    // posted behind it, and the engine runs on posted events.
    std::unique_ptr<QTimer, QScopedPointerDeleteLater> timer{new QTimer}; // can end inside its own signal

    Entry* find(Place place) {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [place](const Entry& entry) { return entry.place == place; });
        return found == entries.end() ? nullptr : &*found;
    }
};

namespace {

template <typename State>
void raise_what_is_ready(const std::shared_ptr<State>& state) {
    while (!state->closed && !state->entries.empty() && state->entries.front().raise) {
        const auto raise = std::move(state->entries.front().raise);
        state->entries.pop_front();
        raise();
    }
}

} // namespace

EventOrder::EventOrder() : state_(std::make_shared<State>()) {
    state_->timer->setSingleShot(true);
    QObject::connect(state_->timer.get(), &QTimer::timeout, [weak = std::weak_ptr(state_)] {
        if (const auto alive = weak.lock())
            raise_what_is_ready(alive);
    });
}

EventOrder::~EventOrder() {
    state_->closed = true;
    state_->timer->stop();
}

EventOrder::Place EventOrder::keep() {
    state_->entries.push_back({state_->next, {}});
    return state_->next++;
}

void EventOrder::fill(Place place, Raise raise) {
    if (State::Entry* const entry = state_->find(place)) {
        entry->raise = std::move(raise);
        state_->timer->start(0);
    }
}

void EventOrder::drop(Place place) {
    fill(place, [] {});
}

} // namespace kestrune
