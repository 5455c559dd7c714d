#include "tests/desktop/bars_fixture.h"

#include <QScrollBar>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PageBarsTest : public BarsFixture {};

TEST_F(PageBarsTest, twenty_bars_leave_the_page_half_of_the_place_and_their_buttons_whole) {
    std::vector<PageBar*> all;
    for (int i = 0; i < 20; ++i)
        all.push_back(&ask(QStringLiteral("bar %1").arg(i)));
    settle();
    EXPECT_EQ(bars_.height(), 300);
    EXPECT_EQ(page_.height(), 300);
    for (PageBar* const bar : all) {
        bars_.reveal(*bar);
        EXPECT_TRUE(whole(button(*bar))) << bar->objectName().toStdString();
    }
    place_.resize(800, 400);
    settle();
    EXPECT_EQ(bars_.height(), 200);
}

TEST_F(PageBarsTest, a_bar_that_has_just_come_is_scrolled_to_where_it_is_needed) {
    for (int i = 0; i < 5; ++i)
        ask(QStringLiteral("bar %1").arg(i));
    settle();
    PageBar& last = ask(QStringLiteral("last"));
    last.add_field(QStringLiteral("Name:"), QStringLiteral("User"));
    bars_.reveal(last);
    settle();
    EXPECT_TRUE(whole(last));
}

TEST_F(PageBarsTest, a_text_that_does_not_fit_is_scrolled_and_its_buttons_are_seen) {
    place_.resize(600, 240);
    PageBar& bar = ask(QStringLiteral("bar"), QStringLiteral("line\n").repeated(12).trimmed());
    settle();
    EXPECT_LE(bars_.height(), 120);
    EXPECT_TRUE(whole(button(bar)));
    look_on();
    auto& text = *bar.findChild<QLabel*>(QStringLiteral("Text"));
    EXPECT_FALSE(whole(text));
    const int before = text.mapTo(&bar, QPoint()).y();
    QTest::keyClick(&button(bar), Qt::Key_PageDown);
    EXPECT_LT(text.mapTo(&bar, QPoint()).y(), before);
}

TEST_F(PageBarsTest, in_a_window_that_grows_wider_the_bars_get_lower_and_are_not_scrolled) {
    PageBar& bar =
        ask(QStringLiteral("bar"), QStringLiteral("one long line of words ").repeated(30).trimmed());
    settle();
    const int before = bars_.height();
    place_.resize(1500, 1100);
    settle();
    EXPECT_LT(bars_.height(), before);
    EXPECT_FALSE(bars_.verticalScrollBar()->isVisible());
    EXPECT_TRUE(whole(bar));
    EXPECT_TRUE(whole(*bar.findChild<QLabel*>(QStringLiteral("Text"))));
}

TEST_F(PageBarsTest, bars_that_are_gone_leave_their_room_to_the_page) {
    PageBar& bar = ask(QStringLiteral("bar"));
    settle();
    EXPECT_LT(page_.height(), 600);
    bar.take_away();
    settle();
    EXPECT_EQ(page_.height(), 600);
}

TEST_F(PageBarsTest, a_press_into_a_bar_that_has_just_come_does_nothing) {
    PageBar& bar = ask(QStringLiteral("bar"));
    settle();
    // How often the button was pressed, in every way there is.
    const auto presses = [&] {
        pressed_.clear();
        QTest::mouseClick(&button(bar), Qt::LeftButton);
        QMouseEvent second(QEvent::MouseButtonDblClick, QPointF(5, 5), button(bar).mapToGlobal(QPointF(5, 5)),
                           Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&button(bar), &second);
        QTest::mouseRelease(&button(bar), Qt::LeftButton);
        QTest::keyClick(&button(bar), Qt::Key_Space);
        QTest::keyClick(&button(bar), Qt::Key_Return);
        button(bar).click();
        return pressed_.size();
    };
    EXPECT_EQ(presses(), 0U);
    now_ += PageBar::settling_time - std::chrono::milliseconds(1);
    EXPECT_EQ(presses(), 0U);
    now_ += std::chrono::milliseconds(1);
    EXPECT_EQ(presses(), 5U);
}

