#include "filling/link_discovery.h"

#include "platform/memory/memory_ui.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using Words = std::vector<std::string>;

bool is_submit(std::string_view text) { return IsSubmitLink(SplitWords(text), "submit"); }
bool is_developer(std::string_view text) { return IsSubmitLink(SplitWords(text), "developer"); }

TEST(SplitWords, BlanksAndHyphensEndWords) {
    EXPECT_EQ(SplitWords("Add/Update Software"), (Words{"Add/Update", "Software"}));
    EXPECT_EQ(SplitWords("Submit-Software"), (Words{"Submit", "Software"}));
    EXPECT_EQ(SplitWords("  Submit   it "), (Words{"Submit", "it"}));
}

TEST(SplitWords, LineBreaksAndTabsDoNotSeparateWords) {
    EXPECT_EQ(SplitWords("Submit\nSoftware"), (Words{"Submit\nSoftware"}));
    EXPECT_EQ(SplitWords("Submit\tSoftware"), (Words{"Submit\tSoftware"}));
}

TEST(SplitWords, HyphenOutsideAWordStartsOne) {
    EXPECT_EQ(SplitWords("Submit - Software"), (Words{"Submit", "-", "Software"}));
    EXPECT_EQ(SplitWords("-Submit"), (Words{"-Submit"}));
}

TEST(SplitWords, CharactersAboveZStartNoWordButStayInsideOne) {
    EXPECT_EQ(SplitWords("{|~} Submit"), (Words{"Submit"}));
    EXPECT_EQ(SplitWords("\u00e9dit"), (Words{"dit"}));
    EXPECT_EQ(SplitWords("caf\u00e9 x"), (Words{"caf\u00e9", "x"}));
}

TEST(SplitWords, NoBreakSpaceNeitherStartsNorEndsAWord) {
    EXPECT_EQ(SplitWords("\u00a0Submit\u00a0Software"), (Words{"Submit\u00a0Software"}));
}

TEST(SplitWords, TextWithoutAnyWordHasNone) {
    EXPECT_TRUE(SplitWords("").empty());
    EXPECT_TRUE(SplitWords(" \n\t \u00a0").empty());
}

TEST(IsSubmitLink, SubmitAddSuggestAndAddUpdateAloneAreAccepted) {
    for (const char* text : {"Submit", "Add", "Suggest", "Add/Update", "SUBMIT"})
        EXPECT_TRUE(is_submit(text)) << text;
}

TEST(IsSubmitLink, SubmitYourSoftwareIsAcceptedSubmitYourSiteAndAddUrlAreNot) {
    EXPECT_TRUE(is_submit("Submit your software"));
    EXPECT_FALSE(is_submit("Submit your site"));
    EXPECT_FALSE(is_submit("Add URL"));
}

TEST(IsSubmitLink, VerbMustEndInAnObject) {
    EXPECT_TRUE(is_submit("Submit Software"));
    EXPECT_TRUE(is_submit("Add a new program"));
    EXPECT_FALSE(is_submit("Submit Software Now"));
    EXPECT_FALSE(is_submit("Submit Here"));
    EXPECT_FALSE(is_submit("Submit a new"));
    EXPECT_FALSE(is_submit("Submit - Software"));
}

TEST(IsSubmitLink, EveryObjectMayFollowAVerb) {
    for (const char* object :
         {"game",       "pad",       "listing",  "soft",        "program",      "product",
          "freeware",   "shareware", "software", "tool",        "programs",     "products",
          "sharewares", "softwares", "tools",    "file",        "download",     "form",
          "files",      "downloads", "forms",    "application", "applications", "app"})
        EXPECT_TRUE(is_submit(std::string("Suggest New ") + object)) << object;
}

TEST(IsSubmitLink, SoftwareSubmitIsRejected) {
    EXPECT_FALSE(is_submit("Software Submit"));
    EXPECT_TRUE(is_submit("Software Submit Program"));
    EXPECT_FALSE(is_submit("Software"));
    EXPECT_FALSE(is_submit("Software Submission"));
}

