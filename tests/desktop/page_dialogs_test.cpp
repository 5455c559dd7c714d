#include "platform/qt/engine_waits.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/painted.h"

#include <QDialog>
#include <QTest>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PageDialogsTest : public ComfortsTest {
protected:
    std::string host() const { return "127.0.0.1:" + std::to_string(server_.port()); }
};

TEST_F(PageDialogsTest, a_message_stands_in_the_place_of_its_page_and_keeps_nothing_waiting) {
    const PageDocument page = open_page(
        "<input><script>alert('<b>read</b> this'); document.querySelector('input').value = 'went on'"
        "</script>");
    EXPECT_EQ(said(page), "went on");
    PageBar* const shown = wait_for_bar("PageAlert");
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(BarUser::text(*shown, "Heading"), host() + " says:");
    EXPECT_EQ(BarUser::text(*shown), "<b>read</b> this");
    EXPECT_EQ(shown->findChild<QCheckBox*>(), nullptr);
    BarUser::press(*shown, "OK");
    EXPECT_EQ(bar("PageAlert"), nullptr);
}

TEST_F(PageDialogsTest, a_page_can_be_silenced_from_its_second_message_on) {
    const PageDocument page =
        open_page("<input><a href='javascript:alert(3)'>third</a><script>alert(1); alert(2)</script>");
    PageBar* first = wait_for_bar("PageAlert");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first->findChild<QCheckBox*>("Silence"), nullptr);
    BarUser::press(*first, "OK");
    PageBar* const second = bar("PageAlert");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(BarUser::text(*second), "2");
    second->findChild<QCheckBox*>("Silence")->setChecked(true);
    BarUser::press(*second, "OK");
    click_link(page);
    said(page);
    EXPECT_EQ(bar("PageAlert"), nullptr);
    EXPECT_THAT(user_.seen(), SizeIs(2));
}

TEST_F(PageDialogsTest, a_silenced_page_that_loads_itself_again_stays_silent_and_the_next_one_may_speak) {
    server_.page("/page",
                 "<a href='javascript:location.reload()'>again</a><script>alert(1); alert(2)</script>");
    server_.page("/next", "<script>alert('next')</script>");
    const PageDocument page = open(server_.url("/page"));
    PageBar* const first = wait_for_bar("PageAlert");
    ASSERT_NE(first, nullptr);
    first->findChild<QCheckBox*>("Silence")->setChecked(true);
    BarUser::press(*first, "OK");
    EXPECT_EQ(bar("PageAlert"), nullptr) << "the second message is not shown either";
    click_link(page);
    ASSERT_TRUE(wait_for("complete " + server_.url("/page"), 2));
    EXPECT_EQ(bar("PageAlert"), nullptr);
    open(server_.url("/next"));
    EXPECT_NE(wait_for_bar("PageAlert"), nullptr);
}

TEST_F(PageDialogsTest, a_question_is_answered_by_the_user) {
    user_.expect("PageConfirm", [&](PageBar& shown) {
        EXPECT_EQ(BarUser::text(shown), "really?");
        EXPECT_TRUE(profile_->waits().open());
        BarUser::press(shown, "OK");
    });
    user_.expect_press("PageConfirm", "Cancel");
    user_.expect("PagePrompt", [](PageBar& shown) {
        EXPECT_EQ(shown.findChild<QLineEdit*>("Answer")->text(), "preset");
        BarUser::type(shown, "Answer", "typed");
        BarUser::press(shown, "OK");
    });
    user_.expect_press("PagePrompt", "Cancel");
    const PageDocument page =
        open_page("<input><script>document.querySelector('input').value = [confirm('really?'), confirm('?'), "
                  "prompt('name', 'preset'), prompt('name')].join()</script>");
    EXPECT_EQ(said(page), "true,false,typed,");
    EXPECT_TRUE(user_.done());
    EXPECT_EQ(bar("PageConfirm"), nullptr);
}

