#include "sessions/post_data.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kestrune {
namespace {

constexpr std::size_t most_pairs = 60;

void append_pair(PostFields& fields, std::string_view part) {
    const std::size_t equals = part.find('=');
    fields.names.emplace_back(part.substr(0, equals));
    fields.values.emplace_back(equals == std::string_view::npos ? std::string_view{}
                                                                : part.substr(equals + 1));
}

// The pairs, and whether some had to be dropped.
std::pair<PostFields, bool> split(std::string_view rest) {
    PostFields fields;
    for (std::size_t end = rest.find('&'); end != std::string_view::npos; end = rest.find('&')) {
        if (fields.size() == most_pairs)
            return {std::move(fields), true};
        append_pair(fields, rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    append_pair(fields, rest);
    return {std::move(fields), false};
}

char32_t code_point(std::string_view character) {
    if (character.size() == 1)
        return static_cast<unsigned char>(character[0]);
    char32_t code = static_cast<unsigned char>(character[0]) & (0x7FU >> character.size());
    for (const char byte : character.substr(1))
        code = (code << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
    return code;
}

// One step of decoding: a character of the text as it stands, or a byte that a "%" code names.
struct Decoded {
    std::string_view character;
    unsigned char byte = 0;
};

// Takes one step off the front of `text`.
Decoded take(std::string_view& text) {
    const std::string_view first = text.substr(0, character_length(text, 0));
    text.remove_prefix(first.size());
    if (first == "+")
        return {" "};
    if (first != "%" || text.empty())
        return {first};
    const std::string_view high = text.substr(0, character_length(text, 0));
    if (high.size() == text.size())
        return {first};
    const std::string_view low = text.substr(high.size(), character_length(text, high.size()));
    text.remove_prefix(high.size() + low.size());
    if (high == "2" && low == "B")
        return {" "};
    const std::int64_t sum =
        16 * std::int64_t{HexDigitValue(code_point(high))} + HexDigitValue(code_point(low));
    return {{}, static_cast<unsigned char>(sum & 0xFF)};
}

void append_code(std::string& out, unsigned char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    out += '%';
    if (byte >= 16)
        out += digits[byte >> 4U];
    out += digits[byte & 0x0FU];
}

bool is_plain(char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

} // namespace

PostFields SplitPostData(std::string_view postdata) { return split(postdata).first; }

PostFields SplitPostData(std::string_view postdata, StatusBar& status) {
    auto [fields, dropped] = split(postdata);
    if (dropped)
        status.set_text(1, "Warning: Only maximum 20 fields can be recorded!");
    return std::move(fields);
}

std::string JoinPostData(const PostFields& fields) {
    std::string joined;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!joined.empty())
            joined += '&';
        joined.append(fields.names[i]).append("=").append(fields.values[i]);
    }
    return joined;
}

void ReplacePostValue(std::string& postdata, std::size_t position, std::string_view value) {
    std::size_t begin = 0;
    for (; position > 0; --position) {
        const std::size_t end = postdata.find('&', begin);
        if (end == std::string::npos)
            return;
        begin = end + 1;
    }
    const std::size_t end = std::min(postdata.find('&', begin), postdata.size());
    const std::size_t equals = postdata.find('=', begin);
    if (equals < end)
        postdata.replace(equals + 1, end - equals - 1, value);
    else
        postdata.insert(end, std::string("=").append(value));
}

int HexDigitValue(char32_t character) {
    if (character >= U'A' && character <= U'F')
        return static_cast<int>(character - U'A') + 10;
    if (character >= U'a' && character <= U'f')
        return static_cast<int>(character - U'a') + 10;
    return static_cast<int>(character) - static_cast<int>(U'0');
}

std::string UrlDecode(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();) {
        const Decoded step = take(rest);
        if (step.character.empty())
            bytes += static_cast<char>(step.byte);
        else
            bytes += step.character;
    }
    if (is_utf8(bytes))
        return bytes;
    // Windows-1252 holds for what was encoded; what stood in the text as a character is one already.
    std::string decoded;
    for (std::string_view rest = text; !rest.empty();) {
        const Decoded step = take(rest);
        if (step.character.empty())
            append_character(decoded, step.byte);
        else
            decoded += step.character;
    }
    return decoded;
}

std::string UrlEncode(std::string_view text, CodePage code_page) {
    std::string bytes = code_page == CodePage::windows_1252 ? bytes_of_text(text) : std::string(text);
    std::string encoded;
    encoded.reserve(bytes.size());
    for (const char byte : bytes) {
        if (is_plain(byte))
            encoded += byte;
        else
            append_code(encoded, static_cast<unsigned char>(byte));
    }
    return encoded;
}

CodePage RecordCodePage(std::string_view postdata) {
    bool utf_8 = false;
    const PostFields fields = SplitPostData(postdata);
    for (const std::string& value : fields.values) {
        std::string bytes;
        for (std::string_view rest = value; !rest.empty();) {
            const Decoded step = take(rest);
            if (step.character.empty())
                bytes += static_cast<char>(step.byte);
            else if (step.character.size() == 1)
                bytes += step.character;
        }
        const auto code_page = code_page_of(bytes);
        if (code_page == CodePage::windows_1252)
            return CodePage::windows_1252;
        utf_8 = utf_8 || code_page == CodePage::utf_8;
    }
    return utf_8 ? CodePage::utf_8 : CodePage::windows_1252;
}

} // namespace kestrune
