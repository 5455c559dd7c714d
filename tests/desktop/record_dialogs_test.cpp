#include "sessions/record_dialogs.h"

#include "platform/qt/qt_user_interface.h"
#include "tests/desktop/dialog_user.h"
#include "tests/desktop/wait_until.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>

#include <functional>
#include <string>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;

class RecordDialogs : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(user.done()); }
    void show(Form& form, const DialogUser::Action& action) {
        user.expect(form.Name, [action](QDialog& dialog) {
            ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
            action(dialog);
        });
        desktop.ShowModal(form);
    }
    static QLineEdit& box(const QDialog& dialog, const char* name) {
        return *dialog.findChild<QLineEdit*>(name);
    }
    static QLineEdit& value(const QDialog& dialog, int index) {
        return *dialog.findChild<QLineEdit*>(QString("txtValue(%1)").arg(index));
    }
    static void press(const QDialog& dialog, const char* button) {
        dialog.findChild<QPushButton*>(button)->click();
    }

    QtUserInterface desktop;
    DialogUser user;
};

TEST_F(RecordDialogs, SixtyPairsLieOnThreePagesBelowNameAndAddresses) {
    FrmEdit edit;
    show(edit, [](QDialog& dialog) {
        const auto* const pages = dialog.findChild<QTabWidget*>();
        ASSERT_EQ(pages->count(), 3);
        for (int page = 0; page < 3; ++page) {
            EXPECT_EQ(pages->tabText(page), QString("Page %1").arg(page + 1));
            for (int i = page * 20; i < page * 20 + 20; ++i) {
                EXPECT_TRUE(pages->widget(page)->isAncestorOf(&value(dialog, i))) << i;
                const auto* const name = dialog.findChild<QLabel*>(QString("lblName(%1)").arg(i));
                EXPECT_TRUE(pages->widget(page)->isAncestorOf(name)) << i;
                EXPECT_EQ(name->text(), "Blank");
                EXPECT_FALSE(value(dialog, i).isEnabled());
            }
        }
        EXPECT_EQ(pages->currentIndex(), 0);
        for (const char* name : {"txtSession", "txtUrl", "txtAction"})
            EXPECT_LT(box(dialog, name).mapTo(&dialog, QPoint()).y(), pages->y()) << name;
        press(dialog, "cmdCancel");
    });
}

TEST_F(RecordDialogs, FocusFollowsTheEyeFromTheNameToTheButtons) {
    FrmEdit edit;
    for (std::size_t i = 0; i < 25; ++i)
        edit.show_pair(i, "field", "value");
    edit.cmdPermanentOK.Enabled = false;
    show(edit, [](QDialog& dialog) {
        QStringList expected{"txtSession", "txtUrl", "txtAction", "frmEdit.Pages.Strip"};
        for (int i = 0; i < 20; ++i)
            expected << QString("txtValue(%1)").arg(i);
        expected << "cmdOK"
                 << "cmdCancel"
                 << "txtSession";
        QStringList order{dialog.focusWidget()->objectName()};
        while (order.size() < expected.size()) {
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
            order << dialog.focusWidget()->objectName();
        }
        EXPECT_EQ(order, expected) << order.join(' ').toStdString();
        press(dialog, "cmdCancel");
    });
}

TEST_F(RecordDialogs, EditorFitsOnALowScreen) {
    FrmEdit edit;
    show(edit, [](QDialog& dialog) {
        EXPECT_LE(dialog.minimumSizeHint().height(), 460); // 768 pixels at 150 %, less panels and title bar
        EXPECT_LE(dialog.minimumSizeHint().width(), 820);  // 1366 pixels at 150 %
        press(dialog, "cmdCancel");
    });
}

TEST_F(RecordDialogs, PageScrollsOnlyWhereThereIsNoRoomForIt) {
    FrmEdit edit;
    show(edit, [](QDialog& dialog) {
        const auto* const page = dynamic_cast<QScrollArea*>(dialog.findChild<QTabWidget*>()->widget(0));
        ASSERT_NE(page, nullptr);
        const auto scrolls = [page] { return page->verticalScrollBar()->maximum() > 0; };
        dialog.resize(dialog.width(), dialog.sizeHint().height());
        EXPECT_TRUE(wait_until([&scrolls] { return !scrolls(); }));
        dialog.resize(dialog.width(), 460);
        EXPECT_TRUE(wait_until(scrolls));
        press(dialog, "cmdCancel");
    });
}

