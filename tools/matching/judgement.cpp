#include "tools/matching/judgement.h"

#include <algorithm>
#include <stdexcept>

namespace kestrune::matching {
namespace {

std::string text_of(const Wanted& wanted, const ProfileTexts& profile) {
    switch (wanted.kind) {
    case Wanted::Kind::box:
        return profile.at(wanted.text);
    case Wanted::Kind::checked:
        return "checked";
    case Wanted::Kind::text:
    case Wanted::Kind::stay:
        break;
    }
    return wanted.text;
}

std::string in_words(const Wanted& wanted) {
    switch (wanted.kind) {
    case Wanted::Kind::stay:
        return "nothing";
    case Wanted::Kind::text:
        return "\"" + wanted.text + "\"";
    case Wanted::Kind::checked:
        return "checked";
    case Wanted::Kind::box:
        break;
    }
    return wanted.text;
}

std::string in_words(const std::vector<Wanted>& any_of) {
    std::string words;
    for (const Wanted& wanted : any_of)
        words += (words.empty() ? "" : " or ") + in_words(wanted);
    return words;
}

const FieldState& find(const std::vector<FieldState>& states, const FieldData& field) {
    std::size_t ordinal = 0;
    for (const FieldState& state : states) {
        if (state.name == field.name && ++ordinal == field.ordinal)
            return state;
    }
    throw std::runtime_error("the page has no field \"" + field.title() + "\"");
}

} // namespace

Outcome judge(const std::vector<Wanted>& any_of, std::string_view before, std::string_view after,
              const ProfileTexts& profile) {
    const bool may_stay =
        std::ranges::any_of(any_of, [](const Wanted& wanted) { return wanted.kind == Wanted::Kind::stay; });
    const bool fits = std::ranges::any_of(any_of, [&](const Wanted& wanted) {
        return wanted.kind != Wanted::Kind::stay && text_of(wanted, profile) == after;
    });
    if (fits)
        return Outcome::as_wanted;
    if (before != after)
        return Outcome::otherwise;
    return may_stay ? Outcome::left : Outcome::missed;
}

std::vector<FieldResult> compare(const FormData& form, const std::vector<FieldState>& before,
                                 const std::vector<FieldState>& after,
                                 const std::map<std::string, std::string>& by, const ProfileTexts& profile) {
    if (before.size() != form.fields.size() || after.size() != form.fields.size())
        throw std::runtime_error("the data tells of " + std::to_string(form.fields.size()) +
                                 " fields, the page has " + std::to_string(before.size()) + ", then " +
                                 std::to_string(after.size()));
    std::vector<FieldResult> results;
    for (const FieldData& field : form.fields) {
        FieldResult result;
        result.field = field.title();
        result.label = field.label;
        result.before = find(before, field).value;
        result.after = find(after, field).value;
        if (const auto pattern = by.find(result.field); pattern != by.end())
            result.by = pattern->second;
        result.ruled = in_words(field.table);
        result.preferred = in_words(field.person);
        result.table = judge({field.table}, result.before, result.after, profile);
        result.person = judge(field.person, result.before, result.after, profile);
        results.push_back(std::move(result));
    }
    return results;
}

void Counts::add(Outcome outcome) {
    switch (outcome) {
    case Outcome::as_wanted:
        ++as_wanted;
        break;
    case Outcome::left:
        ++left;
        break;
    case Outcome::otherwise:
        ++otherwise;
        break;
    case Outcome::missed:
        ++missed;
        break;
    }
}

Counts count(const std::vector<PageResult>& pages, Outcome FieldResult::*side) {
    Counts counts;
    for (const PageResult& page : pages) {
        for (const FieldResult& field : page.fields)
            counts.add(field.*side);
    }
    return counts;
}

} // namespace kestrune::matching
