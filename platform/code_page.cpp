#include "platform/code_page.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kestrune {
namespace {

// Characters 0x80 to 0x9F of Windows-1252; all others have the code that they have in Unicode.
constexpr std::array<char16_t, 32> high_controls{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned char byte_at(std::string_view text, std::size_t at) { return static_cast<unsigned char>(text[at]); }

// Position of the first byte at or after `at` that is no ASCII; eight at a time, because most text is.
std::size_t ascii_end(std::string_view text, std::size_t at) {
    constexpr std::uint64_t high_bits = 0x8080808080808080U;
    std::uint64_t eight = 0;
    for (; at + sizeof eight <= text.size(); at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if ((eight & high_bits) != 0)
            break;
    }
    while (at < text.size() && byte_at(text, at) < 0x80)
        ++at;
    return at;
}

bool is_ascii(std::string_view text) { return ascii_end(text, 0) == text.size(); }

// Length of the well-formed sequence at `at`, 0 when there is none. Overlong forms, surrogates and codes
// beyond U+10FFFF are not well-formed: accepting them would make two spellings of one text.
std::size_t sequence_length(std::string_view text, std::size_t at) {
    const unsigned char lead = byte_at(text, at);
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte_at(text, at + i) & 0xC0U) != 0x80U)
            return 0;
    }
    const unsigned char second = byte_at(text, at + 1);
    const bool out_of_range = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                              (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return out_of_range ? 0 : length;
}

// Code of a well-formed character of two or three bytes; 0 for a longer one, which no code page byte stands
// for.
char16_t code_of(std::string_view character) {
    if (character.size() == 2)
        return static_cast<char16_t>(((byte_at(character, 0) & 0x1FU) << 6U) |
                                     (byte_at(character, 1) & 0x3FU));
    if (character.size() == 3)
        return static_cast<char16_t>(((byte_at(character, 0) & 0x0FU) << 12U) |
                                     ((byte_at(character, 1) & 0x3FU) << 6U) |
                                     (byte_at(character, 2) & 0x3FU));
    return 0;
}

} // namespace

bool is_utf8(std::string_view bytes) {
    for (std::size_t at = ascii_end(bytes, 0); at < bytes.size(); at = ascii_end(bytes, at)) {
        const std::size_t length = sequence_length(bytes, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

std::size_t character_length(std::string_view text, std::size_t at) {
    return std::max<std::size_t>(sequence_length(text, at), 1);
}

std::optional<CodePage> code_page_of(std::string_view bytes) {
    if (is_ascii(bytes))
        return std::nullopt;
    return is_utf8(bytes) ? CodePage::utf_8 : CodePage::windows_1252;
}

void append_character(std::string& out, unsigned char windows_1252) {
    const char16_t code = windows_1252 >= 0x80 && windows_1252 <= 0x9F ? high_controls[windows_1252 - 0x80U]
                                                                       : static_cast<char16_t>(windows_1252);
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0U | (code >> 6U));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    } else {
        out += static_cast<char>(0xE0U | (code >> 12U));
        out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    }
}

bool append_windows_1252(std::string& out, std::string_view character) {
    if (character.size() == 1) {
        if (byte_at(character, 0) >= 0x80)
            return false;
        out += character;
        return true;
    }
    const char16_t code = code_of(character);
    if (code >= 0xA0 && code <= 0xFF) {
        out += static_cast<char>(code);
        return true;
    }
    const auto* const found = std::find(high_controls.begin(), high_controls.end(), code);
    if (code == 0 || found == high_controls.end())
        return false;
    out += static_cast<char>(0x80 + (found - high_controls.begin()));
    return true;
}

std::string text_of_bytes(std::string_view bytes) {
    if (is_utf8(bytes))
        return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes)
        append_character(text, static_cast<unsigned char>(byte));
    return text;
}

std::optional<std::string> windows_1252_bytes(std::string_view text) {
    if (is_ascii(text))
        return std::string(text);
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = character_length(text, at);
        if (!append_windows_1252(bytes, text.substr(at, length)))
            return std::nullopt;
        at += length;
    }
    if (is_utf8(bytes))
        return std::nullopt;
    return bytes;
}

std::string bytes_of_text(std::string_view text) {
    auto bytes = windows_1252_bytes(text);
    return bytes ? std::move(*bytes) : std::string(text);
}

} // namespace kestrune
