#include "platform/database_value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace kestrune {
namespace {

char lower_ascii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

template <typename Number>
std::optional<Number> parsed(const std::string& text) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || last != end)
        return std::nullopt;
    return value;
}

} // namespace

std::optional<std::string> as_text(DatabaseValue value) {
    if (auto* const text = std::get_if<std::string>(&value))
        return std::move(*text);
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return std::to_string(*number);
    return std::nullopt;
}

std::optional<std::int64_t> as_number(const DatabaseValue& value) {
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return *number;
    const auto* const text = std::get_if<std::string>(&value);
    if (text == nullptr)
        return std::nullopt;
    if (const auto whole = parsed<std::int64_t>(*text))
        return whole;
    // A database without strict types may hold 17 as 17.0.
    const auto real = parsed<double>(*text);
    constexpr double bound = 9007199254740992.0; // up to here every whole number is a double
    if (real && std::abs(*real) <= bound && std::trunc(*real) == *real)
        return static_cast<std::int64_t>(*real);
    throw DatabaseError("not a whole number: " + *text);
}

bool same_column(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char a, char b) { return lower_ascii(a) == lower_ascii(b); });
}

} // namespace kestrune
