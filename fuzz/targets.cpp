#include "fuzz/targets.h"

#include <algorithm>

namespace kestrune::fuzz {

const std::vector<Target>& targets() {
    static const std::vector<Target> all{
        {"records", read_records},       {"profiles", read_profiles}, {"post_data", code_post_data},
        {"form_tags", read_form_tags},   {"labels", read_labels},     {"matcher", match_fields},
        {"statements", read_statements},
    };
    return all;
}

std::string lower_ascii(std::string_view text) {
    std::string lowered{text};
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lowered;
}

std::string plain_tag_value(std::string_view text, std::string_view tag) {
    const std::string lowered = lower_ascii(text);
    const std::string open = "<" + lower_ascii(tag) + ">";
    const std::size_t start = lowered.find(open);
    if (start == std::string::npos)
        return {};
    const std::size_t end = lowered.find("</" + lower_ascii(tag) + ">", start + 1);
    if (end == std::string::npos)
        return {};
    return std::string(text.substr(start + open.size(), end - start - open.size()));
}

std::string_view take_line(std::string_view& rest, char sign) {
    const std::size_t end = std::min(rest.find(sign), rest.size());
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line;
}

} // namespace kestrune::fuzz
