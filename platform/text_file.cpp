#include "platform/text_file.h"

#include "platform/code_page.h"
#include "platform/text.h"

#include <utility>
#include <vector>

namespace kestrune {
namespace {

// Whether the text, which begins with "<", begins with the opening tag.
bool opens(std::string_view text, std::string_view tag) {
    const std::size_t length = tag.size() + 2;
    return text.size() >= length && text[length - 1] == '>' &&
           equal_ignoring_case(text.substr(1, tag.size()), tag);
}

// What stands between the opening tag at `start` and the next closing one; "" without that.
std::string_view value_behind(std::string_view text, std::size_t start, std::string_view tag) {
    const std::string close = "</" + std::string(tag) + ">";
    // The closing tag begins with "</", so it cannot be found inside the opening one.
    const std::size_t end = find_ignoring_ascii_case(text, close, start + 1);
    if (end == std::string_view::npos)
        return {};
    const std::size_t value = start + tag.size() + 2;
    return text.substr(value, end - value);
}

} // namespace

bool ReadTextFile(const Files& files, const std::string& path, std::string& text) {
    return TextOfFile(files.read(path), text);
}

bool TextOfFile(std::optional<std::string> bytes, std::string& text) {
    text.clear();
    if (!bytes || bytes->empty())
        return false;
    text = is_utf8(*bytes) ? *std::move(bytes) : text_of_bytes(*bytes);
    return true;
}

std::string XmlFileBytes(std::string_view text) { return bytes_of_text(text) + "\r\n"; }

bool WriteXML(Files& files, const std::string& path, std::string_view text) {
    return files.write(path, XmlFileBytes(text));
}

std::string GetXmlTag(std::string_view text, std::string_view tag) {
    return std::string(GetXmlTags<1>(text, {tag})[0]);
}

void GetXmlTags(std::string_view text, std::span<const std::string_view> tags,
                std::span<std::string_view> values) {
    std::vector<bool> found(tags.size());
    std::size_t missing = tags.size();
    for (std::size_t at = text.find('<'); at != std::string_view::npos && missing > 0;
         at = text.find('<', at + 1)) {
        for (std::size_t i = 0; i < tags.size(); ++i) {
            if (found[i] || !opens(text.substr(at), tags[i]))
                continue;
            found[i] = true;
            --missing;
            values[i] = value_behind(text, at, tags[i]);
        }
    }
}

} // namespace kestrune
