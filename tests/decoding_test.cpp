#include "platform/decoding.h"

#include "platform/text.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrune {
namespace {

using namespace std::string_literals;

std::string declared(const std::string& encoding, const std::string& rest) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" + rest;
}

std::string utf16(std::string_view ascii, bool big_endian) {
    std::string bytes;
    for (const char letter : ascii)
        bytes += big_endian ? std::string{'\0', letter} : std::string{letter, '\0'};
    return bytes;
}

TEST(Decoding, Utf8IsReadWithAndWithoutByteOrderMark) {
    EXPECT_EQ(decode_xml("<a>\u00E4</a>"), "<a>\u00E4</a>");
    EXPECT_EQ(decode_xml("\xEF\xBB\xBF<a>\u00E4</a>"), "<a>\u00E4</a>");
}

TEST(Decoding, UndeclaredBytesThatAreNoUtf8AreWindows1252) {
    EXPECT_EQ(decode_xml("<a>\x80\xE4</a>"), "<a>\u20AC\u00E4</a>");
}

TEST(Decoding, DeclaredCodePagesAreRead) {
    EXPECT_EQ(decode_xml(declared("windows-1251", "\xCF\xF0")), declared("windows-1251", "\u041F\u0440"));
    EXPECT_EQ(decode_xml(declared("Windows-1252", "\x93\xE9")), declared("Windows-1252", "\u201C\u00E9"));
    EXPECT_EQ(decode_xml(declared("ISO-8859-2", "\xB1\xE6")), declared("ISO-8859-2", "\u0105\u0107"));
    EXPECT_EQ(decode_xml(declared("iso-8859-5", "\xBF")), declared("iso-8859-5", "\u041F"));
    EXPECT_EQ(decode_xml(declared("iso-8859-15", "\xA4")), declared("iso-8859-15", "\u20AC"));
}

TEST(Decoding, DeclaredCodePageWinsOverBytesThatCouldBeUtf8) {
    EXPECT_EQ(decode_xml(declared("windows-1251", "\xD0\x9F")), declared("windows-1251", "\u0420\u045F"));
}

TEST(Decoding, Iso88591FromWindowsKeepsItsQuotes) {
    EXPECT_EQ(decode_xml(declared("ISO-8859-1", "\x93x\x94")), declared("ISO-8859-1", "\u201Cx\u201D"));
}

TEST(Decoding, DeclarationInSingleQuotesOrAfterBlanksCounts) {
    EXPECT_EQ(decode_xml("\r\n<?xml version='1.0' encoding='windows-1251' ?>\xCF"),
              "\r\n<?xml version='1.0' encoding='windows-1251' ?>\u041F");
}

TEST(Decoding, Utf16IsReadByMarkOrByItsFirstBytes) {
    EXPECT_EQ(decode_xml("\xFF\xFE"s + utf16("<a/>", false)), "<a/>");
    EXPECT_EQ(decode_xml("\xFE\xFF"s + utf16("<a/>", true)), "<a/>");
    EXPECT_EQ(decode_xml(utf16("<a/>", false)), "<a/>");
    EXPECT_EQ(decode_xml(utf16("<a/>", true)), "<a/>");
}

TEST(Decoding, Utf16SurrogatesBecomeOneCharacterAndHalvesAReplacement) {
    EXPECT_EQ(decode_xml("\xFF\xFE\x3D\xD8\x00\xDE"s), "\U0001F600");
    EXPECT_EQ(decode_xml("\xFF\xFE\x3D\xD8\x41\x00"s), "\uFFFDA");
    EXPECT_EQ(decode_xml("\xFF\xFE\x00\xDE\x41\x00"s), "\uFFFDA");
    EXPECT_EQ(decode_xml("\xFF\xFE\x41\x00\x42"s), "A\uFFFD");
}

TEST(Decoding, EightBitTextThatClaimsUtf16IsReadAsWhatItIs) {
    EXPECT_EQ(decode_xml(declared("UTF-16", "\u00E4")), declared("UTF-16", "\u00E4"));
}

TEST(Decoding, UnknownEncodingIsReadAsUtf8OrWindows1252) {
    EXPECT_EQ(decode_xml(declared("klingon", "\xE4")), declared("klingon", "\u00E4"));
    EXPECT_EQ(decode_xml(declared("../x//TRANSLIT", "\xE4")), declared("../x//TRANSLIT", "\u00E4"));
    EXPECT_EQ(decode_xml(declared("utf-8", "\xE4")), declared("utf-8", "\u00E4"));
}

TEST(Decoding, BytesOutsideTheDeclaredEncodingAreReplacedAndTheRestIsRead) {
    EXPECT_EQ(decode_xml(declared("iso-8859-7", "a\xFF"
                                                "b")),
              declared("iso-8859-7", "a\uFFFDb"));
}

TEST(Decoding, LongTextIsReadPastTheConvertersBuffer) {
    const std::string rest(10000, '\xCF');
    const std::string text = decode_xml(declared("windows-1251", rest));
    EXPECT_EQ(text.size(), declared("windows-1251", "").size() + 20000);
    EXPECT_EQ(text.substr(text.size() - 2), "\u041F");
}

TEST(Decoding, NothingDecodesToNothing) {
    EXPECT_EQ(decode_xml(""), "");
    EXPECT_EQ(decode_xml("<?xml encoding"), "<?xml encoding");
}

TEST(FindIgnoringCase, FindsTextThatBeginsWithASignOrALetterFromAGivenPlace) {
    EXPECT_EQ(find_ignoring_ascii_case("<<A></a>", "<a>"), 1U);
    EXPECT_EQ(find_ignoring_ascii_case("<a><A>", "<a>", 1), 3U);
    EXPECT_EQ(find_ignoring_ascii_case("<a", "<a>"), std::string_view::npos);
    EXPECT_EQ(find_ignoring_ascii_case("xAb", "aB"), 1U);
    EXPECT_EQ(find_ignoring_ascii_case("abc", "", 2), 2U);
    EXPECT_EQ(find_ignoring_ascii_case("abc", "a", 4), std::string_view::npos);
}

} // namespace
} // namespace kestrune
