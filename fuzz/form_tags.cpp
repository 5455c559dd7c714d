#include "fuzz/targets.h"

#include "filling/form_tags.h"
#include "platform/code_page.h"
#include "platform/text.h"

#include <algorithm>

namespace kestrune::fuzz {
namespace {

std::string plain_action(const std::string& tag) {
    const std::size_t found = lower_ascii(tag).find("action=");
    if (found == std::string::npos)
        return {};
    std::string value = tag.substr(found + 7);
    if (value.find(' ') != std::string::npos)
        value = value.substr(0, value.find(' '));
    else if (value.find('>') != std::string::npos)
        value = value.substr(0, value.find('>'));
    const auto quote = [](char c) { return c == '"' || c == '\''; };
    if (!value.empty() && quote(value.front()))
        value.erase(0, 1);
    if (!value.empty() && quote(value.back()))
        value.pop_back();
    return value;
}

std::string plain_last_part(const std::string& address) {
    if (address.size() < 2)
        return address;
    const std::size_t slash = address.rfind('/', address.size() - (address.back() == '/' ? 2 : 1));
    return slash == std::string::npos ? address : address.substr(slash + 1);
}

void check_addresses(const std::string& a, const std::string& b) {
    require(LastPart(a) == plain_last_part(a), "the last part begins behind the last slash");
    for (const auto& match : {ActionsMatch, ActionsMatchIgnoringQuery}) {
        require(match(a, a), "an action matches itself");
        require(match(a, b) == match(b, a), "actions match each other");
        require(match(a, b) || !equal_ignoring_case(a, b), "equal actions match in any letter case");
    }
}

} // namespace

void read_form_tags(std::string_view input) {
    const std::string text = text_of_bytes(input);
    std::string_view rest = text;
    const std::string a{take_line(rest)};
    const std::string b{take_line(rest)};
    const std::string id{take_line(rest)};
    check_addresses(a, b);
    std::vector<std::string> tags;
    while (!rest.empty())
        tags.emplace_back(take_line(rest));
    for (const std::string& tag : tags)
        require(GetTagAction(tag) == plain_action(tag), "an action is read as its rules say");
    const auto wanted = std::find_if(tags.begin(), tags.end(), [&id](const std::string& tag) {
        return id.empty() || lower_case(tag).find("id=" + lower_case(id)) != std::string::npos;
    });
    require(GetFormTagAction(tags, id) == (wanted == tags.end() ? "" : plain_action(*wanted)),
            "a form is found by its id, without one it is the first");
}

} // namespace kestrune::fuzz
