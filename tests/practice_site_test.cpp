#include "tools/practice/pages.h"
#include "tools/practice/site.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kestrune::practice {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto whole = R"(# a comment
description = Some Site
softtype = 4=business
pad = no
referral = 17
home = /start/

link = Submit Software
question = No | Link = 'Add' | Do you want to go to this link
question = Yes | Link = 'Submit Software' | Do you want to go to this link
status = Found Submit Link = 'Submit Software'
ends-at = /form.html
asked-for = /form.html
not-asked-for = {{site:other}}/x
release = /signal
answer-after = /later.html
mark = N, cancel, Y
note = a note

redirect /old = /new
code /old = 301
header * = X-Every: 1
header /start/ = X-Own: a: b
type /start/ = text/html
delay /start/ = 250
hang /signal = silent
hang /half = body
)";

Site parsed(const std::string& text) { return parse_site("some-site", text, "site.txt"); }

// The message of the error that this text is refused with.
std::string refusal(const std::string& text) {
    try {
        parsed(text);
    } catch (const SiteFileError& error) {
        return error.what();
    }
    return "accepted";
}

constexpr auto least = "description = d\nlink = none\nends-at = /\nmark = Y\n";

TEST(PracticeSiteFile, RowOfTheLibraryIsRead) {
    const Site site = parsed(whole);
    EXPECT_EQ(site.name, "some-site");
    EXPECT_EQ(site.description, "Some Site");
    EXPECT_EQ(site.softtype, "4=business");
    EXPECT_EQ(site.pad, "NO");
    EXPECT_EQ(site.referral, 17);
    EXPECT_EQ(site.home, "/start/");
    EXPECT_TRUE(site.served);
    EXPECT_EQ(site.left_out, "");
}

TEST(PracticeSiteFile, HostileSiteNeedsNoExpectationAndSaysWhatTheProgramDoes) {
    const Site site = parsed(R"(description = d
hostile = does nothing
record = /form.html | {{site:other}}/take
auto-record = yes
again = Yes | Kestrune | Again
answer-at = /swapped
menu = 100 35 | mnuAll
bar = PageAlert
bar = PageConfirm | OK
value-at = /take
value-at = {{site:other}}/take
deadline = 1500
)");
    const Hostile& hostile = site.hostile;
    EXPECT_EQ(hostile.does, "does nothing");
    EXPECT_EQ(hostile.record_page, "/form.html");
    EXPECT_EQ(hostile.record_action, "{{site:other}}/take");
    EXPECT_TRUE(hostile.auto_record);
    EXPECT_THAT(hostile.again, ElementsAre(Question{"Yes", "Kestrune", "Again"}));
    EXPECT_EQ(hostile.answer_at, "/swapped");
    ASSERT_TRUE(hostile.menu);
    EXPECT_EQ(hostile.menu->x, 100);
    EXPECT_EQ(hostile.menu->y, 35);
    EXPECT_EQ(hostile.menu->entry, "mnuAll");
    ASSERT_EQ(hostile.bars.size(), 2U);
    EXPECT_EQ(hostile.bars[0].name + "," + hostile.bars[0].button, "PageAlert,");
    EXPECT_EQ(hostile.bars[1].name + "," + hostile.bars[1].button, "PageConfirm,OK");
    EXPECT_THAT(hostile.values_at, ElementsAre("/take", "{{site:other}}/take"));
    EXPECT_EQ(hostile.deadline, milliseconds(1500));
}

TEST(PracticeSiteFile, HostileKeysThatCannotBeReadAreRefused) {
    const std::string hostile = "description = d\nhostile = does nothing\n";
    EXPECT_THAT(refusal(hostile + "record = /form.html\n"), HasSubstr("PAGE | ACTION"));
    EXPECT_THAT(refusal(hostile + "menu = 100 35\n"), HasSubstr("X Y | ENTRY"));
    EXPECT_THAT(refusal(hostile + "menu = a b | mnuAll\n"), HasSubstr("whole number"));
    EXPECT_THAT(refusal(hostile + "auto-record = maybe\n"), HasSubstr("yes"));
    EXPECT_EQ(refusal(hostile), "accepted");
    EXPECT_THAT(refusal("description = d\n"), HasSubstr("is missing"));
}

