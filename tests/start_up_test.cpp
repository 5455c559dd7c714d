#include "window_fixture.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace kestrune {
namespace {

using ::testing::ElementsAre;

class StartUpTest : public WindowTest {};

TEST_F(StartUpTest, FirstWindowTitlesItselfLoadsItsListsAndShowsAboutBlank) {
    add_site(1, "http://a/", "A");
    add_site(2, "http://b/", "B", "NO");
    start();
    EXPECT_EQ(window().form.Caption, "Kestrune V1.0 (First Window)");
    EXPECT_EQ(window().glngPopupLevel, 0);
    EXPECT_EQ(window().objMeForm, &window());
    EXPECT_EQ(window().objParentForm, nullptr);
    EXPECT_TRUE(window().bFirstFlag);
    EXPECT_FALSE(window().gbGobackFlag);
    EXPECT_FALSE(window().gbRecordChanged);
    EXPECT_EQ(browser().navigations, std::vector<std::string>{"about:blank"});
    EXPECT_EQ(window().lvwPAD.size(), 1U);
    EXPECT_EQ(window().lvwNonPad.size(), 1U);
    EXPECT_TRUE(window().form.Visible.get());
    EXPECT_FALSE(window().Timer1.Enabled.get());
    EXPECT_FALSE(window().mnuHideRecord.Checked.get());
}

TEST_F(StartUpTest, DesignedCaptionStandsUntilTheWindowIsLoaded) {
    const WindowControls controls;
    EXPECT_EQ(controls.form.Caption, "Kestrune v1.0 - Shareware/Freeware program submission Assistant");
}

TEST_F(StartUpTest, MissingSessionFolderIsCreated) {
    start();
    EXPECT_TRUE(files.folder_exists(files.path(folder, "session")));
    EXPECT_EQ(window().gstrSessionPath, files.path(folder, "session"));
}

TEST_F(StartUpTest, WindowOpensWithEmptyListsWhenThereIsNoLibrary) {
    database.faults.fail_at = 1;
    start();
    EXPECT_EQ(window().lvwPAD.size(), 0U);
    EXPECT_EQ(window().glngNoOfPadRecord, 0);
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(StartUpTest, ExitWithAnEmptyTemporaryListEndsAtOnceWithoutAQuestion) {
    start();
    window().mnuExit.choose();
    EXPECT_TRUE(ui.ended);
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(StartUpTest, ExitWithAnUnsavedTemporaryRecordAnsweredNoKeepsTheProgramRunning) {
    start();
    window().ListView1.add({"K1", "Session1", {"Form"}});
    const std::string question =
        "You have temporary record not saved as permanent yet, do you really want to exit?";
    ui.expect_box(question, Answer::No);
    window().mnuExit.choose();
    EXPECT_FALSE(ui.ended);
    EXPECT_EQ(ui.asked.back().buttons, Buttons::YesNo);
    ui.expect_box(question, Answer::Yes);
    window().mnuExit.choose();
    EXPECT_TRUE(ui.ended);
}

TEST_F(StartUpTest, ClosingTheFirstWindowByItsCloseBoxEndsTheProgramWithoutAQuestion) {
    start();
    window().ListView1.add({"K1", "Session1", {"Form"}});
    window().form.CloseRequested();
    EXPECT_TRUE(ui.ended);
    EXPECT_TRUE(ui.asked.empty());
}

class PopupTest : public WindowTest {
protected:
    PopupTest() { start(); }
    // A page of the window asks for a new window.
    static BrowserWindow* request(BrowserWindow& opener, Program& program) {
        const std::size_t before = program.windows().size();
        dynamic_cast<MemoryBrowser&>(opener.browser()).events().NewWindow2();
        return program.windows().size() > before ? program.windows().back().get() : nullptr;
    }
    BrowserWindow& open(BrowserWindow& opener) {
        opener.mnuBlock.Checked = false;
        return *request(opener, program);
    }
};

const char* const block_question = "A pop-up window is requrested, do you want to block it?";

TEST_F(PopupTest, AnsweringYesThreeTimesShowsThreeBlockedAndAPopupCountsItsOwn) {
    for (int i = 0; i < 3; ++i) {
        ui.expect_box(block_question, Answer::Yes);
        EXPECT_EQ(request(window(), program), nullptr);
    }
    EXPECT_EQ(panel(2), "3 Pop-up is blocked");
    BrowserWindow& popup = open(window());
    EXPECT_EQ(popup.lngBlockedPopups, 0);
    ui.expect_box(block_question, Answer::Yes);
    request(popup, program);
    EXPECT_EQ(popup.StatusBar1.text(2), "1 Pop-up is blocked");
}

TEST_F(PopupTest, RequestInTheMiddleOfAHandlerIsAskedAboutAndNotDropped) {
    browser().pages["http://site/"] = page_of_links("http://site/", {"Submit"});
    BrowserWindow* opened = nullptr;
    browser().on_take_image = [&] {
        browser().on_take_image = nullptr;
        ui.expect_box(block_question, Answer::No);
        ui.expect_box("Please be awared that the right-click function is disabled in the pop-up window!",
                      Answer::Ok);
        opened = request(window(), program);
    };
    ui.expect_box("Do you want to go to this link", Answer::Yes);
    window().OpenSiteForPlayback("http://site/", "A site");
    arrive();
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(browser().clicked, std::vector<std::string>{"Submit"}) << "and the handler goes on";
}

TEST_F(PopupTest, WhatComesWhileARequestIsAskedAboutIsHandledAfterwards) {
    ui.expect_box(block_question, Answer::Yes, [&] { press_key("F5"); });
    request(window(), program);
    EXPECT_EQ(browser().reload_count, 0) << "the browser waits for the answer";
    ui.run_later();
    EXPECT_EQ(browser().reload_count, 1);
}

TEST_F(PopupTest, ScriptClosesAPopupButNotTheFirstWindow) {
    BrowserWindow& popup = open(window());
    browser().events().WindowClosing();
    EXPECT_FALSE(ui.ended);
    dynamic_cast<MemoryBrowser&>(popup.browser()).events().WindowClosing();
    ui.run_later();
    EXPECT_EQ(program.windows().size(), 1U);
    EXPECT_TRUE(window().form.Visible.get());
}

TEST_F(PopupTest, OpenerOfSeveralPopupsIsShownOnceTheLastHasClosed) {
    BrowserWindow& first = open(window());
    BrowserWindow& second = open(window());
    first.Unload();
    EXPECT_FALSE(window().form.Visible.get());
    second.Unload();
    EXPECT_TRUE(window().form.Visible.get());
}

// The windows that can be seen, by their captions.
std::vector<std::string> seen(const Program& program) {
    std::vector<std::string> captions;
    for (const auto& window : program.windows()) {
        if (window->form.Visible.get())
            captions.push_back(window->form.Caption.get());
    }
    return captions;
}

TEST_F(PopupTest, SecondPopupOfAWindowHidesTheFirstUntilItCloses) {
    BrowserWindow& first = open(window());
    BrowserWindow& second = open(window());
    first.form.Caption = "first";
    second.form.Caption = "second";
    EXPECT_THAT(seen(program), ElementsAre("second"));
    second.form.CloseRequested();
    EXPECT_THAT(seen(program), ElementsAre("first"));
    first.form.CloseRequested();
    EXPECT_THAT(seen(program), ElementsAre("Kestrune V1.0 (First Window)"));
}

TEST_F(PopupTest, PopupThatAHiddenWindowOpensLiesOverAllOthers) {
    BrowserWindow& first = open(window());
    BrowserWindow& upper = open(first);
    upper.form.Caption = "upper";
    BrowserWindow& second = open(window());
    second.form.Caption = "second";
    BrowserWindow& latest = open(first);
    latest.form.Caption = "latest";
    EXPECT_THAT(seen(program), ElementsAre("latest"));
    latest.form.CloseRequested();
    EXPECT_THAT(seen(program), ElementsAre("second")) << "the opener lies under another one still";
    second.form.CloseRequested();
    EXPECT_THAT(seen(program), ElementsAre("upper"));
}

TEST_F(PopupTest, HiddenPopupThatClosesLeavesTheUppermostInPlace) {
    BrowserWindow& first = open(window());
    open(window()).form.Caption = "second";
    dynamic_cast<MemoryBrowser&>(first.browser()).events().WindowClosing();
    ui.run_later();
    EXPECT_THAT(seen(program), ElementsAre("second"));
}

TEST_F(PopupTest, PopupThatCannotBeLoadedIsGoneAndItsOpenerIsSeenAgain) {
    window().form.Follow = [this] {
        if (!window().form.Visible.get())
            throw std::runtime_error("no room for a window");
    };
    window().mnuBlock.Checked = false;
    EXPECT_EQ(request(window(), program), nullptr);
    EXPECT_EQ(program.windows().size(), 1U);
    EXPECT_TRUE(window().form.Visible.get());
    window().form.Follow = nullptr;
    BrowserWindow& popup = open(window());
    EXPECT_THAT(seen(program), ElementsAre(popup.form.Caption.get()));
    popup.form.CloseRequested();
    EXPECT_TRUE(window().form.Visible.get());
}

TEST_F(PopupTest, PopupThatIsToCloseUnderItsOwnPopupGoesWithThatOne) {
    BrowserWindow& popup = open(window());
    BrowserWindow& upper = open(popup);
    dynamic_cast<MemoryBrowser&>(popup.browser()).events().WindowClosing();
    EXPECT_EQ(program.windows().size(), 3U);
    EXPECT_FALSE(window().form.Visible.get());
    upper.Unload();
    ui.run_later();
    EXPECT_EQ(program.windows().size(), 1U);
    EXPECT_TRUE(window().form.Visible.get());
}

TEST_F(PopupTest, AnsweringNoShowsTheNoticeAndOpensThePopup) {
    ui.expect_box(block_question, Answer::No);
    ui.expect_box("Please be awared that the right-click function is disabled in the pop-up window!",
                  Answer::Ok);
    EXPECT_NE(request(window(), program), nullptr);
    EXPECT_TRUE(ui.script_done());
}

TEST_F(PopupTest, WithTheSwitchUncheckedWindowsOpenAtLevelOneAndTwo) {
    BrowserWindow& first = open(window());
    EXPECT_EQ(first.form.Caption, "Moravelt v1.0 (Popup Window - Level 1)");
    BrowserWindow& second = open(first);
    EXPECT_EQ(second.form.Caption, "Moravelt v1.0 (Popup Window - Level 2)");
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(PopupTest, PopupAppearsAtTheOpenersPlaceAndTheOpenerIsHiddenUntilItCloses) {
    window().form.Left = 1500;
    window().form.Top = 900;
    window().form.Width = 15000;
    BrowserWindow& popup = open(window());
    EXPECT_EQ(popup.form.Left.get(), 1500);
    EXPECT_EQ(popup.form.Top.get(), 900);
    EXPECT_EQ(popup.form.Width.get(), 15000);
    EXPECT_EQ(popup.form.Height.get(), window().form.Height.get());
    EXPECT_TRUE(popup.form.Visible.get());
    EXPECT_FALSE(window().form.Visible.get());
    popup.form.CloseRequested();
    EXPECT_TRUE(window().form.Visible.get());
    EXPECT_FALSE(ui.ended);
    ui.run_later();
    EXPECT_EQ(program.windows().size(), 1U);
}

TEST_F(PopupTest, ClosingALevelTwoPopupShowsTheLevelOnePopup) {
    BrowserWindow& first = open(window());
    BrowserWindow& second = open(first);
    second.form.CloseRequested();
    EXPECT_TRUE(first.form.Visible.get());
    EXPECT_FALSE(window().form.Visible.get());
}

TEST_F(PopupTest, PopupHidesItsPanelAtLoadAndStartsFromTheDesignedSwitchesButTwo) {
    window().mnuAutoRecord.choose();
    window().mnuPAD.Checked = true;
    window().mnuNoPAD.choose();
    BrowserWindow& popup = open(window());
    EXPECT_TRUE(popup.mnuHideRecord.Checked.get());
    EXPECT_FALSE(popup.mnuAutoRecord.Checked.get());
    EXPECT_TRUE(popup.mnuPAD.Checked.get());
    EXPECT_TRUE(popup.mnuNoPAD.Checked.get());
    EXPECT_TRUE(popup.mnuWithPAD.Checked.get()) << "the other of the pair is not copied";
}

TEST_F(PopupTest, ClosingHandsTheTwoMenuStatesBack) {
    BrowserWindow& popup = open(window());
    popup.mnuNoPAD.choose();
    popup.mnuPAD.Checked = true;
    popup.mnuPromptFill.choose();
    popup.form.CloseRequested();
    EXPECT_TRUE(window().mnuNoPAD.Checked.get());
    EXPECT_TRUE(window().mnuWithPAD.Checked.get());
    EXPECT_TRUE(window().mnuPAD.Checked.get());
    EXPECT_TRUE(window().mnuPromptFill.Checked.get());
}

TEST_F(PopupTest, BackOnTheFirstPageOfAPopupClosesItAndTheParentReappears) {
    BrowserWindow& popup = open(window());
    EXPECT_TRUE(popup.cmdBack.Enabled.get());
    popup.cmdBack.press();
    EXPECT_TRUE(window().form.Visible.get());
    EXPECT_FALSE(popup.form.Visible.get());
}

TEST_F(PopupTest, GoingBackPastTheFirstPageOfAPopupClosesItOnceBackWasPressed) {
    BrowserWindow& popup = open(window());
    auto& pages = dynamic_cast<MemoryBrowser&>(popup.browser());
    pages.events().CommandStateChange(BrowserEvents::navigate_back, true);
    pages.events().CommandStateChange(BrowserEvents::navigate_back, false);
    EXPECT_TRUE(popup.form.Visible.get()) << "nobody pressed Back yet";
    EXPECT_TRUE(popup.cmdBack.Enabled.get());
    pages.events().CommandStateChange(BrowserEvents::navigate_back, true);
    popup.cmdBack.press();
    pages.events().CommandStateChange(BrowserEvents::navigate_back, false);
    EXPECT_FALSE(popup.form.Visible.get());
    EXPECT_TRUE(window().form.Visible.get());
}

TEST_F(PopupTest, ExitFromAPopupEndsTheProgramAndAsksAboutItsOwnTemporaryRecords) {
    window().ListView1.add({"K1", "Session1", {"Form"}});
    BrowserWindow& popup = open(window());
    popup.mnuExit.choose();
    EXPECT_TRUE(ui.ended);
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(PopupTest, ClosingTheFirstWindowWhilePopupsAreOpenEndsTheProgram) {
    open(window());
    window().form.CloseRequested();
    EXPECT_TRUE(ui.ended);
}

TEST_F(PopupTest, ClosingAPopupThatChangedNothingDoesNotReloadTheParentsList) {
    const auto order = window().lvwPermanent.SortOrder();
    BrowserWindow& popup = open(window());
    popup.form.CloseRequested();
    EXPECT_EQ(window().lvwPermanent.SortOrder(), order);
}

TEST_F(PopupTest, ClosingAPopupThatChangedTheRecordsReloadsTheParentsList) {
    const auto order = window().lvwPermanent.SortOrder();
    BrowserWindow& popup = open(window());
    popup.gbRecordChanged = true;
    popup.form.CloseRequested();
    EXPECT_NE(window().lvwPermanent.SortOrder(), order);
}

} // namespace
} // namespace kestrune
