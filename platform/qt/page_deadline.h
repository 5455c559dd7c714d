#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

namespace kestrune {

// Bounds the time in which a page may keep its window waiting. The clock runs from the moment when a page is
// asked for until a document of it has completed and stayed: a server that never answers, a script without
// end, and a page that goes elsewhere again and again all come to the same. It raises no event of a document
// and touches nothing in the window.
class PageDeadline : public QObject {
public:
    static constexpr std::chrono::milliseconds time = std::chrono::seconds(30);

    // `loading` tells whether the browser is on its way to a page.
    PageDeadline(std::function<void()> expired, std::function<bool()> loading);

    // The user or the program asks for a page: the clock starts anew.
    void visit();
    // The page navigates by itself: the clock starts unless it is running.
    void navigates();
    // A document has completed. What does not stay is no end.
    void arrived();
    // A load has ended, which is an end only if no other one is under way soon after: the end of a load that
    // was broken off for another one is told late.
    void load_ended();
    void stop();
    [[nodiscard]] bool running() const { return clock_.isActive(); }

    // Of visits from now on. What counts as having stayed is a tenth of it.
    void set_time(std::chrono::milliseconds time);

private:
    QTimer clock_;
    QTimer stays_;
    bool completed_ = false; // what is to stay is a document
};

} // namespace kestrune
