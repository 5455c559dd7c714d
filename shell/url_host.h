#pragma once

#include <string>
#include <string_view>

namespace kestrune {

// The lower-cased host of an address: what stands between "http://" or "https://" (or the start of any other
// text) and the next "/". An address without a "/" after that point yields the whole lower-cased address,
// scheme included; callers compare hosts that this same function produced.
std::string GetUrlHost(std::string_view url);

} // namespace kestrune
