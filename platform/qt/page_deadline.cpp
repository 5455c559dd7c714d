#include "platform/qt/page_deadline.h"

#include <utility>

namespace kestrune {

PageDeadline::PageDeadline(std::function<void()> expired, std::function<bool()> loading) {
    clock_.setSingleShot(true);
    stays_.setSingleShot(true);
    set_time(time);
    connect(&clock_, &QTimer::timeout, this, [this, expired = std::move(expired)] {
        stop();
        expired();
    });
    connect(&stays_, &QTimer::timeout, this, [this, loading = std::move(loading)] {
        if (completed_ || !loading())
            stop();
    });
}

void PageDeadline::set_time(std::chrono::milliseconds time) {
    clock_.setInterval(time);
    stays_.setInterval(time / 10);
}

void PageDeadline::visit() {
    stays_.stop();
    completed_ = false;
    clock_.start();
}

void PageDeadline::navigates() {
    stays_.stop();
    completed_ = false;
    if (!clock_.isActive())
        clock_.start();
}

void PageDeadline::arrived() {
    completed_ = true;
    load_ended();
}

void PageDeadline::load_ended() {
    if (clock_.isActive())
        stays_.start();
}

void PageDeadline::stop() {
    clock_.stop();
    stays_.stop();
}

} // namespace kestrune
