#include "tools/csv.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrune {
namespace {

using Fields = std::vector<std::string>;

std::vector<Fields> read_all(std::string_view text) {
    CsvReader reader{text};
    std::vector<Fields> records;
    while (auto fields = reader.next())
        records.push_back(std::move(*fields));
    return records;
}

TEST(Csv, EmptyTextHasNoRecords) { EXPECT_TRUE(read_all("").empty()); }

TEST(Csv, FieldsAndRecordsAreSeparatedByCommasAndLineEnds) {
    EXPECT_EQ(read_all("a,b\r\n,\nc"), (std::vector<Fields>{{"a", "b"}, {"", ""}, {"c"}}));
}

TEST(Csv, TextAfterAQuotedFieldIsRefusedWithItsLine) {
    CsvReader reader{"a\n\"b\"c"};
    reader.next();
    try {
        reader.next();
        ADD_FAILURE() << "it was taken";
    } catch (const CsvError& error) {
        EXPECT_EQ(std::string(error.what()), "line 2: text after a quoted field");
    }
}

TEST(Csv, QuotationMarkThatIsNotClosedIsRefused) { EXPECT_THROW(read_all("\"a"), CsvError); }

TEST(Csv, LineNumbersCountTheLineEndsWithinFields) {
    CsvReader reader{"\"a\nb\"\nc\n"};
    reader.next();
    EXPECT_EQ(reader.line(), 1U);
    reader.next();
    EXPECT_EQ(reader.line(), 3U);
}

TEST(Csv, WhatIsWrittenReadsBackTheSame) {
    const std::vector<Fields> records{{"plain", "a,b", "say \"x\"", "two\r\nlines", ""},
                                      {""},
                                      {"\"", ",", "\n", "\r"},
                                      {" blank ", "é", "'"}};
    std::string text;
    for (const Fields& record : records)
        append_csv(text, record);
    EXPECT_EQ(read_all(text), records);
}

} // namespace
} // namespace kestrune
