#include "platform/jet/jet_text.h"

#include "platform/jet/jet_header.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace kestrune {
namespace {

using namespace std::string_literals;

TEST(JetText, Utf16IsRead) { EXPECT_EQ(jet4_text("A\0\xe9\0\xac\x20"s), "Aé€"); }

TEST(JetText, PairOfSurrogatesIsOneCharacter) {
    EXPECT_EQ(jet4_text("\x3d\xd8\x00\xde"s), "\xf0\x9f\x98\x80");
}

TEST(JetText, HalfASurrogatePairIsReplaced) {
    EXPECT_EQ(jet4_text("\x3d\xd8x\0"s), "\xef\xbf\xbdx");
    EXPECT_EQ(jet4_text("\x00\xde"s), "\xef\xbf\xbd");
    EXPECT_EQ(jet4_text("x\0\x3d\xd8"s), "x\xef\xbf\xbd");
}

TEST(JetText, CompressedTextIsLatin1) {
    EXPECT_EQ(jet4_text("\xff\xfe"
                        "caf\xe9"s),
              "café");
}

TEST(JetText, ZeroByteInACompressedTextChangesToUtf16AndBack) {
    EXPECT_EQ(jet4_text("\xff\xfe"
                        "a\0\xac\x20\x3a\x04\0b"s),
              "a€кb");
}

TEST(JetText, OddLastByteIsDropped) { EXPECT_EQ(jet4_text("A\0B"s), "A"); }

TEST(JetText, EmptyTextIsEmpty) {
    EXPECT_EQ(jet4_text(""), "");
    EXPECT_EQ(jet4_text("\xff\xfe"s), "");
}

TEST(CodePageReader, BytesAreReadInTheFilesCodePage) {
    EXPECT_EQ(CodePageReader{1252}.read("\x80 \xe9"), "€ é");
    EXPECT_EQ(CodePageReader{1251}.read("\xea"), "к");
    EXPECT_EQ(CodePageReader{932}.read("\x93\xfa\x96\x7b"), "日本");
}

TEST(CodePageReader, ByteThatTheCodePageLeavesOpenIsKept) {
    EXPECT_EQ(CodePageReader{1252}.read("a\x81z"), "a\xc2\x81z");
}

TEST(CodePageReader, CutDoubleByteCharacterDoesNotEndTheText) {
    EXPECT_EQ(CodePageReader{932}.read("a\x93"), "a\xc2\x93");
}

TEST(CodePageReader, LongTextIsReadWhole) {
    EXPECT_EQ(CodePageReader{1252}.read(std::string(5000, '\x80')).size(), 15000U);
}

TEST(CodePageReader, UnknownCodePageIsReadAsWindows1252) { EXPECT_EQ(CodePageReader{9}.read("\x80"), "€"); }

TEST(JetDate, DaysAndTheirFractionBecomeDateAndTime) {
    EXPECT_EQ(jet_date(0.0), "1899-12-30 00:00:00");
    EXPECT_EQ(jet_date(36584.75), "2000-02-28 18:00:00");
    EXPECT_EQ(jet_date(36585.0), "2000-02-29 00:00:00");
    EXPECT_EQ(jet_date(2958465.0 + 86399.0 / 86400.0), "9999-12-31 23:59:59");
}

TEST(JetDate, TimeOfDayBefore1900CountsForward) { EXPECT_EQ(jet_date(-1.25), "1899-12-29 06:00:00"); }

TEST(JetDate, RoundingUpToMidnightIsTheNextDay) { EXPECT_EQ(jet_date(1.9999999), "1900-01-01 00:00:00"); }

TEST(JetDate, WhatIsNoDateIsEmpty) {
    EXPECT_EQ(jet_date(1e18), "");
    EXPECT_EQ(jet_date(std::numeric_limits<double>::quiet_NaN()), "");
}

TEST(JetCurrency, EveryDigitIsKept) {
    EXPECT_EQ(jet_currency(0), "0.0000");
    EXPECT_EQ(jet_currency(100), "0.0100");
    EXPECT_EQ(jet_currency(-12345), "-1.2345");
    EXPECT_EQ(jet_currency(std::numeric_limits<std::int64_t>::max()), "922337203685477.5807");
    EXPECT_EQ(jet_currency(std::numeric_limits<std::int64_t>::min()), "-922337203685477.5808");
}

TEST(JetHeader, TextThatIsNoDatabaseIsForeign) {
    EXPECT_FALSE(read_jet_header("").is_jet);
    EXPECT_FALSE(read_jet_header(std::string(4096, 'x')).is_jet);
    EXPECT_FALSE(read_jet_header("\0\1\0\0Standard Jet DB\0"s).is_jet);
    EXPECT_FALSE(read_jet_header("\0\1\0\0Standard ACE DB\0"s + std::string(4096, '\0')).is_jet);
}

} // namespace
} // namespace kestrune
