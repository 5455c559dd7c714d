#include "platform/qt/qt_user_interface.h"
#include "tests/desktop/dialog_user.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGroupBox>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QToolTip>

#include <deque>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;

constexpr int lowest_room = 460; // pixels: a screen of 768 at 150 %, less what panels and a title bar take

// A dialog of pages, put together by each test.
class PagedDialog : public testing::Test {
protected:
    PagedDialog() {
        form.Buttons = {&close};
        form.Cancel = &close;
        close.Click = [this] { form.Hide(); };
    }
    void TearDown() override { EXPECT_TRUE(user.done()); }

    TextBox& add(std::string page, std::string group = {}) {
        TextBox& box = boxes.emplace_back("txt" + std::to_string(boxes.size()));
        form.Rows.push_back({.Label = "Field " + std::to_string(boxes.size()) + ":",
                             .Field = &box,
                             .Group = std::move(group),
                             .Page = std::move(page)});
        return box;
    }
    TextBox& add_titled(Label& title, std::string page = {}) {
        TextBox& box = add(std::move(page));
        form.Rows.back().Label.clear();
        form.Rows.back().Title = &title;
        return box;
    }
    void show(const DialogUser::Action& action) {
        user.expect("frmPaged", [action](QDialog& dialog) {
            ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
            action(dialog);
            dialog.findChild<QPushButton*>("cmdClose")->click();
        });
        desktop.ShowModal(form);
    }
    static QWidget& box(const QDialog& dialog, int number) {
        return *dialog.findChild<QLineEdit*>(QString("txt%1").arg(number));
    }

    QtUserInterface desktop;
    DialogUser user;
    Form form{"frmPaged", "Pages"};
    Button close{"cmdClose", "Close"};
    std::deque<TextBox> boxes;
};

TEST_F(PagedDialog, PagesThatFollowOneAnotherShareATabControlAndOthersGetTheirOwn) {
    add("");
    add("One & only");
    add("Two");
    add("");
    add("Three");
    show([](QDialog& dialog) {
        const auto tabs = dialog.findChildren<QTabWidget*>();
        ASSERT_EQ(tabs.size(), 2);
        ASSERT_EQ(tabs[0]->count(), 2);
        EXPECT_EQ(tabs[0]->tabText(0), "One && only");
        EXPECT_EQ(tabs[0]->tabText(1), "Two");
        EXPECT_EQ(tabs[0]->currentIndex(), 0);
        ASSERT_EQ(tabs[1]->count(), 1);
        EXPECT_TRUE(tabs[0]->widget(0)->isAncestorOf(&box(dialog, 1)));
        EXPECT_TRUE(tabs[0]->widget(1)->isAncestorOf(&box(dialog, 2)));
        EXPECT_TRUE(tabs[1]->widget(0)->isAncestorOf(&box(dialog, 4)));
        const auto top = [&dialog](const QWidget& widget) { return widget.mapTo(&dialog, QPoint()).y(); };
        EXPECT_LT(top(box(dialog, 0)), top(*tabs[0]));
        EXPECT_LT(top(*tabs[0]), top(box(dialog, 3)));
        EXPECT_LT(top(box(dialog, 3)), top(*tabs[1]));
    });
}

TEST_F(PagedDialog, GroupsStandUnderTheirHeadingsOnAPage) {
    add("One", "Group");
    add("One");
    add("Two", "Group");
    show([](QDialog& dialog) {
        const auto* const tabs = dialog.findChild<QTabWidget*>();
        for (int page = 0; page < 2; ++page)
            ASSERT_EQ(tabs->widget(page)->findChildren<QGroupBox*>().size(), 1) << page;
        EXPECT_TRUE(tabs->widget(0)->findChild<QGroupBox*>()->isAncestorOf(&box(dialog, 0)));
        EXPECT_FALSE(tabs->widget(0)->findChild<QGroupBox*>()->isAncestorOf(&box(dialog, 1)));
        EXPECT_TRUE(tabs->widget(1)->findChild<QGroupBox*>()->isAncestorOf(&box(dialog, 2)));
    });
}

