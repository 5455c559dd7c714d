#include "window_fixture.h"

#include <vector>

namespace kestrune {
namespace {

class SwitchesTest : public WindowTest {
protected:
    SwitchesTest() { start(); }

    // Manual, auto, none.
    std::vector<bool> fill_mode() {
        return {window().mnuManualClick.Checked.get(), window().mnuAutoClick.Checked.get(),
                window().mnuNoFill.Checked.get()};
    }
    void set_fill_mode(bool manual, bool automatic, bool none) {
        window().mnuManualClick.Checked = manual;
        window().mnuAutoClick.Checked = automatic;
        window().mnuNoFill.Checked = none;
    }
    const std::string& caption() { return window().cmdAutoClick.Caption.get(); }
};

TEST_F(SwitchesTest, EveryMenuStandsInItsPlaceWithItsCaptionAndStartState) {
    struct Expected {
        const char* name;
        const char* caption;
        bool checked;
    };
    const std::vector<std::vector<Expected>> bar{
        {{"mnuFile", "File", false}, {"mnuSetting", "Setting", false}, {"mnuExit", "Exit", false}},
        {{"mnuPAD", "PAD", false},
         {"mnuWithPAD", "Include PAD Enabled Site", true},
         {"mnuNoPAD", "Include Site without PAD", false},
         {"mnuSep2a", "-", false},
         {"mnuSelectGeneral", "Select 1=generate", true},
         {"mnuSelectGame", "Select 2=game", false},
         {"mnuSelectDeveloper", "Select 3=developer", false},
         {"mnuSelectBusiness", "Select 4=business", false},
         {"mnuSelectFreeware", "Select 5=freeware", false},
         {"mnuSelectSpecial", "Select 9=special", false}},
        {{"mnuView", "View", false},
         {"mnuHideRecord", "Hide Permanent/Temporary Record", false},
         {"mnuAutoHide", "Auto Hide Permanent/Temporary Record", true}},
        {{"mnuPlayback", "Playback", false},
         {"mnuPromptFill", "Prompt User before Auto Fill-in Form", true},
         {"mnuPlaybackSep1", "-", false},
         {"mnuManualClick", "Auto Fill-in Form (with Manual Click)", false},
         {"mnuAutoClick", "Auto Fill-in Form (with Auto Click)", true},
         {"mnuNoFill", "No auto Fill-in Form", false}},
        {{"mnuRecord", "Record", false}, {"mnuAutoRecord", "Auto Record", false}},
        {{"mnuPopup", "Popup", false}, {"mnuBlock", "Block pop-up window", true}},
        {{"mnuHelp", "Help", false}, {"mnuWebsite", "Go to Website", false}, {"mnuAbout", "About", false}},
        {{"mnuRightClickMenu", "Right Click Menu", false},
         {"mnuProduct", "Single-input", false},
         {"mnuAll", "Multi-input", false}}};
    ASSERT_EQ(window().form.MenuBar.size(), bar.size());
    for (std::size_t m = 0; m < bar.size(); ++m) {
        const MenuItem& title = *window().form.MenuBar[m];
        EXPECT_EQ(title.Name, bar[m][0].name);
        EXPECT_EQ(title.Caption.get(), bar[m][0].caption);
        ASSERT_EQ(title.Items.size(), bar[m].size() - 1) << title.Name;
        for (std::size_t i = 1; i < bar[m].size(); ++i) {
            const MenuItem& item = *title.Items[i - 1];
            EXPECT_EQ(item.Name, bar[m][i].name);
            EXPECT_EQ(item.Caption.get(), bar[m][i].caption);
            EXPECT_EQ(item.Checked.get(), bar[m][i].checked) << item.Name;
        }
    }
    EXPECT_FALSE(window().mnuRightClickMenu.Visible.get());
}

TEST_F(SwitchesTest, ClickingAutoClickWhileCheckedChecksManualClickAndCaptionsTheButtonOff) {
    window().mnuAutoClick.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(caption(), "Auto Click is Off");
}

TEST_F(SwitchesTest, ClickingNoFillTwiceEndsWithManualClickChecked) {
    window().mnuNoFill.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{false, false, true}));
    EXPECT_EQ(caption(), "Auto Click is Off");
    window().mnuNoFill.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(caption(), "Auto Click is Off");
}

