#include "platform/qt/qt_user_interface.h"
#include "tests/desktop/dialog_user.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QTest>

namespace kestrune {
namespace {

using testing_desktop::DialogUser;

void press(QDialog& dialog, const char* button) { dialog.findChild<QAbstractButton*>(button)->click(); }

class MessageBox : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(user.done()); }
    QtUserInterface desktop;
    DialogUser user;
};

TEST_F(MessageBox, YesNoQuestionIsAnsweredByItsButtons) {
    user.expect("MessageBox", [](QDialog& box) { press(box, "Yes"); });
    EXPECT_EQ(desktop.MessageBox("Go?", Buttons::YesNo), Answer::Yes);
    user.expect("MessageBox", [](QDialog& box) { press(box, "No"); });
    EXPECT_EQ(desktop.MessageBox("Go?", Buttons::YesNo), Answer::No);
}

TEST_F(MessageBox, YesNoQuestionHasNoCloseBoxAndNeitherEscNorClosingAnswersIt) {
    user.expect("MessageBox", [](QDialog& box) {
        EXPECT_FALSE(box.windowFlags().testFlag(Qt::WindowCloseButtonHint));
        QTest::keyClick(&box, Qt::Key_Escape);
        EXPECT_TRUE(box.isVisible());
        box.close();
        EXPECT_TRUE(box.isVisible());
        press(box, "Yes");
    });
    EXPECT_EQ(desktop.MessageBox("Go?", Buttons::YesNo), Answer::Yes);
}

TEST_F(MessageBox, EscAndCloseBoxCancelAnOkCancelQuestion) {
    user.expect("MessageBox", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(desktop.MessageBox("Go?", Buttons::OkCancel), Answer::Cancel);
    user.expect("MessageBox", [](QDialog& box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowCloseButtonHint));
        box.close();
    });
    EXPECT_EQ(desktop.MessageBox("Go?", Buttons::OkCancel), Answer::Cancel);
}

TEST_F(MessageBox, EscClosesANotice) {
    user.expect("MessageBox", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(desktop.MessageBox("Done."), Answer::Ok);
}

TEST_F(MessageBox, EnterPressesTheFirstButton) {
    user.expect("MessageBox", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
    EXPECT_EQ(desktop.MessageBox("Go?", Buttons::YesNo), Answer::Yes);
}

TEST_F(MessageBox, TextAndTitleArePlainTextAndALongTitleIsReadableInTheBox) {
    const std::string address = "Address: http://a/<img src=x>?" + std::string(150, 'q') + "&end";
    user.expect("MessageBox", [&address](QDialog& box) {
        const auto* const title = box.findChild<QLabel*>("Title");
        ASSERT_NE(title, nullptr);
        EXPECT_EQ(title->text().toStdString(), address);
        EXPECT_EQ(title->textFormat(), Qt::PlainText);
        EXPECT_GE(title->height(), title->heightForWidth(title->width()));
        EXPECT_LE(box.width(), 700);
        const auto* const text = box.findChild<QLabel*>("Text");
        EXPECT_EQ(text->text(), "<b>Go</b>?");
        EXPECT_EQ(text->textFormat(), Qt::PlainText);
        EXPECT_EQ(box.accessibleDescription(), "<b>Go</b>?");
        press(box, "No");
    });
    desktop.MessageBox("<b>Go</b>?", Buttons::YesNo, address);
}

TEST_F(MessageBox, TitleOfAPageIsOneLineAndCutAndTurnsNoWritingRound) {
    std::string link = "Link = 'Submit\nKestrune\r\nasks:\u2028your\u202Eexe.\u2066password\t";
    for (int i = 0; i < 300000; ++i)
        link += "\u0416"; // a letter that no word of a link begins with
    user.expect("MessageBox", [](QDialog& box) {
        const QString shown = box.findChild<QLabel*>("Title")->text();
        EXPECT_TRUE(shown.startsWith("Link = 'Submit Kestrune  asks: your exe. password \u0416"))
            << shown.toStdString();
        EXPECT_TRUE(shown.endsWith(QString("\u0416\u2026")));
        EXPECT_EQ(shown.size(), 201);
        EXPECT_EQ(box.windowTitle(), shown);
        EXPECT_EQ(box.accessibleName(), shown);
        press(box, "No");
    });
    desktop.MessageBox("Do you want to go to this link", Buttons::YesNo, link);
}

TEST_F(MessageBox, LetterOfTwoUnitsIsNotCutInHalf) {
    user.expect("MessageBox", [](QDialog& box) {
        const QString shown = box.findChild<QLabel*>("Title")->text();
        EXPECT_EQ(shown, QString("x") + QString("\U0001F600").repeated(99) + QChar(0x2026));
        press(box, "No");
    });
    std::string title = "x";
    for (int i = 0; i < 500; ++i)
        title += "\U0001F600";
    desktop.MessageBox("Go?", Buttons::YesNo, title);
}

TEST_F(MessageBox, TextKeepsItsLinesAndIsCutOnlyWhenItHasNoEnd) {
    std::string lines;
    for (int i = 0; i < 100; ++i)
        lines += "line " + std::to_string(i) + "\r\n";
    user.expect("MessageBox", [&lines](QDialog& box) {
        EXPECT_EQ(box.findChild<QLabel*>("Text")->text(), QString::fromStdString(lines).remove(u'\r'));
        press(box, "OK");
    });
    desktop.MessageBox(lines);
    user.expect("MessageBox", [](QDialog& box) {
        EXPECT_EQ(box.findChild<QLabel*>("Text")->text(), QString(4000, u'x') + QChar(0x2026));
        EXPECT_EQ(box.accessibleDescription().size(), 4001);
        press(box, "OK");
    });
    desktop.MessageBox(std::string(1000000, 'x'));
}

TEST_F(MessageBox, ProgramsOwnTitleIsNotRepeatedInTheBox) {
    user.expect("MessageBox", [](QDialog& box) {
        EXPECT_EQ(box.windowTitle(), "Kestrune");
        EXPECT_EQ(box.findChild<QLabel*>("Title"), nullptr);
        press(box, "OK");
    });
    desktop.MessageBox("Done.");
}

TEST_F(MessageBox, EndOfTheProgramClosesAQuestionWithTheAnswerThatDoesNothing) {
    user.expect("MessageBox", [this](QDialog& /*box*/) { desktop.EndProgram(); });
    Answer answer = Answer::Yes;
    QMetaObject::invokeMethod(
        qApp, [this, &answer] { answer = desktop.MessageBox("Go?", Buttons::YesNo); }, Qt::QueuedConnection);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(answer, Answer::No);
}

} // namespace
} // namespace kestrune
