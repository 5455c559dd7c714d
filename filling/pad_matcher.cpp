#include "filling/pad_matcher.h"

#include "filling/label_table.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

using F = FrmPreference;

constexpr std::string_view category_pattern = "category|directory";
constexpr std::string_view type_pattern = "type|license|licence";

struct LabelFound {
    std::string text;
    std::string from;
};

// Calls `use` with each part of the text between separators until it returns true; whether it did.
template <typename Use>
bool any_part(std::string_view text, char separator, const Use& use) {
    while (true) {
        const std::size_t end = text.find(separator);
        if (use(text.substr(0, end)))
            return true;
        if (end == std::string_view::npos)
            return false;
        text.remove_prefix(end + 1);
    }
}

// The text is in lower case.
bool matches_all(const std::string& lowered, std::string_view alternative) {
    bool any_word = false;
    const bool missing = any_part(alternative, '&', [&](std::string_view word) {
        if (word.find_first_not_of(' ') == std::string_view::npos)
            return false;
        any_word = true;
        return lowered.find(lower_case(word)) == std::string::npos;
    });
    return any_word && !missing;
}

bool is_fillable(const PageElement& element) {
    const std::string type = lower_case(element.type);
    return type == "text" || type == "textarea" || type == "select-one";
}

PageForm* form_of(PageDocument& document, const ElementRef& wanted) {
    if (wanted.element == 0)
        return nullptr;
    for (PageForm& form : document.forms) {
        const bool holds =
            std::any_of(form.elements.begin(), form.elements.end(), [&wanted](const PageElement& element) {
                return element.ref.element == wanted.element && element.ref.document == wanted.document;
            });
        if (holds)
            return &form;
    }
    return nullptr;
}

LabelTable table_for(const PageDocument& document, const PageForm& form) {
    std::vector<std::string> names;
    for (const PageElement& element : form.elements) {
        if (is_fillable(element))
            names.push_back(element.name);
    }
    return {document.source, static_cast<std::size_t>(&form - document.forms.data()), names};
}

// A row that says nothing leaves the word to what else stands for the field on the page.
LabelFound label_of(const LabelTable& table, const PageElement& element) {
    const LabelTable::Entry* const entry = table.LookupLabel(element.name);
    if (entry == nullptr)
        return {};
    if (entry->in_row && !entry->text.empty())
        return {entry->text, "row"};
    return {element.label, element.label_from};
}

void fill_text(LivePage& page, PageElement& element, const FrmPreference& profile, FieldReport& report) {
    const auto& table = PatternTable();
    const auto row = std::find_if(table.begin(), table.end(), [&report](const PatternRow& candidate) {
        return MatchAny(report.label, candidate.pattern);
    });
    if (row == table.end())
        return;
    report.pattern = row->pattern;
    if (row->box == nullptr)
        return;
    const std::string& value = (profile.*row->box).Text.get();
    if (value.empty())
        return;
    page.set_value(element, value);
    report.value = value;
    report.written = true;
}

bool choose(LivePage& page, PageElement& list, const TextBox& box, FieldReport& report) {
    if (!SelectOptionByPattern(page, list, box.Text.get()))
        return false;
    for (const PageOption& option : list.options) {
        if (option.selected)
            report.value = option.text;
    }
    report.written = true;
    return true;
}

void fill_list(LivePage& page, PageElement& list, const FrmPreference& profile, FieldReport& report) {
    if (MatchAny(report.label, category_pattern)) {
        report.pattern = category_pattern;
        if (!choose(page, list, profile.txtL2Keyword, report))
            choose(page, list, profile.txtL1Keyword, report);
    }
    if (MatchAny(report.label, type_pattern)) {
        report.pattern += (report.pattern.empty() ? "" : ", then ") + std::string(type_pattern);
        choose(page, list, profile.txtProgramType, report);
    }
}

void fill(LivePage& page, PageElement& element, const FrmPreference& profile, FieldReport& report) {
    if (lower_case(element.type) == "select-one")
        fill_list(page, element, profile, report);
    else
        fill_text(page, element, profile, report);
}

} // namespace

bool MatchAny(std::string_view text, std::string_view pattern) {
    const std::string lowered = lower_case(text);
    return any_part(pattern, '|',
                    [&lowered](std::string_view alternative) { return matches_all(lowered, alternative); });
}

bool MatchAll(std::string_view text, std::string_view alternative) {
    return matches_all(lower_case(text), alternative);
}

// The order is the design: two words before the single ones they contain, catch-alls late, and the megabytes
// before the sizes, so that a field for megabytes never gets the count of bytes.
const std::vector<PatternRow>& PatternTable() {
    static const std::vector<PatternRow> rows{
        {"product&name|program&title|program&name|soft&name|soft&title|prog&title", &F::txtProgramName},
        {"short&description|small&description", &F::txtShortDesc},
        {"long&description", &F::txtLongDesc},
        {"company&name|author&name|developer|publisher", &F::txtCompanyName},
        {"size&mb|size&mbyte|size&megabyte", nullptr},
        {"size&kb|size&kbyte|size&kilobyte", &F::txtSizeKbytes},
        {"pad&url", &F::txtPADUrl},
        {"size", &F::txtSizeBytes},
        {"screen|image&url", &F::txtScreenUrl},
        {"home&page|program&information|web&site|registration|information&page|info&page|support|program&"
         "page",
         &F::txtAppInfoUrl},
        {"download|program&url|download&url", &F::txtDownloadUrl},
        {"mail|email|e-mail", &F::txtAuthorEmail},
        {"first&name|contact&name|author&name", &F::txtFirstName},
        {"version", &F::txtProgramVersion},
        {"requirement", &F::txtRequirement},
        {"description", &F::txtLongDesc},
        {"name", &F::txtProgramName},
        {"keyword", &F::txtKeywords},
        {"author", &F::txtCompanyName},
        {"title", &F::txtProgramName},
        {"url", &F::txtDownloadUrl},
        {"price|cost", &F::txtPrice},
    };
    return rows;
}

bool SelectOptionByPattern(LivePage& page, PageElement& list, std::string_view pattern) {
    const auto chosen =
        std::find_if(list.options.begin(), list.options.end(),
                     [pattern](const PageOption& option) { return MatchAny(option.text, pattern); });
    if (chosen == list.options.end())
        return false;
    if (lower_case(list.type) == "select-one") {
        for (PageOption& option : list.options)
            option.selected = false;
    }
    page.select(*chosen);
    return true;
}

FillReport FillAllFields(LivePage& page, const FrmPreference& profile) {
    FillReport reports;
    PageDocument* const document = page.document();
    PageForm* const form = document == nullptr ? nullptr : form_of(*document, document->active_element.ref);
    if (form == nullptr)
        return reports;
    const LabelTable labels = table_for(*document, *form);
    for (PageElement& element : form->elements) {
        if (!is_fillable(element))
            continue;
        LabelFound label = label_of(labels, element);
        FieldReport report{element.name, element.type, std::move(label.text), std::move(label.from), "", ""};
        report.locked = element.locked;
        if (!element.locked)
            fill(page, element, profile, report);
        reports.push_back(std::move(report));
    }
    return reports;
}

} // namespace kestrune
