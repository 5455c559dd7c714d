#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <chrono>
#include <functional>

namespace kestrune {

// Serves events until the condition holds; false when it does not within a generous bound.
inline bool wait_until(const std::function<bool()>& holds,
                       std::chrono::milliseconds bound = std::chrono::seconds(60)) {
    QElapsedTimer clock;
    clock.start();
    QTimer tick; // the bound holds though nothing happens
    tick.start(50);
    while (!holds()) {
        if (clock.elapsed() > bound.count())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace kestrune
