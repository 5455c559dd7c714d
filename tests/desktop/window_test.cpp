#include "tests/desktop/window_fixture.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/twips.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QTimer>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing_desktop::RealWindow;
using testing_desktop::wait_until;

std::vector<Control*> all_controls(const std::vector<Control*>& controls) {
    std::vector<Control*> all;
    for (Control* control : controls) {
        all.push_back(control);
        if (const auto* const frame = dynamic_cast<Frame*>(control)) {
            for (Control* inner : all_controls(frame->Controls))
                all.push_back(inner);
        }
        if (const auto* const tabs = dynamic_cast<TabControl*>(control)) {
            for (const TabControl::Page& page : tabs->Pages)
                all.push_back(page.List);
        }
    }
    return all;
}

std::vector<std::string> accessible_names(QAccessibleInterface* interface) {
    std::vector<std::string> names;
    for (int i = 0; interface != nullptr && i < interface->childCount(); ++i)
        names.push_back(interface->child(i)->object()->objectName().toStdString());
    return names;
}

std::vector<std::string> captions(const QMenu& menu) {
    std::vector<std::string> texts;
    for (const QAction* action : menu.actions())
        texts.push_back(action->isSeparator() ? "-" : action->text().toStdString());
    return texts;
}

class Window : public testing::Test {
protected:
    RealWindow real;
    WindowControls& c = real.controls;
};

TEST_F(Window, EveryControlHasAWidgetOfItsNameAtItsDesignedPlace) {
    real.show();
    for (const Control* control : all_controls(c.form.Controls)) {
        SCOPED_TRACE(control->Name);
        const auto* const widget = real.window().findChild<QWidget*>(QString::fromStdString(control->Name));
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(widget->geometry(),
                  QRect(to_pixels(control->Left.get()), to_pixels(control->Top.get()),
                        to_pixels(control->Width.get()), to_pixels(control->Height.get())));
    }
    EXPECT_EQ(real.widget("Inner").size(), QSize(870, 662));
    EXPECT_EQ(real.widget("wbMyBrowser").geometry(), QRect(8, 80, 849, 353));
}

TEST_F(Window, EveryWidgetOfAControlHasAnAccessibleName) {
    real.show();
    for (const Control* control : all_controls(c.form.Controls)) {
        const QWidget& widget = real.widget(control->Name);
        const auto* const label = qobject_cast<const QLabel*>(&widget);
        EXPECT_FALSE(widget.accessibleName().isEmpty() && (label == nullptr || label->text().isEmpty()))
            << control->Name;
    }
    EXPECT_EQ(real.widget("cmdSave").accessibleName(), "Move Record to Permanent");
    EXPECT_EQ(real.widget("txtUrl").accessibleName(), "Address of the site");
}

TEST_F(Window, ButtonThatIsInNoTabOrderTakesNoFocusAndIsNotInTheAccessibleTree) {
    real.show();
    EXPECT_EQ(real.widget("Command3").focusPolicy(), Qt::NoFocus);
    EXPECT_THAT(accessible_names(QAccessible::queryAccessibleInterface(&real.widget("Frame1"))),
                ElementsAre("cmdBack", "cmdPlayback", "cmdHideRecord", "cmdRecord", "cmdAutoHide",
                            "cmdPrompt", "cmdAutoClick"));
    EXPECT_TRUE(real.widget("Command3").isVisible());
}

TEST_F(Window, LaterControlsStandAboveEarlierOnes) {
    real.show();
    const QObjectList children = real.widget("Frame1").children();
    ASSERT_FALSE(children.isEmpty());
    EXPECT_EQ(children.first()->objectName(), "Command3");
    EXPECT_EQ(children.last()->objectName(), "cmdAutoClick");
    EXPECT_EQ(real.widget("Inner").children().last()->objectName(), "StatusBar1");
}