TEST_F(PageBarsTest, a_press_that_began_before_the_bar_settled_does_nothing_when_it_ends_later) {
    PageBar& bar = ask(QStringLiteral("bar"));
    settle();
    QTest::mousePress(&button(bar), Qt::LeftButton);
    look_on();
    QTest::mouseRelease(&button(bar), Qt::LeftButton);
    EXPECT_THAT(pressed_, IsEmpty());
}

TEST_F(PageBarsTest, a_bar_that_moves_up_under_the_mouse_takes_no_press_at_first) {
    PageBar& first = ask(QStringLiteral("first"));
    PageBar& second = ask(QStringLiteral("second"));
    settle();
    look_on();
    EXPECT_TRUE(second.takes_presses());
    first.take_away();
    settle();
    QTest::mouseClick(&button(second), Qt::LeftButton);
    EXPECT_THAT(pressed_, IsEmpty());
    look_on();
    QTest::mouseClick(&button(second), Qt::LeftButton);
    EXPECT_THAT(pressed_, ElementsAre("second"));
}

TEST_F(PageBarsTest, a_bar_whose_buttons_move_within_it_or_by_scrolling_takes_no_press_at_first) {
    PageBar& bar = ask(QStringLiteral("bar"));
    settle();
    look_on();
    bar.set_text(QStringLiteral("one\ntwo\nthree"));
    settle();
    EXPECT_FALSE(bar.takes_presses());
    for (int i = 0; i < 10; ++i)
        ask(QStringLiteral("more"));
    settle();
    look_on();
    EXPECT_TRUE(bar.takes_presses());
    bars_.verticalScrollBar()->setValue(10);
    EXPECT_FALSE(bar.takes_presses());
}

TEST_F(PageBarsTest, a_key_that_is_held_down_presses_nothing) {
    PageBar& bar = ask(QStringLiteral("bar"));
    look_on();
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
    QCoreApplication::sendEvent(&bar, &repeated);
    EXPECT_THAT(pressed_, IsEmpty());
}

TEST_F(PageBarsTest, the_keyboard_steps_through_the_bars_and_on_to_the_page) {
    EXPECT_FALSE(bars_.focus_next()) << "there is none";
    PageBar& first = ask(QStringLiteral("first"));
    PageBar& second = ask(QStringLiteral("second"));
    EXPECT_TRUE(bars_.focus_next());
    EXPECT_TRUE(button(first).hasFocus());
    EXPECT_TRUE(bars_.focus_next());
    EXPECT_TRUE(button(second).hasFocus());
    EXPECT_FALSE(bars_.focus_next());
}

TEST_F(PageBarsTest, tab_walks_from_bar_to_bar_in_the_order_in_which_they_stand) {
    QWidget::setTabOrder(&page_, &bars_);
    PageBar& first = ask(QStringLiteral("first"));
    PageBar& second = ask(QStringLiteral("second"));
    second.add_field(QStringLiteral("Name:"), QStringLiteral("User"));
    page_.setFocus();
    std::vector<std::string> walked;
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        const QWidget* const now = QApplication::focusWidget();
        walked.push_back((first.isAncestorOf(now) ? "first " : "second ") + now->objectName().toStdString());
    }
    EXPECT_THAT(walked, ElementsAre("first Yes", "first No", "second Yes", "second No", "second User"));
}

TEST_F(PageBarsTest, the_user_types_for_a_second_after_the_last_letter_outside_the_bars) {
    PageBar& bar = ask(QStringLiteral("bar"));
    QLineEdit& field = bar.add_field({}, QStringLiteral("Answer"));
    QTest::keyClick(&field, Qt::Key_A);
    QTest::keyClick(&page_, Qt::Key_F9);
    QTest::keyClick(&page_, Qt::Key_L, Qt::ControlModifier);
    EXPECT_FALSE(bars_.user_types());
    QTest::keyClick(&page_, Qt::Key_A);
    EXPECT_TRUE(bars_.user_types());
    now_ += TypingWatch::pause - std::chrono::milliseconds(1);
    EXPECT_TRUE(bars_.user_types());
    now_ += std::chrono::milliseconds(1);
    EXPECT_FALSE(bars_.user_types());
}

} // namespace
} // namespace kestrune
