#include "platform/qt/qt_browser.h"
#include "tests/desktop/painted.h"
#include "tests/desktop/program_fixture.h"

#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const block_question = "A pop-up window is requrested, do you want to block it?";
const char* const notice = "Please be awared that the right-click function is disabled in the pop-up window!";

// Windows that the user's own click asks for, and names that lead to a window or frame that is there already.
class PopupNames : public ProgramTest {
protected:
    PopupNames() {
        server().page("/popup", "<p>popup</p>");
        server().page("/plain", "<p>plain</p>");
    }
    void open_page(const std::string& html) {
        server().page("/page", html + "<script>onmousedown = () => fetch('/pressed')</script>");
        window().browser().Navigate(url("/page"));
        wait_for_document(url("/page"));
    }
    // Presses the mouse on what stands in the upper left corner of the page.
    void click_page() {
        QWebEngineView& view = dynamic_cast<QtBrowser&>(window().browser()).view();
        ASSERT_TRUE(wait_until_painted(view));
        // On a busy machine the engine now and then drops a press just after the page was painted.
        for (int tries = 0; tries < 10 && server().count_of("/pressed") == 0; ++tries) {
            QTest::mouseClick(view.focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
            wait_until([this] { return server().count_of("/pressed") > 0; }, std::chrono::seconds(3));
        }
    }
    [[nodiscard]] BrowserWindow& newest() { return *program().windows().back(); }
    [[nodiscard]] std::size_t count() { return program().windows().size(); }
    void wait_for_popup(const std::string& path) {
        wait("the pop-up with " + path, [&] { return count() == 2 && newest().strCurDocUrl == url(path); });
    }
    [[nodiscard]] std::string sent_to(const std::string& path) {
        std::string all;
        for (const SiteServer::Request& request : server().requests()) {
            if (request.target == path)
                all += request.method + " " + request.body + ";";
        }
        return all;
    }
};

class PopupByClick : public PopupNames, public ::testing::WithParamInterface<const char*> {};

TEST_P(PopupByClick, IsAskedAboutAndOpensWhenItIsNotToBeBlocked) {
    start();
    open_page(GetParam());
    answer_boxes({"No", "OK"});
    click_page();
    wait_for_popup("/popup");
    EXPECT_THAT(asked(), ElementsAre(block_question, notice));
    EXPECT_EQ(server().count_of("/popup"), 1);
}

TEST_P(PopupByClick, LoadsNothingWhenItIsBlocked) {
    start();
    open_page(GetParam());
    answer_boxes({"Yes"});
    click_page();
    wait("the request to be blocked", [this] { return user().status(2) == "1 Pop-up is blocked"; });
    open_address(url("/plain"));
    EXPECT_THAT(asked(), ElementsAre(block_question));
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(server().count_of("/popup"), 0);
}

INSTANTIATE_TEST_SUITE_P(
    ButtonLinkAndForm, PopupByClick,
    ::testing::Values(
        "<body style='margin:0'><button onclick=\"window.open('/popup')\" "
        "style='width:300px;height:200px'>go</button>",
        "<body style='margin:0'><a href=/popup target=_blank style='display:block;height:200px'>go</a>",
        "<body style='margin:0'><form action=/popup method=post target=elsewhere>"
        "<button style='width:300px;height:200px'>go</button></form>"));

// A page that opens a window "w" and, once that has loaded and says so, does something more.
std::string opens_w_and_then(const std::string& script) {
    return "<form action=/sent method=post target=w><input name=n value=v></form><script>let first = true;"
           "onmessage = () => { if (first) { first = false; " +
           script + " } }; onload = () => open('/talks', 'w')</script>";
}

TEST_F(PopupNames, SecondRequestForAWindowThatIsOpenGoesToItAndAsksNothing) {
    server().page("/talks", "<script>onload = () => opener.postMessage(1, '*')</script>");
    start();
    answer_boxes({"No", "OK"});
    server().page("/page", opens_w_and_then("open('/popup', 'w')"));
    window().browser().Navigate(url("/page"));
    wait_for_popup("/popup");
    EXPECT_THAT(asked(), ElementsAre(block_question, notice));
}

TEST_F(PopupNames, FormForAWindowThatIsOpenIsSentIntoItAndAsksNothing) {
    server().page("/talks", "<script>onload = () => opener.postMessage(1, '*')</script>");
    server().page("/sent", "sent");
    start();
    answer_boxes({"No", "OK"});
    server().page("/page", opens_w_and_then("document.forms[0].submit()"));
    window().browser().Navigate(url("/page"));
    wait_for_popup("/sent");
    EXPECT_EQ(sent_to("/sent"), "POST n=v;");
    EXPECT_THAT(asked(), ElementsAre(block_question, notice));
}

TEST_F(PopupNames, NameOfABlockedWindowLoadsNothingTheSecondTimeEither) {
    start();
    answer_boxes({"Yes", "Yes"});
    server().page("/page", "<script>onload = () => { open('/popup', 'w'); "
                           "open('/popup', 'w'); fetch('/done') }</script>");
    window().browser().Navigate(url("/page"));
    // The engine puts the question when the page may have gone on already.
    wait("the block", [this] { return user().status(2) == "1 Pop-up is blocked"; });
    wait("the page to be done", [this] { return server().count_of("/done") == 1; });
    open_address(url("/plain"));
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(server().count_of("/popup"), 0);
}

TEST_F(PopupNames, FormForAFrameOfThePageIsNoPopup) {
    server().page("/sent", "<p>sent</p>");
    server().page("/frame", "<p>frame</p>");
    start();
    open_page(
        "<body style='margin:0'><form action=/sent method=post target=f><input type=hidden name=n value=v>"
        "<button style='width:300px;height:200px'>go</button></form><iframe name=f src=/frame></iframe>");
    click_page();
    wait("the form", [this] { return server().count_of("/sent") == 1; });
    open_address(url("/plain"));
    EXPECT_EQ(sent_to("/sent"), "POST n=v;");
    EXPECT_EQ(count(), 1U);
    EXPECT_THAT(asked(), IsEmpty());
}

} // namespace
} // namespace kestrune
