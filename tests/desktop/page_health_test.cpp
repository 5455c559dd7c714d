#include "tests/desktop/comforts_fixture.h"

#include <QWebEngineView>

#include <algorithm>
#include <csignal>

namespace kestrune {
namespace {

using ::testing::HasSubstr;
using namespace std::chrono_literals;

class PageHealthTest : public ComfortsTest {
protected:
    // As the system does when memory runs out.
    void kill_page() {
        const auto process = static_cast<pid_t>(browser_->view().page()->renderProcessPid());
        ASSERT_GT(process, 0);
        ::kill(process, SIGKILL);
    }
    [[nodiscard]] int loads() const { return probe_.count("complete " + server_.url("/page")); }
};

TEST_F(PageHealthTest, a_page_whose_process_dies_is_loaded_again_twice_and_then_only_offered) {
    open_page("<a href=/x>x</a>");
    for (int load = 2; load <= 3; ++load) {
        kill_page();
        ASSERT_TRUE(wait_until([&] { return loads() == load; }));
        ASSERT_NE(bar("PageCrashed"), nullptr) << "it is said in the page's place";
    }
    kill_page();
    ASSERT_TRUE(wait_until([&] {
        PageBar* const shown = bar("PageCrashed");
        return shown != nullptr && shown->findChild<QPushButton*>("Reload") != nullptr;
    }));
    EXPECT_EQ(loads(), 3);
    BarUser::press(*bar("PageCrashed"), "Reload");
    EXPECT_TRUE(wait_until([&] { return loads() == 4; }));
}

TEST_F(PageHealthTest, a_page_that_came_of_a_sent_form_is_not_loaded_again_by_itself) {
    server_.page("/form", "<form action=/sent method=post><input name=n><button>send</button></form>");
    server_.page("/sent", "sent");
    const PageDocument page = open(server_.url("/form"));
    browser_->apply({{PageEdit::Kind::click, page.forms.at(0).elements.at(1).ref}});
    ASSERT_TRUE(wait_for("complete " + server_.url("/sent")));
    kill_page();
    PageBar* const shown = wait_for_bar("PageCrashed");
    ASSERT_NE(shown, nullptr);
    EXPECT_THAT(BarUser::text(*shown), HasSubstr("sends the form once more"));
    EXPECT_EQ(server_.count_of("/sent"), 1);
    let_everything_happen();
    EXPECT_EQ(server_.count_of("/sent"), 1);
}

TEST_F(PageHealthTest, reloading_what_came_of_a_sent_form_asks_first) {
    server_.page("/form", "<form action=/sent method=post><input name=n><button>send</button></form>");
    server_.page("/sent", "sent");
    const PageDocument page = open(server_.url("/form"));
    browser_->apply({{PageEdit::Kind::click, page.forms.at(0).elements.at(1).ref}});
    ASSERT_TRUE(wait_for("complete " + server_.url("/sent")));
    browser_->Reload();
    PageBar* asked = wait_for_bar("SendAgain");
    ASSERT_NE(asked, nullptr);
    BarUser::press(*asked, "Cancel");
    browser_->Reload();
    asked = wait_for_bar("SendAgain");
    ASSERT_NE(asked, nullptr);
    BarUser::press(*asked, "Send again");
    EXPECT_TRUE(wait_for("complete " + server_.url("/sent"), 2));
    EXPECT_EQ(server_.count_of("/sent"), 2);
}

TEST_F(PageHealthTest, after_a_crash_the_next_page_loads) {
    open_page("<a href=/x>x</a>");
    kill_page();
    let_everything_happen();
    EXPECT_EQ(bar("PageCrashed"), nullptr);
}

TEST_F(PageHealthTest, a_page_that_hangs_is_said_to_and_says_so_no_longer_once_it_answers) {
    browser_->set_hang_time(500ms);
    const PageDocument page = open_page("<a href='javascript:(() => { const end = Date.now() + 3000; while "
                                        "(Date.now() < end); })()'>busy</a>");
    click_link(page);
    ASSERT_NE(wait_for_bar("PageHangs"), nullptr);
    EXPECT_TRUE(wait_until([&] { return bar("PageHangs") == nullptr; }));
    EXPECT_TRUE(browser_->take_image(page.id, everything).has_value());
}

TEST_F(PageHealthTest, who_waits_for_a_page_that_hangs_is_told_again_only_when_it_hangs_again) {
    browser_->set_hang_time(300ms);
    const PageDocument page =
        open_page("<a href='javascript:(() => { const end = Date.now() + 3000; while (Date.now() < end); "
                  "})()'>busy</a>");
    click_link(page);
    PageBar* const told = wait_for_bar("PageHangs");
    ASSERT_NE(told, nullptr);
    BarUser::press(*told, "Wait");
    EXPECT_TRUE(browser_->take_image(page.id, everything).has_value() ||
                wait_until([&] { return browser_->take_image(page.id, everything).has_value(); }));
    EXPECT_EQ(std::count(user_.seen().begin(), user_.seen().end(), "PageHangs"), 1);
    click_link(page);
    EXPECT_NE(wait_for_bar("PageHangs"), nullptr);
}

TEST_F(PageHealthTest, leaving_a_page_that_hangs_for_another_of_its_site_works) {
    browser_->set_hang_time(1000ms);
    const PageDocument page = open_page("<a href='javascript:for(;;);'>hang</a>");
    click_link(page);
    ASSERT_NE(wait_for_bar("PageHangs"), nullptr);
    let_everything_happen();
    EXPECT_EQ(bar("PageHangs"), nullptr);
}

TEST_F(PageHealthTest, leaving_a_page_before_it_is_known_to_hang_works_too) {
    browser_->set_hang_time(1000ms);
    const PageDocument page = open_page("<a href='javascript:for(;;);'>hang</a>");
    click_link(page);
    let_everything_happen();
}

TEST_F(PageHealthTest, an_open_question_of_the_page_is_no_hanging) {
    // A page of a profile that knows nothing of the question does not answer for it, and is blamed.
    QWidget other_place;
    other_place.show();
    BrowserProbe other_probe;
    QtBrowser other(other_place, other_probe, std::make_shared<EngineProfile>());
    const auto others_bar = [&] { return BarUser::shown(other_place, "PageHangs"); };
    other.Navigate(server_.url("/end-of-test"));
    ASSERT_TRUE(
        wait_until([&] { return other_probe.count("complete " + server_.url("/end-of-test")) == 1; }));
    other.set_hang_time(600ms);
    browser_->set_hang_time(300ms);
    user_.expect("PageConfirm", [&](PageBar& shown) {
        EXPECT_TRUE(wait_until([&] { return others_bar() != nullptr; }));
        EXPECT_EQ(bar("PageHangs"), nullptr);
        BarUser::press(shown, "OK");
    });
    const PageDocument page =
        open_page("<input><script>document.querySelector('input').value = confirm('?')</script>");
    EXPECT_EQ(said(page), "true");
    EXPECT_EQ(bar("PageHangs"), nullptr);
}

} // namespace
} // namespace kestrune
