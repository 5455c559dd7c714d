#include "filling/document_origin.h"

#include "platform/text.h"

#include <algorithm>

namespace kestrune {

std::string origin_of_address(std::string_view address) {
    const auto scheme_end = address.find("://");
    if (scheme_end == std::string_view::npos)
        return {};
    const std::string scheme = lower_case(address.substr(0, scheme_end));
    if (scheme != "http" && scheme != "https")
        return {};
    std::string_view host = address.substr(scheme_end + 3);
    host = host.substr(0, std::min(host.find_first_of("/?#\\"), host.size()));
    if (const auto user = host.rfind('@'); user != std::string_view::npos)
        host.remove_prefix(user + 1);
    const std::string_view default_port = scheme == "http" ? ":80" : ":443";
    if (host.ends_with(default_port))
        host.remove_suffix(default_port.size());
    return host.empty() ? std::string{} : scheme + "://" + lower_case(host);
}

std::string origin_of(const PageDocument& document) {
    if (document.origin.empty() || document.origin == "null")
        return origin_of_address(document.url);
    return document.origin;
}

bool shares_records(const PageDocument& frame, const PageDocument& page, std::string_view recordAction) {
    const std::string origin = origin_of(frame);
    return !origin.empty() && (origin == origin_of(page) || origin == origin_of_address(recordAction));
}

} // namespace kestrune
