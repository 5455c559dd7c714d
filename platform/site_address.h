#pragma once

#include <string>
#include <string_view>

namespace kestrune {

// For whoever adds sites to a library: two addresses with the same key are the same site. Letter case of
// scheme and host and one final "/" make no difference; everything else does.
std::string site_address_key(std::string_view url);

// Why no browser can open the address, or why the program could open but never mark it; empty when neither.
std::string site_address_problem(std::string_view url);

} // namespace kestrune
