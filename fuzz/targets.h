#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::fuzz {

// One reader of foreign text. `run` takes any bytes and throws BrokenRule when something that holds for every
// input does not hold for this one.
struct Target {
    std::string_view name; // also of the folder of its first inputs
    void (*run)(std::string_view input) = nullptr;
};

[[nodiscard]] const std::vector<Target>& targets();

class BrokenRule : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

inline void require(bool holds, const char* rule) {
    if (!holds)
        throw BrokenRule(rule);
}

// Each in a file of its own.
void read_records(std::string_view input);
void read_profiles(std::string_view input);
void code_post_data(std::string_view input);
void read_form_tags(std::string_view input);
void read_labels(std::string_view input);
void match_fields(std::string_view input);
void read_statements(std::string_view input);

// Plain words of what the programs's own readers do faster; the text in ASCII lower case.
[[nodiscard]] std::string lower_ascii(std::string_view text);
// Value of a tag: the first one, up to the next closing one, letter case ignored.
[[nodiscard]] std::string plain_tag_value(std::string_view text, std::string_view tag);
// The text up to the first such sign, which is taken off too.
[[nodiscard]] std::string_view take_line(std::string_view& rest, char sign = '\n');

} // namespace kestrune::fuzz
