#include "filling/form_replay.h"

#include "filling/form_tags.h"
#include "platform/text.h"

#include <algorithm>
#include <map>
#include <utility>

namespace kestrune {
namespace {

// What the form's `action` reads as when an input of that name hides it.
constexpr std::string_view hidden_action = "[object]";

std::string action_of(const PageDocument& document, const PageForm& form) {
    if (form.action != hidden_action)
        return form.action;
    if (form.id.empty())
        return form.action_input;
    std::string action = GetFormTagAction(document.form_tags, form.id);
    // Today's engines write every attribute of a page's source in quotes.
    if (action.empty())
        action = GetFormTagAction(document.form_tags, '"' + form.id + '"');
    return action.empty() ? form.action : action;
}

// Visits the forms that the record may be of until one of them receives a value, and returns that one; null
// when none does. A form with the very action comes first; only when no form has it, those that differ in
// the query are looked at, and with them the first element must be recorded too.
template <typename Document, typename Visit>
auto visit_form(Document& document, std::string_view recordAction, const RecordedValues& recorded,
                Visit visit) -> decltype(document.forms.data()) {
    bool matched = false;
    for (auto& form : document.forms) {
        if (!ActionsMatch(recordAction, action_of(document, form)))
            continue;
        matched = true;
        if (visit(form))
            return &form;
    }
    if (matched)
        return nullptr;
    for (auto& form : document.forms) {
        if (!ActionsMatchIgnoringQuery(recordAction, action_of(document, form)) || form.elements.empty() ||
            recorded.pairs_named(form.elements.front().name).empty())
            continue;
        if (visit(form))
            return &form;
    }
    return nullptr;
}

bool contains(const std::vector<std::string>& values, const std::string& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

void write_element(LivePage& page, PageElement& element, const RecordedValues& recorded) {
    const std::string type = lower_case(element.type);
    const std::string value = recorded.FindPostValue(element.name).value_or("");
    if (type == "text" || type == "textarea" || type == "password") {
        page.set_value(element, value);
    } else if (type == "radio") {
        if (element.value == value)
            page.check(element);
    } else if (type == "checkbox") {
        if (contains(recorded.FindPostValues(element.name), element.value))
            page.check(element);
    } else if (type == "select-one") {
        const auto option = std::find_if(element.options.begin(), element.options.end(),
                                         [&value](const PageOption& one) { return one.text == value; });
        if (option != element.options.end())
            page.select(*option);
    } else if (type == "select-multiple") {
        for (const std::string& wanted : recorded.FindPostValues(element.name)) {
            for (PageOption& option : element.options) {
                if (option.value == wanted)
                    page.select(option);
            }
        }
    }
}

bool write_form(LivePage& page, PageForm& form, const RecordedValues& recorded) {
    bool received = false;
    for (PageElement& element : form.elements) {
        if (recorded.pairs_named(element.name).empty())
            continue;
        received = true;
        write_element(page, element, recorded);
    }
    return received;
}

// What an element contributes to posted data, one entry for each pair: the text to record, or nothing where
// the pair is there but not read back.
std::vector<std::optional<std::string>> state_of(const PageElement& element) {
    const std::string type = lower_case(element.type);
    if (type == "text" || type == "textarea" || type == "password")
        return {element.value};
    if (type == "hidden")
        return {std::nullopt};
    if ((type == "radio" || type == "checkbox") && element.checked)
        return {element.value};
    std::vector<std::optional<std::string>> chosen;
    for (const PageOption& option : element.options) {
        if (option.selected)
            chosen.emplace_back(type == "select-one" ? option.text : option.value);
    }
    return chosen;
}

// Whether the page still holds what was posted. A plus sign, posted as "%2B", is one although the replay will
// take it for a space.
bool is_unchanged(std::string recorded, const std::string& current) {
    if (UrlDecode(recorded) == current)
        return true;
    for (std::size_t at = recorded.find("%2B"); at != std::string::npos; at = recorded.find("%2B", at))
        recorded.replace(at, 3, "%2b");
    return UrlDecode(recorded) == current;
}

bool read_form(const PageForm& form, const RecordedValues& recorded, std::string& postdata) {
    const CodePage code_page = RecordCodePage(postdata);
    std::map<std::string, std::size_t> occurrences;
    bool received = false;
    for (const PageElement& element : form.elements) {
        const auto& pairs = recorded.pairs_named(element.name);
        if (pairs.empty())
            continue;
        received = true;
        for (const auto& current : state_of(element)) {
            const std::size_t occurrence = occurrences[lower_case(element.name)]++;
            if (!current || occurrence >= pairs.size())
                continue;
            const std::size_t pair = pairs[occurrence];
            if (!is_unchanged(recorded.fields().values[pair], *current))
                ReplacePostValue(postdata, pair, UrlEncode(*current, code_page));
        }
    }
    return received;
}

} // namespace

RecordedValues::RecordedValues(PostFields fields) : fields_(std::move(fields)) {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        by_name_[lower_case(UrlDecode(fields_.names[i]))].push_back(i);
}

const std::vector<std::size_t>& RecordedValues::pairs_named(std::string_view name) const {
    static const std::vector<std::size_t> none;
    const auto found = by_name_.find(lower_case(name));
    return found == by_name_.end() ? none : found->second;
}

std::optional<std::string> RecordedValues::FindPostValue(std::string_view name) const {
    const auto& pairs = pairs_named(name);
    if (pairs.empty())
        return std::nullopt;
    return UrlDecode(fields_.values[pairs.front()]);
}

std::vector<std::string> RecordedValues::FindPostValues(std::string_view name) const {
    std::vector<std::string> values;
    for (const std::size_t pair : pairs_named(name))
        values.push_back(UrlDecode(fields_.values[pair]));
    return values;
}

bool FillForms(LivePage& page, PageDocument& document, std::string_view mode, std::string_view recordAction,
               std::string& recordPostdata, const FormReplay& window) {
    if (mode != "WRITE") {
        ReadForms(document, recordAction, recordPostdata, window.button.StatusBar1);
        return false;
    }
    const RecordedValues recorded{SplitPostData(recordPostdata, window.button.StatusBar1)};
    const PageForm* const filled = visit_form(
        document, recordAction, recorded, [&](PageForm& form) { return write_form(page, form, recorded); });
    if (filled == nullptr)
        return false;
    window.state.bAutoFillFlag = false;
    AutoClick(page, document, *filled, recorded.fields().names, recordAction, window.button);
    return true;
}

void ReadForms(const PageDocument& document, std::string_view recordAction, std::string& recordPostdata,
               StatusBar& status) {
    const RecordedValues recorded{SplitPostData(recordPostdata, status)};
    visit_form(document, recordAction, recorded,
               [&](const PageForm& form) { return read_form(form, recorded, recordPostdata); });
}

} // namespace kestrune
