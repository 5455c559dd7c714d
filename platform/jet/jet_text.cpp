#include "platform/jet/jet_text.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iconv.h>
#include <utility>

namespace kestrune {
namespace {

constexpr char32_t replacement = 0xfffd;

void append_utf8(std::string& text, char32_t c) {
    const auto put = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xc0 | c >> 6U);
        put(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        put(0xe0 | c >> 12U);
        put(0x80 | (c >> 6U & 0x3f));
        put(0x80 | (c & 0x3f));
    } else {
        put(0xf0 | c >> 18U);
        put(0x80 | (c >> 12U & 0x3f));
        put(0x80 | (c >> 6U & 0x3f));
        put(0x80 | (c & 0x3f));
    }
}

// Puts UTF-16 units together.
class Utf16 {
public:
    explicit Utf16(std::string& text) : text_(text) {}

    void add(char16_t unit) {
        const bool low = unit >= 0xdc00 && unit < 0xe000;
        if (high_ != 0) {
            const char32_t high = std::exchange(high_, 0);
            if (low) {
                append_utf8(text_, 0x10000 + ((high - 0xd800U) << 10U) + (unit - 0xdc00U));
                return;
            }
            append_utf8(text_, replacement);
        }
        if (unit >= 0xd800 && unit < 0xdc00)
            high_ = unit;
        else
            append_utf8(text_, low ? replacement : static_cast<char32_t>(unit));
    }
    void finish() {
        if (high_ != 0)
            append_utf8(text_, replacement);
    }

private:
    std::string& text_;
    char16_t high_ = 0;
};

unsigned char byte_at(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

char16_t unit_at(std::string_view bytes, std::size_t at) {
    return static_cast<char16_t>(byte_at(bytes, at) | byte_at(bytes, at + 1) << 8);
}

} // namespace

std::string jet4_text(std::string_view stored) {
    std::string text;
    Utf16 units{text};
    // A zero byte in a mixture ends a run of one kind and begins one of the other.
    const bool mixture = stored.starts_with("\xff\xfe");
    bool latin = mixture;
    for (std::size_t at = mixture ? 2 : 0; at < stored.size();) {
        if (mixture && stored[at] == '\0') {
            latin = !latin;
            ++at;
        } else if (latin) {
            units.add(byte_at(stored, at++));
        } else if (at + 1 < stored.size()) {
            units.add(unit_at(stored, at));
            at += 2;
        } else {
            break;
        }
    }
    units.finish();
    return text;
}

CodePageReader::CodePageReader(std::uint16_t code_page)
    : converter_(::iconv_open("UTF-8", ("CP" + std::to_string(code_page)).c_str())) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): how iconv says that it cannot.
    if (converter_ == reinterpret_cast<iconv_t>(-1))
        converter_ = ::iconv_open("UTF-8", "CP1252");
}

CodePageReader::~CodePageReader() { ::iconv_close(converter_); }

std::string CodePageReader::read(std::string_view stored) const {
    std::string text;
    std::string input{stored};
    char* from = input.data();
    std::size_t left = input.size();
    ::iconv(converter_, nullptr, nullptr, nullptr, nullptr);
    while (left > 0) {
        std::array<char, 512> buffer{};
        char* to = buffer.data();
        std::size_t room = buffer.size();
        const std::size_t result = ::iconv(converter_, &from, &left, &to, &room);
        text.append(buffer.data(), buffer.size() - room);
        if (result == static_cast<std::size_t>(-1) && room == buffer.size() && left > 0) {
            append_utf8(text, static_cast<unsigned char>(*from));
            ++from;
            --left;
        }
    }
    return text;
}

std::string jet_date(double days) {
    using namespace std::chrono;
    // The years 100 to 9999, all that Jet knows.
    if (!(days > -657435.0 && days < 2958466.0))
        return {};
    const double whole = std::trunc(days);
    const auto seconds_of_day = seconds(std::llround(std::fabs(days - whole) * 86400.0));
    constexpr sys_days epoch = year(1899) / December / 30;
    const auto moment = epoch + std::chrono::days(static_cast<int>(whole)) + seconds_of_day;
    const auto day = floor<std::chrono::days>(moment);
    const year_month_day date{day};
    const hh_mm_ss time{moment - day};
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", int{date.year()},
                  unsigned{date.month()}, unsigned{date.day()}, static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return text.data();
}

std::string jet_currency(std::int64_t ten_thousandths) {
    const bool negative = ten_thousandths < 0;
    const auto amount = static_cast<std::uint64_t>(ten_thousandths);
    const std::uint64_t size = negative ? 0 - amount : amount;
    std::string digits = std::to_string(size % 10000);
    digits.insert(digits.begin(), 4 - digits.size(), '0');
    std::string text = negative ? "-" : "";
    return text.append(std::to_string(size / 10000)).append(".").append(digits);
}

} // namespace kestrune
