#include "window_fixture.h"

#include "filling/page_processing.h"

#include <gmock/gmock.h>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* question = "Do you want to auto fill-in this form";
constexpr const char* unable = "System is unable to do auto-click, please perform click manually!";

class ReplayInPlaybackTest : public WindowTest {
protected:
    ReplayInPlaybackTest() { start(); }

    void add_record(std::string key, std::string name, std::string url, std::string postdata = "a=1",
                    std::string type = "Form") {
        window().lvwPermanent.add(
            ItemOf(std::move(key), {std::move(type), std::move(name), std::move(url), "http://site/add.cgi",
                                    std::move(postdata), "", ""}));
    }
    static PageForm form() { return form_of("add.cgi", {element("text", "a"), element("submit", "send")}); }
    static PageDocument form_page(std::string url) { return page_of_forms(std::move(url), {form()}); }

    void open_site(PageDocument page) {
        const std::string url = page.url;
        browser().pages[url] = std::move(page);
        window().OpenSiteForPlayback(url, "A site");
    }
    void browse_to(PageDocument page) {
        const std::string url = page.url;
        browser().pages[url] = std::move(page);
        browser().page_navigates(url);
        arrive();
    }
    // What stands in the first text box of the page on show, or of one of its frames.
    std::string filled() { return browser().showing()->forms.at(0).elements.at(0).value; }
    std::string filled(std::size_t frame) {
        return browser().showing()->frames.at(frame).forms.at(0).elements.at(0).value;
    }
};

TEST_F(ReplayInPlaybackTest, RecordOfThePagesAddressIsReplayedOnceTheUserAgreesAndItsButtonPressed) {
    add_record("k", "My form", "HTTP://Site/", "a=one+two");
    open_site(form_page("http://site/"));
    ui.expect_box(question, Answer::Ok);
    arrive();
    EXPECT_EQ(ui.asked.back(), (MemoryUserInterface::Asked{question, Buttons::OkCancel, "Session=My form"}));
    EXPECT_EQ(filled(), "one two");
    EXPECT_THAT(browser().pressed, ElementsAre("send"));
    EXPECT_FALSE(window().bAutoFillFlag);
    EXPECT_EQ(window().strLastUrl, "http://site/");
}

TEST_F(ReplayInPlaybackTest, WithoutThePromptSwitchNothingIsAsked) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    open_site(form_page("http://site/"));
    arrive();
    EXPECT_EQ(filled(), "1");
    EXPECT_THAT(ui.asked, IsEmpty());
}

TEST_F(ReplayInPlaybackTest, WithManualClickTheFormIsFilledAndNothingPressed) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    window().mnuManualClick.choose();
    open_site(form_page("http://site/"));
    arrive();
    EXPECT_EQ(filled(), "1");
    EXPECT_THAT(browser().pressed, IsEmpty());
}

TEST_F(ReplayInPlaybackTest, OfAFramesetWhoseSecondFrameHoldsTheFormLaterFramesAndTheFramesetAreLeftAlone) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    PageDocument page = form_page("http://site/");
    PageDocument other = page_of_forms("http://site/0", {form_of("other.cgi", {element("text", "a")})});
    page.frames = {other, form_page("http://site/1"), form_page("http://site/2")};
    open_site(page);
    arrive();
    EXPECT_EQ(filled(0), "");
    EXPECT_EQ(filled(1), "1");
    EXPECT_EQ(filled(2), "");
    EXPECT_EQ(filled(), "");
    EXPECT_THAT(browser().pressed, ElementsAre("send"));
    EXPECT_EQ(panel(1), "");
}

TEST_F(ReplayInPlaybackTest, FramesetDocumentIsFilledWhenNoFrameHoldsTheForm) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    PageDocument page = form_page("http://site/");
    page.frames = {page_of_forms("http://site/0", {})};
    open_site(page);
    arrive();
    EXPECT_EQ(filled(), "1");
}

TEST_F(ReplayInPlaybackTest, FrameOfAnotherOriginIsPassedOverHoweverMuchItsFormLooksLikeTheRecordedOne) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    PageDocument page = page_of_forms("http://site/", {form()});
    page.frames = {form_page("http://stranger/0")};
    page.frames[0].forms[0].action = "http://site/add.cgi";
    open_site(page);
    arrive();
    EXPECT_EQ(filled(0), "");
    EXPECT_EQ(filled(), "1");
}

TEST_F(ReplayInPlaybackTest, BlankFrameOfAStrangerIsPassedOverAndOneOfThePageIsFilled) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    PageDocument page = page_of_forms("http://site/", {});
    page.origin = "http://site";
    page.frames = {form_page("about:blank"), form_page("about:blank")};
    page.frames[0].origin = "http://stranger";
    page.frames[1].origin = "http://site";
    open_site(page);
    arrive();
    EXPECT_EQ(filled(0), "");
    EXPECT_EQ(filled(1), "1");
}

