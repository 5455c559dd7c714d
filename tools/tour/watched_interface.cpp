#include "tools/tour/watched_interface.h"

#include <algorithm>
#include <utility>

namespace kestrune::drive {

class WatchedInterface::Ear final : public BrowserEvents {
public:
    Ear(std::vector<BrowserReport>& reports, BrowserEvents& window) : reports_(reports), window_(window) {}

    [[nodiscard]] PageParts wanted_parts() override { return window_.wanted_parts(); }
    void BeforeNavigate2(NavigateEvent event) override {
        reports_.push_back({BrowserReport::Kind::navigating, event.url, event.top_level});
        window_.BeforeNavigate2(std::move(event));
    }
    void DocumentComplete(PageDocument image) override {
        reports_.push_back({BrowserReport::Kind::completed, image.url, true, image.id});
        window_.DocumentComplete(std::move(image));
    }
    void CommandStateChange(int command, bool enable) override {
        window_.CommandStateChange(command, enable);
    }
    Browser* NewWindow2() override { return window_.NewWindow2(); }
    void WindowClosing() override { window_.WindowClosing(); }
    bool ContextMenu(const ElementRef& field) override { return window_.ContextMenu(field); }

private:
    std::vector<BrowserReport>& reports_;
    BrowserEvents& window_;
};

WatchedInterface::WatchedInterface(UserInterface& real, std::function<void(Browser&)> browser_made)
    : real_(real), browser_made_(std::move(browser_made)) {}

WatchedInterface::~WatchedInterface() = default;

bool WatchedInterface::completed(std::string_view url) const {
    return std::ranges::any_of(reports_, [&](const BrowserReport& report) {
        return report.kind == BrowserReport::Kind::completed && report.url == url;
    });
}

DocumentId WatchedInterface::completed_document(std::string_view url) const {
    const auto found = std::find_if(reports_.rbegin(), reports_.rend(), [&](const BrowserReport& report) {
        return report.kind == BrowserReport::Kind::completed && report.url == url;
    });
    return found == reports_.rend() ? "" : found->document;
}

bool WatchedInterface::ask_for_menu(const ElementRef& field) {
    return !ears_.empty() && ears_.back()->ContextMenu(field);
}

std::string WatchedInterface::last_navigation() const {
    const auto found = std::find_if(reports_.rbegin(), reports_.rend(), [](const BrowserReport& report) {
        return report.kind == BrowserReport::Kind::navigating && report.top_level;
    });
    return found == reports_.rend() ? "" : found->url;
}

std::unique_ptr<Browser> WatchedInterface::open_window(WindowForm& form, BrowserEvents& events) {
    ears_.push_back(std::make_unique<Ear>(reports_, events));
    auto browser = real_.open_window(form, *ears_.back());
    if (browser_made_)
        browser_made_(*browser);
    return browser;
}

} // namespace kestrune::drive