TEST_F(PageDialogsTest, a_question_is_answered_by_the_keyboard) {
    user_.expect("PageConfirm", [](PageBar& shown) {
        BarUser::after_a_look(shown, [&] { QTest::keyClick(shown.focusWidget(), Qt::Key_Escape); });
    });
    user_.expect("PagePrompt", [](PageBar& shown) {
        BarUser::after_a_look(shown, [&] {
            QTest::keyClicks(shown.focusWidget(), "by key");
            QTest::keyClick(shown.focusWidget(), Qt::Key_Return);
        });
    });
    const PageDocument page = open_page("<input><script>document.querySelector('input').value = "
                                        "[confirm('really?'), prompt('name')].join()</script>");
    EXPECT_EQ(said(page), "false,by key");
}

TEST_F(PageDialogsTest, leaving_the_page_gives_its_question_up) {
    server_.page("/next", "next");
    user_.expect("PageConfirm", [&](PageBar&) { browser_->Navigate(server_.url("/next")); });
    server_.page("/page", "<script>while (!confirm('stay for ever')) fetch('/still-there')</script>");
    browser_->Navigate(server_.url("/page"));
    EXPECT_TRUE(wait_for("complete " + server_.url("/next")));
    EXPECT_EQ(bar("PageConfirm"), nullptr);
}

TEST_F(PageDialogsTest, a_question_of_a_window_that_cannot_be_seen_is_answered_at_once) {
    place_.hide();
    const PageDocument page =
        open_page("<input><script>document.querySelector('input').value = confirm('?')</script>");
    EXPECT_EQ(said(page), "false");
    EXPECT_THAT(user_.seen(), IsEmpty());
    place_.show();
    PageBar* const told = wait_for_bar("PageAlert");
    ASSERT_NE(told, nullptr);
    EXPECT_THAT(BarUser::text(*told), HasSubstr("Answered with Cancel"));
}

TEST_F(PageDialogsTest, hiding_the_window_gives_the_open_question_up) {
    user_.expect("PageConfirm", [&](PageBar&) { place_.hide(); });
    const PageDocument page =
        open_page("<input><script>document.querySelector('input').value = confirm('?')</script>");
    EXPECT_EQ(said(page), "false");
}

TEST_F(PageDialogsTest, a_question_while_the_program_asks_something_itself_does_not_keep_it_waiting) {
    const PageDocument page =
        open_page("<input><script>setTimeout(() => document.querySelector('input').value = confirm('page'), "
                  "200)</script>");
    QDialog own(&place_);
    own.setModal(true);
    own.show();
    EXPECT_TRUE(wait_until([&] { return bar("PageAlert") != nullptr; }));
    EXPECT_EQ(said(page), "false");
    EXPECT_THAT(user_.seen(), ElementsAre("PageAlert"));
}

TEST_F(PageDialogsTest, a_browser_that_ends_while_its_page_asks_ends_in_peace) {
    user_.expect("PageConfirm", [&](PageBar&) { browser_.reset(); });
    server_.page("/page", "<script>confirm('?')</script>");
    browser_->Navigate(server_.url("/page"));
    EXPECT_TRUE(wait_until([&] { return browser_ == nullptr && !profile_->waits().open(); }));
    browser_ = std::make_unique<QtBrowser>(place_, probe_, profile_);
    let_everything_happen();
}

class SignInTest : public PageDialogsTest {
protected:
    // Lets in who is "me" with the password "secret"; shows others a link "no entry".
    SignInTest() {
        server_.answer_by("/private", [](const SiteServer::Request& request) -> SiteServer::Answer {
            const bool known = request.headers.contains("Authorization") &&
                               request.headers.at("Authorization") == "Basic bWU6c2VjcmV0";
            if (known)
                return {"<a href=/x>inside</a>"};
            return {"<a href=/x>no entry</a>",
                    401,
                    "text/html",
                    {{"WWW-Authenticate", "Basic realm=\"Authors' area\""}}};
        });
    }
    static void sign_in(PageBar& shown, const std::string& password) {
        BarUser::type(shown, "User", "me");
        BarUser::type(shown, "Password", password);
        BarUser::press(shown, "Sign in");
    }
    void expect_sign_in(const std::string& password) {
        user_.expect("SignIn", [password](PageBar& shown) { sign_in(shown, password); });
    }
};

