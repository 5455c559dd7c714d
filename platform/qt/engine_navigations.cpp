#include "platform/qt/engine_navigations.h"

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

bool goes_over_the_network(const QUrl& url) {
    return url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
}

} // namespace

void NavigationWatch::asked(const QUrl& url, bool redirect, bool top_level, Decide decide) {
    last_number_ = 0;
    const bool expected = top_level && std::exchange(expected_, false);
    if (redirect && !expected && goes_over_the_network(url)) {
        last_number_ = next_number_++;
        undecided_.push_back({last_number_, url, top_level, std::move(decide)});
        return;
    }
    if (top_level)
        scripted_top_ = redirect ? 1 : 0;
    decide(true);
}

void NavigationWatch::requested(const QUrl& url, bool redirect, bool top_level) {
    const auto found = std::find_if(undecided_.begin(), undecided_.end(), [&](const Undecided& one) {
        return one.top_level == top_level && one.url.matches(url, QUrl::RemoveFragment);
    });
    if (found == undecided_.end())
        return;
    const Decide decide = std::move(found->decide);
    undecided_.erase(found);
    const bool starts = redirect && scripted(top_level) == 0;
    if (starts)
        ++scripted(top_level);
    decide(starts);
}

void NavigationWatch::no_request(std::uint64_t number) {
    const auto found = std::find_if(undecided_.begin(), undecided_.end(),
                                    [number](const Undecided& one) { return one.number == number; });
    if (found == undecided_.end())
        return;
    const Decide decide = std::move(found->decide);
    undecided_.erase(found);
    decide(true);
}

void NavigationWatch::began(bool top_level) {
    if (top_level) {
        scripted_top_ = 0;
        scripted_frames_ = 0;
        expected_ = false;
    } else {
        scripted_frames_ = std::max(0, scripted_frames_ - 1);
    }
}

} // namespace kestrune