TEST(PracticeSiteFile, ExpectationIsReadInOrder) {
    const Expectation expected = parsed(whole).expected;
    EXPECT_EQ(expected.link, "Submit Software");
    EXPECT_THAT(expected.questions,
                ElementsAre(Question{"No", "Link = 'Add'", "Do you want to go to this link"},
                            Question{"Yes", "Link = 'Submit Software'", "Do you want to go to this link"}));
    EXPECT_THAT(expected.status, ElementsAre("Found Submit Link = 'Submit Software'"));
    EXPECT_EQ(expected.ends_at, "/form.html");
    EXPECT_THAT(expected.asked_for, ElementsAre("/form.html"));
    EXPECT_THAT(expected.not_asked_for, ElementsAre("{{site:other}}/x"));
    EXPECT_EQ(expected.release, "/signal");
    EXPECT_EQ(expected.answer_after, "/later.html");
    EXPECT_THAT(expected.marks, ElementsAre("N", "cancel", "Y"));
    EXPECT_EQ(expected.note, "a note");
}

TEST(PracticeSiteFile, PathsOwnBehaviourGoesBeforeThatOfEveryPath) {
    const Site site = parsed(std::string(whole) + "delay * = 9\n");
    const Behaviour start = site.behaviour("/start/");
    EXPECT_EQ(start.delay, milliseconds(250));
    EXPECT_EQ(start.type, "text/html");
    EXPECT_THAT(start.headers, ElementsAre(std::pair{"X-Own", "a: b"}, std::pair{"X-Every", "1"}));
    EXPECT_EQ(site.behaviour("/anything").delay, milliseconds(9));
    EXPECT_EQ(site.behaviour("/old").redirect, "/new");
    EXPECT_EQ(site.behaviour("/old").code, 301);
    EXPECT_EQ(site.behaviour("/signal").hang, Behaviour::Hang::silent);
    EXPECT_EQ(site.behaviour("/half").hang, Behaviour::Hang::body);
    EXPECT_EQ(site.behaviour("/anything").hang, Behaviour::Hang::never);
}

TEST(PracticeSiteFile, WhatIsLeftOutHasItsStatedValue) {
    const Site site = parsed(least);
    EXPECT_EQ(site.softtype, "1=general");
    EXPECT_EQ(site.pad, "PAD");
    EXPECT_EQ(site.referral, 0);
    EXPECT_EQ(site.home, "/");
    EXPECT_EQ(site.expected.link, "");
    EXPECT_THAT(site.expected.questions, IsEmpty());
}

TEST(PracticeSiteFile, EndingNowhereAndServingNothingAreUnderstood) {
    const Site site = parsed("description = d\nserved = no\nlink = none\nends-at = nowhere\nmark = P\n");
    EXPECT_FALSE(site.served);
    EXPECT_EQ(site.expected.ends_at, "");
}

TEST(PracticeSiteFile, SiteLeftOutOfTheTourNeedsNoExpectation) {
    EXPECT_EQ(parsed("description = d\nleave-out = for a reason\n").left_out, "for a reason");
}

TEST(PracticeSiteFile, ByteOrderMarkAndCarriageReturnsAreNoPartOfAValue) {
    EXPECT_EQ(parsed("\xEF\xBB\xBF"
                     "description = d\r\nleave-out = r\r\n")
                  .description,
              "d");
}

TEST(PracticeSiteFile, ErrorNamesFileLineAndWhatIsWanted) {
    EXPECT_EQ(refusal("\n# c\nno equals sign\n"), "site.txt:3: \"key = value\" is wanted here");
    EXPECT_EQ(refusal("= x\n"), "site.txt:1: the key is missing before \"=\"");
    EXPECT_EQ(refusal("description =\n"), "site.txt:1: the value of \"description\" is missing");
    EXPECT_EQ(refusal("colour = red\n"), "site.txt:1: unknown key \"colour\"");
    EXPECT_EQ(refusal("paint / = red\n"), "site.txt:1: unknown key \"paint\"");
    EXPECT_EQ(refusal("description = a\ndescription = b\n"),
              "site.txt:2: \"description\" stands on line 1 already");
    EXPECT_EQ(refusal("code / = 200\n\ncode / = 404\n"), "site.txt:3: \"code /\" stands on line 1 already");
}

