#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune {

// A text as Jet 4 stores it, in UTF-8: UTF-16, or with the bytes FF FE in front a mixture of runs of Latin-1
// and of UTF-16. What is no character becomes U+FFFD.
std::string jet4_text(std::string_view stored);

// Texts as Jet 3 stores them: bytes in the file's own code page.
class CodePageReader {
public:
    // A Windows code page by its number; one that is not known here is read as Windows-1252.
    explicit CodePageReader(std::uint16_t code_page);
    ~CodePageReader();
    CodePageReader(const CodePageReader&) = delete;
    CodePageReader& operator=(const CodePageReader&) = delete;
    CodePageReader(CodePageReader&&) = delete;
    CodePageReader& operator=(CodePageReader&&) = delete;

    // In UTF-8. A byte that the code page leaves open becomes the control character of the same number, as
    // Windows has it.
    [[nodiscard]] std::string read(std::string_view stored) const;

private:
    void* converter_;
};

// Jet's count of days, as "2004-02-29 13:05:00"; days before 1899-12-30 are negative and their time of day
// counts forward all the same. Empty for what is no date.
std::string jet_date(double days);

// An amount in ten-thousandths, with its four digits after the point.
std::string jet_currency(std::int64_t ten_thousandths);

} // namespace kestrune
