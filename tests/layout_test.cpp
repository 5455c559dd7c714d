#include "platform/center_form.h"
#include "window_fixture.h"

#include <vector>

namespace kestrune {
namespace {

class LayoutTest : public WindowTest {
protected:
    LayoutTest() { start(); }
    void resize(int width, int height) {
        window().form.Width = width;
        window().form.Height = height;
        window().Form_Resize();
    }
};

TEST_F(LayoutTest, ControlsTheLayoutDoesNotMoveStandWhereTheyAreDesigned) {
    struct Place {
        const Control& control;
        int left, top, width, height;
    };
    const BrowserWindow& w = window();
    for (const Place& place : std::vector<Place>{{w.Frame1, 120, 0, 11120, 650},
                                                 {w.cmdBack, 0, 120, 1600, 495},
                                                 {w.cmdPlayback, 1560, 120, 1600, 495},
                                                 {w.cmdHideRecord, 3120, 120, 1600, 495},
                                                 {w.cmdRecord, 4720, 120, 1600, 495},
                                                 {w.cmdAutoHide, 6320, 120, 1600, 495},
                                                 {w.cmdPrompt, 8040, 120, 1600, 495},
                                                 {w.cmdAutoClick, 9480, 120, 1600, 495},
                                                 {w.Command3, 4200, 120, 2055, 495},
                                                 {w.lblUrl, 120, 840, 615, 255}}) {
        EXPECT_EQ(place.control.Left.get(), place.left) << place.control.Name;
        EXPECT_EQ(place.control.Top.get(), place.top) << place.control.Name;
        EXPECT_EQ(place.control.Width.get(), place.width) << place.control.Name;
        EXPECT_EQ(place.control.Height.get(), place.height) << place.control.Name;
    }
}

TEST_F(LayoutTest, AtTheDesignedSizeTheBrowserIsAbout5300HighAndThePanel200BelowIt) {
    const BrowserWindow& w = window();
    EXPECT_EQ(w.form.Width - WindowForm::frame_width, 13050);
    EXPECT_EQ(w.form.Height - WindowForm::frame_height, 9930);
    EXPECT_NEAR(w.wbMyBrowser.Height, 5300, 100);
    EXPECT_EQ(w.SSTab1.Top.get(), w.wbMyBrowser.Top + w.wbMyBrowser.Height + 200);
}

TEST_F(LayoutTest, EnlargingByNInHeightEnlargesOnlyTheBrowserByN) {
    BrowserWindow& w = window();
    const int browser_height = w.wbMyBrowser.Height;
    const int panel_top = w.SSTab1.Top;
    const int status_top = w.StatusBar1.Top;
    resize(w.form.Width, w.form.Height + 1234);
    EXPECT_EQ(w.wbMyBrowser.Height.get(), browser_height + 1234);
    EXPECT_EQ(w.SSTab1.Top.get(), panel_top + 1234);
    EXPECT_EQ(w.StatusBar1.Top.get(), status_top + 1234);
    EXPECT_EQ(w.SSTab1.Height.get(), 2895);
    EXPECT_EQ(w.StatusBar1.Height.get(), 375);
    for (const Button* button : {&w.cmdEdit, &w.cmdDelete, &w.cmdSave, &w.cmdGoto, &w.cmdReset})
        EXPECT_EQ(button->Height.get(), 495) << button->Name;
}

TEST_F(LayoutTest, WidthsFollowTheWindowByTheirRules) {
    resize(16000, 12000);
    const BrowserWindow& w = window();
    EXPECT_EQ(w.txtUrl.Width.get(), (16000 - 615 - 520) / 2);
    EXPECT_EQ(w.txtDesc.Width.get(), (16000 - 615 - 520) / 2);
    EXPECT_EQ(w.txtDesc.Left.get(), 840 + (16000 - 615 - 520) / 2);
    EXPECT_EQ(w.wbMyBrowser.Left.get(), 120);
    EXPECT_EQ(w.wbMyBrowser.Width.get(), 16000 - 400);
    EXPECT_EQ(w.wbMyBrowser.Height.get(), 12000 - 650 - 2895 - 300 - 1700);
    EXPECT_EQ(w.SSTab1.Left.get(), 120);
    EXPECT_EQ(w.SSTab1.Width.get(), 16000 - 1695 - 500);
    for (const ListView* list : {&w.lvwPermanent, &w.ListView1, &w.lvwPAD, &w.lvwNonPad})
        EXPECT_EQ(list->Width.get(), 16000 - 1695 - 500 - 250) << list->Name;
    EXPECT_EQ(w.StatusBar1.width(1), 16000 - 4200);
    EXPECT_EQ(w.StatusBar1.width(2), 2100);
    EXPECT_EQ(w.StatusBar1.width(3), 2100);
}

TEST_F(LayoutTest, ButtonColumnStandsBesideThePanelWithGapsOf100) {
    resize(16000, 12000);
    const BrowserWindow& w = window();
    int top = w.SSTab1.Top;
    for (const Button* button : {&w.cmdEdit, &w.cmdDelete, &w.cmdSave, &w.cmdGoto, &w.cmdReset}) {
        EXPECT_EQ(button->Top.get(), top) << button->Name;
        EXPECT_EQ(button->Left.get(), 120 + (16000 - 1695 - 500) + 100) << button->Name;
        top += 495 + 100;
    }
}

TEST_F(LayoutTest, MinimisedWindowIsNotLaidOutAndRestoringLaysItOutAgain) {
    BrowserWindow& w = window();
    const int width = w.wbMyBrowser.Width;
    w.form.Minimised = true;
    resize(20000, 15000);
    EXPECT_EQ(w.wbMyBrowser.Width.get(), width);
    w.form.Minimised = false;
    w.Form_Resize();
    EXPECT_EQ(w.wbMyBrowser.Width.get(), 20000 - 400);
    resize(WindowForm::frame_width, WindowForm::frame_height);
    EXPECT_EQ(w.wbMyBrowser.Width.get(), 20000 - 400);
}

TEST_F(LayoutTest, TinyWindowGivesNoNegativeSizes) {
    resize(WindowForm::frame_width + 15, WindowForm::frame_height + 15);
    const BrowserWindow& w = window();
    for (const Control* control : std::vector<const Control*>{&w.txtUrl, &w.txtDesc, &w.wbMyBrowser,
                                                              &w.SSTab1, &w.lvwPAD, &w.StatusBar1}) {
        EXPECT_GE(control->Width.get(), 0) << control->Name;
        EXPECT_GE(control->Height.get(), 0) << control->Name;
    }
}

TEST_F(LayoutTest, HiddenPanelGivesTheBrowser3194MoreAndShowingItGivesThemBack) {
    BrowserWindow& w = window();
    const int height = w.wbMyBrowser.Height;
    const int edit_top = w.cmdEdit.Top;
    const int edit_left = w.cmdEdit.Left;
    w.cmdHideRecord.press();
    EXPECT_EQ(w.wbMyBrowser.Height.get(), height + 3194);
    EXPECT_EQ(w.SSTab1.Height.get(), 0);
    EXPECT_EQ(w.SSTab1.TabHeight.get(), 1);
    EXPECT_FALSE(w.SSTab1.Visible.get());
    w.cmdHideRecord.press();
    EXPECT_EQ(w.wbMyBrowser.Height.get(), height);
    EXPECT_EQ(w.SSTab1.TabHeight.get(), 300);
    EXPECT_TRUE(w.SSTab1.Visible.get());
    EXPECT_EQ(w.cmdEdit.Top.get(), edit_top);
    EXPECT_EQ(w.cmdEdit.Left.get(), edit_left);
}

TEST_F(LayoutTest, UnusedSecondBackButtonLiesLowestUnderTwoOthersAndOutOfTheTabOrder) {
    const BrowserWindow& w = window();
    EXPECT_EQ(w.Command3.Caption.get(), "Back");
    EXPECT_EQ(w.Frame1.Controls.front(), &w.Command3);
    EXPECT_GE(w.Command3.Left, w.cmdHideRecord.Left);
    EXPECT_LE(w.Command3.Left + w.Command3.Width, w.cmdRecord.Left + w.cmdRecord.Width);
    for (const Control* control : w.form.TabOrder)
        EXPECT_NE(control, &w.Command3);
}

TEST(CenterForm, PutsTheFormInTheMiddleOfTheScreen) {
    Form form{"frm", ""};
    form.Width = 4000;
    form.Height = 3000;
    CenterForm(form, ScreenSize{19200, 14400});
    EXPECT_EQ(form.Left.get(), (19200 - 4000) / 2);
    EXPECT_EQ(form.Top.get(), (14400 - 3000) / 2);
}

} // namespace
} // namespace kestrune