TEST_F(PagedDialog, KeysTurnThePagesRoundAndRoundFromAField) {
    add("");
    add("One");
    add("Two");
    add("Three");
    show([](QDialog& dialog) {
        auto* const tabs = dialog.findChild<QTabWidget*>();
        box(dialog, 1).setFocus();
        const auto press = [&dialog](Qt::Key key, Qt::KeyboardModifiers held) {
            QTest::keyClick(dialog.focusWidget(), key, held);
        };
        press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(tabs->currentIndex(), 1);
        EXPECT_EQ(dialog.focusWidget(), &box(dialog, 2));
        press(Qt::Key_PageDown, Qt::ControlModifier);
        EXPECT_EQ(tabs->currentIndex(), 2);
        press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(tabs->currentIndex(), 0);
        press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(tabs->currentIndex(), 2);
        press(Qt::Key_PageUp, Qt::ControlModifier);
        EXPECT_EQ(tabs->currentIndex(), 1);
    });
}

TEST_F(PagedDialog, KeysTurnThePagesFromAFieldThatLiesOnNone) {
    add("");
    add("One");
    add("Two");
    show([](QDialog& dialog) {
        box(dialog, 0).setFocus();
        QTest::keyClick(&box(dialog, 0), Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(dialog.findChild<QTabWidget*>()->currentIndex(), 1);
        EXPECT_EQ(dialog.focusWidget(), &box(dialog, 0));
    });
}

TEST_F(PagedDialog, ArrowKeysTurnThePagesOnTheTabs) {
    add("One");
    add("Two");
    show([](QDialog& dialog) {
        auto* const tabs = dialog.findChild<QTabWidget*>();
        tabs->tabBar()->setFocus();
        QTest::keyClick(tabs->tabBar(), Qt::Key_Right);
        EXPECT_EQ(tabs->currentIndex(), 1);
        QTest::keyClick(tabs->tabBar(), Qt::Key_Left);
        EXPECT_EQ(tabs->currentIndex(), 0);
    });
}

TEST_F(PagedDialog, FocusGoesToTheTabsOfAPageWithNothingToTypeInto) {
    add("One");
    add("Two").Enabled = false;
    show([](QDialog& dialog) {
        box(dialog, 0).setFocus();
        QTest::keyClick(&box(dialog, 0), Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(dialog.focusWidget(), dialog.findChild<QTabWidget*>()->tabBar());
    });
}

TEST_F(PagedDialog, FieldThatGetsTheFocusComesIntoViewOnALowScreen) {
    add("");
    for (int i = 0; i < 20; ++i)
        add("One");
    show([](QDialog& dialog) {
        dialog.resize(dialog.width(), lowest_room);
        EXPECT_EQ(dialog.height(), lowest_room);
        auto* const button = dialog.findChild<QPushButton*>("cmdClose");
        EXPECT_TRUE(dialog.rect().contains(QRect(button->mapTo(&dialog, QPoint()), button->size())));
        const auto in_view = [](const QWidget& widget) {
            return widget.visibleRegion().boundingRect() == widget.rect();
        };
        EXPECT_FALSE(in_view(box(dialog, 20)));
        // From outside the page, which scrolls to its end, and on to its start.
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Backtab, Qt::ShiftModifier);
        for (int number = 20; number > 0; --number) {
            EXPECT_EQ(dialog.focusWidget(), &box(dialog, number));
            EXPECT_TRUE(in_view(box(dialog, number))) << number;
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
        }
    });
}

TEST_F(PagedDialog, OpensAsHighAsItsHighestPageNeeds) {
    add("One");
    for (int i = 0; i < 10; ++i)
        add("Two");
    show([](QDialog& dialog) {
        EXPECT_EQ(dialog.height(), dialog.sizeHint().height());
        EXPECT_GE(dialog.height(), 10 * box(dialog, 0).height());
        dialog.findChild<QTabWidget*>()->setCurrentIndex(1);
        EXPECT_EQ(box(dialog, 10).visibleRegion().boundingRect(), box(dialog, 10).rect());
    });
}

TEST_F(PagedDialog, TitleIsTheNameOfItsFieldAndFollowsItsCaption) {
    Label title("lblName(3)", "before");
    add_titled(title, "One");
    show([&title](QDialog& dialog) {
        auto* const label = dialog.findChild<QLabel*>("lblName(3)");
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->buddy(), &box(dialog, 0));
        EXPECT_EQ(label->text(), "before");
        EXPECT_EQ(box(dialog, 0).accessibleName(), "before");
        EXPECT_LT(label->mapTo(&dialog, QPoint()).x(), box(dialog, 0).mapTo(&dialog, QPoint()).x());
        const int narrow = label->width();
        title.Caption = "afterwards, and longer";
        EXPECT_EQ(label->text(), "afterwards, and longer");
        EXPECT_EQ(box(dialog, 0).accessibleName(), "afterwards, and longer");
        EXPECT_GE(label->minimumWidth(), label->fontMetrics().horizontalAdvance(label->text()));
        EXPECT_GT(label->minimumWidth(), narrow);
    });
}

