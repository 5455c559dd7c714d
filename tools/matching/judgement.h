#pragma once

#include "tools/matching/form_data.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::matching {

// The texts of the profile's boxes, by the boxes' names.
using ProfileTexts = std::map<std::string, std::string, std::less<>>;

// A field as it stands in the page: its text, the texts of the options selected in a list (joined by ", "),
// or "checked" for a check box or an option button that is set.
struct FieldState {
    std::string name;
    std::string value;
};

enum class Outcome : std::uint8_t {
    as_wanted, // something was wanted there, and stands there
    left,      // nothing was wanted there, and nothing was done
    otherwise, // something stands there that is not wanted
    missed,    // something was wanted there, and the field is as it was
};

[[nodiscard]] Outcome judge(const std::vector<Wanted>& any_of, std::string_view before,
                            std::string_view after, const ProfileTexts& profile);

// What became of one field.
struct FieldResult {
    std::string field; // name, with "#2" for the second one of its name
    std::string label;
    std::string before;
    std::string after;
    std::string by;        // pattern that decided, "" for none
    std::string ruled;     // what the table's rules give, for people
    std::string preferred; // what a person would want there, for people
    Outcome table = Outcome::left;
    Outcome person = Outcome::left;
};

struct PageResult {
    std::string name;
    std::vector<FieldResult> fields;
};

// The fields of one form as they were and as they are, in one order; `by` gives the pattern that decided on a
// field, by its name. Throws std::runtime_error when the form does not hold the fields of the data.
std::vector<FieldResult> compare(const FormData& form, const std::vector<FieldState>& before,
                                 const std::vector<FieldState>& after,
                                 const std::map<std::string, std::string>& by, const ProfileTexts& profile);

struct Counts {
    std::size_t as_wanted = 0;
    std::size_t left = 0;
    std::size_t otherwise = 0;
    std::size_t missed = 0;

    void add(Outcome outcome);
    [[nodiscard]] std::size_t all() const { return as_wanted + left + otherwise + missed; }
};
[[nodiscard]] Counts count(const std::vector<PageResult>& pages, Outcome FieldResult::*side);

// The matching figure as a page for docs/.
[[nodiscard]] std::string matching_page(const std::vector<PageResult>& pages);

} // namespace kestrune::matching
