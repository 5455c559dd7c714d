#pragma once

#include "platform/page.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

class Browser;

// A navigation that is about to start. What the engine cannot tell is empty.
struct NavigateEvent {
    bool top_level = true; // false: a frame of the page navigates
    std::string url = {};
    std::string frame_name = {}; // target frame; empty for the top window
    std::string postdata = {};   // bytes as sent
    std::string headers = {};    // raw, lines ended by CR LF
    // The document that holds the submitted form, with its forms as they stood when it was submitted; the
    // page may be gone when the event is handled. Without an id when no form is submitted.
    PageDocument submitted = {};
};

// What a browser tells its window. Every call comes on the user-interface thread, in the order in which
// things happened on the page (a frame completes before the document it lies in).
class BrowserEvents {
public:
    BrowserEvents() = default;
    virtual ~BrowserEvents() = default;
    BrowserEvents(const BrowserEvents&) = delete;
    BrowserEvents& operator=(const BrowserEvents&) = delete;
    BrowserEvents(BrowserEvents&&) = delete;
    BrowserEvents& operator=(BrowserEvents&&) = delete;

    // What the image that comes with the next DocumentComplete should hold; asked when a document has
    // completed.
    [[nodiscard]] virtual PageParts wanted_parts() = 0;

    // Before each navigation, of the top window or a frame, started by the page, the user or the program; not
    // for a server's redirect of a navigation already announced, nor for a jump within the page.
    virtual void BeforeNavigate2(NavigateEvent event) = 0;

    // Once for each completed document: at its load event, or when its content stands and only stragglers
    // have kept it waiting for the browser's straggler time, or when the user stopped the load. `image.id` is
    // the document whose completion this is; `image.url` its address. A navigation that brings no document (a
    // download, an unreachable host) raises nothing.
    virtual void DocumentComplete(PageDocument image) = 0;

    // A command's availability changed. Command 2 is navigating back; its state is announced once at the
    // start.
    virtual void CommandStateChange(int command, bool enable) = 0;
    static constexpr int navigate_back = 2;

    // A page wants a new window. Returns the browser that shall load what was asked for, or null to refuse.
    // Called nested in whatever goes on, because the page waits for the answer; but a request that comes
    // while the program has a question or dialog open comes once that has been answered.
    virtual Browser* NewWindow2() = 0;

    // A script asks that its window be closed. Windows that no page has opened do not obey.
    virtual void WindowClosing() {}

    // The user asks for the context menu, by the mouse or by key, in field.document. A field under the mouse
    // has the focus already, and `field` is the one that has it; its element is 0 when none has. False lets
    // the browser show its own menu, which is what happens by default.
    virtual bool ContextMenu(const ElementRef& field) {
        static_cast<void>(field);
        return false;
    }
};

// The embedded browser of one window. Nothing here waits for a page longer than a bounded time.
class Browser {
public:
    Browser() = default;
    virtual ~Browser() = default;
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;
    Browser(Browser&&) = delete;
    Browser& operator=(Browser&&) = delete;

    // Starts loading the address as a user would type it: without a scheme "http://" is meant. Text that is
    // no address loads nothing and raises no event.
    virtual void Navigate(std::string_view url) = 0;
    // Nothing happens when there is no page to go back to.
    virtual void GoBack() = 0;
    virtual void Reload() = 0;
    virtual void Stop() = 0;
    // Address of the page that is showing; "about:blank" before the first.
    [[nodiscard]] virtual std::string LocationURL() const = 0;

    // The document as it is now, with its frames. Nothing when the document is gone or its page does not
    // answer in time. May serve user-interface events while it waits.
    virtual std::optional<PageDocument> take_image(const DocumentId& document, PageParts parts) = 0;
    // Carries edits out in order. Those addressed to a document that is gone are dropped.
    virtual void apply(const std::vector<PageEdit>& edits) = 0;
};

} // namespace kestrune
