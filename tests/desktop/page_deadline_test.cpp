#include "platform/qt/page_deadline.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/painted.h"
#include "tests/desktop/program_fixture.h"

#include <QTest>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

class PageDeadlineTest : public ComfortsTest {
protected:
    PageDeadlineTest() {
        browser_->set_page_deadline(1500ms);
        browser_->set_hang_time(1000ms);
    }
    std::string reason(PageBar* bar) { return bar == nullptr ? "" : BarUser::text(*bar); }
};

TEST_F(PageDeadlineTest, a_page_has_thirty_seconds) { EXPECT_EQ(PageDeadline::time, 30s); }

TEST_F(PageDeadlineTest, a_server_that_never_answers_is_given_up_without_a_document) {
    server_.never("/never");
    browser_->Navigate(server_.url("/never"));
    EXPECT_EQ(reason(wait_for_bar("PageLate")), "The site did not answer in time.");
    EXPECT_TRUE(wait_until([&] { return !browser_->view().page()->isLoading(); }));
    EXPECT_THAT(probe_.completed, IsEmpty());
    let_everything_happen();
    EXPECT_EQ(probe_.completed.size(), 1U);
    EXPECT_EQ(bar("PageLate"), nullptr) << "the next page takes the bar away";
}

TEST_F(PageDeadlineTest, a_page_given_up_can_be_tried_again) {
    server_.never("/slow");
    browser_->Navigate(server_.url("/slow"));
    PageBar* const late = wait_for_bar("PageLate");
    ASSERT_NE(late, nullptr);
    const int before = server_.count_of("/slow");
    BarUser::press(*late, "Try again");
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/slow") > before; }));
}

TEST_F(PageDeadlineTest, a_script_without_end_ends_with_its_process) {
    server_.page("/loop", "<p>text</p><script>for (;;);</script>");
    browser_->Navigate(server_.url("/loop"));
    EXPECT_EQ(reason(wait_for_bar("PageLate")), "A script of it did not end. The page was stopped.");
    EXPECT_EQ(probe_.count("complete " + server_.url("/loop")), 0);
    let_everything_happen();
}

TEST_F(PageDeadlineTest, a_page_that_loads_itself_again_and_again_is_stopped) {
    server_.page("/loop", "<script>location.replace('/loop?' + Math.random())</script>loop");
    browser_->Navigate(server_.url("/loop"));
    EXPECT_EQ(reason(wait_for_bar("PageLate")), "It was loading again and again, and was stopped.");
    let_everything_happen();
    const int asked = server_.count_of("/loop");
    let_everything_happen();
    EXPECT_EQ(server_.count_of("/loop"), asked);
}

TEST_F(PageDeadlineTest, a_page_that_completes_and_goes_on_at_once_for_ever_is_stopped) {
    server_.page("/loop",
                 "<script>onload = () => setTimeout(() => location.replace('/loop?' + Math.random()), 20)"
                 "</script>loop");
    browser_->Navigate(server_.url("/loop"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    const std::size_t completed = probe_.completed.size();
    EXPECT_GT(completed, 0U);
    // The last one stays, whether it has completed or not: its script's attempts are refused.
    const int asked = server_.count_of("/loop");
    EXPECT_FALSE(wait_until([&] { return server_.count_of("/loop") > asked + 1; }, 700ms));
}

TEST_F(PageDeadlineTest, redirects_without_end_are_given_up) {
    server_.answer_by("/round", [](const SiteServer::Request&) -> SiteServer::Answer {
        return {"", 302, "text/html", {{"Location", "/round"}}};
    });
    browser_->Navigate(server_.url("/round"));
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/round") >= 10; }));
    let_everything_happen();
    EXPECT_EQ(probe_.completed.size(), 1U);
}

TEST_F(PageDeadlineTest, a_page_that_stays_is_left_alone) {
    open_page("<a href=/x>x</a>");
    server_.page("/other", "other");
    EXPECT_FALSE(wait_until([&] { return bar("PageLate") != nullptr; }, 2500ms));
}

TEST_F(PageDeadlineTest, a_page_stopped_for_going_on_may_not_go_on_by_itself_but_follows_its_user) {
    server_.never("/never");
    server_.page(
        "/page",
        "<script>onload = () => { setTimeout(() => location.replace('/never'), 20);"
        "setTimeout(() => { fetch('/tries'); location.replace('/again') }, 2500) }"
        "</script><body style='margin:0'><a href=/wanted style='display:block;height:200px'>wanted</a>");
    server_.page("/wanted", "wanted");
    browser_->Navigate(server_.url("/page"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    ASSERT_TRUE(wait_until([&] { return server_.count_of("/tries") == 1; }));
    ASSERT_TRUE(wait_until_painted(browser_->view()));
    EXPECT_EQ(server_.count_of("/again"), 0);
    QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_TRUE(wait_for("complete " + server_.url("/wanted")));
}

class DeadlineInProgram : public ProgramTest {
protected:
    [[nodiscard]] QtBrowser& browser() { return dynamic_cast<QtBrowser&>(window().browser()); }
};

TEST_F(DeadlineInProgram, SubmitLeavesASiteThatHangsInAScriptForTheNextOne) {
    server().page("/hangs", "<p>text</p><script>for (;;);</script>");
    server().page("/next", "<p>next</p>");
    add_site(1, url("/hangs"), "Hangs");
    add_site(2, url("/next"), "Next");
    start();
    browser().set_hang_time(1000ms);
    key(Qt::Key_F9);
    wait("the page to be asked for", [this] { return server().count_of("/hangs") == 1; });
    wait("the page to hang", [this] { return BarUser::shown(user().window(), "PageHangs") != nullptr; });
    user().answer_with([&](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), "frmNote");
        user().press(dialog, "optSubmit(1)");
        user().press(dialog, "cmdSave");
    });
    key(Qt::Key_F9);
    wait_for_document(url("/next"));
    EXPECT_EQ(status_in_library(url("/hangs")), "P");
}

TEST_F(DeadlineInProgram, TheDeadlineLeavesTimerAndStatusTextAlone) {
    server().never("/never");
    start();
    browser().set_page_deadline(800ms);
    window().OpenSiteForPlayback(url("/never"), "A slow site");
    wait("the deadline", [this] { return BarUser::shown(user().window(), "PageLate") != nullptr; });
    EXPECT_TRUE(window().Timer1.Enabled.get());
    EXPECT_THAT(user().status(1), HasSubstr("Going to " + url("/never") + "..."));
    EXPECT_EQ(window().strCurDocUrl, "about:blank");
}

} // namespace
} // namespace kestrune
