#include "window_fixture.h"

#include "filling/page_processing.h"

#include <gmock/gmock.h>

namespace kestrune {
namespace {

using ::testing::ElementsAre;

class PageProcessingTest : public WindowTest {
protected:
    PageProcessingTest() { start(); }

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
    void expect_link_question(Answer answer, std::function<void()> meanwhile = {}) {
        ui.expect_box("Do you want to go to this link", answer, std::move(meanwhile));
    }
    std::vector<std::string> titles() {
        std::vector<std::string> all;
        for (const auto& asked : ui.asked)
            all.push_back(asked.title);
        return all;
    }
    static PageDocument frameset(std::string url, std::vector<PageDocument> frames) {
        PageDocument page;
        page.url = std::move(url);
        page.frames = std::move(frames);
        return page;
    }
    // The form table as page address and action in turn.
    std::vector<std::string> form_table() {
        std::vector<std::string> entries;
        for (int i = 0; i < window().lngFormCount; ++i) {
            entries.push_back(window().astrFormPageUrl[static_cast<std::size_t>(i)]);
            entries.push_back(window().astrFormAction[static_cast<std::size_t>(i)]);
        }
        return entries;
    }
};

TEST_F(PageProcessingTest, FormTableGetsOneEntryForEachFormTagEvenWithoutAnAction) {
    PageDocument page;
    page.url = "http://forms/";
    page.form_tags = {"<form action=\"add.cgi\" method=post>", "<FORM id=x>", "<form action='/go' >"};
    browse_to(page);
    EXPECT_THAT(form_table(),
                ElementsAre("http://forms/", "add.cgi", "http://forms/", "", "http://forms/", "/go"));
}

TEST_F(PageProcessingTest, FormTableGetsOneFrameEntryForEachFramesetDocument) {
    PageDocument inner;
    inner.url = "http://frames/inner";
    inner.form_tags = {"<form action=inner.cgi>"};
    PageDocument page = frameset("http://frames/", {inner});
    page.form_tags = {"<form action=ignored.cgi>"};
    browse_to(page);
    EXPECT_THAT(form_table(), ElementsAre("http://frames/inner", "inner.cgi", "http://frames/", "*frame*"));
}

TEST_F(PageProcessingTest, FormTableIsNotEmptiedByANewPageButByOpeningASite) {
    PageDocument page;
    page.url = "http://forms/";
    page.form_tags = {"<form action=a>"};
    browse_to(page);
    page.url = "http://more/";
    browse_to(page);
    EXPECT_EQ(window().lngFormCount, 2);
    window().OpenSiteForPlayback("http://site/", "");
    EXPECT_EQ(window().lngFormCount, 0);
}

TEST_F(PageProcessingTest, CompletedDocumentIsNotedAndStatusCleared) {
    browse_to(page_of_links("http://page/", {}));
    EXPECT_EQ(window().strCurDocUrl, "http://page/");
    EXPECT_EQ(window().strLastUrl, "http://page/");
    EXPECT_EQ(panel(1), "");
    EXPECT_FALSE(window().Timer1.Enabled.get());
}

TEST_F(PageProcessingTest, OpenedSitesLinkIsFoundAndFollowedAfterTheQuestion) {
    open_site(page_of_links("http://site/", {"Home", "Submit Software"}));
    expect_link_question(Answer::Yes);
    arrive();
    EXPECT_THAT(browser().clicked, ElementsAre("Submit Software"));
    EXPECT_FALSE(window().bFindLinkFlag);
    EXPECT_EQ(panel(1), "Found Submit Link = 'Submit Software'");
}

TEST_F(PageProcessingTest, LaterDocumentsOfTheSiteAreLeftAloneOnceTheLinkWasFound) {
    open_site(page_of_links("http://site/", {"Developers"}));
    window().mnuPromptFill.choose();
    arrive();
    browse_to(page_of_links("http://site/developers", {"Developer Login"}));
    EXPECT_THAT(browser().clicked, ElementsAre("Developers"));
}

TEST_F(PageProcessingTest, SearchStaysArmedForTheNextDocumentWhenNoLinkQualifies) {
    open_site(page_of_links("http://site/", {"Home"}));
    window().mnuPromptFill.choose();
    arrive();
    EXPECT_TRUE(window().bFindLinkFlag);
    browse_to(page_of_links("http://site/more", {"Add Program"}));
    EXPECT_THAT(browser().clicked, ElementsAre("Add Program"));
}

TEST_F(PageProcessingTest, EveryFrameAndThenTheFramesetDocumentIsSearched) {
    PageDocument page = frameset("http://frames/", {page_of_links("http://frames/a", {"Submit"}),
                                                    page_of_links("http://frames/b", {"Add Tool"})});
    page.links.push_back(link("Suggest App"));
    open_site(page);
    // The frames complete first, each on its own, then the page with all its frames.
    for (int i = 0; i < 5; ++i)
        expect_link_question(Answer::No);
    arrive();
    EXPECT_THAT(titles(), ElementsAre("Link = 'Submit'", "Link = 'Add Tool'", "Link = 'Submit'",
                                      "Link = 'Add Tool'", "Link = 'Suggest App'"));
    EXPECT_TRUE(window().bFindLinkFlag);
}

TEST_F(PageProcessingTest, LaterFramesAreNotSearchedOnceAnEarlierOneHadTheLink) {
    open_site(frameset("http://frames/", {page_of_links("http://frames/a", {"Submit"}),
                                          page_of_links("http://frames/b", {"Add Tool"})}));
    expect_link_question(Answer::Yes);
    arrive();
    EXPECT_THAT(browser().clicked, ElementsAre("Submit"));
    EXPECT_TRUE(ui.script_done());
}

TEST_F(PageProcessingTest, FrameThatGaveNoAnswerIsPassedOver) {
    open_site(frameset("http://frames/", {PageDocument{}, page_of_links("http://frames/b", {"Submit"})}));
    window().mnuPromptFill.choose();
    arrive();
    EXPECT_THAT(browser().clicked, ElementsAre("Submit"));
}

TEST_F(PageProcessingTest, WhileTheQuestionIsOpenTheNextDocumentWaitsItsTurn) {
    browser().pages["http://next/"] = page_of_links("http://next/", {"Add Program"});
    open_site(page_of_links("http://site/", {"Submit"}));
    expect_link_question(Answer::No, [this] {
        browser().page_navigates("http://next/");
        arrive();
        EXPECT_EQ(window().strCurDocUrl, "http://site/");
    });
    expect_link_question(Answer::No);
    arrive();
    EXPECT_THAT(titles(), ElementsAre("Link = 'Submit'", "Link = 'Add Program'"));
    EXPECT_EQ(window().strCurDocUrl, "http://next/");
}

TEST_F(PageProcessingTest, PageThatNavigatesAwayWhileTheQuestionIsOpenLosesItsLinkAndTheNextPageIsSearched) {
    browser().pages["http://next/"] = page_of_links("http://next/", {"Add Program"});
    open_site(page_of_links("http://site/", {"Submit"}));
    expect_link_question(Answer::Yes, [this] {
        browser().page_navigates("http://next/");
        arrive();
    });
    expect_link_question(Answer::Yes);
    arrive();
    EXPECT_THAT(browser().clicked, ElementsAre("Add Program"));
}

TEST_F(PageProcessingTest, CompletionThatWaitedWhileAnotherSiteWasOpenedIsDropped) {
    browser().pages["http://old/"] = page_of_links("http://old/", {"Submit"});
    browser().page_navigates("http://old/");
    ui.expect_form("frmOpenAddress", [this](Form& form) {
        arrive();
        type_into(form, "txtAddress", "http://typed/");
        press_button(form, "cmdOpen");
    });
    press_key("Ctrl+L");
    EXPECT_EQ(window().strCurDocUrl, "about:blank");
}

TEST_F(PageProcessingTest, SearchRunsOutsidePlaybackWhileItIsStillArmed) {
    open_site(page_of_links("http://site/", {"Home"}));
    window().mnuPromptFill.choose();
    window().mnuNoFill.choose();
    arrive();
    window().gstrCurMode = "playback";
    browse_to(page_of_links("http://other/", {"Submit"}));
    EXPECT_THAT(browser().clicked, ElementsAre("Submit"));
}

TEST_F(PageProcessingTest, OrdinaryBrowsingSearchesNothing) {
    browse_to(page_of_links("http://page/", {"Submit"}));
    EXPECT_TRUE(browser().clicked.empty());
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(PageProcessingTest, LinksAreOnlyAskedOfThePageWhileTheSearchIsArmed) {
    EXPECT_FALSE(browser().events().wanted_parts().links);
    window().OpenSiteForPlayback("http://site/", "");
    EXPECT_TRUE(browser().events().wanted_parts().links);
}

TEST_F(PageProcessingTest, ModeNamesAreComparedExactly) {
    browse_to(page_of_links("http://page/", {"Submit"}));
    window().bFindLinkFlag = true;
    window().mnuPromptFill.choose();
    PageDocument image = *browser().take_image(browser().showing()->id, {.links = true});
    LivePage page{browser(), std::move(image)};
    std::string postdata;
    ProcessDocument(page, "Link", "", postdata, window().page_processing());
    page.send();
    EXPECT_TRUE(browser().clicked.empty());
    ProcessDocument(page, "LINK", "", postdata, window().page_processing());
    page.send();
    EXPECT_THAT(browser().clicked, ElementsAre("Submit"));
}

} // namespace
} // namespace kestrune