TEST(IsSubmitLink, FiveWordTextIsRejectedByItsLength) {
    EXPECT_FALSE(is_submit("Submit a new software product"));
    EXPECT_FALSE(is_submit("Submit a your new software"));
    EXPECT_TRUE(is_submit("Submit your new software"));
}

TEST(IsSubmitLink, DeveloperAreasQualifyInTheDeveloperClass) {
    for (const char* text :
         {"Developer Login", "Developers Area", "Developer Center", "Author Login", "Developers", "Login",
          "Logon", "Author", "Developer's logon", "Software Author Login", "Authors Logon Now"})
        EXPECT_TRUE(is_developer(text)) << text;
    EXPECT_FALSE(is_developer("Developer Tools"));
    EXPECT_FALSE(is_developer("Login Here"));
    EXPECT_FALSE(is_developer("Author Area"));
}

TEST(IsSubmitLink, DeveloperHyphenLoginIsTwoWordsDeveloperSlashLoginIsOneAndRejected) {
    EXPECT_EQ(SplitWords("Developer-Login"), SplitWords("Developer Login"));
    EXPECT_TRUE(is_developer("Developer-Login"));
    EXPECT_FALSE(is_developer("Developer/Login"));
}

TEST(IsSubmitLink, AnyOtherClassIsTreatedAsDeveloper) {
    EXPECT_TRUE(IsSubmitLink({"Developers"}, "something"));
    EXPECT_FALSE(IsSubmitLink({"Submit"}, "something"));
    EXPECT_FALSE(IsSubmitLink({"Submit"}, "developer"));
}

// A page of links in a browser, and the search on it.
class FindSubmitLinkTest : public ::testing::Test {
protected:
    FindSubmitLinkTest() { state.bFindLinkFlag = true; }
    ~FindSubmitLinkTest() override { EXPECT_EQ(ui.failures, Words{}); }

    void show(const Words& texts) {
        browser.pages["http://site/"] = page_of_links("http://site/", texts);
        browser.Navigate("http://site/");
        browser.arrive();
    }

    void search() {
        auto image = browser.take_image(browser.showing()->id, {.links = true});
        ASSERT_TRUE(image);
        LivePage page{browser, *std::move(image)};
        LinkSearch needs{state, prompt, txtUrl, status, ui};
        FindSubmitLink(
            page, [&page] { return page.document(); }, needs);
    }

    void expect_question(const std::string& link, Answer answer, std::function<void()> meanwhile = {}) {
        ui.expect_box("Do you want to go to this link", answer, std::move(meanwhile));
        expected_titles.push_back("Link = '" + link + "'");
    }

    void expect_titles_as_asked() {
        Words titles;
        for (const auto& asked : ui.asked) {
            EXPECT_EQ(asked.buttons, Buttons::YesNo);
            titles.push_back(asked.title);
        }
        EXPECT_EQ(titles, expected_titles);
    }

    class Listener : public BrowserEvents {
        PageParts wanted_parts() override { return {.links = true}; }
        void BeforeNavigate2(NavigateEvent /*event*/) override {}
        void DocumentComplete(PageDocument /*image*/) override {}
        void CommandStateChange(int /*command*/, bool /*enable*/) override {}
        Browser* NewWindow2() override { return nullptr; }
    };

    Listener listener;
    WindowForm form{"form"};
    MemoryBrowser browser{form, listener};
    MemoryUserInterface ui;
    PageState state;
    MenuItem prompt{"mnuPromptFill", "", true};
    TextBox txtUrl{"txtUrl"};
    StatusBar status{"StatusBar1"};
    Words expected_titles;
};