TEST_F(PagedDialog, TitlesOfAllPagesStandInOneColumn) {
    Label brief("lblBrief", "a");
    Label long_name("lblLong", "a name of some length");
    add_titled(brief, "One");
    add_titled(long_name, "Two");
    show([](QDialog& dialog) {
        const int left = box(dialog, 0).mapTo(&dialog, QPoint()).x();
        dialog.findChild<QTabWidget*>()->setCurrentIndex(1);
        ASSERT_TRUE(box(dialog, 1).isVisible());
        EXPECT_EQ(box(dialog, 1).mapTo(&dialog, QPoint()).x(), left);
    });
}

TEST_F(PagedDialog, TitleIsPlainTextWithoutAShortcut) {
    Label title("lblHostile", "<b>&Danger</b>");
    add("One");
    add_titled(title, "One");
    show([](QDialog& dialog) {
        auto* const label = dialog.findChild<QLabel*>("lblHostile");
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
        EXPECT_EQ(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name), "<b>&Danger</b>");
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&box(dialog, 1))->text(QAccessible::Name),
                  "<b>&Danger</b>");
        box(dialog, 0).setFocus();
        QTest::keyClick(&box(dialog, 0), Qt::Key_D, Qt::AltModifier);
        EXPECT_EQ(dialog.focusWidget(), &box(dialog, 0));
    });
}

TEST_F(PagedDialog, LongTitleIsElidedAndWholeInItsToolTip) {
    const std::string name = "start" + std::string(300, 'x') + "<i>end";
    Label title("lblLong", name);
    add_titled(title, "One");
    show([](QDialog& dialog) {
        auto* const label = dialog.findChild<QLabel*>("lblLong");
        EXPECT_LT(label->width(), 300);
        EXPECT_GE(box(dialog, 0).width(), 380);
        const QPoint there = label->rect().center();
        QHelpEvent help(QEvent::ToolTip, there, label->mapToGlobal(there));
        QApplication::sendEvent(label, &help);
        EXPECT_TRUE(QToolTip::text().contains("start" + QString(300, 'x') + "&lt;i&gt;end"));
        QToolTip::hideText();
    });
}

TEST_F(PagedDialog, EnormousTitleIsShownAllTheSame) {
    Label title("lblHuge", std::string(3'000'000, 'x') + "\r\n" + std::string(3'000'000, 'y'));
    add_titled(title, "One");
    show([](QDialog& dialog) {
        EXPECT_FALSE(dialog.grab().isNull());
        EXPECT_GE(box(dialog, 0).width(), 380);
    });
}

} // namespace
} // namespace kestrune