TEST_F(SignInTest, a_sign_in_is_asked_for_and_its_answer_reaches_the_server) {
    user_.expect("SignIn", [&](PageBar& shown) {
        EXPECT_EQ(BarUser::text(shown, "Heading"), host() + " asks you to sign in:");
        EXPECT_EQ(BarUser::text(shown), "Authors' area\nWhat you enter can be read on its way there.");
        EXPECT_EQ(shown.findChild<QLineEdit*>("Password")->echoMode(), QLineEdit::Password);
        sign_in(shown, "secret");
    });
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("inside"));
    EXPECT_EQ(server_.count_of("/private"), 2);
    EXPECT_TRUE(user_.done());
}

TEST_F(SignInTest, a_wrong_sign_in_is_asked_for_again_as_often_as_it_is_wrong) {
    expect_sign_in("wrong");
    expect_sign_in("wrong again");
    expect_sign_in("secret");
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("inside"));
    EXPECT_EQ(server_.count_of("/private"), 4);
    EXPECT_TRUE(user_.done());
}

TEST_F(SignInTest, a_sign_in_wrong_twice_and_then_cancelled_shows_what_the_server_says) {
    expect_sign_in("wrong");
    expect_sign_in("wrong again");
    user_.expect_press("SignIn", "Cancel");
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("no entry"));
    EXPECT_EQ(server_.count_of("/private"), 3) << "cancelling sends nothing";
    EXPECT_EQ(bar("SignIn"), nullptr);
}

TEST_F(SignInTest, a_refused_sign_in_shows_what_the_server_says_and_is_asked_for_again_the_next_time) {
    user_.expect_press("SignIn", "Cancel");
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("no entry"));
    EXPECT_EQ(server_.count_of("/private"), 1);
    let_everything_happen();
    expect_sign_in("secret");
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("inside"));
}

TEST_F(SignInTest, leaving_the_page_gives_its_sign_in_up) {
    user_.expect("SignIn", [&](PageBar&) { browser_->Navigate(server_.url("/end-of-test")); });
    browser_->Navigate(server_.url("/private"));
    EXPECT_TRUE(wait_for("complete " + server_.url("/end-of-test")));
    EXPECT_EQ(bar("SignIn"), nullptr);
    EXPECT_EQ(server_.count_of("/private"), 1);
}

TEST_F(SignInTest, a_sign_in_of_a_window_that_cannot_be_seen_is_refused_at_once) {
    place_.hide();
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("no entry"));
    EXPECT_THAT(user_.seen(), IsEmpty());
}

class LeavePage : public PageDialogsTest {
protected:
    // A page that would rather not be left, once its user has done something on it.
    PageDocument stubborn_page() {
        const PageDocument page = open_page(
            "<body style='margin:0' onclick=\"document.querySelector('input').value = 'clicked'\">"
            "<div style='height:100px'>text</div><input><a href=/end-of-test>away</a>"
            "<script>onbeforeunload = e => { e.preventDefault(); return e.returnValue = 'stay' }</script>");
        EXPECT_TRUE(wait_until_painted(browser_->view()));
        QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
        EXPECT_TRUE(wait_until([&] { return said(page) == "clicked"; }));
        return page;
    }
};

TEST_F(LeavePage, a_page_that_would_not_be_left_asks_when_its_link_is_followed) {
    user_.expect_press("PageLeave", "Stay");
    user_.expect_press("PageLeave", "Leave");
    const PageDocument page = stubborn_page();
    click_link(page);
    ASSERT_TRUE(wait_until([&] { return user_.seen().size() == 1 && bar("PageLeave") == nullptr; }));
    EXPECT_EQ(said(page), "clicked") << "it is still there";
    click_link(page);
    EXPECT_TRUE(wait_for("complete " + server_.url("/end-of-test")));
}

TEST_F(LeavePage, a_page_that_would_not_be_left_does_not_keep_the_program) {
    stubborn_page();
    let_everything_happen();
    EXPECT_THAT(user_.seen(), IsEmpty());
}

