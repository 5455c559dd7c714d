#include "tests/desktop/program_fixture.h"

#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::StartsWith;

bool enabled(const QWidget& window, const char* button) {
    return drive::Driver::find<QPushButton>(window, button).isEnabled();
}

TEST_F(ProgramTest, BackIsDisabledUntilTheBrowserHasHistoryAndAgainWhenItHasNone) {
    server().page("/one", "<title>one</title>");
    server().page("/two", "<title>two</title>");
    start();
    EXPECT_FALSE(enabled(user().window(), "cmdBack"));
    open_address(url("/one"));
    open_address(url("/two"));
    wait("Back to be enabled", [this] { return enabled(user().window(), "cmdBack"); });
    key(Qt::Key_Left, Qt::AltModifier);
    wait_for_document(url("/one"));
    wait("Back to be disabled", [this] { return !enabled(user().window(), "cmdBack"); });
}

TEST_F(ProgramTest, ProgressIsShownWithGrowingDotsUntilTheLoadIsStopped) {
    server().never("/never");
    start();
    window().OpenSiteForPlayback(url("/never"), "A slow site");
    wait("the status text", [this] { return user().status(1) == "Going to " + url("/never") + "..."; });
    wait("a tick of the timer", [this] { return user().status(1) == "Going to " + url("/never") + "....."; });
    key(Qt::Key_Escape);
    EXPECT_TRUE(window().Timer1.Enabled.get()) << "no document came";
    EXPECT_THAT(user().status(1), StartsWith("Going to "));
}

TEST_F(ProgramTest, StoppingALoadWhosePictureNeverComesCompletesTheDocument) {
    server().never("/picture.png");
    server().page("/page", "<p>text</p><img src=/picture.png>");
    start();
    window().OpenSiteForPlayback(url("/page"), "A site");
    wait("the picture to be asked for", [this] { return server().count_of("/picture.png") > 0; });
    EXPECT_NE(window().strCurDocUrl, url("/page"));
    key(Qt::Key_Escape);
    wait_for_document(url("/page"));
    EXPECT_EQ(user().status(1), "");
}

TEST_F(ProgramTest, F5LoadsThePageAgain) {
    server().page("/page", "<p>text</p>");
    start();
    open_address(url("/page"));
    const int before = server().count_of("/page");
    key(Qt::Key_F5);
    wait("the page to be asked for again", [&] { return server().count_of("/page") == before + 1; });
}

TEST_F(ProgramTest, AddressRowDoesNotFollowTheBrowsingAndEnterInItDoesNothing) {
    server().page("/site", "<p>site</p>");
    server().page("/elsewhere", "<p>elsewhere</p>");
    start();
    window().OpenSiteForPlayback(url("/site"), "A site");
    wait_for_document(url("/site"));
    open_address(url("/elsewhere"));
    EXPECT_EQ(user().text("txtUrl"), url("/site"));
    EXPECT_EQ(user().text("txtDesc"), "A site");
    QTest::keyClick(&drive::Driver::find<QLineEdit>(user().window(), "txtUrl"), Qt::Key_Return);
    EXPECT_EQ(window().strCurDocUrl, url("/elsewhere"));
    EXPECT_EQ(server().count_of("/site"), 1);
}

TEST_F(ProgramTest, OpenAddressShowsTheAddressOfThePageInTheBrowser) {
    server().page("/page", "<p>text</p>");
    start();
    open_address(url("/page"));
    std::string shown;
    user().answer_with([&](QDialog& dialog) {
        shown = drive::Driver::text(dialog, "txtAddress");
        user().press(dialog, "cmdCancel");
    });
    key(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(shown, url("/page"));
}

TEST_F(ProgramTest, GoToWebsiteOpensThePageOfTheProgramsOwn) {
    start();
    user().choose("mnuWebsite");
    wait_for_document("kestrune:website");
}

TEST_F(ProgramTest, PageOfTheNetworkCannotOpenAPageOfTheProgramsOwn) {
    server().page("/page", "<a href='kestrune:website'>Submit</a>");
    server().page("/after", "<p>after</p>");
    start();
    user().choose("mnuPromptFill");
    window().OpenSiteForPlayback(url("/page"), "A site");
    wait_for_document(url("/page"));
    wait("the link to be clicked", [this] { return !window().bFindLinkFlag; });
    open_address(url("/after"));
    EXPECT_EQ(window().strCurDocUrl, url("/after"));
    EXPECT_THAT(window().browser().LocationURL(), EndsWith("/after"));
}

TEST_F(ProgramTest, WholeRoadOfTwoSitesWithTheirOutcomesInTheLibrary) {
    server().page("/a", "<a href=/a-submit>Submit Software</a>");
    server().page("/a-submit", "<form action=/post method=post><input name=n></form>");
    server().page("/b", "<p>no link</p>");
    add_site(1, url("/a"), "A");
    add_site(2, url("/b"), "B");
    start();
    answer_boxes({"Yes"});
    key(Qt::Key_F9);
    wait_for_document(url("/a-submit"));
    EXPECT_THAT(asked(), ElementsAre("Do you want to go to this link"));
    EXPECT_EQ(user().status(3), "2 PAD Sites left");
    EXPECT_EQ(window().lngFormCount, 1);

    user().answer_with([&](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), "frmNote");
        user().press(dialog, "optSubmit(1)");
        user().press(dialog, "cmdSave");
    });
    key(Qt::Key_F9);
    wait_for_document(url("/b"));
    EXPECT_EQ(status_in_library(url("/a")), "P");
    EXPECT_EQ(user().status(3), "1 PAD Sites left");
    EXPECT_EQ(user().text("txtUrl"), url("/b"));
}

TEST_F(ProgramTest, ResetAllByItsKeyWhileTheListsAreHidden) {
    add_site(1, url("/a"), "A");
    start();
    window().SSTab1.set_tab(2);
    user().press("cmdHideRecord");
    EXPECT_EQ(drive::Driver::find<QPushButton>(user().window(), "cmdHideRecord").accessibleName(),
              "Show Record");
    answer_boxes({"Yes"});
    key(Qt::Key_R, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_THAT(asked(), ElementsAre("Do you want to reset all status to 'Not Yet Processed'?"));
    EXPECT_EQ(status_in_library(url("/a")), "N");
}

TEST_F(ProgramTest, PopupIsAskedAboutAndABlockedOneIsNeverLoaded) {
    server().page("/page", "<a href=/popup target=_blank>Submit</a>");
    server().page("/popup", "<p>popup</p>");
    start();
    answer_boxes({"Yes", "Yes"});
    window().OpenSiteForPlayback(url("/page"), "A site");
    wait("the request to be blocked", [this] { return user().status(2) == "1 Pop-up is blocked"; });
    EXPECT_THAT(asked(), ElementsAre("Do you want to go to this link",
                                     "A pop-up window is requrested, do you want to block it?"));
    EXPECT_EQ(server().count_of("/popup"), 0);
}

} // namespace
} // namespace kestrune
