#include "platform/text_file.h"

#include "platform/code_page.h"
#include "platform/text.h"

namespace kestrune {

bool ReadTextFile(const Files& files, const std::string& path, std::string& text) {
    text.clear();
    const auto bytes = files.read(path);
    if (!bytes || bytes->empty())
        return false;
    text = text_of_bytes(*bytes);
    return true;
}

std::string XmlFileBytes(std::string_view text) { return bytes_of_text(text) + "\r\n"; }

bool WriteXML(Files& files, const std::string& path, std::string_view text) {
    return files.write(path, XmlFileBytes(text));
}

std::string GetXmlTag(std::string_view text, std::string_view tag) {
    const std::string open = "<" + std::string(tag) + ">";
    const std::string close = "</" + std::string(tag) + ">";
    const std::size_t start = find_ignoring_ascii_case(text, open);
    if (start == std::string_view::npos)
        return {};
    // The closing tag begins with "</", so it cannot be found inside the opening one.
    const std::size_t value = start + open.size();
    const std::size_t end = find_ignoring_ascii_case(text, close, start + 1);
    if (end == std::string_view::npos)
        return {};
    return std::string(text.substr(value, end - value));
}

} // namespace kestrune
