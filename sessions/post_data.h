#pragma once

#include "platform/code_page.h"
#include "platform/control.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// The name=value pairs of posted data as two parallel lists, indexed from 0, both still encoded. A name may
// occur more than once.
struct PostFields {
    std::vector<std::string> names;
    std::vector<std::string> values;

    [[nodiscard]] std::size_t size() const { return names.size(); }
};

// Cuts posted data at "&" and each part at its first "="; a part without "=" is a name with the value "".
// Parts beyond the 60th are dropped with a warning on panel 1 of the status bar, except that a 61st part
// which is the last one is still taken.
[[nodiscard]] PostFields SplitPostData(std::string_view postdata, StatusBar& status);
// The same without a word to the user.
[[nodiscard]] PostFields SplitPostData(std::string_view postdata);

// The pairs with "=" between name and value and "&" between pairs; nothing is encoded.
[[nodiscard]] std::string JoinPostData(const PostFields& fields);

// Gives the pair at this position (0-based, in the order of SplitPostData) another value, encoded already;
// everything else stays as it is. Nothing happens when there is no such pair.
void ReplacePostValue(std::string& postdata, std::size_t position, std::string_view value);

// What the user typed, from an encoded value. "%2B" is a space like "+"; "%2b" is a plus sign. The bytes of
// "%" codes are read as UTF-8 or Windows-1252, whichever the value is. A "%" that fewer than two characters
// follow stays as it is; one that other characters than digits follow gives the low byte of the sum.
[[nodiscard]] std::string UrlDecode(std::string_view text);

// Digit value of a character: 0 to 15 for hexadecimal digits; any other code point gives its code minus that
// of "0", whatever that is.
[[nodiscard]] int HexDigitValue(char32_t character);

// Every character but ASCII letters and digits as "%" and its code in upper-case hexadecimal without a
// leading zero (a line feed is "%A"). A character that Windows-1252 has no byte for gets one code for each of
// its bytes in UTF-8; a value that holds one, or that would read back as another text, is in UTF-8 as a
// whole.
[[nodiscard]] std::string UrlEncode(std::string_view text, CodePage code_page = CodePage::windows_1252);

// The code page of posted data: UTF-8 or Windows-1252 by its "%" codes, all values together. Data that shows
// neither counts as Windows-1252, the code page of the original's records.
[[nodiscard]] CodePage RecordCodePage(std::string_view postdata);

} // namespace kestrune
