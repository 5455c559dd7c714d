#include "platform/qt/qt_user_interface.h"
#include "tests/desktop/dialog_user.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;

class MaskedText : public testing::Test {
protected:
    MaskedText() {
        form.Rows = {{"Name:", &name}, {"Password:", &password}};
        form.Buttons = {&close};
        form.Cancel = &close;
        form.FirstFocus = &password;
        close.Click = [this] { form.Hide(); };
        password.Masked = true;
        password.Text = "secret";
    }
    void TearDown() override { EXPECT_TRUE(user.done()); }
    void show(const std::function<void(QLineEdit&)>& action) {
        user.expect("frmMasked", [action](QDialog& dialog) {
            action(*dialog.findChild<QLineEdit*>("txtPassword"));
            dialog.findChild<QPushButton*>("cmdClose")->click();
        });
        desktop.ShowModal(form);
    }

    QtUserInterface desktop;
    DialogUser user;
    Form form{"frmMasked", "Masked"};
    TextBox name{"txtName"};
    TextBox password{"txtPassword"};
    Button close{"cmdClose", "Close"};
};

TEST_F(MaskedText, IsShownAsDotsUntilItIsUnmasked) {
    show([this](QLineEdit& box) {
        EXPECT_EQ(box.echoMode(), QLineEdit::Password);
        EXPECT_NE(box.displayText(), "secret");
        password.Masked = false;
        EXPECT_EQ(box.echoMode(), QLineEdit::Normal);
        EXPECT_EQ(box.displayText(), "secret");
        password.Masked = true;
        EXPECT_EQ(box.echoMode(), QLineEdit::Password);
        EXPECT_EQ(box.text(), "secret");
    });
    EXPECT_EQ(password.Text.get(), "secret");
}

TEST_F(MaskedText, CanBeTyped) {
    show([](QLineEdit& box) {
        box.selectAll();
        QTest::keyClicks(&box, "other");
    });
    EXPECT_EQ(password.Text.get(), "other");
}

TEST_F(MaskedText, CannotBeCopied) {
    show([](QLineEdit& box) {
        QApplication::clipboard()->setText("before");
        box.selectAll();
        box.copy();
        EXPECT_EQ(QApplication::clipboard()->text(), "before");
    });
}

TEST_F(MaskedText, IsNotToldToScreenReadersWhenTheyAsk) {
    show([this](QLineEdit& box) {
        QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&box);
        EXPECT_EQ(told->text(QAccessible::Value), "******");
        EXPECT_EQ(told->text(QAccessible::Name), "Password");
        EXPECT_EQ(told->role(), QAccessible::EditableText);
        EXPECT_TRUE(told->state().passwordEdit);
        EXPECT_EQ(told->textInterface(), nullptr);
        EXPECT_EQ(told->editableTextInterface(), nullptr);

        password.Masked = false;
        QAccessibleInterface* const open = QAccessible::queryAccessibleInterface(&box);
        ASSERT_NE(open->textInterface(), nullptr);
        EXPECT_EQ(open->textInterface()->text(0, 6), "secret");
        EXPECT_FALSE(open->state().passwordEdit);

        password.Masked = true;
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&box)->textInterface(), nullptr);
    });
}

// The toolkit's events of a change hold the text as it is; its bridges pass them on for what has a text
// interface.
TEST_F(MaskedText, IsNotToldToScreenReadersAsItChanges) {
    show([this](QLineEdit& box) {
        QTest::keyClicks(&box, "typed");
        QAccessibleTextInsertEvent typed(&box, 0, box.text());
        ASSERT_NE(typed.accessibleInterface(), nullptr);
        EXPECT_EQ(typed.accessibleInterface()->textInterface(), nullptr);
        password.Masked = false;
        QAccessibleTextInsertEvent open(&box, 0, box.text());
        EXPECT_NE(open.accessibleInterface()->textInterface(), nullptr);
    });
}

} // namespace
} // namespace kestrune
