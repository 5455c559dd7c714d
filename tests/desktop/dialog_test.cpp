#include "platform/qt/qt_user_interface.h"
#include "platform/qt/twips.h"
#include "tests/desktop/dialog_user.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <deque>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;

// A dialog with one control of each kind.
struct Everything {
    Form form{"frmTest", "Everything & more"};
    TextBox name{"txtName"};
    TextBox address{"txtAddress"};
    OptionGroup status{"optStatus", {"N=Not yet", "Y=Yes & done"}};
    TextBox note{"txtNote", true};
    Button save{"cmdSave", "Save"};
    Button cancel{"cmdCancel", "Cancel"};
    bool saved = false;

    Everything() {
        address.Locked = true;
        form.Rows = {{"Name:", &name}, {"Address:", &address}, {"Status", &status}, {"Note:", &note, "More"}};
        form.Buttons = {&cancel, &save};
        form.Default = &save;
        form.Cancel = &cancel;
        form.FirstFocus = &name;
        save.Click = [this] {
            saved = true;
            form.Hide();
        };
        cancel.Click = [this] { form.Hide(); };
    }
};

class Dialog : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(user.done()); }
    void show(DialogUser::Action action) {
        user.expect("frmTest", std::move(action));
        desktop.ShowModal(it.form);
        EXPECT_FALSE(it.form.Visible.get());
    }
    QtUserInterface desktop;
    DialogUser user;
    Everything it;
};

TEST_F(Dialog, HoldsWhatTheUserLeftInIt) {
    it.name.Text = "old";
    it.note.Text = "\xc2\xa0.";
    show([](QDialog& dialog) {
        dialog.findChild<QLineEdit*>("txtName")->selectAll();
        QTest::keyClicks(dialog.findChild<QLineEdit*>("txtName"), "new");
        dialog.findChild<QRadioButton*>("optStatus(1)")->click();
        QTest::keyClicks(dialog.findChild<QPlainTextEdit*>("txtNote"), "a");
        QTest::keyClick(dialog.findChild<QPlainTextEdit*>("txtNote"), Qt::Key_Return);
        QTest::keyClicks(dialog.findChild<QPlainTextEdit*>("txtNote"), "b");
        dialog.findChild<QPushButton*>("cmdSave")->click();
    });
    EXPECT_TRUE(it.saved);
    EXPECT_EQ(it.name.Text.get(), "new");
    EXPECT_EQ(it.status.Selected.get(), 1);
    EXPECT_EQ(it.note.Text.get(), "a\r\nb\xc2\xa0.");
}

TEST_F(Dialog, ShowsWhatItsControlsHoldAndNoOptionWhenNoneIsSelected) {
    it.name.Text = "a & b <i>";
    it.note.Text = "1\r\n2\xc2\xa0.";
    show([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Everything & more");
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->text(), "a & b <i>");
        EXPECT_TRUE(dialog.findChild<QLineEdit*>("txtAddress")->isReadOnly());
        EXPECT_FALSE(dialog.findChild<QRadioButton*>("optStatus(0)")->isChecked());
        EXPECT_FALSE(dialog.findChild<QRadioButton*>("optStatus(1)")->isChecked());
        EXPECT_EQ(dialog.findChild<QGroupBox*>()->title(), "More");
        dialog.findChild<QPushButton*>("cmdSave")->click();
    });
    EXPECT_EQ(it.status.Selected.get(), -1);
    EXPECT_EQ(it.note.Text.get(), "1\r\n2\xc2\xa0.");
}

TEST_F(Dialog, EnterInASingleLineFieldPressesTheDefaultButton) {
    show([](QDialog& dialog) { QTest::keyClick(dialog.findChild<QLineEdit*>("txtName"), Qt::Key_Return); });
    EXPECT_TRUE(it.saved);
}

