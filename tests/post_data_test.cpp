#include "sessions/post_data.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;

constexpr const char* limit_warning = "Warning: Only maximum 20 fields can be recorded!";

std::string parts(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += (i > 1 ? "&f" : "f") + std::to_string(i) + "=" + std::to_string(i);
    return text;
}

std::string encoded_again(std::string_view value) { return UrlEncode(UrlDecode(value)); }

TEST(PostData, TwoPairsAreSplitDecodedAndEncodedAgain) {
    StatusBar status{"StatusBar1"};
    const PostFields fields = SplitPostData("name=A+B&q=a%2Cb.c", status);
    EXPECT_THAT(fields.names, ElementsAre("name", "q"));
    EXPECT_THAT(fields.values, ElementsAre("A+B", "a%2Cb.c"));
    EXPECT_EQ(UrlDecode(fields.values[0]), "A B");
    EXPECT_EQ(UrlDecode(fields.values[1]), "a,b.c");
    EXPECT_EQ(encoded_again(fields.values[0]), "A%20B");
    EXPECT_EQ(encoded_again(fields.values[1]), "a%2Cb%2Ec");
    EXPECT_EQ(status.text(1), "");
}

TEST(PostData, UpperCase2BDecodesToASpaceAndLowerCaseToAPlusSign) {
    EXPECT_EQ(UrlDecode("a%2Bb"), "a b");
    EXPECT_EQ(UrlDecode("a%2bb"), "a+b");
    EXPECT_EQ(UrlDecode("a+b"), "a b");
}

TEST(PostData, ControlCharactersEncodeWithoutALeadingZero) {
    EXPECT_EQ(UrlEncode("\n"), "%A");
    EXPECT_EQ(UrlEncode("\r"), "%D");
    EXPECT_EQ(UrlEncode("a\r\nb"), "a%D%Ab");
    EXPECT_EQ(UrlEncode(" \x7f"), "%20%7F");
    EXPECT_NE(UrlDecode(UrlEncode("a\r\nb")), "a\r\nb");
}

TEST(PostData, SixtyTwoPartsGiveSixtyPairsAndTheWarning) {
    StatusBar status{"StatusBar1"};
    const PostFields fields = SplitPostData(parts(62), status);
    EXPECT_EQ(fields.size(), 60U);
    EXPECT_EQ(fields.names.back(), "f60");
    EXPECT_EQ(fields.values.size(), 60U);
    EXPECT_EQ(status.text(1), limit_warning);
}

TEST(PostData, SixtyOnePartsGiveSixtyOnePairsWithoutAWarning) {
    StatusBar status{"StatusBar1"};
    const PostFields fields = SplitPostData(parts(61), status);
    EXPECT_EQ(fields.size(), 61U);
    EXPECT_EQ(fields.names.back(), "f61");
    EXPECT_EQ(status.text(1), "");
}

TEST(PostData, PartWithoutEqualsSignIsANameThatIsJoinedWithOne) {
    const PostFields fields = SplitPostData("go&a=1=2&=x");
    EXPECT_THAT(fields.names, ElementsAre("go", "a", ""));
    EXPECT_THAT(fields.values, ElementsAre("", "1=2", "x"));
    EXPECT_EQ(JoinPostData(fields), "go=&a=1=2&=x");
}

TEST(PostData, EmptyTextIsOneEmptyPair) {
    EXPECT_THAT(SplitPostData("").names, ElementsAre(""));
    EXPECT_THAT(SplitPostData("a=1&").names, ElementsAre("a", ""));
}

TEST(PostData, SplitThenJoinIsTheIdentityForPairsThatHaveEqualsSigns) {
    for (int count = 1; count <= 60; ++count) {
        std::string text = parts(count);
        if (count % 3 == 0)
            text += "%2B+\xC3\xA9=;";
        EXPECT_EQ(JoinPostData(SplitPostData(text)), text);
    }
}

