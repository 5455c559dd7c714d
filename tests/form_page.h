#pragma once

#include "filling/live_page.h"
#include "platform/memory/memory_browser.h"

#include <string>
#include <utility>

namespace kestrune {

// A page with forms in a browser without a window, for procedures that work on one document.
class FormPage {
public:
    explicit FormPage(PageDocument page) {
        const std::string url = page.url;
        browser.pages[url] = std::move(page);
        browser.Navigate(url);
        browser.arrive();
    }

    // The page as it stands now, with what was written to it.
    [[nodiscard]] PageDocument& now() { return *browser.showing(); }
    [[nodiscard]] PageElement& element(std::size_t form, std::size_t index) {
        return now().forms.at(form).elements.at(index);
    }
    [[nodiscard]] PageDocument image() {
        return *browser.take_image(now().id, {.links = false, .forms = true});
    }

private:
    class NoEvents : public BrowserEvents {
    public:
        [[nodiscard]] PageParts wanted_parts() override { return {}; }
        void BeforeNavigate2(NavigateEvent /*event*/) override {}
        void DocumentComplete(PageDocument /*image*/) override {}
        void CommandStateChange(int /*command*/, bool /*enable*/) override {}
        Browser* NewWindow2() override { return nullptr; }
    };
    NoEvents events_;
    WindowForm form_{"frmBrowser"};

public:
    MemoryBrowser browser{form_, events_};
};

} // namespace kestrune
