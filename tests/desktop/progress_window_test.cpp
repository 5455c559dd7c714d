#include "platform/qt/progress_window.h"
#include "tests/desktop/wait_until.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QTest>

namespace kestrune {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

const ProgressWindow::Texts texts{"Converting", "It takes a while.", "Quit"};

QDialog* shown() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "Progress" && window->isVisible())
            return qobject_cast<QDialog*>(window);
    }
    return nullptr;
}

TEST(ProgressOfWork, WorkThatTakesNoLongerThanASecondShowsNothing) {
    EXPECT_EQ(ProgressWindow::patience, milliseconds(1000));
    ProgressWindow window{texts, hours(1)};
    EXPECT_TRUE(window.show(1, 10));
    EXPECT_EQ(shown(), nullptr);
}

TEST(ProgressOfWork, LongerWorkIsShownWithItsNumbers) {
    ProgressWindow window{texts, milliseconds(0)};
    EXPECT_TRUE(window.show(12500, 49000));
    QDialog* const dialog = shown();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->findChild<QLabel*>("Heading")->text(), "Converting");
    EXPECT_EQ(dialog->findChild<QLabel*>("Text")->text(), "It takes a while.");
    EXPECT_EQ(dialog->findChild<QLabel*>("Count")->text(), "12,500 of 49,000");
    const auto* const bar = dialog->findChild<QProgressBar*>("Bar");
    EXPECT_EQ(bar->value() * 49 / (bar->maximum() - bar->minimum()), 12);
    EXPECT_TRUE(window.show(49000, 49000));
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST(ProgressOfWork, WithoutAKnownTotalTheBarOnlySaysThatSomethingGoesOn) {
    ProgressWindow window{texts, milliseconds(0)};
    EXPECT_TRUE(window.show(0, 0));
    ASSERT_NE(shown(), nullptr);
    const auto* const bar = shown()->findChild<QProgressBar*>("Bar");
    EXPECT_EQ(bar->maximum(), bar->minimum());
    EXPECT_EQ(shown()->findChild<QLabel*>("Count")->text(), "");
}

TEST(ProgressOfWork, EventsAreServedWhileItGoesOn) {
    ProgressWindow window{texts, hours(1)};
    bool served = false;
    QMetaObject::invokeMethod(
        qApp, [&served] { served = true; }, Qt::QueuedConnection);
    EXPECT_TRUE(window.show(1, 10));
    EXPECT_TRUE(served);
}

TEST(ProgressOfWork, ButtonCloseBoxAndEscEndIt) {
    const auto ended_by = [](const std::function<void(QDialog&)>& user) {
        ProgressWindow window{texts, milliseconds(0)};
        EXPECT_TRUE(window.show(1, 10));
        user(*shown());
        const bool goes_on = window.show(2, 10);
        EXPECT_EQ(shown(), nullptr);
        EXPECT_EQ(window.show(3, 10), goes_on);
        return !goes_on;
    };
    EXPECT_TRUE(ended_by([](QDialog& dialog) { dialog.findChild<QAbstractButton*>("Stop")->click(); }));
    EXPECT_TRUE(ended_by([](QDialog& dialog) { dialog.close(); }));
    EXPECT_TRUE(ended_by([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }));
}

TEST(ProgressOfWork, EnterDoesNotEndIt) {
    ProgressWindow window{texts, milliseconds(0)};
    EXPECT_TRUE(window.show(1, 10));
    QTest::keyClick(shown(), Qt::Key_Return);
    EXPECT_TRUE(window.show(2, 10));
    EXPECT_NE(shown(), nullptr);
}

TEST(ProgressOfWork, WindowIsGoneWhenTheWorkIsDone) {
    {
        ProgressWindow window{texts, milliseconds(0)};
        EXPECT_TRUE(window.show(1, 10));
        EXPECT_NE(shown(), nullptr);
    }
    EXPECT_EQ(shown(), nullptr);
}

} // namespace
} // namespace kestrune
