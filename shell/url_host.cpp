#include "shell/url_host.h"

#include "platform/text.h"

namespace kestrune {

std::string GetUrlHost(std::string_view url) {
    const std::string address = lower_case(url);
    std::size_t start = 0;
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (address.starts_with(scheme))
            start = scheme.size();
    }
    const auto slash = address.find('/', start);
    return slash == std::string::npos ? address : address.substr(start, slash - start);
}

} // namespace kestrune
