#pragma once

#include "platform/qt/clock.h"

#include <QObject>

#include <optional>

class QWidget;

namespace kestrune {

// Knows whether the user is typing in a window, other than into one part of it.
class TypingWatch : public QObject {
public:
    // Whoever has not typed for this long reads again: a slow typist's pause between two letters is shorter.
    static constexpr std::chrono::milliseconds pause{1000};

    // Both outlive the watch; `part` need not be complete yet.
    TypingWatch(const QWidget& in_window_of, const QWidget& part);

    [[nodiscard]] bool typing() const;
    void set_clock(Clock clock) { clock_ = std::move(clock); }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const QWidget& place_;
    const QWidget& part_;
    Clock clock_ = std::chrono::steady_clock::now;
    std::optional<std::chrono::steady_clock::time_point> typed_;
};

} // namespace kestrune
