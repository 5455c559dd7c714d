#include "platform/qt/engine_order.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>

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
    QObject context; // its queued calls end with it

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

template <typename State>
void schedule(const std::shared_ptr<State>& state) {
    const std::weak_ptr<State> weak = state;
    QMetaObject::invokeMethod(
        &state->context,
        [weak] {
            if (const auto alive = weak.lock())
                raise_what_is_ready(alive);
        },
        Qt::QueuedConnection);
}

} // namespace

EventOrder::EventOrder() : state_(std::make_shared<State>()) {}

EventOrder::~EventOrder() { state_->closed = true; }

EventOrder::Place EventOrder::keep() {
    state_->entries.push_back({state_->next, {}});
    return state_->next++;
}

void EventOrder::fill(Place place, Raise raise) {
    if (State::Entry* const entry = state_->find(place)) {
        entry->raise = std::move(raise);
        schedule(state_);
    }
}

void EventOrder::drop(Place place) {
    fill(place, [] {});
}

} // namespace kestrune
