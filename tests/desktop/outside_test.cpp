#include "platform/qt/certificate_words.h"
#include "platform/qt/outside_links.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/tls_server.h"
#include "tests/temporary_folder.h"

#include <QDesktopServices>

#include <filesystem>
#include <fstream>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

// Takes the place of the user's mail program.
class MailProgram : public QObject {
    Q_OBJECT

public:
    MailProgram() {
        QDesktopServices::setUrlHandler("mailto", this, "open");
        QDesktopServices::setUrlHandler("x-tool", this, "open");
    }
    ~MailProgram() override {
        QDesktopServices::unsetUrlHandler("mailto");
        QDesktopServices::unsetUrlHandler("x-tool");
    }
    MailProgram(const MailProgram&) = delete;
    MailProgram& operator=(const MailProgram&) = delete;
    MailProgram(MailProgram&&) = delete;
    MailProgram& operator=(MailProgram&&) = delete;

    Q_INVOKABLE void open(const QUrl& url) { opened.push_back(url.toString().toStdString()); }
    std::vector<std::string> opened;
};

class OutsideTest : public ComfortsTest {
protected:
    MailProgram mail_;
};

TEST_F(OutsideTest, a_mail_link_is_asked_about_and_opened_when_the_user_agrees) {
    click_link(open_page("<a href='mailto:editor@example.com?subject=x'>mail</a>"));
    PageBar* const asked = wait_for_bar("OutsideLink");
    ASSERT_NE(asked, nullptr);
    EXPECT_EQ(BarUser::text(*asked), "mailto:editor@example.com?subject=x");
    EXPECT_EQ(BarUser::text(*asked, "Heading"),
              "127.0.0.1:" + std::to_string(server_.port()) + " wants to open another program:");
    EXPECT_THAT(mail_.opened, IsEmpty());
    BarUser::press(*asked, "Open");
    EXPECT_THAT(mail_.opened, ElementsAre("mailto:editor@example.com?subject=x"));
    EXPECT_EQ(bar("OutsideLink"), nullptr);
}

TEST_F(OutsideTest, a_link_to_another_program_is_opened_only_when_the_user_agrees) {
    const PageDocument page = open_page("<a href='x-tool:run'>tool</a>");
    for (int i = 0; i < 2; ++i) {
        click_link(page);
        PageBar* const asked = wait_for_bar("OutsideLink");
        ASSERT_NE(asked, nullptr);
        BarUser::press(*asked, "Do not open");
    }
    click_link(page);
    image_of(page);
    let_everything_happen();
    EXPECT_EQ(bar("OutsideLink"), nullptr) << "who is refused twice does not ask again";
    EXPECT_THAT(mail_.opened, IsEmpty());
}

TEST_F(OutsideTest, a_frame_that_wants_another_program_is_asked_about_too) {
    server_.page("/frame", "<script>location = 'x-tool:frame'</script>");
    open_page("<iframe src=/frame></iframe>");
    EXPECT_NE(wait_for_bar("OutsideLink"), nullptr);
}

TEST_F(OutsideTest, the_next_page_may_ask_again_but_a_page_that_loads_itself_anew_may_not) {
    server_.page("/page", "<a href='x-tool:run'>tool</a><a href='javascript:location.reload()'>again</a>");
    PageDocument page = open(server_.url("/page"));
    for (int i = 0; i < 2; ++i) {
        click_link(page);
        PageBar* const asked = wait_for_bar("OutsideLink");
        ASSERT_NE(asked, nullptr);
        BarUser::press(*asked, "Do not open");
    }
    click_link(page, 1);
    ASSERT_TRUE(wait_for("complete " + server_.url("/page"), 2));
    page = probe_.last();
    click_link(page);
    image_of(page);
    EXPECT_EQ(bar("OutsideLink"), nullptr);
    page = open(server_.url("/page"));
    click_link(page);
    EXPECT_NE(wait_for_bar("OutsideLink"), nullptr);
    let_everything_happen();
    EXPECT_EQ(bar("OutsideLink"), nullptr) << "the question goes with its page";
}

TEST_F(OutsideTest, a_page_that_wants_many_programs_at_once_is_asked_about_once) {
    open_page("<script>for (let i = 0; i < 5; ++i) { const frame = document.createElement('iframe'); "
              "frame.src = 'x-tool:' + i; document.documentElement.append(frame) }</script>");
    ASSERT_NE(wait_for_bar("OutsideLink"), nullptr);
    let_everything_happen();
    EXPECT_EQ(user_.seen().size(), 1U);
}

TEST_F(OutsideTest, files_scripts_and_the_engines_own_pages_never_lead_outside) {
    for (const char* address : {"file:///etc/passwd", "javascript:alert(1)", "chrome://version", "data:,x",
                                "kestrune:website", "smb://host/x", "http://a/"})
        EXPECT_FALSE(OutsideLinks::leads_outside(QUrl(address))) << address;
    EXPECT_FALSE(OutsideLinks::leads_outside(QUrl("mailto:" + QString(3000, 'x'))));
    EXPECT_TRUE(OutsideLinks::leads_outside(QUrl("mailto:a@b.c")));
}

