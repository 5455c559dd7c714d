#pragma once

#include "platform/files.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrune {

// The text of a file, read in UTF-8 or Windows-1252, whichever its bytes are. False, and `text` is empty,
// when the file is missing, empty or cannot be read.
bool ReadTextFile(const Files& files, const std::string& path, std::string& text);

// The same of a file's bytes, which are nothing when it could not be read.
bool TextOfFile(std::optional<std::string> bytes, std::string& text);

// Writes the text and a final CR LF, replacing any earlier content, in Windows-1252 where that holds the
// whole text, else in UTF-8. Callers that keep to the rule that nobody is told of a failed write ignore the
// result.
bool WriteXML(Files& files, const std::string& path, std::string_view text);

// The bytes that WriteXML puts into the file.
[[nodiscard]] std::string XmlFileBytes(std::string_view text);

// The value of the first <tag> in the text, up to the first </tag> after it, both in any letter case; "" when
// either is missing. Nothing is unescaped or trimmed, nesting is not understood.
[[nodiscard]] std::string GetXmlTag(std::string_view text, std::string_view tag);

// The values of several tags as GetXmlTag gives them, as parts of the text, with one walk over it.
void GetXmlTags(std::string_view text, std::span<const std::string_view> tags,
                std::span<std::string_view> values);
template <std::size_t count>
[[nodiscard]] std::array<std::string_view, count> GetXmlTags(std::string_view text,
                                                             std::array<std::string_view, count> tags) {
    std::array<std::string_view, count> values;
    GetXmlTags(text, std::span<const std::string_view>{tags}, std::span<std::string_view>{values});
    return values;
}

} // namespace kestrune
