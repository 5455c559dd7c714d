#include "fuzz/targets.h"

#include "filling/pad_matcher.h"
#include "filling/source_rows.h"
#include "platform/code_page.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"
#include "platform/text.h"

#include <algorithm>

namespace kestrune::fuzz {
namespace {

std::vector<std::string> parts(std::string_view text, char separator) {
    std::vector<std::string> all(1);
    for (const char c : text) {
        if (c == separator)
            all.emplace_back();
        else
            all.back() += c;
    }
    return all;
}

bool plain_match(std::string_view text, std::string_view pattern) {
    const std::string lowered = lower_case(text);
    const auto alternatives = parts(pattern, '|');
    return std::any_of(alternatives.begin(), alternatives.end(), [&lowered](const std::string& alternative) {
        auto words = parts(alternative, '&');
        std::erase_if(words, [](const std::string& word) {
            return std::all_of(word.begin(), word.end(), [](char c) { return c == ' '; });
        });
        return !words.empty() && std::all_of(words.begin(), words.end(), [&lowered](const std::string& word) {
            return lowered.find(lower_case(word)) != std::string::npos;
        });
    });
}

// A page that takes every edit.
class StillBrowser : public Browser {
public:
    void Navigate(std::string_view /*url*/) override {}
    void GoBack() override {}
    void Reload() override {}
    void Stop() override {}
    [[nodiscard]] std::string LocationURL() const override { return {}; }
    std::optional<PageDocument> take_image(const DocumentId& /*document*/, PageParts /*parts*/) override {
        return std::nullopt;
    }
    void apply(const std::vector<PageEdit>& edits) override { taken = edits; }

    std::vector<PageEdit> taken;
};

// One form with the fields of a source, lists among them; the focus is in the first.
PageDocument page_of(const std::string& source) {
    PageDocument page;
    page.id = "page";
    page.source = source;
    page.parts = {.links = false, .forms = true, .labels = true};
    PageForm form;
    const SourceRows rows{source};
    std::uint32_t number = 0;
    for (const SourceField& field : rows.fields) {
        PageElement element;
        element.ref = {page.id, ++number};
        element.name = field.name;
        element.type = rows.tokens[field.token].kind == SourceToken::Kind::list ? "select-one" : "text";
        if (element.type == "select-one") {
            for (const char* const text : {"Choose", "Games", "Business & Office", "Freeware"})
                element.options.push_back({{page.id, ++number}, text, text, false});
        }
        element.value = "as it was";
        form.elements.push_back(std::move(element));
    }
    if (!form.elements.empty())
        page.active_element = form.elements.front();
    page.forms.push_back(std::move(form));
    return page;
}

void check_field(const FieldReport& report, const PageElement& element, const FrmPreference& profile) {
    if (element.type == "select-one") {
        require(std::count_if(element.options.begin(), element.options.end(),
                              [](const PageOption& option) { return option.selected; }) <= 1,
                "a drop-down list has one choice");
        return;
    }
    const auto& table = PatternTable();
    const auto row = std::find_if(table.begin(), table.end(), [&report](const PatternRow& candidate) {
        return plain_match(report.label, candidate.pattern);
    });
    const std::string wanted =
        row == table.end() || row->box == nullptr ? std::string() : (profile.*row->box).Text.get();
    require(element.value == (wanted.empty() ? "as it was" : wanted),
            "a field gets the text of the first row that matches its label");
    require(report.written == !wanted.empty(), "the report tells what was written");
}

} // namespace

void match_fields(std::string_view input) {
    const std::string text = text_of_bytes(input);
    std::string_view rest = text;
    const std::string_view label = take_line(rest);
    const std::string_view pattern = take_line(rest);
    require(MatchAny(label, pattern) == plain_match(label, pattern), "a pattern matches as its rules say");

    MemoryUserInterface ui;
    const MemoryFiles files;
    FrmPreference profile{ui, files};
    for (const ProfileField& field : ProfileFields())
        (profile.*field.box).Text = std::string(take_line(rest, '|'));
    StillBrowser browser;
    std::size_t written = 0;
    {
        LivePage page{browser, page_of(std::string(rest))};
        const FillReport report = FillAllFields(page, profile);
        const auto& elements = page.document()->forms[0].elements;
        require(report.size() == elements.size(), "every field is reported");
        for (std::size_t i = 0; i < report.size(); ++i) {
            check_field(report[i], elements[i], profile);
            written += report[i].written ? 1 : 0;
        }
    }
    require(browser.taken.size() >= written, "what is written reaches the page");
}

} // namespace kestrune::fuzz