std::vector<std::string> tab_stops(const RealWindow& real) {
    std::vector<std::string> order;
    const QWidget* const first = &real.widget("cmdBack");
    const QWidget& page = real.widget("wbMyBrowser.Page");
    for (const QWidget* next = first;;) {
        const QString name = page.isAncestorOf(next) ? page.objectName() : next->objectName();
        if ((next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisible() && !name.isEmpty() &&
            (order.empty() || order.back() != name.toStdString()))
            order.push_back(name.toStdString());
        next = next->nextInFocusChain();
        if (next == first)
            return order;
    }
}

TEST_F(Window, TabKeyFollowsTheTabOrderThroughThePage) {
    real.show();
    const std::vector<std::string> order{
        "cmdBack",      "cmdPlayback", "cmdHideRecord", "cmdRecord",        "cmdAutoHide",  "cmdPrompt",
        "cmdAutoClick", "txtUrl",      "txtDesc",       "wbMyBrowser.Page", "SSTab1.Strip", "lvwPermanent",
        "cmdEdit",      "cmdDelete",   "cmdSave",       "cmdGoto",          "cmdReset"};
    EXPECT_TRUE(wait_until([&] { return tab_stops(real) == order; }))
        << testing::PrintToString(tab_stops(real));
}

TEST_F(Window, PageTakesTheFocus) {
    real.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&real.window()));
    QWidget& view = *real.widget("wbMyBrowser.Page").findChild<QWidget*>();
    ASSERT_TRUE(wait_until([&view] { return view.focusProxy() != nullptr; }));
    view.setFocus();
    EXPECT_TRUE(view.focusProxy()->hasFocus());
}

TEST_F(Window, CaptionIsLiteralTextAndFollowsTheControl) {
    real.show();
    c.cmdRecord.Caption = "Cut & <b>paste</b>";
    EXPECT_EQ(real.widget("cmdRecord").accessibleName(), "Cut & <b>paste</b>");
    EXPECT_TRUE(real.widget<QPushButton>("cmdRecord").shortcut().isEmpty());
    c.form.Caption = "Kestrune [*] \n<i>x</i>";
    EXPECT_EQ(real.window().windowTitle(), "Kestrune [*][*]  <i>x</i>");
    c.lblUrl.Caption = "<u>A</u>:";
    EXPECT_EQ(real.widget<QLabel>("lblUrl").textFormat(), Qt::PlainText);
}

TEST_F(Window, PressedButtonRunsItsHandlerAndADisabledOneDoesNot) {
    int pressed = 0;
    c.cmdPlayback.Click = [&pressed] { ++pressed; };
    real.show();
    QTest::mouseClick(&real.widget("cmdPlayback"), Qt::LeftButton);
    EXPECT_EQ(pressed, 1);
    c.cmdPlayback.Enabled = false;
    QTest::mouseClick(&real.widget("cmdPlayback"), Qt::LeftButton);
    EXPECT_EQ(pressed, 1);
}

TEST_F(Window, TypedTextReachesTheControlAndTextSetByCodeShows) {
    real.show();
    auto& line = real.widget<QLineEdit>("txtUrl");
    QTest::keyClicks(&line, "http://a&b/");
    EXPECT_EQ(c.txtUrl.Text.get(), "http://a&b/");
    c.txtUrl.Text = "M\xc3\xbcller";
    EXPECT_EQ(line.text(), QString::fromUtf8("M\xc3\xbcller"));
    c.txtUrl.Locked = true;
    QTest::keyClicks(&line, "x");
    EXPECT_EQ(c.txtUrl.Text.get(), "M\xc3\xbcller");
}

TEST_F(Window, MenuBarHasTheTitlesAndEntriesInOrder) {
    c.mnuRightClickMenu.Visible = false;
    real.show();
    std::vector<std::string> titles;
    for (const QAction* title : real.widget<QMenuBar>("MenuBar").actions()) {
        if (title->isVisible())
            titles.push_back(title->text().toStdString());
    }
    EXPECT_THAT(titles, ElementsAre("File", "PAD", "View", "Playback", "Record", "Popup", "Help"));
    EXPECT_THAT(captions(*real.window().findChild<QMenu*>("mnuPlayback")),
                ElementsAre("Prompt User before Auto Fill-in Form", "-",
                            "Auto Fill-in Form (with Manual Click)", "Auto Fill-in Form (with Auto Click)",
                            "No auto Fill-in Form"));
    EXPECT_EQ(real.window().findChild<QAction*>("mnuAbout")->shortcut(), QKeySequence("F1"));
}

