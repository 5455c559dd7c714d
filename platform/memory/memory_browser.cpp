#include "platform/memory/memory_browser.h"

#include <utility>

namespace kestrune {
namespace {

PageDocument* find_in(PageDocument& document, const DocumentId& id) {
    if (document.id == id)
        return &document;
    for (PageDocument& frame : document.frames) {
        if (PageDocument* const found = find_in(frame, id))
            return found;
    }
    return nullptr;
}

void keep_wanted(PageDocument& document, PageParts parts) {
    document.parts = parts;
    if (!parts.links)
        document.links.clear();
    if (!parts.forms) {
        document.forms.clear();
        document.inputs.clear();
    }
    for (PageDocument& frame : document.frames)
        keep_wanted(frame, parts);
}

} // namespace

MemoryBrowser::MemoryBrowser(WindowForm& form, BrowserEvents& events) : form_(form), events_(events) {}

MemoryBrowser::~MemoryBrowser() {
    if (on_destroyed)
        on_destroyed();
}

void MemoryBrowser::Navigate(std::string_view url) {
    navigations.emplace_back(url);
    start(std::string(url), true);
}

void MemoryBrowser::GoBack() {
    ++back_count;
    if (history_.size() < 2)
        return;
    history_.pop_back();
    std::string url = history_.back();
    history_.pop_back();
    going_back_ = true;
    start(std::move(url), true);
}

void MemoryBrowser::Reload() {
    ++reload_count;
    start(location, true);
}

void MemoryBrowser::Stop() {
    ++stop_count;
    under_way.reset();
}

std::optional<PageDocument> MemoryBrowser::take_image(const DocumentId& document, PageParts parts) {
    if (on_take_image)
        on_take_image();
    PageDocument* const found = find(document);
    if (found == nullptr)
        return std::nullopt;
    PageDocument image = *found;
    keep_wanted(image, parts);
    return image;
}

void MemoryBrowser::apply(const std::vector<PageEdit>& edits) {
    for (const PageEdit& edit : edits) {
        const PageDocument* const document = find(edit.ref.document);
        if (document == nullptr)
            continue;
        for (const PageLink& candidate : std::vector<PageLink>(document->links)) {
            if (candidate.ref.element != edit.ref.element)
                continue;
            clicked.push_back(candidate.innertext);
            if (on_click)
                on_click(candidate);
            break;
        }
    }
}

bool MemoryBrowser::arrive() {
    if (!under_way)
        return false;
    location = *std::exchange(under_way, std::nullopt);
    const auto page = pages.find(location);
    PageDocument document = page == pages.end() ? PageDocument{} : page->second;
    if (document.url.empty())
        document.url = location;
    give_ids(document);
    if (going_back_ || history_.empty() || history_.back() != location)
        history_.push_back(location);
    going_back_ = false;
    showing_ = std::move(document);
    announce_back();
    complete(PageDocument(*showing_));
    return true;
}

void MemoryBrowser::page_navigates(std::string url) { start(std::move(url), true); }

void MemoryBrowser::give_ids(PageDocument& document) {
    if (document.id.empty())
        document.id = "document " + std::to_string(next_id_++);
    std::uint32_t element = 0;
    for (PageLink& candidate : document.links)
        candidate.ref = {document.id, ++element};
    for (PageDocument& frame : document.frames)
        give_ids(frame);
}

void MemoryBrowser::complete(const PageDocument& document) {
    for (const PageDocument& frame : document.frames)
        complete(frame);
    PageDocument image = document;
    keep_wanted(image, events_.wanted_parts());
    events_.DocumentComplete(std::move(image));
}

PageDocument* MemoryBrowser::find(const DocumentId& id) {
    return showing_ ? find_in(*showing_, id) : nullptr;
}

void MemoryBrowser::start(std::string url, bool top_level) {
    NavigateEvent event;
    event.top_level = top_level;
    event.url = url;
    under_way = std::move(url);
    events_.BeforeNavigate2(std::move(event));
}

void MemoryBrowser::announce_back() {
    events_.CommandStateChange(BrowserEvents::navigate_back, history_.size() > 1);
}

PageLink link(std::string text) { return {{}, std::move(text)}; }

PageDocument page_of_links(std::string url, const std::vector<std::string>& texts) {
    PageDocument document;
    document.url = std::move(url);
    for (const std::string& text : texts)
        document.links.push_back(link(text));
    return document;
}

} // namespace kestrune