TEST_F(RecordDialogs, PasswordsAreMaskedUntilTheUserWantsToSeeThem) {
    FrmEdit edit;
    edit.show_pair(0, "login", "me");
    edit.show_pair(1, "pass%77ord", "secret");
    show(edit, [](QDialog& dialog) {
        EXPECT_EQ(value(dialog, 0).displayText(), "me");
        EXPECT_NE(value(dialog, 1).displayText(), "secret");
        press(dialog, "cmdShowPasswords");
        EXPECT_EQ(value(dialog, 1).displayText(), "secret");
        EXPECT_EQ(dialog.findChild<QPushButton*>("cmdShowPasswords")->accessibleName(), "Hide Passwords");
        press(dialog, "cmdShowPasswords");
        EXPECT_NE(value(dialog, 1).displayText(), "secret");
        press(dialog, "cmdOK");
    });
    EXPECT_TRUE(edit.bSaveFlag);
    EXPECT_EQ(edit.txtValue(1).Text.get(), "secret");
}

TEST_F(RecordDialogs, LineEndsOfAValueSurviveInItsSingleLine) {
    const std::string lines = "first\r\nsecond\rthird\nfourth";
    FrmEdit edit;
    edit.show_pair(0, "text", lines);
    edit.show_pair(1, "more", lines);
    show(edit, [](QDialog& dialog) {
        value(dialog, 0).setFocus();
        value(dialog, 0).selectAll();
        value(dialog, 1).setFocus();
        QTest::keyClick(&value(dialog, 1), Qt::Key_End);
        QTest::keyClicks(&value(dialog, 1), "!");
        press(dialog, "cmdOK");
    });
    EXPECT_EQ(edit.txtValue(0).Text.get(), lines);
    EXPECT_EQ(edit.txtValue(1).Text.get(), lines + "!");
}

TEST_F(RecordDialogs, EnterInAValueIsOk) {
    FrmEdit edit;
    edit.show_pair(0, "name", "old");
    show(edit, [](QDialog& dialog) {
        value(dialog, 0).selectAll();
        QTest::keyClicks(&value(dialog, 0), "new");
        QTest::keyClick(&value(dialog, 0), Qt::Key_Return);
    });
    EXPECT_TRUE(edit.bSaveFlag);
    EXPECT_FALSE(edit.bSavePermanent);
    EXPECT_EQ(edit.txtValue(0).Text.get(), "new");
}

TEST_F(RecordDialogs, SaveAsPermanentSetsBothFlagsAndEscNone) {
    FrmEdit saved;
    show(saved, [](QDialog& dialog) { press(dialog, "cmdPermanentOK"); });
    EXPECT_TRUE(saved.bSaveFlag);
    EXPECT_TRUE(saved.bSavePermanent);
    FrmEdit cancelled;
    show(cancelled, [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(cancelled.bSaveFlag);
    EXPECT_FALSE(cancelled.bSavePermanent);
}

TEST_F(RecordDialogs, EnterInABookmarksNameKeepsWhatWasTyped) {
    FrmBookmark bookmark;
    bookmark.txtName.Text = "A page";
    bookmark.txtDestination.Text = "http://www.example.com/";
    bookmark.txtOriginating.Text = "http://www.example.org/?a=1&b=2";
    show(bookmark, [](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Edit Bookmark");
        EXPECT_EQ(dialog.focusWidget()->objectName(), "txtName");
        EXPECT_EQ(box(dialog, "txtName").selectedText(), "A page");
        EXPECT_EQ(box(dialog, "txtOriginating").text(), "http://www.example.org/?a=1&b=2");
        EXPECT_EQ(box(dialog, "txtDestination").accessibleName(), "Destination Address");
        QTest::keyClicks(dialog.focusWidget(), "Mine");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    EXPECT_TRUE(bookmark.bSaveFlag);
    EXPECT_EQ(bookmark.txtName.Text.get(), "Mine");
    EXPECT_EQ(bookmark.txtDestination.Text.get(), "http://www.example.com/");
}

TEST_F(RecordDialogs, EscInABookmarkCancels) {
    FrmBookmark bookmark;
    show(bookmark, [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(bookmark.bSaveFlag);
}

} // namespace
} // namespace kestrune