TEST_F(Window, CheckMarkIsTheItemsOwnWhateverTheToolkitFlipped) {
    int chosen = 0;
    c.mnuAutoClick.Click = [&chosen] { ++chosen; };
    real.show();
    auto& action = *real.window().findChild<QAction*>("mnuAutoClick");
    EXPECT_TRUE(action.isChecked());
    action.trigger();
    EXPECT_EQ(chosen, 1);
    EXPECT_TRUE(action.isChecked());
    c.mnuAutoClick.Checked = false;
    EXPECT_FALSE(action.isChecked());
}

TEST_F(Window, ChosenTabComesToTheFrontOnBothSides) {
    int clicks = 0;
    c.SSTab1.Click = [&clicks] { ++clicks; };
    real.show();
    auto& strip = real.widget<QTabBar>("SSTab1.Strip");
    QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(2).center());
    EXPECT_EQ(c.SSTab1.Tab(), 2);
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(real.widget("lvwPAD").isVisible());
    EXPECT_FALSE(real.widget("lvwPermanent").isVisible());
    c.SSTab1.set_tab(1);
    EXPECT_EQ(strip.currentIndex(), 1);
    EXPECT_EQ(clicks, 2);
    EXPECT_TRUE(real.widget("ListView1").isVisible());
}

TEST_F(Window, SizeSetByCodeIsThatOfTheWindowAndIsLaidOutOnce) {
    int layouts = 0;
    c.form.Resize = [&layouts] { ++layouts; };
    real.show();
    layouts = 0;
    c.form.Width = to_twips(1000) + WindowForm::frame_width;
    EXPECT_EQ(real.widget("Inner").size(), QSize(1000, 662));
    EXPECT_EQ(layouts, 1);
}

TEST_F(Window, SizeDraggedByTheUserReachesTheFormAndIsLaidOut) {
    real.show();
    int layouts = 0;
    c.form.Resize = [&layouts] { ++layouts; };
    real.window().resize(real.window().width() + 30, real.window().height() + 20);
    EXPECT_EQ(c.form.Width.get(), 13050 + 30 * 15 + WindowForm::frame_width);
    EXPECT_EQ(c.form.Height.get(), 9930 + 20 * 15 + WindowForm::frame_height);
    EXPECT_GE(layouts, 1);
}

TEST_F(Window, PlaceFollowsInBothDirections) {
    real.show();
    c.form.Left = 1500;
    c.form.Top = 750;
    EXPECT_EQ(real.window().pos(), QPoint(100, 50));
    real.window().move(20, 30);
    EXPECT_TRUE(wait_until([this] { return c.form.Left.get() == 300 && c.form.Top.get() == 450; }));
}

TEST_F(Window, MinimisedWindowIsNotLaidOutAndRestoringItLaysItOutAgain) {
    real.show();
    int layouts = 0;
    c.form.Resize = [&layouts] { ++layouts; };
    real.window().showMinimized();
    ASSERT_TRUE(wait_until([this] { return c.form.Minimised.get(); }));
    EXPECT_EQ(layouts, 0);
    EXPECT_EQ(c.form.Width.get(), 13050 + WindowForm::frame_width);
    real.window().showNormal();
    ASSERT_TRUE(wait_until([this] { return !c.form.Minimised.get(); }));
    EXPECT_GE(layouts, 1);
}

TEST_F(Window, CloseBoxOnlyAsksToClose) {
    int asked = 0;
    c.form.CloseRequested = [&asked] { ++asked; };
    real.show();
    EXPECT_FALSE(real.window().close());
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(real.window().isVisible());
}

