#include "tests/desktop/comforts_fixture.h"

#include <QPushButton>
#include <QTest>

namespace kestrune {
namespace {

using namespace std::chrono_literals;

// Pages that go round and round, after they were stopped.
class PageRounds : public ComfortsTest {
protected:
    PageRounds() { browser_->set_page_deadline(1500ms); }
    // Page code that goes on trying, and tells when it has tried often enough.
    static std::string trying(const std::string& act) {
        return "<script>let tries = 0; setInterval(() => { if (++tries % 10 == 0) fetch('/tried'); " + act +
               " }, 30)</script>";
    }
    void wait_for_tries() {
        const int before = server_.count_of("/tried");
        EXPECT_TRUE(wait_until([&] { return server_.count_of("/tried") > before; }));
    }
};

TEST_F(PageRounds, closing_the_words_about_a_page_that_was_stopped_lets_it_go_on_no_more_than_before) {
    server_.answer("/elsewhere", {"", 204}); // the page stays, and goes on
    server_.page("/page", trying("location.href = '/elsewhere?' + Math.random()"));
    browser_->Navigate(server_.url("/page"));
    PageBar* const late = wait_for_bar("PageLate");
    ASSERT_NE(late, nullptr);
    wait_for_tries();
    const int asked = server_.count_of("/elsewhere");
    EXPECT_GT(asked, 0);
    BarUser::after_a_look(
        *late, [late] { QTest::mouseClick(late->findChild<QPushButton*>("Close"), Qt::LeftButton); });
    EXPECT_TRUE(wait_until([this] { return bar("PageLate") == nullptr; }));
    wait_for_tries();
    wait_for_tries();
    EXPECT_EQ(server_.count_of("/elsewhere"), asked);
}

TEST_F(PageRounds, pages_that_send_each_other_back_and_forth_through_the_history_are_stopped) {
    server_.page("/a", trying("history.forward()"));
    server_.page("/b", trying("history.back()"));
    open(server_.url("/a"));
    browser_->Navigate(server_.url("/b"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    // The one that was stopped goes on trying, unless it was stopped before its script had come.
    const auto tries = [this] {
        const int before = server_.count_of("/tried");
        wait_until([&] { return server_.count_of("/tried") > before; }, 2000ms);
    };
    tries();
    const std::size_t completed = probe_.completed.size();
    tries();
    EXPECT_EQ(probe_.completed.size(), completed);
}

} // namespace
} // namespace kestrune
