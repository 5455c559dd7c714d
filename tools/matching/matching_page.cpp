#include "tools/matching/judgement.h"

#include <algorithm>
#include <functional>
#include <string>

namespace kestrune::matching {
namespace {

constexpr std::string_view heading = R"(# Matching figure

What one choice of "Multi-input" does to the practice forms (practice/forms), in the program's own window on the real
engine, with one profile for all of them. `kestrune-matching` makes this page; the tests compare every field with the
data beside the forms.

Each field is judged twice: against what the rules of the label table give it, worked out by hand from the page's
labels, and against what the author of a program would want there. "As wanted" are fields that were to be filled and
hold that text; "left" are fields that were to stay as they are and did; "otherwise" are fields that hold something else
than they should; "missed" are fields that should have been filled and were not. What a person would want and the table
knows nothing of (a last name, a release date, a check box) counts as missed.

)";

std::string number(std::size_t value) { return std::to_string(value); }

std::string cells(const Counts& counts) {
    return " | " + number(counts.as_wanted) + " | " + number(counts.left) + " | " + number(counts.otherwise) +
           " | " + number(counts.missed);
}

std::string line(const std::string& title, const std::vector<PageResult>& pages) {
    const Counts table = count(pages, &FieldResult::table);
    const Counts person = count(pages, &FieldResult::person);
    return "| " + title + " | " + number(table.all()) + cells(table) + cells(person) + " |\n";
}

// Fit for a cell of a table, and short.
std::string shown(std::string text) {
    constexpr std::size_t longest = 60;
    if (text.size() > longest) {
        std::size_t end = longest;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            --end;
        text = text.substr(0, end) + "...";
    }
    std::string cell;
    for (const char letter : text) {
        if (letter == '|')
            cell += '\\';
        cell += letter == '\n' || letter == '\r' ? ' ' : letter;
    }
    return cell;
}

std::string in_quotes(const std::string& text) { return text.empty() ? "" : "\"" + shown(text) + "\""; }

std::string figures(const std::vector<PageResult>& pages) {
    std::string text = "| form | fields | by the table: as wanted | left | otherwise | missed | for a "
                       "person: as wanted | left | "
                       "otherwise | missed |\n|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n";
    for (const PageResult& page : pages)
        text += line(page.name, {page});
    return text + line("**all " + number(pages.size()) + "**", pages);
}

using Chosen = std::function<bool(const FieldResult&)>;
using Cells = std::function<std::string(const FieldResult&)>;

std::string list(const std::vector<PageResult>& pages, const std::string& columns, const Chosen& chosen,
                 const Cells& rest) {
    std::string rows;
    for (const PageResult& page : pages) {
        for (const FieldResult& field : page.fields) {
            if (chosen(field))
                rows += "| " + page.name + " | " + field.field + " | " + shown(field.label) + " | " +
                        rest(field) + " |\n";
        }
    }
    if (rows.empty())
        return "None.\n";
    const auto bars = static_cast<std::size_t>(std::ranges::count(columns, '|')) + 1;
    std::string rule = "|---|---|---|";
    for (std::size_t i = 0; i < bars; ++i)
        rule += "---|";
    return "| form | field | label | " + columns + " |\n" + rule + "\n" + rows;
}

} // namespace

std::string matching_page(const std::vector<PageResult>& pages) {
    std::string text{heading};
    text += figures(pages);
    text += "\n## Fields that are not as the table's rules say\n\n";
    text += list(
        pages, "rules give | holds | decided by",
        [](const FieldResult& field) {
            return field.table == Outcome::otherwise || field.table == Outcome::missed;
        },
        [](const FieldResult& field) {
            return shown(field.ruled) + " | " + in_quotes(field.after) + " | " + in_quotes(field.by);
        });
    text += "\n## Fields filled with something that a person would not want there\n\n"
            "Wrong is worse than empty: these are what to look at before sending a form.\n\n";
    text += list(
        pages, "holds | decided by | a person wants",
        [](const FieldResult& field) { return field.person == Outcome::otherwise; },
        [](const FieldResult& field) {
            return in_quotes(field.after) + " | " + in_quotes(field.by) + " | " + shown(field.preferred);
        });
    text += "\n## Fields left empty that a person would fill\n\n";
    text += list(
        pages, "a person wants", [](const FieldResult& field) { return field.person == Outcome::missed; },
        [](const FieldResult& field) { return shown(field.preferred); });
    return text;
}

} // namespace kestrune::matching