TEST_F(Window, WindowGoesWithItsBrowserAndTouchesItsControlsNoMore) {
    real.show();
    const QPointer<QWidget> window = &real.window();
    real.browser.reset();
    EXPECT_FALSE(window->isVisible());
    c.cmdEdit.Caption = "after";
    EXPECT_EQ(window->findChild<QWidget*>("cmdEdit")->accessibleName(), "Edit");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
}

TEST_F(Window, WindowMayGoFromItsOwnCloseBox) {
    real.show();
    const QPointer<QWidget> window = &real.window();
    c.form.CloseRequested = [this] { real.browser.reset(); };
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
}

TEST_F(Window, PageEndsAboveTheStatusBarThoughItsPlaceReachesBelow) {
    real.show();
    c.StatusBar1.Top = 9555;
    c.wbMyBrowser.Height = 9555 - 1200 + 90;
    EXPECT_EQ(real.widget("wbMyBrowser").geometry().bottom() + 1, 637 + 6);
    const QWidget& page = real.widget("wbMyBrowser.Page");
    EXPECT_EQ(page.mapTo(&real.widget("Inner"), QPoint(0, page.height())).y(), 637);
    c.wbMyBrowser.Height = 5295;
    EXPECT_EQ(page.height(), 353);
}

TEST_F(Window, HiddenPanelShowsNothingOfItsTabsAndLists) {
    real.show();
    c.SSTab1.Visible = false;
    c.SSTab1.Height = 0;
    c.SSTab1.TabHeight = 1;
    EXPECT_FALSE(real.widget("SSTab1.Strip").isVisible());
    EXPECT_FALSE(real.widget("lvwPermanent").isVisible());
    c.SSTab1.Height = 2895;
    c.SSTab1.TabHeight = 300;
    c.SSTab1.Visible = true;
    EXPECT_TRUE(real.widget("lvwPermanent").isVisible());
    EXPECT_EQ(real.widget("SSTab1.Strip").height(), 20);
}

TEST_F(Window, StatusPanelsShowTheirTextsInTheirWidths) {
    real.show();
    c.StatusBar1.set_width(1, 8970);
    c.StatusBar1.set_width(2, 2100);
    c.StatusBar1.set_width(3, 2100);
    c.StatusBar1.set_text(1, "Going to http://a/...");
    c.StatusBar1.set_text(3, "<b>3</b>");
    EXPECT_EQ(real.widget<QLabel>("StatusBar1.Panel1").text(), "Going to http://a/...");
    EXPECT_EQ(real.widget("StatusBar1.Panel1").width(), 598);
    EXPECT_EQ(real.widget("StatusBar1.Panel2").geometry().left(), 598);
    EXPECT_EQ(real.widget<QLabel>("StatusBar1.Panel3").text(), "<b>3</b>");
}

TEST_F(Window, TimerTicksOnlyWhileEnabled) {
    int ticks = 0;
    c.Timer1.Tick = [&ticks] { ++ticks; };
    c.Timer1.Interval = 5;
    real.show();
    c.Timer1.Enabled = true;
    EXPECT_TRUE(wait_until([&ticks] { return ticks >= 2; }));
    c.Timer1.Enabled = false;
    EXPECT_FALSE(real.window().findChild<QTimer*>("Timer1")->isActive());
}

TEST_F(Window, ShortcutWorksWithoutAMenu) {
    int pressed = 0;
    c.form.Shortcuts = {{"F9", [&pressed] { ++pressed; }}};
    real.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&real.window()));
    QTest::keyClick(&real.window(), Qt::Key_F9);
    EXPECT_EQ(pressed, 1);
}

TEST_F(Window, HiddenWindowIsShownAgainByItsForm) {
    real.show();
    c.form.Visible = false;
    EXPECT_FALSE(real.window().isVisible());
    c.form.Visible = true;
    EXPECT_TRUE(real.window().isVisible());
}

} // namespace
} // namespace kestrune