TEST_F(LeavePage, the_question_whether_it_is_left_does_not_keep_the_program_either) {
    server_.page("/next", "next");
    user_.expect("PageLeave", [&](PageBar&) { browser_->Navigate(server_.url("/next")); });
    click_link(stubborn_page());
    EXPECT_TRUE(wait_for("complete " + server_.url("/next")));
    EXPECT_EQ(bar("PageLeave"), nullptr);
    EXPECT_THAT(user_.seen(), ElementsAre("PageLeave"));
    EXPECT_EQ(server_.count_of("/end-of-test"), 0) << "where the page was going it did not go";
}

TEST_F(LeavePage, reload_and_back_ask_nothing_either) {
    open(server_.url("/end-of-test"));
    stubborn_page();
    browser_->Reload();
    ASSERT_TRUE(wait_for("complete " + server_.url("/page"), 2));
    ASSERT_TRUE(wait_until_painted(browser_->view()));
    QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
    ASSERT_TRUE(wait_until([&] { return said(probe_.last()) == "clicked"; }));
    browser_->GoBack();
    EXPECT_TRUE(wait_for("complete " + server_.url("/end-of-test"), 2));
    EXPECT_THAT(user_.seen(), IsEmpty());
}

TEST_F(LeavePage, a_page_that_was_to_be_left_and_is_not_may_ask_again) {
    server_.answer("/nothing", {"", 204});
    const PageDocument page = stubborn_page();
    browser_->Navigate(server_.url("/nothing"));
    ASSERT_TRUE(wait_until(
        [&] { return server_.count_of("/nothing") == 1 && !browser_->view().page()->isLoading(); }));
    user_.expect_press("PageLeave", "Leave");
    click_link(page);
    EXPECT_TRUE(wait_for("complete " + server_.url("/end-of-test")));
    EXPECT_TRUE(user_.done());
}

TEST_F(LeavePage, a_silenced_page_is_left_without_a_word) {
    const PageDocument page = stubborn_page();
    browser_->view().page()->runJavaScript("alert(1); alert(2)");
    PageBar* const told = wait_for_bar("PageAlert");
    ASSERT_NE(told, nullptr);
    ASSERT_TRUE(wait_until([&] { return told->findChild<QCheckBox*>("Silence") != nullptr; }));
    told->findChild<QCheckBox*>("Silence")->setChecked(true);
    BarUser::press(*told, "OK");
    click_link(page);
    EXPECT_TRUE(wait_for("complete " + server_.url("/end-of-test")));
    EXPECT_THAT(user_.seen(), ElementsAre("PageAlert"));
}

TEST_F(PageDialogsTest, a_silenced_page_gets_no_answer_but_cancel) {
    user_.expect_press("PageConfirm", "OK");
    user_.expect("PagePrompt", [](PageBar& shown) {
        shown.findChild<QCheckBox*>("Silence")->setChecked(true);
        BarUser::press(shown, "OK");
    });
    const PageDocument page =
        open_page("<input><script>document.querySelector('input').value = [confirm('1'), "
                  "prompt('2', 'given'), confirm('3'), prompt('4', 'kept')].join()"
                  "</script>");
    EXPECT_EQ(said(page), "true,given,false,");
    EXPECT_THAT(user_.seen(), ElementsAre("PageConfirm", "PagePrompt"));
}

TEST_F(PageDialogsTest, a_page_of_a_site_just_come_to_is_not_silenced_by_the_words_of_the_one_before) {
    server_.page("/next", "<script>alert('one')</script>");
    open_page("<script>alert(1); alert(2)</script>");
    open(server_.url("/next"));
    PageBar* const told = wait_for_bar("PageAlert");
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(BarUser::text(*told), "one") << "what the page before said is gone with it";
    EXPECT_EQ(told->findChild<QCheckBox*>("Silence"), nullptr) << "its first word";
}

TEST_F(PageDialogsTest, words_of_a_page_are_shown_plain_and_cut) {
    open_page("<script>alert('a\\x07b\\u202Ec\\n' + 'line\\n'.repeat(100))</script>");
    PageBar* const shown = wait_for_bar("PageAlert");
    ASSERT_NE(shown, nullptr);
    EXPECT_THAT(BarUser::text(*shown), HasSubstr("a b c\n"));
    EXPECT_LE(QString::fromStdString(BarUser::text(*shown)).count(u'\n'), 12);
    EXPECT_LT(shown->height(), place_.height());
}

} // namespace
} // namespace kestrune
