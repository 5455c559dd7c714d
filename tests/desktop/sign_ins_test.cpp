#include "platform/qt/engine_waits.h"
#include "platform/qt/page_dialogs.h"
#include "tests/desktop/bars_fixture.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/painted.h"

#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The dialogs of a page, without the page.
class SignIns : public BarsFixture {
protected:
    SignIns() { look_on(); }

    bool sign_in(const char* address) { return dialogs_.sign_in(QUrl(address), "realm").has_value(); }
    PageBar* bar(const char* name) { return BarUser::shown(place_, name); }

    EngineWaits waits_;
    QUrl shown_{"http://top.example/"};
    QUrl gone_to_ = shown_;
    PageDialogs dialogs_{
        bars_, place_, waits_, {[this] { return shown_; }, [this] { return gone_to_; }, [] {}}};
    BarUser user_;
};

TEST_F(SignIns, the_first_one_of_a_part_that_is_refused_answers_for_all_of_the_page) {
    user_.expect_press("SignIn", "Sign in");
    user_.expect_press("SignIn", "Cancel");
    EXPECT_TRUE(sign_in("http://one.example/picture"));
    EXPECT_FALSE(sign_in("http://two.example/frame"));
    for (int i = 0; i < 12; ++i)
        EXPECT_FALSE(sign_in("http://other.example/frame"));
    EXPECT_FALSE(sign_in("http://top.example/frame"));
    EXPECT_THAT(user_.seen(), ElementsAre("SignIn", "SignIn", "PageAlert")) << "and the user is told once";
    EXPECT_THAT(BarUser::text(*bar("PageAlert"), "Heading"), HasSubstr("ask you to sign in"));
    user_.expect_press("SignIn", "Sign in");
    EXPECT_TRUE(sign_in("http://top.example/")) << "the page itself is not a part";
    dialogs_.leaving();
    dialogs_.arrived();
    user_.expect_press("SignIn", "Sign in");
    EXPECT_TRUE(sign_in("http://one.example/picture")) << "the page was loaded anew";
}

TEST_F(SignIns, while_a_page_is_left_only_the_one_gone_to_is_asked_about) {
    dialogs_.leaving();
    gone_to_ = QUrl("http://next.example/area");
    user_.expect_press("SignIn", "Sign in");
    EXPECT_FALSE(sign_in("http://top.example/frame"));
    EXPECT_FALSE(sign_in("http://next.example/frame"));
    EXPECT_TRUE(sign_in("http://next.example/area"));
    EXPECT_THAT(user_.seen(), ElementsAre("SignIn"));
}

TEST_F(SignIns, leaving_the_page_gives_the_open_one_up_and_counts_as_no_refusal) {
    user_.expect("SignIn", [&](PageBar&) { dialogs_.leaving(); });
    EXPECT_FALSE(sign_in("http://other.example/frame"));
    EXPECT_FALSE(sign_in("http://other.example/frame")) << "not asked while it is left";
    dialogs_.arrived();
    user_.expect_press("SignIn", "Sign in");
    EXPECT_TRUE(sign_in("http://other.example/frame"));
    EXPECT_THAT(user_.seen(), ElementsAre("SignIn", "SignIn"));
}

TEST_F(SignIns, from_the_second_one_on_the_page_can_be_silenced) {
    user_.expect("SignIn", [](PageBar& shown) {
        EXPECT_EQ(shown.findChild<QCheckBox*>("Silence"), nullptr);
        BarUser::press(shown, "Sign in");
    });
    user_.expect("SignIn", [](PageBar& shown) {
        auto* const silencer = shown.findChild<QCheckBox*>("Silence");
        ASSERT_NE(silencer, nullptr);
        silencer->setChecked(true);
        BarUser::press(shown, "Sign in");
    });
    dialogs_.alert(shown_, "counts");
    BarUser::press(*bar("PageAlert"), "OK");
    shown_ = QUrl("http://new.example/");
    gone_to_ = shown_;
    EXPECT_TRUE(sign_in("http://new.example/frame"));
    EXPECT_TRUE(sign_in("http://new.example/frame"));
    EXPECT_FALSE(sign_in("http://new.example/frame"));
    EXPECT_THAT(user_.seen(), ElementsAre("PageAlert", "SignIn", "SignIn"));
}

TEST_F(SignIns, of_a_page_gone_to_from_a_silenced_one_of_another_host_is_asked_for) {
    dialogs_.alert(shown_, "1");
    dialogs_.alert(shown_, "2");
    bar("PageAlert")->findChild<QCheckBox*>("Silence")->setChecked(true);
    gone_to_ = QUrl("http://top.example/area");
    EXPECT_FALSE(sign_in("http://top.example/area")) << "the same host stays silent";
    gone_to_ = QUrl("http://next.example/area");
    user_.expect("SignIn", [](PageBar& shown) {
        EXPECT_EQ(shown.findChild<QCheckBox*>("Silence"), nullptr) << "it has not spoken yet";
        BarUser::press(shown, "Sign in");
    });
    EXPECT_TRUE(sign_in("http://next.example/area"));
    EXPECT_FALSE(sign_in("http://other.example/frame")) << "the silenced page is still there";
    shown_ = gone_to_;
    user_.expect_press("SignIn", "Sign in");
    EXPECT_TRUE(sign_in("http://other.example/frame"));
}

TEST_F(SignIns, one_that_cannot_be_asked_is_refused_with_words) {
    place_.hide();
    EXPECT_FALSE(sign_in("http://top.example/"));
    place_.show();
    PageBar* const told = bar("PageAlert");
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(BarUser::text(*told, "Heading"), "top.example asks you to sign in:");
    EXPECT_THAT(BarUser::text(*told), HasSubstr("Answered with Cancel"));
}

