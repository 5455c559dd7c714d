#include "fuzz/targets.h"

#include "platform/code_page.h"
#include "sessions/record_session.h"

#include <algorithm>
#include <array>

namespace kestrune::fuzz {
namespace {

struct Element {
    std::string_view tag;
    std::string RecordSession::*value;
};
constexpr std::array<Element, 7> elements{{{"Type", &RecordSession::Type},
                                           {"Session", &RecordSession::Session},
                                           {"Url", &RecordSession::Url},
                                           {"Action", &RecordSession::Action},
                                           {"Postdata", &RecordSession::Postdata},
                                           {"Header", &RecordSession::Header},
                                           {"Frame", &RecordSession::Frame}}};

// Values are not escaped, so one that holds the tag of a later element hides that element.
bool hides_an_element(const RecordSession& record) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const std::string value = lower_ascii(record.*elements[i].value);
        for (std::size_t later = i + 1; later < elements.size(); ++later) {
            if (value.find("<" + lower_ascii(elements[later].tag) + ">") != std::string::npos)
                return true;
        }
    }
    return false;
}

void check_names(const std::string& url) {
    const std::string name = UrlToFileName(url);
    require(std::all_of(name.begin(), name.end(),
                        [](char c) {
                            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                   (c >= '0' && c <= '9') || c == '_';
                        }),
            "a file name holds letters, digits and underscores alone");
    require(UrlToRecordKey(url).find('?') == std::string::npos, "a key holds no query");
    require(UrlToRecordKey(UrlToRecordKey(url)) == UrlToRecordKey(url), "a key is its own key");
}

} // namespace

void read_records(std::string_view input) {
    const std::string text = text_of_bytes(input);
    require(is_utf8(text), "text is UTF-8");
    RecordSession record;
    ParseSessionXml(text, record);
    for (const Element& element : elements) {
        const std::string plain = plain_tag_value(text, element.tag);
        require(GetXmlTag(text, element.tag) == plain, "the tag reader finds what plain search finds");
        if (record.Type != type_preference && !(element.tag == "Type" && plain.empty()))
            require(record.*element.value == plain, "a record holds the values of its tags");
    }
    require(!record.Type.empty(), "every record has a type");
    if (record.Type == type_preference)
        return;
    check_names(record.Url);
    if (hides_an_element(record))
        return;
    RecordSession again;
    ParseSessionXml(text_of_bytes(XmlFileBytes(BuildSessionXml(record))), again);
    require(again == record, "a record written and read back is the same record");
}

} // namespace kestrune::fuzz
