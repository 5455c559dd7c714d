#include "sessions/record_session.h"

#include "platform/code_page.h"
#include "platform/text.h"

namespace kestrune {
namespace {

constexpr std::string_view line_end = "\r\n";

void append_element(std::string& xml, std::string_view tag, std::string_view value) {
    xml.append("    <").append(tag).append(">").append(value).append("</").append(tag).append(">");
    xml += line_end;
}

bool is_letter_or_digit(std::string_view character) {
    const char c = character.front();
    return character.size() == 1 &&
           ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'));
}

} // namespace

std::string BuildSessionXml(const RecordSession& record) {
    std::string xml = "<?xml version=\"1.0\"?>";
    xml.append(line_end).append("<Kestrune>").append(line_end);
    append_element(xml, "Type", record.Type);
    append_element(xml, "Session", record.Session);
    append_element(xml, "Url", record.Url);
    append_element(xml, "Action", record.Action);
    append_element(xml, "Postdata", record.Postdata);
    append_element(xml, "Header", record.Header);
    append_element(xml, "Frame", record.Frame);
    return xml += "</Kestrune>";
}

void ParseSessionXml(std::string_view text, RecordSession& record) {
    record.Type = GetXmlTag(text, "Type");
    if (record.Type.empty())
        record.Type = type_form;
    if (record.Type == type_preference)
        return;
    record.Session = GetXmlTag(text, "Session");
    record.Url = GetXmlTag(text, "Url");
    record.Action = GetXmlTag(text, "Action");
    record.Postdata = GetXmlTag(text, "Postdata");
    record.Header = GetXmlTag(text, "Header");
    record.Frame = GetXmlTag(text, "Frame");
}

std::string UrlToFileName(std::string_view url) {
    constexpr std::size_t dropped = 7;
    std::string name;
    name.reserve(url.size());
    std::size_t count = 0;
    for (std::size_t at = 0; at < url.size(); ++count) {
        const std::string_view character = url.substr(at, character_length(url, at));
        at += character.size();
        if (count >= dropped)
            name += is_letter_or_digit(character) ? character : "_";
    }
    return name;
}

std::string UrlToRecordKey(std::string_view url) { return lower_case(url.substr(0, url.find('?'))); }

} // namespace kestrune
