#include "sessions/record_session.h"

#include "platform/code_page.h"
#include "platform/memory/memory_files.h"

#include <gtest/gtest.h>
#include <random>

namespace kestrune {
namespace {

RecordSession sample() {
    return {"Form", "Session3", "http://a.b/add.html", "http://a.b/cgi/add.php", "name=A+B&q=a%2Cb.c",
            "",     "main"};
}

RecordSession read_back(const RecordSession& record) {
    MemoryFiles files;
    files.folders = {"session"};
    WriteXML(files, "session/x.xml", BuildSessionXml(record));
    std::string text;
    RecordSession back;
    if (ReadTextFile(files, "session/x.xml", text))
        ParseSessionXml(text, back);
    return back;
}

TEST(RecordSession, FileHoldsTenLinesEndedByCrLfWithFourBlanksBeforeEachElement) {
    MemoryFiles files;
    files.folders = {"session"};
    EXPECT_TRUE(WriteXML(files, "session/x.xml", BuildSessionXml(sample())));
    EXPECT_EQ(files.contents["session/x.xml"], "<?xml version=\"1.0\"?>\r\n"
                                               "<Kestrune>\r\n"
                                               "    <Type>Form</Type>\r\n"
                                               "    <Session>Session3</Session>\r\n"
                                               "    <Url>http://a.b/add.html</Url>\r\n"
                                               "    <Action>http://a.b/cgi/add.php</Action>\r\n"
                                               "    <Postdata>name=A+B&q=a%2Cb.c</Postdata>\r\n"
                                               "    <Header></Header>\r\n"
                                               "    <Frame>main</Frame>\r\n"
                                               "</Kestrune>\r\n");
}

TEST(RecordSession, HeaderWithLineEndSpreadsOverTwoLinesAndReadsBackWithIt) {
    RecordSession record = sample();
    record.Header = "Content-Type: application/x-www-form-urlencoded\r\n";
    EXPECT_NE(BuildSessionXml(record).find(
                  "\r\n    <Header>Content-Type: application/x-www-form-urlencoded\r\n</Header>\r\n"),
              std::string::npos);
    EXPECT_EQ(read_back(record).Header, record.Header);
}

TEST(RecordSession, AngleBracketsStandUnescapedAndTheOwnClosingTagCutsTheValue) {
    RecordSession record = sample();
    record.Postdata = "a=<b>&c=\"d\"";
    EXPECT_NE(BuildSessionXml(record).find("<Postdata>a=<b>&c=\"d\"</Postdata>"), std::string::npos);
    EXPECT_EQ(read_back(record).Postdata, record.Postdata);
    record.Postdata = "a=1</postDATA>&b=2";
    EXPECT_EQ(read_back(record).Postdata, "a=1");
}

TEST(RecordSession, TagsInOtherLetterCaseAreRead) {
    RecordSession record;
    ParseSessionXml("<TYPE>Bookmark</type><url>u</URL>", record);
    EXPECT_EQ(record.Type, "Bookmark");
    EXPECT_EQ(record.Url, "u");
}

TEST(RecordSession, FileWithoutTypeIsAFormRecord) {
    RecordSession record;
    ParseSessionXml("<Kestrune><Url>http://a.b/</Url></Kestrune>", record);
    EXPECT_EQ(record.Type, "Form");
    ParseSessionXml("<Type></Type>", record);
    EXPECT_EQ(record.Type, "Form");
}

TEST(RecordSession, PreferenceTextLeavesTheOtherFieldsAsTheyAre) {
    RecordSession record = sample();
    ParseSessionXml("<Type>Preference</Type><Url>x</Url>", record);
    EXPECT_EQ(record.Type, "Preference");
    EXPECT_EQ(record.Url, "http://a.b/add.html");
    ParseSessionXml("<Type>preference</Type><Url>x</Url>", record);
    EXPECT_EQ(record.Url, "x");
}

TEST(RecordSession, AddressWithQueryGivesNameWithItAndKeyWithoutIt) {
    EXPECT_EQ(UrlToFileName("http://a.b/c?d=1&e=2"), "a_b_c_d_1_e_2");
    EXPECT_EQ(UrlToRecordKey("http://a.b/c?d=1&e=2"), "http://a.b/c");
    EXPECT_EQ(UrlToFileName("http://a.b/submit.php?id=4"), "a_b_submit_php_id_4");
    EXPECT_EQ(UrlToRecordKey("http://A.B/S.php"), "http://a.b/s.php");
}

TEST(RecordSession, SecureAddressKeepsTheEighthCharacterAsUnderscore) {
    EXPECT_EQ(UrlToFileName("https://a.b/"), "_a_b_");
}

TEST(RecordSession, AddressOfSevenCharactersOrFewerGivesTheEmptyName) {
    EXPECT_EQ(UrlToFileName("ftp://"), "");
    EXPECT_EQ(UrlToFileName("http://"), "");
}

TEST(RecordSession, FileNameReplacesCharactersNotBytes) {
    EXPECT_EQ(UrlToFileName("http://a.b/\xC3\xA9t\xE2\x82\xAC"), "a_b__t_");
    EXPECT_EQ(UrlToFileName("\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9x"), "x");
}

TEST(RecordSession, TagReaderNeedsBothTagsAndTakesTheFirst) {
    EXPECT_EQ(GetXmlTag("<a>1</a><a>2</a>", "a"), "1");
    EXPECT_EQ(GetXmlTag("<a>1", "a"), "");
    EXPECT_EQ(GetXmlTag("</a><a>1", "a"), "");
    EXPECT_EQ(GetXmlTag("<a></a>", "a"), "");
    EXPECT_EQ(GetXmlTag("", "a"), "");
}

TEST(TextFile, OfTheOriginalIsReadInWindows1252) {
    MemoryFiles files;
    files.folders = {"session"};
    files.contents["session/x.xml"] = "<Session>Caf\xE9 \x80</Session>\r\n";
    std::string text;
    ASSERT_TRUE(ReadTextFile(files, "session/x.xml", text));
    EXPECT_EQ(GetXmlTag(text, "Session"), "Caf\xC3\xA9 \xE2\x82\xAC");
}

TEST(TextFile, IsWrittenInWindows1252WhereThatHoldsItAndInUtf8Otherwise) {
    EXPECT_EQ(XmlFileBytes("Caf\xC3\xA9"), "Caf\xE9\r\n");
    EXPECT_EQ(XmlFileBytes("\xC3\xA9\xD0\x96"), "\xC3\xA9\xD0\x96\r\n");
    // Its bytes in Windows-1252 would read back as one letter.
    EXPECT_EQ(XmlFileBytes("\xC3\x83\xC2\xA9"), "\xC3\x83\xC2\xA9\r\n");
}

TEST(TextFile, MissingEmptyAndUnreadableFilesGiveFalseAndNoText) {
    MemoryFiles files;
    files.folders = {"session"};
    files.contents["session/empty.xml"] = "";
    files.contents["session/locked.xml"] = "x";
    files.unreadable = {"session/locked.xml"};
    std::string text = "before";
    EXPECT_FALSE(ReadTextFile(files, "session/none.xml", text));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(ReadTextFile(files, "session/empty.xml", text));
    EXPECT_FALSE(ReadTextFile(files, "session/locked.xml", text));
}

TEST(CodePage, IllFormedSequencesAreNoUtf8) {
    for (const char* bytes : {"\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC3", "\x80"})
        EXPECT_FALSE(is_utf8(bytes));
    for (const char* bytes : {"", "a", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"})
        EXPECT_TRUE(is_utf8(bytes));
}

void append_code_point(std::string& text, std::uint32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0U | (code >> 6U));
        text += static_cast<char>(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0U | (code >> 12U));
        text += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (code & 0x3FU));
    } else {
        text += static_cast<char>(0xF0U | (code >> 18U));
        text += static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
        text += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (code & 0x3FU));
    }
}

