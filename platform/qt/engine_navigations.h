#pragma once

#include <QUrl>

#include <cstdint>
#include <functional>
#include <list>

namespace kestrune {

// Tells the navigations that start from a server's redirects of one that has been announced. The engine calls
// both a redirect, and so it calls a navigation that a script or a meta tag starts without the user, and
// going back to a page that was reached by a redirect. Only the request that follows tells them apart: its
// type stays what it was at the navigation's start.
class NavigationWatch {
public:
    // Called for each kept navigation once it is decided: whether it is announced.
    using Decide = std::function<void(bool announce)>;

    // The program itself starts the next navigation of the top window.
    void expect() { expected_ = true; }

    // A navigation is asked for. Decides at once, or when its request is seen.
    void asked(const QUrl& url, bool redirect, bool top_level, Decide decide);
    void requested(const QUrl& url, bool redirect, bool top_level);
    // No request came for the navigation that was asked for; `number` is what `undecided` gave then.
    void no_request(std::uint64_t number);
    // Number of the navigation that has been waiting last; 0 when it was decided at once.
    [[nodiscard]] std::uint64_t undecided() const { return last_number_; }

    // A document took over the top window or a frame: what led to it is no longer under way.
    void began(bool top_level);

private:
    struct Undecided {
        std::uint64_t number = 0;
        QUrl url;
        bool top_level = true;
        Decide decide;
    };
    // Navigations under way that are of the type of a redirect from their start.
    int& scripted(bool top_level) { return top_level ? scripted_top_ : scripted_frames_; }

    std::list<Undecided> undecided_;
    std::uint64_t next_number_ = 1;
    std::uint64_t last_number_ = 0;
    int scripted_top_ = 0;
    int scripted_frames_ = 0;
    bool expected_ = false;
};

} // namespace kestrune
