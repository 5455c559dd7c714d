#pragma once

#include "platform/browser.h"
#include "platform/window_form.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// A browser whose pages are written by the test. Each document is a PageDocument; loading one raises the
// events that the engine would raise.
class MemoryBrowser : public Browser {
public:
    MemoryBrowser(WindowForm& form, BrowserEvents& events);
    ~MemoryBrowser() override;
    MemoryBrowser(const MemoryBrowser&) = delete;
    MemoryBrowser& operator=(const MemoryBrowser&) = delete;
    MemoryBrowser(MemoryBrowser&&) = delete;
    MemoryBrowser& operator=(MemoryBrowser&&) = delete;

    void Navigate(std::string_view url) override;
    void GoBack() override;
    void Reload() override;
    void Stop() override;
    [[nodiscard]] std::string LocationURL() const override { return location; }
    std::optional<PageDocument> take_image(const DocumentId& document, PageParts parts) override;
    void apply(const std::vector<PageEdit>& edits) override;

    // What the page at an address is; used by `arrive`. An address without a page arrives as an empty
    // document. Ids are given on arrival where the page has none.
    std::map<std::string, PageDocument> pages;
    // What clicking a link does, by the link's text; by default nothing.
    std::function<void(const PageLink&)> on_click;
    // What clicking an element of a form does; by default nothing.
    std::function<void(const PageElement&)> on_press;
    // Run when an image is taken anew, before it is given out.
    std::function<void()> on_take_image;

    // The navigation under way brings its document: frames complete in order, then the document itself. False
    // when none is under way.
    bool arrive();
    // The page itself starts a navigation (a script, a link).
    void page_navigates(std::string url);
    // The user submits a form of the page that is showing. What the event lacks of the page is added; without
    // postdata it is sent as a GET form is.
    void page_submits(NavigateEvent event);
    // The page on show is left without a new one: its images are gone.
    void lose_page() { showing_.reset(); }
    [[nodiscard]] PageDocument* showing() { return showing_ ? &*showing_ : nullptr; }

    std::string location = "about:blank";
    std::optional<std::string> under_way; // address of the navigation that has not arrived yet
    std::vector<std::string> navigations; // what the program asked for, in order
    std::vector<std::string> clicked;     // texts of the links clicked, in order
    std::vector<std::string> pressed;     // names of the elements of forms clicked, in order
    int back_count = 0;
    int reload_count = 0;
    int stop_count = 0;

    WindowForm& window() { return form_; }
    BrowserEvents& events() { return events_; }
    std::function<void()> on_destroyed;

private:
    void give_ids(PageDocument& document);
    void click(const PageDocument& document, std::uint32_t number);
    void complete(const PageDocument& document);
    [[nodiscard]] PageDocument* find(const DocumentId& id);
    void start(NavigateEvent event);
    void announce_back();
    [[nodiscard]] bool can_go_back() const;

    WindowForm& form_;
    BrowserEvents& events_;
    std::optional<PageDocument> showing_;
    std::vector<std::string> history_;
    bool going_back_ = false;
    std::optional<bool> back_announced_;
    int next_id_ = 1;
};

// Writing pages: a link with its text, a form with its elements, and a document of links or of forms. A
// document that lists no inputs of its own has those of its forms.
PageLink link(std::string text);
PageElement element(std::string type, std::string name, std::string value = {});
// One option for each text and value; none is selected.
PageElement list_of(std::string type, std::string name,
                    const std::vector<std::pair<std::string, std::string>>& options);
PageForm form_of(std::string action, std::vector<PageElement> elements);
PageDocument page_of_forms(std::string url, std::vector<PageForm> forms);
PageDocument page_of_links(std::string url, const std::vector<std::string>& texts);

} // namespace kestrune
