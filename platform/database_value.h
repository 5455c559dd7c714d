#pragma once

#include "platform/database.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrune {

// How every database reads a stored value as a text: a number in plain decimal, nothing for Null.
std::optional<std::string> as_text(DatabaseValue value);

// ... and as a number: nothing for Null. Throws DatabaseError for a text that is no whole number.
std::optional<std::int64_t> as_number(const DatabaseValue& value);

// Whether two column names are the same: letters A to Z without regard to case.
bool same_column(std::string_view left, std::string_view right);

} // namespace kestrune
