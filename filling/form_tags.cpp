#include "filling/form_tags.h"

#include "platform/text.h"

namespace kestrune {
namespace {

constexpr auto npos = std::string_view::npos;

bool is_quote(char character) { return character == '\'' || character == '"'; }

bool equal_last_parts(std::string_view a, std::string_view b) { return !a.empty() && a == b; }

std::string_view without_query_and_path(std::string_view address) {
    address = address.substr(0, address.find('?'));
    return address.substr(address.rfind('/') + 1);
}

} // namespace

std::string GetTagAction(std::string_view tag) {
    constexpr std::string_view attribute = "action=";
    const std::size_t found = find_ignoring_ascii_case(tag, attribute);
    if (found == npos)
        return {};
    std::string_view value = tag.substr(found + attribute.size());
    std::size_t end = value.find(' ');
    if (end == npos)
        end = value.find('>');
    value = value.substr(0, end);
    if (!value.empty() && is_quote(value.front()))
        value.remove_prefix(1);
    if (!value.empty() && is_quote(value.back()))
        value.remove_suffix(1);
    return std::string(value);
}

std::string GetFormTagAction(const std::vector<std::string>& form_tags, std::string_view formId) {
    const std::string wanted = "id=" + lower_case(formId);
    for (const std::string& tag : form_tags) {
        if (formId.empty() || lower_case(tag).find(wanted) != std::string::npos)
            return GetTagAction(tag);
    }
    return {};
}

std::string_view LastPart(std::string_view address) {
    const std::string_view searched =
        !address.empty() && address.back() == '/' ? address.substr(0, address.size() - 1) : address;
    const std::size_t slash = searched.rfind('/');
    return slash == npos ? address : address.substr(slash + 1);
}

bool ActionsMatch(std::string_view a, std::string_view b) {
    return equal_ignoring_case(a, b) || equal_last_parts(LastPart(a), LastPart(b));
}

bool ActionsMatchIgnoringQuery(std::string_view a, std::string_view b) {
    return equal_ignoring_case(a, b) ||
           equal_last_parts(without_query_and_path(a), without_query_and_path(b));
}

} // namespace kestrune
