#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/painted.h"
#include "tests/temporary_folder.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineView>

namespace kestrune {
namespace {

using Settings = QWebEngineSettings;

class EngineSettings : public ComfortsTest {
protected:
    // A page that does something when its upper left corner is clicked, and what it said of that.
    std::string after_click(const std::string& script) {
        const PageDocument page =
            open_page("<body style='margin:0'><div id=here style='height:200px'>click</div><input>"
                      "<script>const say = text => document.querySelector('input').value = text;"
                      "here.onclick = () => { " +
                      script + " }</script>");
        EXPECT_TRUE(wait_until_painted(browser_->view()));
        QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
        std::string answer;
        EXPECT_TRUE(wait_until([&] { return !(answer = said(page)).empty(); }));
        return answer;
    }
};

// Some of these are the engine's own choice today and some have a second lock behind them; a newer engine may
// choose otherwise.
TEST_F(EngineSettings, are_as_strict_as_is_promised) {
    const QWebEngineSettings& settings = *profile_->engine().settings();
    for (const auto attribute :
         {Settings::LocalContentCanAccessFileUrls, Settings::LocalContentCanAccessRemoteUrls,
          Settings::JavascriptCanAccessClipboard, Settings::JavascriptCanPaste, Settings::PluginsEnabled,
          Settings::PdfViewerEnabled, Settings::FullScreenSupportEnabled, Settings::ScreenCaptureEnabled,
          Settings::AllowGeolocationOnInsecureOrigins, Settings::AllowRunningInsecureContent,
          Settings::DnsPrefetchEnabled, Settings::HyperlinkAuditingEnabled})
        EXPECT_FALSE(settings.testAttribute(attribute)) << attribute;
    EXPECT_TRUE(settings.testAttribute(Settings::WebRTCPublicInterfacesOnly));
}

TEST_F(EngineSettings, a_page_from_a_disk_reads_no_other_file_and_sends_nothing_away) {
    const TemporaryFolder folder;
    write_bytes(folder.file("secret.txt"), "secret");
    const std::string leak = server_.url("/leak");
    write_bytes(
        folder.file("page.html"),
        "<input><script>const said = []; const say = text => { said.push(text); "
        "document.querySelector('input').value = said.sort().join() };"
        "const asked = new XMLHttpRequest(); asked.open('GET', 'secret.txt');"
        "asked.onload = () => say('read ' + asked.responseText); asked.onerror = () => say('refused');"
        "asked.send();"
        "const picture = new Image(); picture.onload = picture.onerror = () => say('no picture');"
        "picture.src = '" +
            leak +
            "';"
            "fetch('" +
            leak + "', {mode: 'no-cors'}).then(() => say('sent'), () => say('not sent'))</script>");
    const PageDocument page = open("file://" + folder.file("page.html"));
    EXPECT_TRUE(wait_until([&] { return said(page) == "no picture,not sent,refused"; })) << said(page);
    EXPECT_EQ(server_.count_of("/leak"), 0);
}

TEST_F(EngineSettings, a_click_on_a_link_tells_nobody_else) {
    server_.page("/wanted", "wanted");
    const PageDocument page = open_page("<a href=/wanted ping=/ping>link</a>");
    click_link(page);
    ASSERT_TRUE(wait_for("complete " + server_.url("/wanted")));
    let_everything_happen();
    EXPECT_EQ(server_.count_of("/ping"), 0);
}

TEST_F(EngineSettings, a_document_that_is_no_page_is_offered_as_a_file) {
    server_.answer("/paper", {"%PDF-1.4", 200, "application/pdf"});
    click_link(open_page("<a href=/paper>paper</a>"));
    EXPECT_NE(wait_for_bar("Download"), nullptr);
}

TEST_F(EngineSettings, a_page_fills_no_screen_though_its_user_clicked) {
    EXPECT_EQ(after_click("here.requestFullscreen().then(() => say('full'), () => say('refused'))"),
              "refused");
}

TEST_F(EngineSettings, a_page_records_no_screen_though_its_user_clicked) {
    EXPECT_EQ(after_click("navigator.mediaDevices.getDisplayMedia({video: true})"
                          ".then(() => say('seen'), () => say('refused'))"),
              "refused");
}

TEST_F(EngineSettings, a_page_reads_no_clipboard_though_its_user_clicked) {
    QGuiApplication::clipboard()->setText("password");
    EXPECT_EQ(after_click("const box = document.querySelector('input'); box.focus();"
                          "say(document.execCommand('paste') || 'refused')"),
              "refused");
    EXPECT_EQ(after_click("navigator.clipboard.readText().then(say, () => say('refused'))"), "refused");
    QGuiApplication::clipboard()->clear();
}

TEST_F(EngineSettings, a_page_writes_no_clipboard_without_its_users_click) {
    QGuiApplication::clipboard()->setText("mine");
    const PageDocument page = open_page(
        "<input><p id=text>evil</p><script>getSelection().selectAllChildren(text);"
        "document.querySelector('input').value = document.execCommand('copy') || 'refused'</script>");
    EXPECT_EQ(said(page), "refused");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "mine");
    QGuiApplication::clipboard()->clear();
}

TEST_F(EngineSettings, a_page_gets_no_room_on_the_disk_beyond_what_every_page_has) {
    EXPECT_EQ(after_click("navigator.webkitPersistentStorage.requestQuota(1 << 30, "
                          "given => say('given ' + given), () => say('refused'))"),
              "given 0");
}

TEST_F(EngineSettings, a_page_becomes_no_program_for_a_kind_of_link) {
    EXPECT_EQ(after_click("navigator.registerProtocolHandler('web+tool', '/taken?%s'); say('asked')"),
              "asked");
    click_link(open_page("<a href='web+tool:x'>tool</a>"));
    EXPECT_NE(wait_for_bar("OutsideLink"), nullptr);
    EXPECT_EQ(server_.count_of("/taken"), 0);
}

} // namespace
} // namespace kestrune