TEST_F(SignIns, one_of_another_host_does_not_take_the_keyboard) {
    user_.expect("SignIn", [&](PageBar& shown) {
        EXPECT_TRUE(page_.hasFocus());
        QTest::keyClicks(QApplication::focusWidget(), "secret");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        EXPECT_EQ(shown.findChild<QLineEdit*>("User")->text(), "");
        BarUser::press(shown, "Cancel");
    });
    sign_in("http://other.example/picture");
    EXPECT_EQ(page_.text(), "secret");
    EXPECT_TRUE(user_.done());
}

TEST_F(SignIns, one_of_the_pages_host_takes_the_keyboard_unless_the_user_is_typing) {
    user_.expect("SignIn", [&](PageBar& shown) {
        EXPECT_TRUE(shown.findChild<QLineEdit*>("User")->hasFocus());
        BarUser::press(shown, "Sign in");
    });
    sign_in("http://top.example/picture");
    page_.setFocus();
    QTest::keyClicks(&page_, "pass");
    user_.expect("SignIn", [&](PageBar& shown) {
        EXPECT_TRUE(page_.hasFocus());
        BarUser::press(shown, "Cancel");
    });
    sign_in("http://top.example/picture");
    EXPECT_TRUE(user_.done());
}

TEST_F(SignIns, a_question_of_the_page_leaves_the_keyboard_to_a_user_who_is_typing) {
    QTest::keyClicks(&page_, "text");
    user_.expect("PageConfirm", [&](PageBar& shown) {
        EXPECT_TRUE(page_.hasFocus());
        QTest::keyClick(&page_, Qt::Key_A);
        EXPECT_TRUE(bars_.focus_next());
        EXPECT_TRUE(button(shown, "OK").hasFocus());
        BarUser::press(shown, "Cancel");
    });
    EXPECT_FALSE(dialogs_.confirm(shown_, "?"));
    EXPECT_TRUE(user_.done());
}

// The same with the real engine.
class SignInsOfPages : public ComfortsTest {
protected:
    SignInsOfPages() {
        server_.answer("/area", no_entry());
        server_.page("/next", "<a href=/x>next</a>");
    }
    static SiteServer::Answer no_entry() {
        return {"<a href=/x>no entry</a>", 401, "text/html", {{"WWW-Authenticate", "Basic realm=x"}}};
    }
    [[nodiscard]] std::string on(const std::string& host, const std::string& path) const {
        return server_.url(path, host);
    }
};

TEST_F(SignInsOfPages, a_storm_of_them_does_not_hold_the_next_page_up) {
    std::string frames;
    for (int i = 2; i < 14; ++i)
        frames += "<iframe src='" + on("127.0.0." + std::to_string(i), "/area") + "'></iframe>";
    server_.page("/page", frames);
    user_.expect("SignIn", [&](PageBar&) { browser_->Navigate(server_.url("/next")); });
    browser_->Navigate(server_.url("/page"));
    EXPECT_TRUE(wait_for("complete " + server_.url("/next")));
    EXPECT_THAT(user_.seen(), ElementsAre("SignIn"));
    EXPECT_EQ(bar("SignIn"), nullptr);
}

TEST_F(SignInsOfPages, the_page_that_a_redirect_leads_to_is_asked_about) {
    open_page("<a href=/x>x</a>");
    server_.redirect("/away", on("127.0.0.9", "/area"));
    user_.expect_press("SignIn", "Cancel");
    browser_->Navigate(server_.url("/away"));
    EXPECT_TRUE(wait_for("complete " + on("127.0.0.9", "/area")));
    EXPECT_TRUE(user_.done());
}

TEST_F(SignInsOfPages, a_link_leads_from_a_silenced_page_to_another_hosts_sign_in) {
    const PageDocument page =
        open_page("<a href='" + on("127.0.0.9", "/area") + "'>link</a><script>alert(1); alert(2)</script>");
    PageBar* const told = wait_for_bar("PageAlert");
    ASSERT_NE(told, nullptr);
    told->findChild<QCheckBox*>("Silence")->setChecked(true);
    BarUser::press(*told, "OK");
    user_.expect_press("SignIn", "Cancel");
    click_link(page);
    EXPECT_TRUE(wait_for("complete " + on("127.0.0.9", "/area")));
    EXPECT_TRUE(user_.done());
}

TEST_F(SignInsOfPages, f6_goes_to_the_sign_in_of_a_frame_that_left_the_keyboard_to_the_page) {
    open_page("<body style='margin:0'><input style='display:block;width:300px;height:50px'><p>words</p>");
    EXPECT_TRUE(wait_until_painted(browser_->view()));
    place_.activateWindow();
    ASSERT_TRUE(wait_until([&] { return place_.isActiveWindow(); }));
    browser_->view().setFocus();
    user_.expect("SignIn", [&](PageBar& shown) {
        EXPECT_FALSE(shown.isAncestorOf(QApplication::focusWidget()));
        QTest::keyClick(&place_, Qt::Key_F6);
        EXPECT_TRUE(shown.findChild<QLineEdit*>("User")->hasFocus());
        BarUser::press(shown, "Cancel");
    });
    browser_->view().page()->runJavaScript(
        "document.body.append(Object.assign(document.createElement('iframe'), "
        "{src: '" +
        QString::fromStdString(on("127.0.0.9", "/area")) + "'}))");
    EXPECT_TRUE(wait_until([&] { return user_.done() && bar("SignIn") == nullptr; }));
}

} // namespace
} // namespace kestrune
