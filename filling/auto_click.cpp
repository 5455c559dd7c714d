#include "filling/auto_click.h"

#include "filling/document_origin.h"
#include "platform/text.h"

#include <algorithm>

namespace kestrune {
namespace {

bool is_type(const PageElement& element, std::string_view type) { return lower_case(element.type) == type; }

bool is_recorded(std::string_view name, const std::vector<std::string>& fieldNames) {
    return std::any_of(fieldNames.begin(), fieldNames.end(),
                       [name](const std::string& recorded) { return equal_ignoring_case(recorded, name); });
}

const PageElement* submit_button(const PageForm& form) {
    for (const PageElement& element : form.elements) {
        if (is_type(element, "submit"))
            return &element;
    }
    return nullptr;
}

// An image button in front of every filled box belongs to something else on the page, such as its search.
const PageElement* image_button(const PageDocument& document, const std::vector<std::string>& fieldNames) {
    bool seen = false;
    for (const PageElement& element : document.inputs) {
        if (is_type(element, "text") && is_recorded(element.name, fieldNames))
            seen = true;
        if (seen && is_type(element, "image") && !element.src.empty())
            return &element;
    }
    return nullptr;
}

bool sends_to_strangers(const PageElement& button, const PageDocument& document,
                        std::string_view recordAction) {
    if (button.form_action.empty())
        return false;
    const std::string to = origin_of_address(button.form_action);
    return to != origin_of(document) && to != origin_of_address(recordAction);
}

} // namespace

void AutoClick(LivePage& page, const PageDocument& document, const PageForm& form,
               const std::vector<std::string>& fieldNames, std::string_view recordAction,
               const ButtonPress& window) {
    if (!window.mnuAutoClick.Checked.get())
        return;
    const PageElement* button = submit_button(form);
    if (button == nullptr)
        button = image_button(document, fieldNames);
    if (button == nullptr || sends_to_strangers(*button, document, recordAction))
        ReportNoAutoClick(window);
    else
        page.note({PageEdit::Kind::click, button->ref});
}

void ReportNoAutoClick(const ButtonPress& window) {
    if (window.mnuAutoClick.Checked.get())
        window.StatusBar1.set_text(1, "System is unable to do auto-click, please perform click manually!");
}

} // namespace kestrune
