#include "platform/decoding.h"

#include "platform/code_page.h"
#include "platform/text.h"

#include <array>
#include <cerrno>
#include <iconv.h>
#include <memory>
#include <optional>
#include <type_traits>

namespace kestrune {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

bool starts_with(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

void append_code_point(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0U | (code >> 6U));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0U | (code >> 12U));
        out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    } else {
        out += static_cast<char>(0xF0U | (code >> 18U));
        out += static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
        out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    }
}

std::string text_of_utf16(std::string_view bytes, bool big_endian) {
    const auto unit = [&](std::size_t at) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<char32_t>(big_endian ? (first << 8U) | second : (second << 8U) | first);
    };
    std::string text;
    text.reserve(bytes.size() / 2 + bytes.size() / 8);
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        char32_t code = unit(at);
        if (code >= 0xD800 && code <= 0xDFFF) {
            const char32_t low = code < 0xDC00 && at + 3 < bytes.size() ? unit(at + 2) : 0;
            if (low < 0xDC00 || low > 0xDFFF) {
                text += replacement;
                continue;
            }
            code = 0x10000 + ((code - 0xD800) << 10U) + (low - 0xDC00);
            at += 2;
        }
        append_code_point(text, code);
    }
    if (at < bytes.size())
        text += replacement;
    return text;
}

std::string text_of_windows_1252(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes)
        append_character(text, static_cast<unsigned char>(byte));
    return text;
}

struct CloseConverter {
    void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseConverter>;

bool is_encoding_name(std::string_view name) {
    return name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789._:-") == std::string_view::npos;
}

// Nothing when the platform does not know the encoding.
std::optional<std::string> text_of(std::string_view bytes, const std::string& encoding) {
    iconv_t const opened = iconv_open("UTF-8", encoding.c_str());
    // NOLINTNEXTLINE(performance-no-int-to-ptr): how the C library says that it could not.
    if (opened == reinterpret_cast<iconv_t>(-1))
        return std::nullopt;
    const Converter converter{opened};
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 4);
    // The C library does not write through this pointer.
    char* from = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    std::array<char, 4096> piece{};
    while (left > 0) {
        char* to = piece.data();
        std::size_t room = piece.size();
        const std::size_t result = iconv(converter.get(), &from, &left, &to, &room);
        text.append(piece.data(), piece.size() - room);
        if (result != static_cast<std::size_t>(-1) || errno == E2BIG)
            continue;
        text += replacement;
        ++from;
        --left;
    }
    return text;
}

// The encoding that the XML declaration names, in lower case; "" without one.
std::string declared_encoding(std::string_view bytes) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t start = bytes.find_first_not_of(blanks);
    if (start == std::string_view::npos || !starts_with(bytes.substr(start), "<?xml"))
        return {};
    std::string_view declaration = bytes.substr(start);
    declaration = declaration.substr(0, declaration.find('>'));
    std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos)
        return {};
    at = declaration.find_first_of("\"'", at);
    if (at == std::string_view::npos)
        return {};
    const std::size_t end = declaration.find(declaration[at], at + 1);
    if (end == std::string_view::npos)
        return {};
    return lower_case(declaration.substr(at + 1, end - at - 1));
}

} // namespace

std::string decode_xml(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (starts_with(bytes, "\xEF\xBB\xBF"sv))
        return text_of_bytes(bytes.substr(3));
    if (starts_with(bytes, "\xFF\xFE"sv))
        return text_of_utf16(bytes.substr(2), false);
    if (starts_with(bytes, "\xFE\xFF"sv))
        return text_of_utf16(bytes.substr(2), true);
    if (starts_with(bytes, "<\0"sv))
        return text_of_utf16(bytes, false);
    if (starts_with(bytes, "\0<"sv))
        return text_of_utf16(bytes, true);

    const std::string encoding = declared_encoding(bytes);
    if (encoding == "windows-1252" || encoding == "iso-8859-1" || encoding == "latin1")
        return text_of_windows_1252(bytes);
    // A declaration that can be read byte by byte is not written in 16 or 32 bits, whatever it says.
    if (encoding.empty() || !is_encoding_name(encoding) || starts_with(encoding, "utf") ||
        starts_with(encoding, "ucs"))
        return text_of_bytes(bytes);
    auto text = text_of(bytes, encoding);
    return text ? *std::move(text) : text_of_bytes(bytes);
}

} // namespace kestrune