TEST(PostData, HexDigitValueOfAnyCharacterIsItsCodeLessThatOfZero) {
    EXPECT_EQ(HexDigitValue(U'0'), 0);
    EXPECT_EQ(HexDigitValue(U'9'), 9);
    EXPECT_EQ(HexDigitValue(U'A'), 10);
    EXPECT_EQ(HexDigitValue(U'F'), 15);
    EXPECT_EQ(HexDigitValue(U'a'), 10);
    EXPECT_EQ(HexDigitValue(U'f'), 15);
    EXPECT_EQ(HexDigitValue(U'G'), 23);
    EXPECT_EQ(HexDigitValue(U'%'), -11);
}

TEST(PostData, MalformedCodesDecodeToWhatTheDigitsAddUpTo) {
    EXPECT_EQ(UrlDecode("%G1x"), "qx"); // 16 * 23 + 1 = 369, of which the low byte is 113
    EXPECT_EQ(UrlDecode("%D%Ab"), "\xC3\x85"
                                  "Ab"); // 16 * 13 - 11 = 197
    EXPECT_EQ(UrlDecode("100%"), "100%");
    EXPECT_EQ(UrlDecode("%4"), "%4");
}

TEST(PostData, CodesAreReadAsUtf8WhereTheyAreThatAndAsWindows1252Otherwise) {
    EXPECT_EQ(UrlDecode("caf%C3%A9"), "caf\xC3\xA9");
    EXPECT_EQ(UrlDecode("caf%E9"), "caf\xC3\xA9");
    EXPECT_EQ(UrlDecode("%80"), "\xE2\x82\xAC");
    EXPECT_EQ(UrlDecode("%83A"), "\xC6\x92"
                                 "A");
}

TEST(PostData, CharacterThatStandsInTheTextSurvivesBesideAWindows1252Code) {
    EXPECT_EQ(UrlDecode("\xC3\xBC%E9"), "\xC3\xBC\xC3\xA9");
}

TEST(PostData, AccentedLettersAreEncodedInTheRecordsOwnCodePage) {
    EXPECT_EQ(UrlEncode("\xC3\xA9"), "%E9");
    EXPECT_EQ(UrlEncode("\xC3\xA9", CodePage::utf_8), "%C3%A9");
    EXPECT_EQ(UrlEncode("\xE2\x82\xAC"), "%80");
}

TEST(PostData, CharacterOutsideTheCodePageIsEncodedByteByByte) {
    EXPECT_EQ(UrlEncode("\xD0\x96"), "%D0%96");
    EXPECT_EQ(UrlEncode("\xC3\xA9\xD0\x96"), "%C3%A9%D0%96");
}

TEST(PostData, TextThatWouldReadBackAsAnotherIsEncodedInUtf8) {
    const std::string mojibake = "\xC3\x83\xC2\xA9"; // in Windows-1252 the bytes of one letter in UTF-8
    EXPECT_EQ(UrlDecode(UrlEncode(mojibake)), mojibake);
}

TEST(PostData, RecordCodePageIsToldByItsValues) {
    EXPECT_EQ(RecordCodePage("a=%E9&b=x"), CodePage::windows_1252);
    EXPECT_EQ(RecordCodePage("a=%C3%A9&b=x"), CodePage::utf_8);
    EXPECT_EQ(RecordCodePage("a=%C3%A9&b=%E9"), CodePage::windows_1252);
    EXPECT_EQ(RecordCodePage("a=1"), CodePage::windows_1252);
}

TEST(PostData, EveryByteDecodedAndEncodedInWindows1252IsTheSameByte) {
    for (int code = 128; code < 256; ++code) {
        const std::string upper = UrlEncode("\xC3\xBF") + "x"; // keeps the value from being UTF-8
        std::string text = "%" + std::string{"0123456789ABCDEF"[code / 16], "0123456789ABCDEF"[code % 16]};
        text += upper;
        EXPECT_EQ(encoded_again(text), text);
    }
}

} // namespace
} // namespace kestrune