// Any text without "<", so without a tag; every plane, with a leaning to the codes of Windows-1252.
std::string random_text(std::mt19937& random) {
    std::string text;
    const auto length = std::uniform_int_distribution<int>(0, 12)(random);
    const auto highest = std::uniform_int_distribution<int>(0, 2)(random);
    for (int i = 0; i < length; ++i) {
        const std::uint32_t top = highest == 0 ? 0x7F : highest == 1 ? 0xFF : 0x10FFFF;
        const std::uint32_t code = std::uniform_int_distribution<std::uint32_t>(0, top)(random);
        if (code != '<' && (code < 0xD800 || code > 0xDFFF))
            append_code_point(text, code);
    }
    return text;
}

TEST(RecordSession, AnyTextWithoutTagsIsReadBackAsItWasWritten) {
    std::mt19937 random(20240229); // NOLINT(cert-msc51-cpp): the same texts in every run
    for (int round = 0; round < 20000; ++round) {
        RecordSession record;
        record.Type = round % 2 == 0 ? "Form" : "Bookmark";
        record.Session = random_text(random);
        record.Url = random_text(random);
        record.Action = random_text(random);
        record.Postdata = random_text(random) + "\"'\r\n<b>";
        record.Header = random_text(random);
        record.Frame = random_text(random);
        ASSERT_EQ(read_back(record), record) << BuildSessionXml(record);
    }
}

} // namespace
} // namespace kestrune