TEST(PracticeSiteFile, ValueThatMakesNoSenseIsRefused) {
    EXPECT_THAT(refusal("pad = maybe\n"), EndsWith("\"yes\" or \"no\" is wanted, not \"maybe\""));
    EXPECT_THAT(refusal("referral = 1x\n"), EndsWith("a whole number is wanted, not \"1x\""));
    EXPECT_THAT(refusal("referral = -1\n"), EndsWith("a whole number is wanted, not \"-1\""));
    EXPECT_THAT(refusal("softtype = game\n"), HasSubstr("\"game\" is no category"));
    EXPECT_THAT(refusal("home = start\n"), HasSubstr("a path that starts with \"/\" is wanted"));
    EXPECT_THAT(refusal("ends-at = form.html\n"), HasSubstr("a path that starts with \"/\" is wanted"));
    EXPECT_THAT(refusal("code / = 99\n"), HasSubstr("from 200 to 599"));
    EXPECT_THAT(refusal("header / = nothing\n"), HasSubstr("\"Name: value\" is wanted"));
    EXPECT_THAT(refusal("hang / = long\n"), HasSubstr("\"silent\" or \"body\" is wanted"));
    EXPECT_THAT(refusal("question = Yes | title\n"), HasSubstr("\"ANSWER | TITLE | TEXT\" is wanted"));
    EXPECT_THAT(refusal("question = Perhaps | t | x\n"), HasSubstr("\"Perhaps\" is no answer"));
    EXPECT_THAT(refusal("mark = Y, X\n"), HasSubstr("\"X\" is no outcome"));
    EXPECT_THAT(refusal("mark = Y, N\n"), HasSubstr("played for ever"));
}

TEST(PracticeSiteFile, MissingKeyIsNamed) {
    EXPECT_THAT(refusal("link = none\nends-at = /\nmark = Y\n"), HasSubstr("\"description\" is missing"));
    EXPECT_THAT(refusal("description = d\nends-at = /\nmark = Y\n"), HasSubstr("\"link\" is missing"));
    EXPECT_THAT(refusal("description = d\nlink = none\nmark = Y\n"), HasSubstr("\"ends-at\" is missing"));
    EXPECT_THAT(refusal("description = d\nlink = none\nends-at = /\n"), HasSubstr("\"mark\" is missing"));
}

TEST(PracticeSiteFile, LinkAndQuestionsThatContradictEachOtherAreRefused) {
    EXPECT_THAT(refusal("description = d\nlink = Add\nends-at = /\nmark = Y\n"),
                HasSubstr("\"link\" is \"Add\""));
    EXPECT_THAT(refusal(std::string(least) + "question = Yes | Link = 'Add' | t\n"),
                HasSubstr("\"link\" is \"none\""));
    EXPECT_EQ(refusal(std::string(least) + "question = No | Link = 'Add' | t\n"), "accepted");
}

TEST(PracticePages, PlaceholdersAreFilledIn) {
    const auto origin = [](std::string_view name) { return "<" + std::string(name) + ">"; };
    EXPECT_EQ(fill_in("a {{origin}} b {{site:x}} c", origin), "a <> b <x> c");
    const std::string links = fill_in("{{links:3}}", origin);
    EXPECT_THAT(links, HasSubstr("href=\"/entry/1.html\""));
    EXPECT_THAT(links, HasSubstr("href=\"/entry/3.html\""));
    EXPECT_THAT(links, testing::Not(HasSubstr("/entry/4.html")));
}

TEST(PracticePages, PlaceholderThatLeadsNowhereIsFoundWithItsPlace) {
    const std::vector<std::string> names{"x"};
    EXPECT_FALSE(find_bad_placeholder("{{origin}} {{site:x}} {{links:12}} } {", names));
    EXPECT_EQ(find_bad_placeholder("ab {{site:y}}", names)->at, 3U);
    EXPECT_EQ(find_bad_placeholder("{{site:y}}", names)->message, "{{site:y}} names no site");
    EXPECT_EQ(find_bad_placeholder("{{links:many}}", names)->message, "{{links:many}} wants a count");
    EXPECT_EQ(find_bad_placeholder("{{what}}", names)->message, "{{what}} is no placeholder");
}

class SiteFolder : public testing::Test {
protected:
    SiteFolder() : root_(std::filesystem::path(testing::TempDir()) / ("practice-" + test_name())) {
        std::filesystem::remove_all(root_);
    }
    ~SiteFolder() override { std::filesystem::remove_all(root_); }

    static std::string test_name() { return testing::UnitTest::GetInstance()->current_test_info()->name(); }

    void write(const std::string& path, const std::string& text) const {
        std::filesystem::create_directories((root_ / path).parent_path());
        std::ofstream(root_ / path, std::ios::binary) << text;
    }

    [[nodiscard]] std::string load_error() const {
        try {
            load_sites(root_);
        } catch (const SiteFileError& error) {
            return std::string(error.what()).substr(root_.string().size());
        }
        return "loaded";
    }

    const std::filesystem::path root_;
};

TEST_F(SiteFolder, EveryFolderWithASiteFileIsASiteInOrderOfNames) {
    write("b/site.txt", least);
    write("a/site.txt", least);
    write("notes/readme.txt", "no site");
    const std::vector<Site> sites = load_sites(root_);
    ASSERT_EQ(sites.size(), 2U);
    EXPECT_EQ(sites.at(0).name, "a");
    EXPECT_EQ(sites.at(1).name, "b");
}

