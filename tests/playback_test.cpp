#include "window_fixture.h"

namespace kestrune {
namespace {

constexpr const char* nothing_left = "No shareware/freeware site found";

// "Submit" pressed as a user does, on the window with its library.
class PlaybackTest : public WindowTest {
protected:
    void press_submit() { window().cmdPlayback.press(); }

    // The outcome dialog is answered: option 0 success, 1 failure, 2 retry.
    void expect_outcome(int option, std::string note = {}) {
        ui.expect_form("frmNote", [this, option, note = std::move(note)](Form& form) {
            EXPECT_EQ(dynamic_cast<TextBox*>(form.find("txtSiteUrl"))->Text.get(),
                      window().txtUrl.Text.get());
            EXPECT_TRUE(choose_option(form, "optSubmit", option));
            EXPECT_TRUE(type_into(form, "txtNote", note));
            EXPECT_TRUE(press_button(form, "cmdSave"));
        });
    }
    void expect_outcome_cancelled() {
        ui.expect_form("frmNote", [](Form& form) { EXPECT_TRUE(press_button(form, "cmdCancel")); });
    }
    std::string_view shown_status(const ListView& list, std::string_view key) {
        return list.sub_item(*list.find(key), "Status");
    }
};

TEST_F(PlaybackTest, FirstPressAsksNothingOpensTheTopRankedSiteAndCountsItAmongThoseLeft) {
    add_site(1, "http://low/", "Low", "PAD", "1=general", 5);
    add_site(2, "http://top/", "Top", "PAD", "1=general", 9);
    add_site(3, "http://other/", "Without PAD", "NO", "1=general", 99);
    start();
    press_submit();
    EXPECT_EQ(browser().navigations.back(), "http://top/");
    EXPECT_EQ(window().lngCurPadKey, 2);
    EXPECT_EQ(window().txtUrl.Text, "http://top/");
    EXPECT_EQ(window().txtDesc.Text, "Top");
    EXPECT_EQ(panel(3), "2 PAD Sites left");
    EXPECT_EQ(window().glngCurTab, 2);
    EXPECT_TRUE(ui.shown_forms.empty());
}

TEST_F(PlaybackTest, PressingAgainStoresTheOutcomeAndOpensTheNextSite) {
    add_site(1, "http://low/", "Low", "PAD", "1=general", 5);
    add_site(2, "http://top/", "Top", "PAD", "1=general", 9);
    start();
    press_submit();
    arrive();
    expect_outcome(1, "asked for money");
    press_submit();
    EXPECT_EQ(site(2).status, "P");
    EXPECT_EQ(site(2).note, "asked for money");
    EXPECT_EQ(shown_status(window().lvwPAD, "K2"), "P");
    EXPECT_EQ(browser().navigations.back(), "http://low/");
    EXPECT_EQ(panel(3), "1 PAD Sites left");
    EXPECT_EQ(window().lngCurPadKey, 1);
}

TEST_F(PlaybackTest, EverythingMarkedShowsTheMessageZeroLeftAndKeepsTheLastSite) {
    add_site(1, "http://only/", "Only");
    start();
    press_submit();
    arrive();
    expect_outcome(0);
    ui.expect_box(nothing_left, Answer::Ok);
    press_submit();
    EXPECT_EQ(ui.asked.back().title, "Kestrune");
    EXPECT_EQ(panel(3), "0 PAD Sites left");
    EXPECT_EQ(window().lngCurPadKey, 1);
    EXPECT_EQ(window().txtUrl.Text, "http://only/");
}

TEST_F(PlaybackTest, RetryNowPicksTheSameSiteAgain) {
    add_site(1, "http://a/", "A", "PAD", "1=general", 9);
    add_site(2, "http://b/", "B");
    start();
    press_submit();
    arrive();
    expect_outcome(2, "later");
    press_submit();
    EXPECT_EQ(site(1).status, "N");
    EXPECT_EQ(site(1).note, "later");
    EXPECT_EQ(browser().navigations.back(), "http://a/");
}

TEST_F(PlaybackTest, CancelledOutcomeMarksNothingAndTheNextSiteIsStillPicked) {
    add_site(1, "http://a/", "A", "PAD", "1=general", 9);
    start();
    press_submit();
    arrive();
    expect_outcome_cancelled();
    press_submit();
    EXPECT_EQ(site(1).status, "N");
    EXPECT_EQ(browser().navigations.back(), "http://a/");
}

TEST_F(PlaybackTest, SiteOpenedWithGotoIsMarkedByItsAddressButTheListEntryIsThatOfTheSiteLastPicked) {
    add_site(1, "http://picked/", "Picked", "PAD", "1=general", 9);
    add_site(2, "http://gone-to/", "Gone to");
    start();
    press_submit();
    arrive();
    window().lvwPAD.select("K2");
    ui.expect_box("Do you want to go to this site?", Answer::Yes);
    window().cmdGoto.press();
    arrive();
    expect_outcome(0);
    press_submit();
    EXPECT_EQ(site(2).status, "Y");
    EXPECT_EQ(site(1).status, "N");
    EXPECT_EQ(shown_status(window().lvwPAD, "K1"), "Y");
    EXPECT_EQ(shown_status(window().lvwPAD, "K2"), "N");
}

TEST_F(PlaybackTest, AddressBoxThatMatchesNoRowIsReportedAndTheSiteStaysInTheQueue) {
    add_site(1, "http://a/", "A");
    start();
    press_submit();
    arrive();
    window().txtUrl.Text = "http://a/elsewhere";
    expect_outcome(0);
    press_submit();
    EXPECT_EQ(site(1).status, "N");
    EXPECT_EQ(panel(1), "Going to http://a/...") << "the report has given way to the next navigation";
}

TEST_F(PlaybackTest, OutcomeIsReportedInTheStatusBar) {
    add_site(1, "http://only/", "Only");
    start();
    press_submit();
    arrive();
    expect_outcome(0);
    ui.expect_box(nothing_left, Answer::Ok, [this] { EXPECT_EQ(panel(1), "Submit Status is updated"); });
    press_submit();
    window().txtUrl.Text = "http://nowhere/";
    expect_outcome(0);
    ui.expect_box(nothing_left, Answer::Ok,
                  [this] { EXPECT_EQ(panel(1), "Unable to update Submit Status"); });
    press_submit();
}

TEST_F(PlaybackTest, SelectionOfSitesWithoutPadPlaysTheOtherList) {
    add_site(1, "http://pad/", "PAD");
    add_site(2, "http://no/", "No PAD", "NO");
    start();
    window().mnuNoPAD.choose();
    press_submit();
    EXPECT_EQ(browser().navigations.back(), "http://no/");
    EXPECT_EQ(panel(3), "1 Non-PAD Sites left");
    EXPECT_EQ(window().SSTab1.Tab(), 3);
    EXPECT_EQ(window().glngCurTab, 3);
}

TEST_F(PlaybackTest, WithBothOfThePairCheckedTheSecondFilterWinsAndTheSuffixIsThatOfPad) {
    add_site(1, "http://pad/", "PAD");
    add_site(2, "http://no/", "No PAD", "NO");
    start();
    window().mnuNoPAD.Checked = true;
    press_submit();
    EXPECT_EQ(browser().navigations.back(), "http://no/");
    EXPECT_EQ(panel(3), "1 PAD Sites left");
    EXPECT_EQ(window().SSTab1.Tab(), 3);
}

TEST_F(PlaybackTest, WithNeitherOfThePairCheckedNoSiteIsFoundAndThePanelKeepsItsText) {
    add_site(1, "http://pad/", "PAD");
    start();
    window().mnuWithPAD.Checked = false;
    window().StatusBar1.set_text(3, "as it was");
    ui.expect_box(nothing_left, Answer::Ok);
    press_submit();
    EXPECT_EQ(panel(3), "as it was");
    EXPECT_EQ(window().SSTab1.Tab(), 0);
}

TEST_F(PlaybackTest, PressShowsTabButtonsAndCountAlsoWhenTheTabIsCurrentAlready) {
    add_site(1, "http://pad/", "PAD");
    start();
    window().SSTab1.set_tab(2);
    window().cmdSave.Enabled = true;
    std::string count;
    window().StatusBar1.set_text(1, "");
    window().StatusBar1.Changed = [&] {
        if (count.empty())
            count = panel(1);
    };
    press_submit();
    window().StatusBar1.Changed = {};
    EXPECT_EQ(count, "1 PAD Records");
    EXPECT_FALSE(window().cmdSave.Enabled.get());
}

TEST_F(PlaybackTest, LibraryThatCannotBeReadEndsInTheMessage) {
    add_site(1, "http://pad/", "PAD");
    start();
    database.faults.locked = true;
    ui.expect_box(nothing_left, Answer::Ok);
    press_submit();
    EXPECT_EQ(window().lngCurPadKey, 0);
}

TEST_F(PlaybackTest, SubmitPressedAgainWhileTheLastPageStillLoadsIsNotDisturbedByIt) {
    add_site(1, "http://slow/", "Slow", "PAD", "1=general", 9);
    add_site(2, "http://next/", "Next");
    start();
    browser().pages["http://slow/"] = page_of_links("http://slow/", {"Submit"});
    press_submit();
    ui.expect_form("frmNote", [this](Form& form) {
        arrive(); // the slow page completes while the dialog is open
        EXPECT_TRUE(press_button(form, "cmdSave"));
    });
    press_submit();
    EXPECT_TRUE(browser().clicked.empty()) << "the page that was left must not be searched for the next site";
    EXPECT_EQ(browser().navigations.back(), "http://next/");
    EXPECT_TRUE(window().bFindLinkFlag);
}

class SiteButtonsTest : public PlaybackTest {
protected:
    SiteButtonsTest() {
        add_site(1, "http://a/", "A");
        add_site(2, "http://b/", "B", "NO", "2=game");
        start();
    }
};

TEST_F(SiteButtonsTest, EditOnASiteTabEditsTheSelectedSite) {
    window().SSTab1.set_tab(3);
    window().lvwNonPad.select("K2");
    ui.expect_form("frmEditPad", [](Form& form) {
        EXPECT_EQ(form.Caption, "Edit PAD Enabled Download Library Record");
        EXPECT_EQ(dynamic_cast<TextBox*>(form.find("txtPADUrl"))->Text, "http://b/");
        EXPECT_TRUE(type_into(form, "txtPadDesc", "Better"));
        EXPECT_TRUE(press_button(form, "cmdSave"));
    });
    window().cmdEdit.press();
    EXPECT_EQ(site(2).description, "Better");
    EXPECT_EQ(window().lvwNonPad.find("K2")->Text, "Better");
}

TEST_F(SiteButtonsTest, EditWithNothingSelectedSaysSo) {
    window().SSTab1.set_tab(2);
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    window().cmdEdit.press();
}

TEST_F(SiteButtonsTest, DeleteOnASiteTabAsksAndDeletesTheRow) {
    window().SSTab1.set_tab(2);
    window().lvwPAD.select("K1");
    ui.expect_box("Are you sure to delete PAD Record?", Answer::No);
    window().cmdDelete.press();
    EXPECT_EQ(panel(1), "Delete action is aborted!");
    EXPECT_EQ(window().lvwPAD.size(), 1U);
    ui.expect_box("Are you sure to delete PAD Record?", Answer::Yes);
    window().cmdDelete.press();
    EXPECT_EQ(panel(1), "Record session is deleted!");
    EXPECT_EQ(window().lvwPAD.size(), 0U);
    EXPECT_EQ(MemoryDatabase::sites(sites()).size(), 1U);
}

TEST_F(SiteButtonsTest, ADeleteDoesNotLowerTheCountOfTheLastLoad) {
    window().SSTab1.set_tab(2);
    window().lvwPAD.select("K1");
    ui.expect_box("Are you sure to delete PAD Record?", Answer::Yes);
    window().cmdDelete.press();
    EXPECT_EQ(window().glngNoOfPadRecord, 1);
}

TEST_F(SiteButtonsTest, LibraryIsCopiedBeforeTheFirstDeleteOfARunAndBeforeEachReset) {
    const std::string copy = files.path(files.path(folder, "backup"), site_library_name);
    const auto kept = [&] {
        const MemoryTable* const table = database.table(copy, "tblSubmitList");
        return table == nullptr ? -1 : static_cast<int>(MemoryDatabase::sites(*table).size());
    };
    window().SSTab1.set_tab(2);
    window().lvwPAD.select("K1");
    ui.expect_box("Are you sure to delete PAD Record?", Answer::Yes);
    window().cmdDelete.press();
    EXPECT_EQ(kept(), 2);
    window().SSTab1.set_tab(3);
    window().lvwNonPad.select("K2");
    ui.expect_box("Are you sure to delete NON-PAD Record?", Answer::Yes);
    window().cmdDelete.press();
    EXPECT_EQ(kept(), 2) << "the state before the first delete is the one worth having";
    ui.expect_box("Do you want to reset all status to 'Not Yet Processed'?", Answer::Yes);
    window().cmdReset.press();
    EXPECT_EQ(kept(), 0);
}

TEST_F(SiteButtonsTest, ResetOnThePadTabResetsItsListAndOnAnyOtherTabTheOther) {
    const std::string question = "Do you want to reset all status to 'Not Yet Processed'?";
    program.library().UpdateSubmitStatus(site_library_name, "http://a/", "Y", "");
    program.library().UpdateSubmitStatus(site_library_name, "http://b/", "Y", "");
    ui.expect_box(question, Answer::Yes);
    window().cmdReset.press();
    EXPECT_EQ(site(1).status, "Y");
    EXPECT_EQ(site(2).status, "N");
    window().SSTab1.set_tab(2);
    ui.expect_box(question, Answer::Yes);
    window().cmdReset.press();
    EXPECT_EQ(site(1).status, "N");
}

} // namespace
} // namespace kestrune
