#pragma once

#include "platform/text_file.h" // GetXmlTag, ReadTextFile, WriteXML: the other half of the file format

#include <string>
#include <string_view>

namespace kestrune {

// One remembered web request. In the lists `Session` is an entry's text and the other six are its sub-items.
struct RecordSession {
    std::string Type; // "Form", "Bookmark", or "Preference" for the product profile's file
    std::string Session;
    std::string Url;      // of the page that holds the form
    std::string Action;   // what the form is submitted to; for a bookmark the address it came from
    std::string Postdata; // as submitted, still encoded
    std::string Header;   // raw, may hold CR LF
    std::string Frame;    // "" for the top window

    friend bool operator==(const RecordSession&, const RecordSession&) = default;
};

inline constexpr std::string_view type_form = "Form";
inline constexpr std::string_view type_bookmark = "Bookmark";
inline constexpr std::string_view type_preference = "Preference";

// The record as the text of its file, without the final line end, which WriteXML adds. Values stand as they
// are: a value that holds its own closing tag is cut there when it is read back.
[[nodiscard]] std::string BuildSessionXml(const RecordSession& record);

// Reads a record from the text of a file; what is missing reads "", a missing Type as "Form". Of a
// "Preference" text the Type alone is read and the other fields of `record` are left as they are.
void ParseSessionXml(std::string_view text, RecordSession& record);

// File name of the record of an address, without its extension: the address from its 8th character on,
// whatever the first seven are, with every character other than an ASCII letter or digit as "_". Addresses
// that differ in punctuation alone share a file.
[[nodiscard]] std::string UrlToFileName(std::string_view url);

// What identifies a record in a list: the address in lower case up to its first "?".
[[nodiscard]] std::string UrlToRecordKey(std::string_view url);

} // namespace kestrune