TEST_F(SwitchesTest, ClickingManualClickMovesTheCheckOnAndBack) {
    window().mnuManualClick.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(caption(), "Auto Click is Off");
    window().mnuManualClick.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{false, true, false}));
    EXPECT_EQ(caption(), "Auto Click is On");
}

TEST_F(SwitchesTest, AutoAndManualClickLeaveNoFillUnchangedWhenTheirOwnItemWasChecked) {
    set_fill_mode(false, true, true);
    window().mnuAutoClick.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{true, false, true}));
    set_fill_mode(true, false, true);
    window().mnuManualClick.choose();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{false, true, true}));
}

TEST_F(SwitchesTest, AutoClickButtonGoesFromNoFillToAutoClick) {
    window().mnuNoFill.choose();
    window().cmdAutoClick.press();
    EXPECT_EQ(fill_mode(), (std::vector<bool>{false, true, false}));
    EXPECT_EQ(caption(), "Auto Click is On");
}

TEST_F(SwitchesTest, ClickingSiteWithoutPadUnchecksPadAndClickingItAgainRestoresTheStart) {
    window().mnuNoPAD.choose();
    EXPECT_TRUE(window().mnuNoPAD.Checked.get());
    EXPECT_FALSE(window().mnuWithPAD.Checked.get());
    window().mnuNoPAD.choose();
    EXPECT_FALSE(window().mnuNoPAD.Checked.get());
    EXPECT_TRUE(window().mnuWithPAD.Checked.get());
    window().mnuWithPAD.choose();
    EXPECT_TRUE(window().mnuNoPAD.Checked.get());
}

TEST_F(SwitchesTest, AllSixCategoryItemsMayBeUncheckedOrCheckedAtOnce) {
    BrowserWindow& w = window();
    const std::vector<MenuItem*> categories{&w.mnuSelectGeneral,  &w.mnuSelectGame,     &w.mnuSelectDeveloper,
                                            &w.mnuSelectBusiness, &w.mnuSelectFreeware, &w.mnuSelectSpecial};
    w.mnuSelectGeneral.choose();
    for (const MenuItem* item : categories)
        EXPECT_FALSE(item->Checked.get()) << item->Name;
    for (const MenuItem* item : categories)
        item->choose();
    for (const MenuItem* item : categories)
        EXPECT_TRUE(item->Checked.get()) << item->Name;
}

TEST_F(SwitchesTest, PressingAutoRecordIsOffChecksAutoRecordAndCaptionsTheButtonOn) {
    EXPECT_EQ(window().cmdRecord.Caption.get(), "Auto Record is Off");
    window().cmdRecord.press();
    EXPECT_TRUE(window().mnuAutoRecord.Checked.get());
    EXPECT_EQ(window().cmdRecord.Caption.get(), "Auto Record is On");
    window().mnuAutoRecord.choose();
    EXPECT_EQ(window().cmdRecord.Caption.get(), "Auto Record is Off");
}

TEST_F(SwitchesTest, PromptAutoHideAndBlockFlipWithTheirCaptions) {
    window().cmdPrompt.press();
    EXPECT_FALSE(window().mnuPromptFill.Checked.get());
    EXPECT_EQ(window().cmdPrompt.Caption.get(), "Prompt User is Off");
    window().mnuPromptFill.choose();
    EXPECT_EQ(window().cmdPrompt.Caption.get(), "Prompt User is On");
    window().cmdAutoHide.press();
    EXPECT_FALSE(window().mnuAutoHide.Checked.get());
    EXPECT_EQ(window().cmdAutoHide.Caption.get(), "Auto Hide is Off");
    window().mnuAutoHide.choose();
    EXPECT_EQ(window().cmdAutoHide.Caption.get(), "Auto Hide is On");
    window().mnuBlock.choose();
    EXPECT_FALSE(window().mnuBlock.Checked.get());
}

TEST_F(SwitchesTest, TogglingAutoHideNeitherHidesNorShowsThePanel) {
    window().cmdAutoHide.press();
    EXPECT_FALSE(window().mnuHideRecord.Checked.get());
    window().cmdAutoHide.press();
    EXPECT_FALSE(window().mnuHideRecord.Checked.get());
    EXPECT_TRUE(window().SSTab1.Visible.get());
}

} // namespace
} // namespace kestrune
