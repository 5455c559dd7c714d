#include "platform/qt/engine_waits.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/dialog_user.h"
#include "tests/desktop/painted.h"

#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>
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

TEST_F(PageDialogsTest, a_sign_in_is_asked_for_and_its_answer_reaches_the_server) {
    server_.answer_by("/private", [](const SiteServer::Request& request) -> SiteServer::Answer {
        // "me:secret"
        const bool known = request.headers.contains("Authorization") &&
                           request.headers.at("Authorization") == "Basic bWU6c2VjcmV0";
        if (known)
            return {"<a href=/x>inside</a>"};
        return {"no entry", 401, "text/html", {{"WWW-Authenticate", "Basic realm=\"Authors' area\""}}};
    });
    user_.expect("SignIn", [&](PageBar& shown) {
        EXPECT_EQ(BarUser::text(shown, "Heading"), host() + " asks you to sign in:");
        EXPECT_THAT(BarUser::text(shown), HasSubstr("Authors' area"));
        EXPECT_EQ(shown.findChild<QLineEdit*>("Password")->echoMode(), QLineEdit::Password);
        BarUser::type(shown, "User", "me");
        BarUser::type(shown, "Password", "wrong");
        BarUser::press(shown, "Sign in");
    });
    user_.expect("SignIn", [](PageBar& shown) {
        BarUser::type(shown, "User", "me");
        BarUser::type(shown, "Password", "secret");
        BarUser::press(shown, "Sign in");
    });
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("inside"));
    EXPECT_TRUE(user_.done());
}

TEST_F(PageDialogsTest, a_refused_sign_in_shows_what_the_server_says) {
    server_.answer("/private",
                   {"<a href=/x>no entry</a>", 401, "text/html", {{"WWW-Authenticate", "Basic realm=x"}}});
    user_.expect_press("SignIn", "Cancel");
    EXPECT_THAT(link_texts(open(server_.url("/private"))), ElementsAre("no entry"));
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

TEST_F(PageDialogsTest, words_of_a_page_are_shown_plain_and_cut) {
    open_page("<script>alert('a\\x07b\\u202Ec\\n' + 'line\\n'.repeat(100))</script>");
    PageBar* const shown = wait_for_bar("PageAlert");
    ASSERT_NE(shown, nullptr);
    EXPECT_THAT(BarUser::text(*shown), HasSubstr("a b c\n"));
    EXPECT_LE(QString::fromStdString(BarUser::text(*shown)).count(u'\n'), 12);
    EXPECT_LT(shown->height(), place_.height());
}

class FileUpload : public PageDialogsTest {
protected:
    // A press of the mouse on the field: the engine opens a file dialog for nothing else.
    void press_field(const PageDocument& page) {
        image_of(page);
        EXPECT_TRUE(wait_until_painted(browser_->view()));
        QWidget* const page_widget = browser_->view().focusProxy();
        QTest::mouseClick(page_widget, Qt::LeftButton, {}, QPoint(60, 20));
    }
};

TEST_F(FileUpload, an_upload_field_opens_the_file_dialog_and_takes_the_chosen_file) {
    QTemporaryDir folder;
    const QString path = folder.filePath("icon.png");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("icon");
    file.close();
    testing_desktop::DialogUser dialogs;
    dialogs.expect("UploadFileDialog", [&](QDialog& dialog) {
        auto& chooser = dynamic_cast<QFileDialog&>(dialog);
        EXPECT_THAT(chooser.nameFilters().first().toStdString(), HasSubstr("*.png"));
        chooser.setDirectory(folder.path());
        chooser.selectFile(path);
        QMetaObject::invokeMethod(&chooser, "accept");
    });
    const PageDocument page = open_page(
        "<body style='margin:0'><input type=file accept=.png style='display:block;width:300px;height:50px' "
        "onchange=\"document.querySelector('#said').value = this.files[0].name\">"
        "<input id=said>words");
    press_field(page);
    // Not by looking at the page again and again: while the program waits for a page, pages ask nothing.
    EXPECT_TRUE(wait_until([&] { return dialogs.done(); }));
    EXPECT_TRUE(wait_until([&] { return image_of(page).inputs.at(1).value == "icon.png"; }));
}

} // namespace
} // namespace kestrune