TEST_F(ReplayInPlaybackTest, FrameOfTheOriginThatTheRecordWasSentToIsFilled) {
    window().lvwPermanent.add(
        ItemOf("k", {"Form", "My form", "http://site/", "http://forms.host:81/add.cgi", "a=1", "", ""}));
    window().mnuPromptFill.choose();
    PageDocument page = page_of_forms("http://site/", {});
    page.frames = {form_page("http://forms.host/0"), form_page("http://forms.host:81/1")};
    open_site(page);
    arrive();
    EXPECT_EQ(filled(0), "");
    EXPECT_EQ(filled(1), "1");
}

TEST_F(ReplayInPlaybackTest, FrameOfTheRecordsAddressIsFilledWhenItCompletes) {
    add_record("k", "My form", "http://site/1");
    window().mnuPromptFill.choose();
    PageDocument page = page_of_forms("http://site/", {});
    page.frames = {form_page("http://site/0"), form_page("http://site/1")};
    open_site(page);
    arrive();
    EXPECT_EQ(filled(0), "");
    EXPECT_EQ(filled(1), "1");
}

TEST_F(ReplayInPlaybackTest, CancelOffersTheNextRecordOfTheSameAddress) {
    add_record("k1", "First", "http://site/", "a=first");
    add_record("k2", "Elsewhere", "http://site/2", "a=no");
    add_record("k3", "Second", "http://SITE/", "a=second");
    open_site(form_page("http://site/"));
    ui.expect_box(question, Answer::Cancel);
    ui.expect_box(question, Answer::Ok);
    arrive();
    ASSERT_EQ(ui.asked.size(), 2U);
    EXPECT_EQ(ui.asked[0].title, "Session=First");
    EXPECT_EQ(ui.asked[1].title, "Session=Second");
    EXPECT_EQ(filled(), "second");
}

TEST_F(ReplayInPlaybackTest, CancelOfEveryRecordLeavesThePageToTheLinkSearch) {
    add_record("k", "My form", "http://site/");
    PageDocument page = form_page("http://site/");
    page.links = {link("Submit")};
    open_site(page);
    ui.expect_box(question, Answer::Cancel);
    ui.expect_box("Do you want to go to this link", Answer::Yes);
    arrive();
    EXPECT_EQ(filled(), "");
    EXPECT_THAT(browser().clicked, ElementsAre("Submit"));
    EXPECT_TRUE(window().bAutoFillFlag);
}

TEST_F(ReplayInPlaybackTest, ReplayedPageIsNotSearchedForLinks) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    PageDocument page = form_page("http://site/");
    page.links = {link("Submit")};
    open_site(page);
    arrive();
    EXPECT_THAT(browser().clicked, IsEmpty());
    EXPECT_TRUE(window().bFindLinkFlag);
}

TEST_F(ReplayInPlaybackTest, SameAddressCompletingTwiceInARowIsReplayedOnce) {
    for (const bool prompt : {true, false}) {
        window().lvwPermanent.clear();
        add_record("k", "My form", "http://site/");
        if (prompt)
            ui.expect_box(question, Answer::Ok);
        else
            window().mnuPromptFill.choose();
        open_site(form_page("http://site/"));
        arrive();
        window().bFindLinkFlag = false;
        EXPECT_EQ(filled(), "1");
        browse_to(form_page("http://site/"));
        EXPECT_EQ(filled(), "");
        EXPECT_TRUE(ui.script_done());
    }
}

TEST_F(ReplayInPlaybackTest, PageReachedAgainAfterAnotherOneIsReplayedAgain) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    open_site(form_page("http://site/"));
    arrive();
    window().bFindLinkFlag = false;
    browse_to(form_page("http://site/other"));
    EXPECT_EQ(filled(), "");
    browse_to(form_page("http://site/"));
    EXPECT_EQ(filled(), "1");
}

TEST_F(ReplayInPlaybackTest, NotInPlaybackNothingIsReplayedAndAnArmedLinkSearchStillRuns) {
    add_record("k", "My form", "http://site/");
    PageDocument page = form_page("http://site/");
    page.links = {link("Submit")};
    for (const char* mode : {"", "playback"}) {
        window().gstrCurMode = mode;
        window().bFindLinkFlag = true;
        window().strLastUrl.clear();
        ui.expect_box("Do you want to go to this link", Answer::Yes);
        browse_to(page);
        EXPECT_EQ(filled(), "");
    }
    EXPECT_THAT(browser().clicked, ElementsAre("Submit", "Submit"));
}