TEST_F(Dialog, EnterInATextAreaIsALineEnd) {
    show([](QDialog& dialog) {
        QTest::keyClick(dialog.findChild<QPlainTextEdit*>("txtNote"), Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        dialog.findChild<QPushButton*>("cmdCancel")->click();
    });
    EXPECT_FALSE(it.saved);
}

TEST_F(Dialog, EscAndCloseBoxPressCancel) {
    int cancelled = 0;
    it.cancel.Click = [this, &cancelled] {
        ++cancelled;
        it.form.Hide();
    };
    show([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    show([](QDialog& dialog) { dialog.close(); });
    EXPECT_EQ(cancelled, 2);
    EXPECT_FALSE(it.saved);
}

TEST_F(Dialog, WithoutCancelNeitherEscNorCloseBoxDoesAnything) {
    it.form.Cancel = nullptr;
    show([](QDialog& dialog) {
        EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::WindowCloseButtonHint));
        QTest::keyClick(&dialog, Qt::Key_Escape);
        dialog.close();
        EXPECT_TRUE(dialog.isVisible());
        dialog.findChild<QPushButton*>("cmdSave")->click();
    });
    EXPECT_TRUE(it.saved);
}

TEST_F(Dialog, FocusIsWhereTheUserTypesFirstWithTheTextSelected) {
    it.name.Text = "old";
    show([](QDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        EXPECT_EQ(dialog.focusWidget()->objectName(), "txtName");
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->selectedText(), "old");
        dialog.findChild<QPushButton*>("cmdSave")->click();
    });
}

TEST_F(Dialog, ButtonThatLeavesTheFormShownKeepsTheDialogOpen) {
    it.save.Click = [this] {
        it.name.Text = "filled";
        it.note.Text = "1\r2";
    };
    show([](QDialog& dialog) {
        dialog.findChild<QPushButton*>("cmdSave")->click();
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->text(), "filled");
        dialog.findChild<QPushButton*>("cmdCancel")->click();
    });
    EXPECT_EQ(it.note.Text.get(), "1\r2");
}

TEST_F(Dialog, FieldsHaveTheirLabelsAsAccessibleNamesAndBuddies) {
    show([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->accessibleName(), "Name");
        EXPECT_EQ(dialog.findChild<QLabel*>("txtName.Label")->buddy()->objectName(), "txtName");
        EXPECT_EQ(dialog.findChild<QWidget*>("optStatus")->accessibleName(), "Status");
        EXPECT_EQ(dialog.findChild<QRadioButton*>("optStatus(1)")->accessibleName(), "Y=Yes & done");
        EXPECT_EQ(dialog.findChild<QPushButton*>("cmdSave")->accessibleName(), "Save");
        dialog.findChild<QPushButton*>("cmdCancel")->click();
    });
}

TEST_F(Dialog, CentreThatWasAskedForIsKeptWhenTheContentNeedsMoreRoom) {
    it.form.Left = to_twips(500) - 1500 / 2;
    it.form.Top = to_twips(330) - 750 / 2;
    it.form.Width = 1500;
    it.form.Height = 750;
    show([](QDialog& dialog) {
        EXPECT_GT(dialog.width(), 100);
        EXPECT_NEAR(dialog.geometry().center().x(), 500, 2);
        EXPECT_NEAR(dialog.geometry().center().y(), 330, 2);
        dialog.findChild<QPushButton*>("cmdCancel")->click();
    });
    EXPECT_GT(it.form.Width.get(), 1500);
}

TEST_F(Dialog, ManyRowsScrollInsteadOfOutgrowingTheScreen) {
    std::deque<TextBox> boxes;
    for (int i = 0; i < 60; ++i) {
        boxes.emplace_back("txtValue(" + std::to_string(i) + ")");
        it.form.Rows.push_back({"field", &boxes.back(), i < 20 ? "Page 1" : "Page 2"});
    }
    show([](QDialog& dialog) {
        EXPECT_LE(dialog.height(), dialog.screen()->availableSize().height());
        auto* const last = dialog.findChild<QLineEdit*>("txtValue(59)");
        last->setFocus();
        QTest::keyClick(last, Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_FALSE(dialog.focusWidget()->visibleRegion().isEmpty());
        dialog.findChild<QPushButton*>("cmdCancel")->click();
    });
}

TEST_F(Dialog, MessageBoxMayStandOverADialog) {
    it.save.Click = [this] {
        if (desktop.MessageBox("Sure?", Buttons::YesNo) == Answer::Yes)
            it.form.Hide();
    };
    user.expect("frmTest", [](QDialog& dialog) { dialog.findChild<QPushButton*>("cmdSave")->click(); });
    user.expect("MessageBox", [](QDialog& box) { box.findChild<QAbstractButton*>("Yes")->click(); });
    desktop.ShowModal(it.form);
    EXPECT_FALSE(it.form.Visible.get());
}

} // namespace
} // namespace kestrune
