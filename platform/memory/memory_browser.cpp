#include "platform/memory/memory_browser.h"

#include <algorithm>
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
    if (!parts.labels)
        document.source.clear();
    if (!parts.forms) {
        document.active_element = {};
        document.forms.clear();
        document.inputs.clear();
    }
    for (PageDocument& frame : document.frames)
        keep_wanted(frame, parts);
}

bool is_input(const PageElement& element) {
    return element.type != "textarea" && element.type.substr(0, 6) != "select";
}

// Gives the inputs of the document the numbers that they have as elements of its forms.
void list_inputs(PageDocument& document) {
    const bool listed = !document.inputs.empty();
    for (const PageForm& form : document.forms) {
        for (const PageElement& element : form.elements) {
            if (!listed && is_input(element))
                document.inputs.push_back(element);
            for (PageElement& input : document.inputs) {
                if (input.name == element.name && input.type == element.type && input.ref.element == 0)
                    input.ref = element.ref;
            }
        }
    }
}

// One element's part of an edit. In a list with one choice and among radio buttons of one name the others
// lose their mark, as in an engine.
void write_element(PageElement& element, const PageEdit& edit) {
    const bool meant = element.ref.element == edit.ref.element;
    if (edit.kind == PageEdit::Kind::value && meant)
        element.value = edit.text;
    if (edit.kind == PageEdit::Kind::check && meant)
        element.checked = true;
    if (edit.kind != PageEdit::Kind::select)
        return;
    const auto chosen =
        std::find_if(element.options.begin(), element.options.end(),
                     [&edit](const PageOption& option) { return option.ref.element == edit.ref.element; });
    if (chosen == element.options.end())
        return;
    if (element.type == "select-one") {
        for (PageOption& option : element.options)
            option.selected = false;
    }
    chosen->selected = true;
}

void release_radio_group(PageForm& form, std::uint32_t checked) {
    const auto radio =
        std::find_if(form.elements.begin(), form.elements.end(), [checked](const PageElement& element) {
            return element.ref.element == checked && element.type == "radio";
        });
    if (radio == form.elements.end())
        return;
    for (PageElement& element : form.elements) {
        if (element.type == "radio" && element.name == radio->name && element.ref.element != checked)
            element.checked = false;
    }
}

void write(PageDocument& document, const PageEdit& edit) {
    for (PageForm& form : document.forms) {
        if (edit.kind == PageEdit::Kind::check)
            release_radio_group(form, edit.ref.element);
        for (PageElement& element : form.elements)
            write_element(element, edit);
    }
    for (PageElement& input : document.inputs)
        write_element(input, edit);
}

// What a typed text means; empty when it is no address.
std::string address_of(std::string_view typed) {
    if (typed.empty() || typed.find(' ') != std::string_view::npos)
        return {};
    const bool has_scheme = typed.find("://") != std::string_view::npos || typed.substr(0, 6) == "about:";
    return has_scheme ? std::string(typed) : "http://" + std::string(typed);
}

} // namespace

MemoryBrowser::MemoryBrowser(WindowForm& form, BrowserEvents& events) : form_(form), events_(events) {}

MemoryBrowser::~MemoryBrowser() {
    if (on_destroyed)
        on_destroyed();
}

void MemoryBrowser::Navigate(std::string_view url) {
    navigations.emplace_back(url);
    if (std::string address = address_of(url); !address.empty())
        start({.url = std::move(address)});
}

void MemoryBrowser::GoBack() {
    ++back_count;
    if (!can_go_back())
        return;
    history_.pop_back();
    std::string url = history_.back();
    history_.pop_back();
    going_back_ = true;
    start({.url = std::move(url)});
}

void MemoryBrowser::Reload() {
    ++reload_count;
    start({.url = location});
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
        PageDocument* const document = find(edit.ref.document);
        if (document == nullptr)
            continue;
        if (edit.kind == PageEdit::Kind::click)
            click(*document, edit.ref.element);
        else
            write(*document, edit);
    }
}

void MemoryBrowser::click(const PageDocument& document, std::uint32_t number) {
    for (const PageLink& candidate : document.links) {
        if (candidate.ref.element != number)
            continue;
        clicked.push_back(candidate.innertext);
        // The page may go with the click.
        if (const PageLink link = candidate; on_click)
            on_click(link);
        return;
    }
    std::vector<PageElement> elements = document.inputs;
    for (const PageForm& form : document.forms)
        elements.insert(elements.begin(), form.elements.begin(), form.elements.end());
    for (const PageElement& candidate : elements) {
        if (candidate.ref.element != number)
            continue;
        pressed.push_back(candidate.name);
        if (on_press)
            on_press(candidate);
        return;
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

void MemoryBrowser::page_navigates(std::string url) { start({.url = std::move(url)}); }

void MemoryBrowser::page_submits(NavigateEvent event) {
    if (showing_ && event.submitted.id.empty()) {
        event.submitted = *showing_;
        keep_wanted(event.submitted, {.links = false, .forms = true});
    }
    start(std::move(event));
}

void MemoryBrowser::give_ids(PageDocument& document) {
    if (document.id.empty())
        document.id = "document " + std::to_string(next_id_++);
    std::uint32_t last = 0;
    const auto next = [&] { return ElementRef{document.id, ++last}; };
    for (PageLink& candidate : document.links)
        candidate.ref = next();
    for (PageForm& form : document.forms) {
        form.ref = next();
        for (PageElement& element : form.elements) {
            element.ref = next();
            for (PageOption& option : element.options)
                option.ref = next();
        }
    }
    list_inputs(document);
    for (PageElement& input : document.inputs) {
        if (input.ref.element == 0)
            input.ref = next();
    }
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

void MemoryBrowser::start(NavigateEvent event) {
    if (event.top_level)
        under_way = event.url;
    events_.BeforeNavigate2(std::move(event));
}

// The blank page that a window starts with is no page to go back to.
bool MemoryBrowser::can_go_back() const {
    const std::size_t first = !history_.empty() && history_.front() == "about:blank" ? 2 : 1;
    return history_.size() > first;
}

void MemoryBrowser::announce_back() {
    if (back_announced_ == can_go_back())
        return;
    back_announced_ = can_go_back();
    events_.CommandStateChange(BrowserEvents::navigate_back, *back_announced_);
}

PageLink link(std::string text) { return {{}, std::move(text)}; }

PageElement element(std::string type, std::string name, std::string value) {
    PageElement made;
    made.type = std::move(type);
    made.name = std::move(name);
    made.value = std::move(value);
    return made;
}

PageElement list_of(std::string type, std::string name,
                    const std::vector<std::pair<std::string, std::string>>& options) {
    PageElement made = element(std::move(type), std::move(name));
    for (const auto& [text, value] : options) {
        PageOption option;
        option.text = text;
        option.value = value;
        made.options.push_back(std::move(option));
    }
    return made;
}

PageForm form_of(std::string action, std::vector<PageElement> elements) {
    PageForm form;
    form.action = std::move(action);
    form.elements = std::move(elements);
    return form;
}

PageDocument page_of_forms(std::string url, std::vector<PageForm> forms) {
    PageDocument document;
    document.url = std::move(url);
    for (const PageForm& form : forms)
        document.form_tags.push_back("<form action=\"" + form.action + "\" method=post>");
    document.forms = std::move(forms);
    return document;
}

PageDocument page_of_links(std::string url, const std::vector<std::string>& texts) {
    PageDocument document;
    document.url = std::move(url);
    for (const std::string& text : texts)
        document.links.push_back(link(text));
    return document;
}

} // namespace kestrune
