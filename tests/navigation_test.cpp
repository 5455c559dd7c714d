#include "window_fixture.h"

#include <gmock/gmock.h>

namespace kestrune {
namespace {

using ::testing::EndsWith;

class NavigationTest : public WindowTest {
protected:
    NavigationTest() {
        add_site(7, "http://site/", "A site");
        start();
    }
    void browse_to(const std::string& url) {
        browser().page_navigates(url);
        arrive();
    }
};

TEST_F(NavigationTest, BackInTheFirstWindowIsDisabledUntilThereIsHistoryAndAgainWhenThereIsNone) {
    EXPECT_FALSE(window().cmdBack.Enabled.get());
    EXPECT_FALSE(window().bBackEnabled);
    browse_to("http://one/");
    browse_to("http://two/");
    EXPECT_TRUE(window().cmdBack.Enabled.get());
    EXPECT_TRUE(window().bBackEnabled);
    window().cmdBack.press();
    EXPECT_TRUE(window().gbGobackFlag);
    arrive();
    EXPECT_EQ(browser().location, "http://one/");
    EXPECT_FALSE(window().cmdBack.Enabled.get());
    EXPECT_FALSE(window().bBackEnabled);
}

TEST_F(NavigationTest, BackHidesThePanelWhenAutoHideIsOn) {
    browse_to("http://one/");
    browse_to("http://two/");
    window().cmdBack.press();
    EXPECT_TRUE(window().mnuHideRecord.Checked.get());
}

TEST_F(NavigationTest, OnlyTheCommandForGoingBackIsHandled) {
    browse_to("http://one/");
    browse_to("http://two/");
    browser().events().CommandStateChange(1, false);
    EXPECT_TRUE(window().cmdBack.Enabled.get());
    EXPECT_TRUE(window().bBackEnabled);
}

TEST_F(NavigationTest, StatusTextAfterTenTicksHas21DotsAfterNineAndOneDotAfterTen) {
    browser().page_navigates("http://slow/");
    EXPECT_EQ(panel(1), "Going to http://slow/...");
    for (int tick = 1; tick <= 9; ++tick)
        window().Timer1.tick();
    EXPECT_EQ(panel(1), "Going to http://slow/" + std::string(21, '.'));
    window().Timer1.tick();
    EXPECT_EQ(panel(1), "Going to http://slow/.");
    window().Timer1.tick();
    EXPECT_EQ(panel(1), "Going to http://slow/...");
}

TEST_F(NavigationTest, TextOfNothingButDotsCountsAsNoDots) {
    window().StatusBar1.set_text(1, std::string(30, '.'));
    window().Timer1_Timer();
    EXPECT_EQ(panel(1), std::string(32, '.'));
    window().StatusBar1.set_text(1, "");
    window().Timer1_Timer();
    EXPECT_EQ(panel(1), "..");
}

TEST_F(NavigationTest, TimerRunsFromTheNavigationUntilTheDocumentCompletes) {
    EXPECT_FALSE(window().Timer1.Enabled.get());
    browser().page_navigates("http://slow/");
    EXPECT_TRUE(window().Timer1.Enabled.get());
    EXPECT_EQ(window().Timer1.Interval.get(), 1000);
    arrive();
    EXPECT_FALSE(window().Timer1.Enabled.get());
    EXPECT_EQ(panel(1), "");
}

TEST_F(NavigationTest, NavigationThatNeverBringsADocumentLeavesTheTimerRunning) {
    browser().page_navigates("http://download/");
    browser().under_way.reset();
    EXPECT_TRUE(window().Timer1.Enabled.get());
    window().Timer1.tick();
    EXPECT_THAT(panel(1), EndsWith("....."));
}

TEST_F(NavigationTest, NavigationOfAFrameIsReportedLikeAnyOther) {
    NavigateEvent event;
    event.top_level = false;
    event.url = "http://frame/";
    browser().events().BeforeNavigate2(event);
    EXPECT_EQ(panel(1), "Going to http://frame/...");
    EXPECT_TRUE(window().Timer1.Enabled.get());
}

TEST_F(NavigationTest, GotoWithNothingSelectedShowsTheMessageAndNavigatesNowhere) {
    window().SSTab1.set_tab(2);
    window().lngFormCount = 5;
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    const auto before = browser().navigations;
    window().cmdGoto.press();
    EXPECT_EQ(browser().navigations, before);
    EXPECT_EQ(window().lngFormCount, 0);
}

TEST_F(NavigationTest, GotoAnsweredNoNavigatesNowhereAndLeavesTheAddressRow) {
    window().SSTab1.set_tab(2);
    window().lvwPAD.select("K7");
    window().txtUrl.Text = "http://before/";
    window().lngFormCount = 5;
    ui.expect_box("Do you want to go to this site?", Answer::No);
    const auto before = browser().navigations;
    window().cmdGoto.press();
    EXPECT_EQ(ui.asked.back().title, "Address: http://site/");
    EXPECT_EQ(browser().navigations, before);
    EXPECT_EQ(window().txtUrl.Text, "http://before/");
    EXPECT_FALSE(window().mnuHideRecord.Checked.get());
    EXPECT_EQ(window().lngFormCount, 0);
}

TEST_F(NavigationTest, OpeningASiteArmsItsProcessingAndShowsItInTheAddressRow) {
    window().gbRightClickDone = true;
    window().strLastUrl = "http://old/";
    window().lngFormCount = 3;
    window().OpenSiteForPlayback("http://site/", "A site");
    EXPECT_FALSE(window().gbRightClickDone);
    EXPECT_TRUE(window().bAutoFillFlag);
    EXPECT_TRUE(window().bFindLinkFlag);
    EXPECT_EQ(window().strLastUrl, "");
    EXPECT_EQ(window().lngFormCount, 0);
    EXPECT_EQ(window().gstrCurMode, "Playback");
    EXPECT_EQ(window().txtUrl.Text, "http://site/");
    EXPECT_EQ(window().txtDesc.Text, "A site");
    EXPECT_EQ(browser().navigations.back(), "http://site/");
    EXPECT_TRUE(window().mnuHideRecord.Checked.get());
}

TEST_F(NavigationTest, AddressRowDoesNotFollowTheBrowsing) {
    window().OpenSiteForPlayback("http://site/", "A site");
    arrive();
    browse_to("http://site/elsewhere");
    EXPECT_EQ(window().txtUrl.Text, "http://site/");
    EXPECT_EQ(window().txtDesc.Text, "A site");
}

TEST_F(NavigationTest, GoToWebsiteOpensTheMakersSiteAndHidesThePanel) {
    window().mnuWebsite.choose();
    EXPECT_EQ(browser().navigations.back(), "kestrune:website");
    EXPECT_TRUE(window().mnuHideRecord.Checked.get());
}

TEST_F(NavigationTest, AboutIsShownFromTheHelpMenu) {
    ui.expect_form("frmAbout", [](Form& form) {
        EXPECT_NE(form.find("lblVersion"), nullptr);
        EXPECT_NE(form.find("lblEngine"), nullptr);
        EXPECT_NE(form.find("lblLicence"), nullptr);
        EXPECT_TRUE(press_button(form, "cmdOK"));
    });
    window().mnuAbout.choose();
    EXPECT_EQ(window().mnuAbout.Shortcut, "F1");
}

TEST_F(NavigationTest, SitesAreForgottenByKeyOrFromAboutOnceTheUserAgrees) {
    const std::string question = "Do you want to forget what all sites have stored on this computer? You "
                                 "will be signed out, of sites that ask for a name and a password above the "
                                 "page when the program ends.";
    ui.expect_box(question, Answer::No);
    press_key("Ctrl+Shift+Del");
    EXPECT_EQ(ui.times_sites_forgotten, 0);

    ui.expect_form("frmAbout", [&](Form& form) {
        ui.expect_box(question, Answer::Yes);
        ui.expect_box(
            "Cookies are deleted. What else sites have stored, the cache included, is deleted when the "
            "program starts the next time; passwords given above the page are kept until it ends.",
            Answer::Ok);
        EXPECT_TRUE(press_button(form, "cmdForget"));
        EXPECT_TRUE(press_button(form, "cmdOK"));
    });
    window().mnuAbout.choose();
    EXPECT_EQ(ui.times_sites_forgotten, 1);
}

TEST_F(NavigationTest, KeysReloadStopAndGoBack) {
    browse_to("http://one/");
    browse_to("http://two/");
    press_key("Esc");
    EXPECT_EQ(browser().stop_count, 1);
    press_key("Alt+Left");
    EXPECT_EQ(browser().back_count, 1);
    arrive();
    press_key("Alt+Left");
    EXPECT_EQ(browser().back_count, 1) << "the button is disabled";
    press_key("F5");
    EXPECT_EQ(browser().reload_count, 1);
}

TEST_F(NavigationTest, OpenAddressShowsThePagesAddressAndOpensATypedOneAsOrdinaryBrowsing) {
    window().OpenSiteForPlayback("http://site/", "A site");
    arrive();
    ui.expect_form("frmOpenAddress", [](Form& form) {
        EXPECT_EQ(dynamic_cast<TextBox*>(form.find("txtAddress"))->Text, "http://site/");
        EXPECT_TRUE(type_into(form, "txtAddress", "http://typed/"));
        EXPECT_TRUE(press_button(form, "cmdOpen"));
    });
    press_key("Ctrl+L");
    EXPECT_EQ(browser().navigations.back(), "http://typed/");
    EXPECT_NE(window().gstrCurMode, "Playback");
    EXPECT_FALSE(window().bFindLinkFlag);
    EXPECT_EQ(window().txtUrl.Text, "http://site/") << "marking goes by the site that was opened";
}

TEST_F(NavigationTest, OpenAddressCancelledChangesNothing) {
    window().OpenSiteForPlayback("http://site/", "A site");
    arrive();
    const auto before = browser().navigations;
    ui.expect_form("frmOpenAddress", [](Form& form) {
        type_into(form, "txtAddress", "http://typed/");
        press_button(form, "cmdCancel");
    });
    press_key("Ctrl+L");
    EXPECT_EQ(browser().navigations, before);
    EXPECT_EQ(window().gstrCurMode, "Playback");
    EXPECT_TRUE(window().bFindLinkFlag);
}

} // namespace
} // namespace kestrune
