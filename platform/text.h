#pragma once

#include <string>
#include <string_view>

namespace kestrune {

// The text in lower case, letter by letter. UTF-8 in and out; bytes that are no UTF-8 stay as they are.
std::string lower_case(std::string_view text);

// Whether both texts are equal when lower-cased.
bool equal_ignoring_case(std::string_view left, std::string_view right);

// Position of the first occurrence of `what` in `text` at or after `from` (0-based bytes), letters A to Z
// compared without regard to case; std::string_view::npos when there is none.
std::size_t find_ignoring_ascii_case(std::string_view text, std::string_view what, std::size_t from = 0);

} // namespace kestrune