TEST_F(SiteFolder, PageThatNamesAnUnknownSiteIsReportedWithItsLine) {
    write("a/site.txt", least);
    write("a/deep/page.html", "one\ntwo\n<iframe src=\"{{site:nobody}}/\">\n");
    EXPECT_EQ(load_error(), "/a/deep/page.html:3: {{site:nobody}} names no site");
}

TEST_F(SiteFolder, SiteFileThatNamesAnUnknownSiteIsReportedWithItsLine) {
    write("a/site.txt", std::string(least) + "redirect /x = {{site:nobody}}/\n");
    EXPECT_EQ(load_error(), "/a/site.txt:5: {{site:nobody}} names no site");
}

TEST_F(SiteFolder, HalfOfAFileThatIsNotThereIsReported) {
    write("a/site.txt", std::string(least) + "hang /x.gif = body\n");
    EXPECT_THAT(load_error(), HasSubstr("no file to send half of at /x.gif"));
}

TEST_F(SiteFolder, PathLeadsToAFileOfTheSiteAndNowhereElse) {
    write("a/site.txt", least);
    write("a/index.html", "home");
    write("a/sub/index.html", "sub");
    write("secret.html", "outside");
    const auto site = root_ / "a";
    EXPECT_EQ(page_file(site, "/")->filename(), "index.html");
    EXPECT_EQ(page_file(site, "/sub/")->parent_path().filename(), "sub");
    EXPECT_EQ(page_file(site, "//index.html")->filename(), "index.html");
    EXPECT_FALSE(page_file(site, "/missing.html"));
    EXPECT_FALSE(page_file(site, "/../secret.html"));
    EXPECT_FALSE(page_file(site, "/sub/../../secret.html"));
    EXPECT_FALSE(page_file(site, "/site.txt"));
    EXPECT_FALSE(page_file(site, "/./site.txt"));
    std::filesystem::create_symlink(root_ / "secret.html", site / "link.html");
    EXPECT_FALSE(page_file(site, "/link.html"));
}

TEST(PracticeSites, ThoseInTheTreeAreSoundAndHaveNamesAndRanksOfTheirOwn) {
    const auto sites = load_sites(KESTRUNE_SOURCE_DIR "/practice/sites");
    EXPECT_GE(sites.size(), 12U);
    std::set<std::string> descriptions;
    std::set<std::int64_t> ranks;
    for (const Site& site : sites) {
        EXPECT_TRUE(descriptions.insert(site.description).second) << site.name;
        if (!site.left_out.empty())
            continue;
        EXPECT_TRUE(!site.recording.steps.empty() || ranks.insert(site.referral).second)
            << site.name << " ties with another in the queue";
        const bool redirected = !site.behaviour(site.home).redirect.empty();
        EXPECT_TRUE(!site.served || redirected || page_file(site.folder, site.home)) << site.name;
    }
}

TEST(PracticeSite, HandStepsAreReadAsDeedsInOrder) {
    const Site site = parse_site("a",
                                 "description = A\nhand = /x | click 3 40; type a b; tab\nhand = /y | enter\n"
                                 "replayed = 1\ndiffers = a rule\nanswer-at-title = T\n",
                                 "site.txt");
    const Recording& recording = site.recording;
    ASSERT_EQ(recording.steps.size(), 2U);
    EXPECT_EQ(recording.steps[0].page, "/x");
    ASSERT_EQ(recording.steps[0].deeds.size(), 3U);
    EXPECT_EQ(recording.steps[0].deeds[0].kind, HandStep::Deed::Kind::click);
    EXPECT_EQ(recording.steps[0].deeds[0].x, 3);
    EXPECT_EQ(recording.steps[0].deeds[0].y, 40);
    EXPECT_EQ(recording.steps[0].deeds[1].text, "a b");
    EXPECT_EQ(recording.steps[0].deeds[2].text, "tab");
    EXPECT_EQ(recording.steps[1].deeds.at(0).text, "enter");
    EXPECT_EQ(recording.replayed, 1U);
    EXPECT_EQ(recording.differs, "a rule");
    EXPECT_EQ(recording.answer_at_title, "T");
}

TEST(PracticeSite, HandStepWithAnUnknownDeedOrWithoutAPageIsRefused) {
    for (const char* step : {"/ | jump", "/ | click 3", "/ | type", "click 3 4", "x | tab"})
        EXPECT_THROW(parse_site("a", std::string("description = A\nhand = ") + step, "site.txt"),
                     SiteFileError)
            << step;
}

} // namespace
} // namespace kestrune::practice
