#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class QObject;

namespace kestrune {

// Raises events in the order in which they happened, though what some of them carry comes later. Each is
// raised from the toolkit's event loop, never from inside the engine: a handler that asks a question runs an
// event loop of its own, and the engine does not work inside one that it has called itself.
class EventOrder {
public:
    using Place = std::uint64_t;
    using Raise = std::function<void()>;

    EventOrder();
    ~EventOrder();
    EventOrder(const EventOrder&) = delete;
    EventOrder& operator=(const EventOrder&) = delete;
    EventOrder(EventOrder&&) = delete;
    EventOrder& operator=(EventOrder&&) = delete;

    // A place in the order, kept until it is filled or dropped; what comes after it waits.
    Place keep();
    void fill(Place place, Raise raise);
    void drop(Place place);

    void add(Raise raise) { fill(keep(), std::move(raise)); }

private:
    struct State;
    // Outlives the order when an event's handler destroys the browser.
    std::shared_ptr<State> state_;
};

} // namespace kestrune
