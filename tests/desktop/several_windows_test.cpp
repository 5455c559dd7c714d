#include "platform/form.h"
#include "tests/desktop/dialog_user.h"
#include "tests/desktop/menu_user.h"
#include "tests/desktop/window_fixture.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QWindow>

#include <memory>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;
using testing_desktop::MenuUser;
using testing_desktop::NoEvents;

// Two real windows, the second opened later.
class SeveralWindows : public testing::Test {
protected:
    SeveralWindows() {
        first_.form.Caption = "first";
        second_.form.Caption = "second";
        first_.form.Visible = true;
        second_.form.Visible = true;
    }

    NoEvents events_;
    WindowControls first_;
    WindowControls second_;
    QtUserInterface desktop_;
    std::unique_ptr<Browser> first_browser_ = desktop_.open_window(first_.form, events_);
    std::unique_ptr<Browser> second_browser_ = desktop_.open_window(second_.form, events_);
    MenuUser menus_;
};

TEST_F(SeveralWindows, MenuThatIsAskedForIsTheOneOfItsOwnWindow) {
    for (WindowControls* const asking : {&first_, &second_}) {
        menus_.expect("mnuRightClickMenu", [asking](QMenu& menu) {
            EXPECT_EQ(menu.parentWidget()->window()->windowTitle().toStdString(), asking->form.Caption.get());
            menu.close();
        });
        desktop_.PopupMenu(asking->mnuRightClickMenu);
        EXPECT_TRUE(menus_.done());
    }
}

TEST_F(SeveralWindows, MenuOfAHiddenWindowDoesNotOpen) {
    first_.form.Visible = false;
    menus_.expect("mnuRightClickMenu", [](QMenu& menu) {
        ADD_FAILURE() << "a menu of " << menu.parentWidget()->window()->windowTitle().toStdString();
        menu.close();
    });
    desktop_.PopupMenu(first_.mnuRightClickMenu);
    EXPECT_FALSE(menus_.done());
}

TEST_F(SeveralWindows, QuestionStandsAboveTheDialogThatAsksItAndThatAboveTheWindow) {
    first_.form.Visible = false;
    DialogUser user;
    Form form("frmNote", "Note");
    Button save("cmdSave", "Save");
    form.Buttons = {&save};
    save.Click = [&] {
        desktop_.MessageBox("Sure?", Buttons::YesNo);
        form.Hide();
    };
    QWindow* above_the_window = nullptr;
    user.expect("frmNote", [&](QDialog& dialog) {
        above_the_window = dialog.windowHandle();
        ASSERT_NE(above_the_window->transientParent(), nullptr);
        EXPECT_EQ(above_the_window->transientParent()->title(), "second");
        dialog.findChild<QAbstractButton*>("cmdSave")->click();
    });
    user.expect("MessageBox", [&](QDialog& box) {
        EXPECT_EQ(box.windowHandle()->transientParent(), above_the_window);
        box.findChild<QAbstractButton*>("Yes")->click();
    });
    desktop_.ShowModal(form);
    EXPECT_TRUE(user.done());
}

} // namespace
} // namespace kestrune
