#include "platform/text.h"

#include <algorithm>
#include <clocale>
#include <cwctype>
#include <locale.h>

namespace kestrune {
namespace {

char lower_ascii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// One code point of UTF-8 and its length in bytes; length 0 when the bytes at `at` are no UTF-8.
struct CodePoint {
    char32_t value = 0;
    std::size_t length = 0;
};

CodePoint decode(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 0;
    char32_t value = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        value = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        value = lead & 0x0FU;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        value = lead & 0x07U;
    } else {
        return {};
    }
    if (at + length > text.size())
        return {};
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0U) != 0x80U)
            return {};
        value = (value << 6U) | (byte & 0x3FU);
    }
    return {value, length};
}

void append_utf8(std::string& out, char32_t value) {
    if (value < 0x80) {
        out += static_cast<char>(value);
    } else if (value < 0x800) {
        out += static_cast<char>(0xC0U | (value >> 6U));
        out += static_cast<char>(0x80U | (value & 0x3FU));
    } else if (value < 0x10000) {
        out += static_cast<char>(0xE0U | (value >> 12U));
        out += static_cast<char>(0x80U | ((value >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (value & 0x3FU));
    } else {
        out += static_cast<char>(0xF0U | (value >> 18U));
        out += static_cast<char>(0x80U | ((value >> 12U) & 0x3FU));
        out += static_cast<char>(0x80U | ((value >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (value & 0x3FU));
    }
}

// Letters outside ASCII follow the C library's Unicode tables, independent of the user's locale.
locale_t unicode_locale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

char32_t lower_letter(char32_t value) {
    const locale_t locale = unicode_locale();
    if (locale == nullptr)
        return value;
    return static_cast<char32_t>(towlower_l(static_cast<wint_t>(value), locale));
}

} // namespace

std::string lower_case(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            out += lower_ascii(text[at++]);
            continue;
        }
        const auto [value, length] = decode(text, at);
        if (length == 0) {
            out += text[at++];
            continue;
        }
        append_utf8(out, lower_letter(value));
        at += length;
    }
    return out;
}

bool equal_ignoring_case(std::string_view left, std::string_view right) {
    if (left == right)
        return true;
    const auto ascii = [](char letter) { return static_cast<unsigned char>(letter) < 0x80; };
    const std::size_t shorter = std::min(left.size(), right.size());
    std::size_t at = 0;
    for (; at < shorter && ascii(left[at]) && ascii(right[at]); ++at) {
        if (lower_ascii(left[at]) != lower_ascii(right[at]))
            return false;
    }
    // Outside ASCII letters of both cases may differ in length.
    return lower_case(left.substr(at)) == lower_case(right.substr(at));
}

std::size_t find_ignoring_ascii_case(std::string_view text, std::string_view what, std::size_t from) {
    if (from > text.size())
        return std::string_view::npos;
    if (what.empty())
        return from;
    const auto same = [](char a, char b) { return lower_ascii(a) == lower_ascii(b); };
    const char first = what.front();
    if ((first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z')) {
        const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                       what.begin(), what.end(), same);
        return found == text.end() ? std::string_view::npos : static_cast<std::size_t>(found - text.begin());
    }
    // Tags begin with "<", which the standard library finds many times faster than a comparison of letters.
    for (std::size_t at = text.find(first, from); at != std::string_view::npos;
         at = text.find(first, at + 1)) {
        const std::string_view here = text.substr(at, what.size());
        if (std::equal(here.begin(), here.end(), what.begin(), what.end(), same))
            return at;
    }
    return std::string_view::npos;
}

} // namespace kestrune
