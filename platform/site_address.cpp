#include "platform/site_address.h"

#include <algorithm>

namespace kestrune {
namespace {

char ascii_lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Where scheme and host end.
std::size_t end_of_host(std::string_view url) {
    const auto scheme = url.find("://");
    if (scheme == std::string_view::npos)
        return 0;
    return std::min(url.find_first_of("/?#", scheme + 3), url.size());
}

} // namespace

std::string site_address_key(std::string_view url) {
    if (url.ends_with('/'))
        url.remove_suffix(1);
    std::string key{url};
    const auto host_end = static_cast<std::ptrdiff_t>(end_of_host(url));
    std::transform(key.begin(), key.begin() + host_end, key.begin(), ascii_lower);
    return key;
}

std::string site_address_problem(std::string_view url) {
    std::string start{url.substr(0, 8)};
    std::transform(start.begin(), start.end(), start.begin(), ascii_lower);
    const std::size_t scheme = start.starts_with("http://") ? 7 : start == "https://" ? 8 : 0;
    if (scheme == 0)
        return "no web address (http:// or https://)";
    if (end_of_host(url) == scheme)
        return "an address without a host";
    if (std::any_of(url.begin(), url.end(),
                    [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == 0x7f; }))
        return "an address with a blank or a control character in it";
    if (url.find('\'') != std::string_view::npos)
        return "an address with an apostrophe, which could never be marked (write %27)";
    return {};
}

} // namespace kestrune