TEST_F(OutsideTest, a_page_of_the_network_opens_no_local_file_in_any_way) {
    TemporaryFolder folder;
    const std::string secret = folder.path() + "/secret.html";
    std::ofstream(secret) << "<a href=/x>secret</a>";
    const std::string file = "file://" + secret;
    server_.redirect("/to-file", file);
    const PageDocument page =
        open_page("<input><a href='" + file + "'>link</a><a href=\"javascript:location='" + file +
                  "'\">script</a>"
                  "<a href=/to-file>redirect</a><a href=\"javascript:open('" +
                  file +
                  "')\">window</a>"
                  "<iframe src='" +
                  file + "'></iframe><script>fetch('" + file +
                  "').then(() => "
                  "document.querySelector('input').value = 'read', () => "
                  "document.querySelector('input').value = 'refused')"
                  "</script>");
    EXPECT_TRUE(wait_until([&] { return said(page) == "refused"; }));
    for (std::size_t i = 0; i < page.links.size(); ++i)
        click_link(page, i);
    let_everything_happen();
    for (const PageDocument& document : probe_.completed)
        EXPECT_THAT(link_texts(document), Not(testing::Contains("secret")));
    for (const std::string& told : probe_.told)
        EXPECT_THAT(told, Not(HasSubstr("complete file:")));
}

TEST_F(OutsideTest, a_bad_certificate_is_refused_and_said_in_plain_words) {
    TlsServer server;
    browser_->Navigate(server.url());
    PageBar* const shown = wait_for_bar("CertificateError");
    ASSERT_NE(shown, nullptr);
    EXPECT_THAT(BarUser::text(*shown),
                HasSubstr("Nobody whom this computer trusts vouches for its certificate."));
    EXPECT_EQ(server.requests(), 0) << "nothing was sent";
    BarUser::press(*shown, "OK");
    EXPECT_EQ(bar("CertificateError"), nullptr);
    browser_->Navigate(server.url());
    EXPECT_NE(wait_for_bar("CertificateError"), nullptr) << "no agreement is remembered";
    let_everything_happen();
    EXPECT_EQ(bar("CertificateError"), nullptr);
    EXPECT_EQ(server.requests(), 0);
}

TEST_F(OutsideTest, a_picture_and_a_frame_with_a_bad_certificate_are_left_out_in_silence) {
    TlsServer server;
    const PageDocument page =
        open_page("<input><script>const say = text => document.querySelector('input').value += text</script>"
                  "<a href=/x>page</a><img onload=\"say('seen')\" onerror=\"say('no picture')\" src='" +
                  server.url() + "picture'><iframe src='" + server.url() + "frame'></iframe>");
    EXPECT_TRUE(wait_until([&] { return said(page) == "no picture"; })) << said(page);
    EXPECT_TRUE(wait_until([&] { return server.connections() >= 2; })) << "both were tried";
    EXPECT_THAT(link_texts(image_of(page)), ElementsAre("page")) << "the page works without them";
    EXPECT_EQ(bar("CertificateError"), nullptr);
    EXPECT_EQ(server.requests(), 0);
}

TEST_F(OutsideTest, a_link_a_redirect_and_a_form_that_lead_to_a_bad_certificate_are_refused_too) {
    TlsServer server;
    server_.redirect("/redirect", server.url());
    const PageDocument page =
        open_page("<a href='" + server.url() + "'>link</a><a href=/redirect>redirect</a><form action='" +
                  server.url() + "' method=post><input name=n value=secret><button>send</button></form>");
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    ASSERT_NE(wait_for_bar("CertificateError"), nullptr);
    const PageDocument again = open(server_.url("/page"));
    ASSERT_EQ(bar("CertificateError"), nullptr);
    browser_->apply({{PageEdit::Kind::click, again.links.at(1).ref}});
    ASSERT_NE(wait_for_bar("CertificateError"), nullptr);
    const PageDocument once_more = open(server_.url("/page"));
    browser_->apply({{PageEdit::Kind::click, once_more.forms.at(0).elements.at(1).ref}});
    ASSERT_NE(wait_for_bar("CertificateError"), nullptr);
    EXPECT_EQ(server.requests(), 0);
}

TEST(CertificateWords, say_for_each_kind_what_it_means) {
    using Error = QWebEngineCertificateError;
    const auto words = [](Error::Type type) {
        return certificate_words(type, "host", "NET::X").toStdString();
    };
    EXPECT_THAT(words(Error::CertificateDateInvalid), HasSubstr("expired"));
    EXPECT_THAT(words(Error::CertificateCommonNameInvalid), HasSubstr("another site"));
    EXPECT_THAT(words(Error::CertificateRevoked), HasSubstr("called back"));
    EXPECT_THAT(words(Error::CertificateWeakKey), HasSubstr("broken"));
    EXPECT_THAT(words(Error::CertificateContainsErrors), HasSubstr("faulty"));
    EXPECT_THAT(words(Error::CertificateContainsErrors), HasSubstr("(NET::X)"));
}

TEST_F(OutsideTest, what_a_page_may_not_have_is_denied_at_once) {
    const PageDocument page =
        open_page("<input><script>const said = []; const say = t => { said.push(t); "
                  "document.querySelector('input').value = "
                  "said.sort().join() };"
                  "navigator.geolocation.getCurrentPosition(() => say('location'), () => say('-'));"
                  "Notification.requestPermission().then(p => say(p == 'granted' ? 'notify' : '-'));"
                  "const media = navigator.mediaDevices;"
                  "for (const want of [{audio: true}, {video: true}]) "
                  "media.getUserMedia(want).then(() => say('media'), () => say('-'));"
                  "navigator.clipboard.readText().then(() => say('clipboard'), () => say('-'));"
                  "navigator.storage.persist().then(p => say(p ? 'persist' : '-'))</script>");
    EXPECT_TRUE(wait_until([&] { return said(page) == "-,-,-,-,-,-"; })) << said(page);
}

} // namespace
} // namespace kestrune

#include "outside_test.moc"