TEST_F(ReplayInPlaybackTest, WithNoAutoFillInForceNothingIsReplayedAndAnArmedLinkSearchStillRuns) {
    add_record("k", "My form", "http://site/");
    window().mnuNoFill.choose();
    PageDocument page = form_page("http://site/");
    page.links = {link("Submit")};
    open_site(page);
    ui.expect_box("Do you want to go to this link", Answer::Yes);
    arrive();
    EXPECT_EQ(filled(), "");
    EXPECT_THAT(browser().clicked, ElementsAre("Submit"));
}

TEST_F(ReplayInPlaybackTest, OnlyRecordsOfExactlyTheTypeFormAreReplayed) {
    add_record("k1", "Mark", "http://site/", "a=1", "Bookmark");
    add_record("k2", "Odd", "http://site/", "a=1", "form");
    open_site(form_page("http://site/"));
    arrive();
    EXPECT_EQ(filled(), "");
}

TEST_F(ReplayInPlaybackTest, WalkThatFilledNothingTellsSoAndLeavesTheReplayPending) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    PageDocument page = page_of_forms("http://site/", {form_of("other.cgi", {element("text", "a")})});
    page.frames = {page_of_forms("http://site/0", {}), page_of_forms("http://site/1", {})};
    open_site(page);
    arrive();
    EXPECT_EQ(panel(1), unable);
    EXPECT_TRUE(window().bAutoFillFlag);
}

TEST_F(ReplayInPlaybackTest, WalkThatFilledNothingIsSilentWithManualClick) {
    add_record("k", "My form", "http://site/");
    window().mnuPromptFill.choose();
    window().mnuManualClick.choose();
    open_site(page_of_forms("http://site/", {}));
    arrive();
    EXPECT_EQ(panel(1), "");
}

TEST_F(ReplayInPlaybackTest, FormThatThePageRemovedWhileTheQuestionWasOpenIsNotWrittenTo) {
    add_record("k", "My form", "http://site/");
    PageDocument page = page_of_forms("http://site/", {form_of("other.cgi", {element("text", "a")}), form()});
    open_site(page);
    ui.expect_box(question, Answer::Ok, [this] { browser().showing()->forms.pop_back(); });
    arrive();
    EXPECT_EQ(filled(), "");
    EXPECT_THAT(browser().pressed, IsEmpty());
    EXPECT_EQ(panel(1), unable);
}

TEST_F(ReplayInPlaybackTest, FormThatThePageReplacedWhileTheQuestionWasOpenIsFilledAsItIsNow) {
    add_record("k", "My form", "http://site/", "a=1&b=2");
    open_site(form_page("http://site/"));
    ui.expect_box(question, Answer::Ok, [this] {
        PageElement& box = browser().showing()->forms.at(0).elements.at(0);
        box.name = "b";
        box.ref.element = 99;
    });
    arrive();
    EXPECT_EQ(filled(), "2");
}

TEST_F(ReplayInPlaybackTest, PageThatWasLeftWhileTheQuestionWasOpenGetsNothing) {
    add_record("k", "My form", "http://site/");
    open_site(form_page("http://site/"));
    browser().pages["http://site/next"] = form_page("http://site/next");
    ui.expect_box(question, Answer::Ok, [this] {
        browser().page_navigates("http://site/next");
        arrive();
    });
    arrive();
    EXPECT_EQ(browser().location, "http://site/next");
    EXPECT_EQ(filled(), "");
    EXPECT_THAT(browser().pressed, IsEmpty());
}

TEST_F(ReplayInPlaybackTest, FormsAreOnlyAskedOfThePageWhileAReplayIsPossible) {
    EXPECT_FALSE(wanted_parts(window().page_processing()).forms);
    add_record("k", "My form", "http://site/");
    EXPECT_FALSE(wanted_parts(window().page_processing()).forms);
    window().gstrCurMode = "Playback";
    EXPECT_TRUE(wanted_parts(window().page_processing()).forms);
    window().mnuNoFill.choose();
    EXPECT_FALSE(wanted_parts(window().page_processing()).forms);
}

TEST_F(ReplayInPlaybackTest, OtherModesReadTheFormsOfEveryFrameAndOfTheDocument) {
    PageDocument page = page_of_forms("http://site/", {form_of("add.cgi", {element("text", "c", "3")})});
    page.frames = {page_of_forms("http://site/0", {form_of("add.cgi", {element("text", "a", "1")})}),
                   page_of_forms("http://site/1", {form_of("add.cgi", {element("text", "b", "2")})})};
    browse_to(page);
    for (const char* mode : {"READ", "CHECK", "anything", "write"}) {
        LivePage live{browser(),
                      *browser().take_image(browser().showing()->id, {.links = false, .forms = true})};
        std::string postdata = "a=&b=&c=";
        ProcessDocument(live, mode, "add.cgi", postdata, window().page_processing());
        EXPECT_EQ(postdata, "a=1&b=2&c=3") << mode;
    }
    EXPECT_THAT(browser().pressed, IsEmpty());
    EXPECT_EQ(panel(1), "");
}

} // namespace
} // namespace kestrune
