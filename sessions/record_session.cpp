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

bool is_letter_or_digit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
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
    auto [session, url, action, postdata, header, frame] =
        GetXmlTags<6>(text, {"Session", "Url", "Action", "Postdata", "Header", "Frame"});
    record.Session = session;
    record.Url = url;
    record.Action = action;
    record.Postdata = postdata;
    record.Header = header;
    record.Frame = frame;
}

std::string UrlToFileName(std::string_view url) {
    constexpr std::size_t dropped = 7;
    std::string name;
    name.reserve(url.size());
    std::size_t at = 0;
    for (std::size_t i = 0; i < dropped && at < url.size(); ++i)
        at += character_length(url, at);
    while (at < url.size()) {
        const bool kept = is_letter_or_digit(url[at]);
        name += kept ? url[at] : '_';
        at += kept ? 1 : character_length(url, at);
    }
    return name;
}

std::string UrlToRecordKey(std::string_view url) { return lower_case(url.substr(0, url.find('?'))); }

} // namespace kestrune