TEST_F(FindSubmitLinkTest, FirstQualifyingLinkInDocumentOrderIsClickedAndTheSearchDisarmed) {
    prompt.Checked = false;
    show({"Home", "Submit Software", "Submit"});
    search();
    EXPECT_EQ(browser.clicked, Words{"Submit Software"});
    EXPECT_FALSE(state.bFindLinkFlag);
    EXPECT_EQ(status.text(1), "Found Submit Link = 'Submit Software'");
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(FindSubmitLinkTest, SoftwareSubmissionInAnyLetterCaseIsTakenByItsWholeText) {
    prompt.Checked = false;
    show({"soFTware SUBmission"});
    search();
    EXPECT_EQ(browser.clicked, Words{"soFTware SUBmission"});
    EXPECT_EQ(status.text(1), "Found Submit Link = 'soFTware SUBmission'");
}

TEST_F(FindSubmitLinkTest, SoftwareSubmissionWithBlanksAroundItIsLeft) {
    prompt.Checked = false;
    show({" Software Submission", "Software Submission "});
    search();
    EXPECT_TRUE(browser.clicked.empty());
    EXPECT_TRUE(state.bFindLinkFlag);
}

TEST_F(FindSubmitLinkTest, DeveloperLinkIsTakenWithoutAStatusText) {
    prompt.Checked = false;
    status.set_text(1, "before");
    show({"Developers"});
    search();
    EXPECT_EQ(browser.clicked, Words{"Developers"});
    EXPECT_EQ(status.text(1), "before");
}

TEST_F(FindSubmitLinkTest, DeveloperLinkThatStandsFirstWinsOverALaterSubmitLink) {
    prompt.Checked = false;
    show({"Developers", "Submit"});
    search();
    EXPECT_EQ(browser.clicked, Words{"Developers"});
}

TEST_F(FindSubmitLinkTest, QuestionShowsTheQuotedTextAndYesAccepts) {
    show({"Submit"});
    expect_question("Submit", Answer::Yes);
    search();
    expect_titles_as_asked();
    EXPECT_EQ(browser.clicked, Words{"Submit"});
    EXPECT_FALSE(state.bFindLinkFlag);
}

TEST_F(FindSubmitLinkTest, WithNoToEveryCandidateTheWalkReachesTheEndAndTheSearchStaysArmed) {
    show({"Submit", "About", "Login", "Add Program"});
    for (const char* text : {"Submit", "Login", "Add Program"})
        expect_question(text, Answer::No);
    search();
    expect_titles_as_asked();
    EXPECT_TRUE(browser.clicked.empty());
    EXPECT_TRUE(state.bFindLinkFlag);
    EXPECT_TRUE(ui.script_done());
}

TEST_F(FindSubmitLinkTest, AfterAQuestionThePageIsWhatItHasBecome) {
    show({"Submit", "Add Program"});
    expect_question("Submit", Answer::No, [this] { browser.showing()->links.pop_back(); });
    search();
    expect_titles_as_asked();
    EXPECT_TRUE(browser.clicked.empty());
}

TEST_F(FindSubmitLinkTest, LinkThatMovedWhileTheQuestionWasOpenIsTheOneThatIsClicked) {
    show({"Submit"});
    expect_question("Submit", Answer::Yes, [this] {
        auto& links = browser.showing()->links;
        links.insert(links.begin(), {{browser.showing()->id, 77}, "Advertisement"});
    });
    search();
    EXPECT_EQ(browser.clicked, Words{"Submit"});
}

TEST_F(FindSubmitLinkTest, LinkThatIsGoneWhenAgreedToIsNotClickedAndTheSearchStaysArmed) {
    show({"Submit", "Add Program"});
    expect_question("Submit", Answer::Yes,
                    [this] { browser.showing()->links.erase(browser.showing()->links.begin()); });
    search();
    EXPECT_TRUE(browser.clicked.empty());
    EXPECT_TRUE(state.bFindLinkFlag);
}

TEST_F(FindSubmitLinkTest, PageThatIsGoneWhenAgreedToIsLeftAloneAndTheSearchStaysArmed) {
    show({"Submit"});
    expect_question("Submit", Answer::Yes, [this] { browser.lose_page(); });
    search();
    EXPECT_TRUE(browser.clicked.empty());
    EXPECT_TRUE(state.bFindLinkFlag);
}

} // namespace
} // namespace kestrune
