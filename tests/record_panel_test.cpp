#include "window_fixture.h"

namespace kestrune {
namespace {

class RecordPanelTest : public WindowTest {
protected:
    RecordPanelTest() {
        for (int key = 1; key <= 12; ++key)
            add_site(key, "http://pad" + std::to_string(key) + "/", "Site " + std::to_string(key));
        add_site(13, "http://other/", "Other", "NO");
        start();
    }
};

TEST_F(RecordPanelTest, AtLoadTabZeroIsCurrentAndAllFiveButtonsAreEnabled) {
    const BrowserWindow& w = window();
    EXPECT_EQ(w.SSTab1.Tab(), 0);
    EXPECT_EQ(w.glngCurTab, 0);
    for (const Button* button : {&w.cmdEdit, &w.cmdDelete, &w.cmdSave, &w.cmdGoto, &w.cmdReset})
        EXPECT_TRUE(button->Enabled.get()) << button->Name;
}

TEST_F(RecordPanelTest, EachTabEnablesItsButtonsAndShowsItsCount) {
    BrowserWindow& w = window();
    struct Expected {
        int tab;
        bool save, go_to, reset;
        const char* text;
    };
    for (const Expected& expected : {Expected{2, false, true, true, "12 PAD Records"},
                                     Expected{3, false, true, true, "1 NON-PAD Records"},
                                     Expected{0, false, false, false, "0 Permanent Records"}}) {
        w.SSTab1.set_tab(expected.tab);
        EXPECT_EQ(w.glngCurTab, expected.tab);
        EXPECT_EQ(w.cmdSave.Enabled.get(), expected.save);
        EXPECT_EQ(w.cmdGoto.Enabled.get(), expected.go_to);
        EXPECT_EQ(w.cmdReset.Enabled.get(), expected.reset);
        EXPECT_TRUE(w.cmdEdit.Enabled.get());
        EXPECT_TRUE(w.cmdDelete.Enabled.get());
        EXPECT_EQ(panel(1), expected.text);
    }
}

TEST_F(RecordPanelTest, TemporaryTabLeavesTheStatusTextAsItWas) {
    window().StatusBar1.set_text(1, "as it was");
    window().SSTab1.set_tab(1);
    EXPECT_EQ(panel(1), "as it was");
    EXPECT_TRUE(window().cmdSave.Enabled.get());
    EXPECT_FALSE(window().cmdGoto.Enabled.get());
    EXPECT_FALSE(window().cmdReset.Enabled.get());
}

TEST_F(RecordPanelTest, CurrentRecordListIsThatOfTheTabAndNoneOutsideTheFour) {
    BrowserWindow& w = window();
    ListView* const lists[] = {&w.lvwPermanent, &w.ListView1, &w.lvwPAD, &w.lvwNonPad};
    for (int tab = 0; tab < 4; ++tab) {
        w.glngCurTab = tab;
        EXPECT_EQ(w.CurrentRecordList(), lists[tab]);
    }
    w.glngCurTab = 4;
    EXPECT_EQ(w.CurrentRecordList(), nullptr);
    w.glngCurTab = -1;
    EXPECT_EQ(w.CurrentRecordList(), nullptr);
}

TEST_F(RecordPanelTest, TabIndexOutsideTheFourIsReportedAsNoSelection) {
    window().glngCurTab = 9;
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    window().cmdGoto_Click();
}

TEST_F(RecordPanelTest, SameColumnHeaderTwiceSortsAscendingThenDescending) {
    ListView& list = window().lvwPAD;
    list.ColumnClick(1);
    EXPECT_EQ(list.item(0).Text, "Site 1");
    EXPECT_EQ(list.item(11).Text, "Site 9");
    list.ColumnClick(1);
    EXPECT_EQ(list.item(0).Text, "Site 9");
    EXPECT_EQ(list.item(11).Text, "Site 1");
}

TEST_F(RecordPanelTest, OrderFlipsOnEveryCallWhateverTheColumn) {
    window().SortNonPadList(0);
    EXPECT_EQ(window().lvwNonPad.SortOrder(), ListView::Order::ascending);
    window().SortNonPadList(2);
    EXPECT_EQ(window().lvwNonPad.SortKey(), 2);
    EXPECT_EQ(window().lvwNonPad.SortOrder(), ListView::Order::descending);
}

TEST_F(RecordPanelTest, TemporaryListHasNoSorting) { EXPECT_FALSE(window().ListView1.ColumnClick); }

TEST_F(RecordPanelTest, PermanentListsOrderAlternatesFromReloadToReloadStartingAscending) {
    EXPECT_EQ(window().lvwPermanent.SortOrder(), ListView::Order::ascending);
    EXPECT_TRUE(window().lvwPermanent.Sorted());
    window().CallLoadPermanentRecord();
    EXPECT_EQ(window().lvwPermanent.SortOrder(), ListView::Order::descending);
    window().CallLoadPermanentRecord();
    EXPECT_EQ(window().lvwPermanent.SortOrder(), ListView::Order::ascending);
}

TEST_F(RecordPanelTest, ColumnsHaveTheirTitlesAndWidths) {
    const auto columns = [](const ListView& list) {
        std::string text;
        for (const auto& column : list.columns())
            text += column.Title + " " + std::to_string(column.Width) + "; ";
        return text;
    };
    const std::string records = "Record Name 3500; Record Type 1200; Destination Address 3500; "
                                "Form Action / Originating Address 3500; Post Data 5000; Header 1000; "
                                "Target Frame 1000; ";
    const std::string sites = "Library Name 2500; URL 3500; Status 700; Category 1200; Comment 3000; ";
    EXPECT_EQ(columns(window().lvwPermanent), records);
    EXPECT_EQ(columns(window().ListView1), records);
    EXPECT_EQ(columns(window().lvwPAD), sites);
    EXPECT_EQ(columns(window().lvwNonPad), sites);
}

TEST_F(RecordPanelTest, TabsStandInTheirOrderWithTheirCaptions) {
    const auto& pages = window().SSTab1.Pages;
    ASSERT_EQ(pages.size(), 4U);
    EXPECT_EQ(pages[0].Caption, "Permanent Record");
    EXPECT_EQ(pages[1].Caption, "Temporary Record");
    EXPECT_EQ(pages[2].Caption, "PAD Record");
    EXPECT_EQ(pages[3].Caption, "NON-PAD Record");
}

TEST_F(RecordPanelTest, GotoOnAPadSiteWithAutoHideOnHidesThePanelAndCaptionsTheButtonShowRecord) {
    window().SSTab1.set_tab(2);
    window().lvwPAD.select("K3");
    ui.expect_box("Do you want to go to this site?", Answer::Yes);
    window().cmdGoto.press();
    EXPECT_TRUE(window().mnuHideRecord.Checked.get());
    EXPECT_FALSE(window().SSTab1.Visible.get());
    EXPECT_EQ(window().cmdHideRecord.Caption.get(), "Show Record");
    EXPECT_EQ(browser().navigations.back(), "http://pad3/");
}

TEST_F(RecordPanelTest, WhileHiddenResetAllRemainsVisibleAndUsable) {
    window().SSTab1.set_tab(2);
    window().cmdHideRecord.press();
    const BrowserWindow& w = window();
    for (const Button* button : {&w.cmdEdit, &w.cmdDelete, &w.cmdSave, &w.cmdGoto})
        EXPECT_FALSE(button->Visible.get()) << button->Name;
    EXPECT_TRUE(w.cmdReset.Visible.get());
    EXPECT_TRUE(w.cmdReset.Enabled.get());
    ui.expect_box("Do you want to reset all status to 'Not Yet Processed'?", Answer::No);
    press_key("Ctrl+Alt+R");
    EXPECT_TRUE(ui.script_done());
}

} // namespace
} // namespace kestrune
