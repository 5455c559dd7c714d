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
    // The page tries once more, and nothing comes of it. Its own script may have been stopped with it.
    void expect_to_try_in_vain() {
        for (int tries = 1; tries <= 3; ++tries) {
            browser_->view().page()->runJavaScript("location.replace('/again'); fetch('/tries')");
            ASSERT_TRUE(wait_until([&] { return server_.count_of("/tries") >= tries; }));
        }
        EXPECT_EQ(server_.count_of("/again"), 0);
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
    server_.page("/loop", "<script>const go = () => { location.replace('/loop?' + "
                          "Math.random()) }; go(); setInterval(go, 20)</script>loop");
    browser_->Navigate(server_.url("/loop"));
    EXPECT_EQ(reason(wait_for_bar("PageLate")), "It was loading again and again, and was stopped.");
    expect_to_try_in_vain();
}

TEST_F(PageDeadlineTest, a_page_that_completes_and_goes_on_at_once_for_ever_is_stopped) {
    server_.page("/loop", "<script>onload = () => setInterval(() => { "
                          "location.replace('/loop?' + Math.random()) }, 20)</script>loop");
    browser_->Navigate(server_.url("/loop"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    EXPECT_FALSE(probe_.completed.empty());
    expect_to_try_in_vain();
}

TEST_F(PageDeadlineTest, a_page_that_reloads_itself_again_and_again_is_stopped) {
    server_.page("/loop", "<script>onload = () => setInterval(() => { "
                          "location.reload() }, 20)</script>loop");
    browser_->Navigate(server_.url("/loop"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    EXPECT_FALSE(probe_.completed.empty());
    expect_to_try_in_vain();
}

TEST_F(PageDeadlineTest, a_page_stopped_for_reloading_again_and_again_follows_its_user) {
    // It stays where it is and goes on trying, until it is pressed.
    server_.answer_by("/loop", [first = true](const SiteServer::Request&) mutable -> SiteServer::Answer {
        if (!std::exchange(first, false))
            return {"", 204};
        return {"<body style='margin:0'><a href=/wanted style='display:block;height:200px'>wanted</a>"
                "<script>onload = () => { const tries = setInterval(() => location.reload(), 50);"
                "onmousedown = () => clearInterval(tries) }</script>"};
    });
    server_.page("/wanted", "wanted");
    browser_->Navigate(server_.url("/loop"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    ASSERT_TRUE(wait_until_painted(browser_->view()));
    QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_TRUE(wait_for("complete " + server_.url("/wanted")));
}

TEST_F(PageDeadlineTest, the_user_may_load_a_page_again_that_was_stopped) {
    server_.page("/loop", "<script>onload = () => setInterval(() => { "
                          "location.reload() }, 20)</script>loop");
    browser_->Navigate(server_.url("/loop"));
    ASSERT_NE(wait_for_bar("PageLate"), nullptr);
    server_.page("/loop", "<a href=/x>mended</a>");
    browser_->Reload();
    ASSERT_TRUE(wait_until([&] {
        return !probe_.completed.empty() && link_texts(probe_.last()) == std::vector<std::string>{"mended"};
    }));
    EXPECT_EQ(bar("PageLate"), nullptr);
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
    browser_->Navigate(server_.url("/end-of-test"));
    EXPECT_TRUE(browser_->deadline_runs());
    ASSERT_TRUE(wait_for("complete " + server_.url("/end-of-test")));
    EXPECT_TRUE(browser_->deadline_runs()) << "it may still go on by itself";
    EXPECT_TRUE(wait_until([&] { return !browser_->deadline_runs(); }));
    EXPECT_EQ(bar("PageLate"), nullptr);
}

TEST_F(PageDeadlineTest, a_page_that_never_completes_but_ends_to_load_is_left_alone_too) {
    server_.answer("/nothing", {"", 204});
    browser_->Navigate(server_.url("/nothing"));
    EXPECT_TRUE(browser_->deadline_runs());
    EXPECT_TRUE(wait_until([&] { return !browser_->deadline_runs(); }));
    EXPECT_EQ(bar("PageLate"), nullptr);
    EXPECT_THAT(probe_.completed, IsEmpty());
}

TEST_F(PageDeadlineTest, a_page_that_goes_on_by_itself_has_the_time_anew_once_it_had_stayed) {
    server_.never("/never");
    open_page("<a href=/never>on</a><script>onload = () => onmessage = () => location = '/never'</script>");
    ASSERT_TRUE(wait_until([&] { return !browser_->deadline_runs(); }));
    browser_->view().page()->runJavaScript("postMessage(1, '*')");
    ASSERT_TRUE(wait_until([&] { return server_.count_of("/never") == 1; }));
    EXPECT_TRUE(browser_->deadline_runs());
    EXPECT_NE(wait_for_bar("PageLate"), nullptr);
}

TEST_F(PageDeadlineTest, the_time_of_a_question_is_not_the_pages) {
    server_.page("/page", "<script>confirm('?')</script>");
    browser_->set_page_deadline(400ms);
    // Knows nothing of the question, so its own page is late for it.
    QWidget other_place;
    other_place.show();
    BrowserProbe other_probe;
    const auto other_profile = std::make_shared<EngineProfile>();
    QtBrowser other(other_place, other_probe, other_profile);
    other.set_page_deadline(400ms);
    server_.never("/never");
    user_.expect("PageConfirm", [&](PageBar& asked) {
        other.Navigate(server_.url("/never"));
        EXPECT_TRUE(wait_until([&] { return BarUser::shown(other_place, "PageLate") != nullptr; }));
        EXPECT_EQ(bar("PageLate"), nullptr);
        EXPECT_TRUE(browser_->deadline_runs());
        BarUser::press(asked, "OK");
    });
    open(server_.url("/page"));
    EXPECT_TRUE(user_.done());
    EXPECT_EQ(bar("PageLate"), nullptr);
}

TEST_F(PageDeadlineTest, a_sent_form_that_is_not_answered_is_not_sent_again) {
    server_.never("/sent");
    const PageDocument page =
        open_page("<form action=/sent method=post><input name=n><button>send</button></form>");
    browser_->apply({{PageEdit::Kind::click, page.forms.at(0).elements.at(1).ref}});
    PageBar* const late = wait_for_bar("PageLate");
    ASSERT_NE(late, nullptr);
    EXPECT_EQ(late->findChild<QPushButton*>("Try again"), nullptr);
    EXPECT_EQ(server_.count_of("/sent"), 1);
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
