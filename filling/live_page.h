#pragma once

#include "platform/browser.h"
#include "platform/page.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// A completed document while it is processed: its image, and the edits that the procedures note. The edits go
// to the page in one message, when `send` is called or the object goes.
class LivePage {
public:
    LivePage(Browser& browser, PageDocument image)
        : browser_(browser), image_(std::move(image)), parts_(image_.parts) {}
    ~LivePage() { send(); }
    LivePage(const LivePage&) = delete;
    LivePage& operator=(const LivePage&) = delete;
    LivePage(LivePage&&) = delete;
    LivePage& operator=(LivePage&&) = delete;

    // The document itself, or one of its frames; null when there is none (any more).
    [[nodiscard]] PageDocument* document() { return gone_ ? nullptr : &image_; }
    [[nodiscard]] PageDocument* frame(std::size_t index) {
        return gone_ || index >= image_.frames.size() ? nullptr : &image_.frames[index];
    }

    // Makes sure that the image holds these parts, taking it anew if it does not.
    void need(PageParts parts) {
        const PageParts all{.links = parts.links || parts_.links,
                            .forms = parts.forms || parts_.forms,
                            .labels = parts.labels || parts_.labels};
        if (!(all == parts_)) {
            parts_ = all;
            retake();
        }
    }

    // The user was asked something: what the page has become meanwhile is what counts from here on.
    void retake() {
        send();
        if (gone_)
            return;
        auto image = browser_.take_image(image_.id, parts_);
        gone_ = !image;
        if (image)
            image_ = *std::move(image);
    }

    void note(PageEdit edit) { edits_.push_back(std::move(edit)); }

    // Changes of an element of this page's image: made there at once and noted for the page.
    void set_value(PageElement& element, const std::string& value) {
        element.value = value;
        note({PageEdit::Kind::value, element.ref, value});
    }
    void check(PageElement& element) {
        element.checked = true;
        note({PageEdit::Kind::check, element.ref});
    }
    void select(PageOption& option) {
        option.selected = true;
        note({PageEdit::Kind::select, option.ref});
    }

    void send() {
        if (edits_.empty())
            return;
        const std::vector<PageEdit> edits = std::exchange(edits_, {});
        browser_.apply(edits);
    }

private:
    Browser& browser_;
    PageDocument image_;
    PageParts parts_;
    bool gone_ = false;
    std::vector<PageEdit> edits_;
};

} // namespace kestrune
