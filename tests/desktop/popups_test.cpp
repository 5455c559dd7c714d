#include "platform/qt/qt_browser.h"
#include "tests/desktop/painted.h"
#include "tests/desktop/program_fixture.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const char* const block_question = "A pop-up window is requrested, do you want to block it?";
const char* const notice = "Please be awared that the right-click function is disabled in the pop-up window!";
const char* const link_question = "Do you want to go to this link";

// Pop-up windows of real pages in real windows.
class PopupsTest : public ProgramTest {
protected:
    PopupsTest() {
        server().page("/plain", "<p>plain</p>");
        server().page("/popup", "<title>popup</title><p>popup</p>");
    }

    // The page is opened as a user does; what it does when it has loaded, it does then.
    void browse(const std::string& path) { open_address(url(path)); }
    // The same of a page whose questions `answer_boxes` says the answers to.
    void browse_answering(const std::string& path) { window().browser().Navigate(url(path)); }
    static void click_first_link(BrowserWindow& in) {
        auto& browser = dynamic_cast<QtBrowser&>(in.browser());
        browser.view().page()->runJavaScript("document.links[0].click()");
    }
    void page(const std::string& path, const std::string& html) { server().page(path, html); }
    [[nodiscard]] std::string title() const { return user_->window().windowTitle().toStdString(); }
    [[nodiscard]] std::size_t count() { return program().windows().size(); }
    [[nodiscard]] BrowserWindow& newest() { return *program().windows().back(); }
    void wait_for_windows(std::size_t windows) {
        wait("windows", [&] { return count() == windows; });
    }
    void wait_for_popup(const std::string& path) {
        wait("the pop-up with " + path, [&] { return newest().strCurDocUrl == url(path); });
    }
    [[nodiscard]] static bool visible(const BrowserWindow& window) { return window.form.Visible.get(); }
    void close_box() {
        QCloseEvent event;
        QCoreApplication::sendEvent(&user().window(), &event);
    }
    // Whether the program's event loop ends by it.
    static bool ends_the_program(const std::function<void()>& act) {
        QTimer::singleShot(0, qApp, act);
        bool late = false;
        QTimer bound;
        bound.callOnTimeout([&late] {
            late = true;
            QCoreApplication::exit(1);
        });
        bound.start(30000);
        QCoreApplication::exec();
        return !late;
    }
    // Answers the box with No once the page has asked for its window. By timers: the request waits, in an
    // event loop inside the engine, for the box to be answered, and no wait outside of that loop would end
    // before.
    void answer_once_asked(QDialog& box, const std::function<void()>& check) {
        QEventLoop loop;
        QObject::connect(&box, &QDialog::finished, &loop, &QEventLoop::quit);
        QTimer poll;
        poll.callOnTimeout([&] {
            if (server().count_of("/asking") == 0)
                return;
            poll.stop();
            // The request is made now; nothing that could be waited for tells of it.
            QTimer::singleShot(500, &box, [this, &box, &check] {
                check();
                user().answer(box, "No");
            });
        });
        poll.start(20);
        loop.exec();
    }
    void switch_blocking_off(BrowserWindow& window) { window.mnuBlock.choose(); }

private:
    drive::Driver* const user_ = &user();
};

TEST_F(PopupsTest, AnsweringYesThreeTimesBlocksThreeAndAPopupCountsItsOwnFromNothing) {
    page("/three", "<script>onload = () => { for (let i = 0; i < 3; ++i) open('/popup') }</script>");
    start();
    answer_boxes({"Yes", "Yes", "Yes"});
    browse_answering("/three");
    wait("three blocked", [this] { return user().status(2) == "3 Pop-up is blocked"; });
    EXPECT_THAT(asked(), ElementsAre(block_question, block_question, block_question));
    EXPECT_EQ(server().count_of("/popup"), 0);

    page("/one", "<script>onload = () => open('/asks')</script>");
    page("/asks", "<script>onload = () => open('/popup')</script>");
    answer_boxes({"No", "OK", "Yes"});
    browse_answering("/one");
    wait("one blocked in the pop-up",
         [this] { return count() == 2 && user().status(2) == "1 Pop-up is blocked"; });
    EXPECT_EQ(window().StatusBar1.text(2), "3 Pop-up is blocked");
    EXPECT_EQ(server().count_of("/popup"), 0);
}

TEST_F(PopupsTest, WithTheSwitchOffEachLevelIsCaptionedAndLiesExactlyOverItsOpener) {
    page("/one", "<script>onload = () => open('/two')</script>");
    page("/two", "<a href=/popup target=_blank>next</a>");
    start();
    switch_blocking_off(window());
    window().form.Left = 1500;
    window().form.Top = 1200;
    window().form.Width = 14000;
    browse("/one");
    wait_for_popup("/two");
    EXPECT_EQ(title(), "Moravelt v1.0 (Popup Window - Level 1)");
    EXPECT_FALSE(visible(window()));
    BrowserWindow& first = newest();
    switch_blocking_off(first);
    click_first_link(first);
    wait_for_popup("/popup");
    EXPECT_EQ(title(), "Moravelt v1.0 (Popup Window - Level 2)");
    EXPECT_FALSE(visible(first));
    for (const auto& one : program().windows()) {
        EXPECT_EQ(one->form.Left.get(), 1500);
        EXPECT_EQ(one->form.Top.get(), 1200);
        EXPECT_EQ(one->form.Width.get(), 14000);
        EXPECT_EQ(one->form.Height.get(), window().form.Height.get());
    }
    EXPECT_EQ(user().window().pos(), QPoint(100, 80));

    close_box();
    wait_for_windows(2);
    EXPECT_EQ(title(), "Moravelt v1.0 (Popup Window - Level 1)") << "not the first window";
    EXPECT_FALSE(visible(window()));
    close_box();
    wait_for_windows(1);
    EXPECT_EQ(title(), "Kestrune V1.0 (First Window)");
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(PopupsTest, BackOnTheFirstPageOfAPopupClosesItAndShowsItsOpener) {
    page("/one", "<script>onload = () => open('/popup')</script>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait_for_popup("/popup");
    user().press("cmdBack");
    wait_for_windows(1);
    EXPECT_EQ(title(), "Kestrune V1.0 (First Window)");
}

TEST_F(PopupsTest, BackInAPopupGoesBackOnePageAndClosesItOnTheFirst) {
    page("/one", "<script>onload = () => open('/two')</script>");
    page("/two", "<body style='margin:0'><a href=/popup style='display:block;height:200px'>next</a>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait_for_popup("/two");
    // By the mouse: the engine goes back over pages that were left without the user's doing.
    QWebEngineView& view = dynamic_cast<QtBrowser&>(newest().browser()).view();
    ASSERT_TRUE(wait_until_painted(view));
    QTest::mouseClick(view.focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
    wait_for_popup("/popup");
    wait("a page to go back to", [this] { return newest().bBackEnabled; });
    user().press("cmdBack");
    // Having gone back to its first page, it has nothing more to go back to.
    wait_for_windows(1);
    EXPECT_EQ(title(), "Kestrune V1.0 (First Window)");
}

TEST_F(PopupsTest, QuestionIsLeftNeitherByEscNorByTheCloseBox) {
    page("/one", "<script>onload = () => open('/popup')</script>");
    start();
    user().answer_with([&](QDialog& box) {
        if (box.objectName() == "frmOpenAddress") {
            user().type(box, "txtAddress", url("/one"));
            user().press(box, "cmdOpen");
            return;
        }
        EXPECT_EQ(drive::Driver::text(box, "Text"), block_question);
        QTest::keyClick(&box, Qt::Key_Escape);
        EXPECT_TRUE(box.isVisible());
        EXPECT_FALSE(box.close());
        EXPECT_TRUE(box.isVisible());
        user().answer(box, "Yes");
    });
    key(Qt::Key_L, Qt::ControlModifier);
    wait("the answer", [this] { return user().status(2) == "1 Pop-up is blocked"; });
}

TEST_F(PopupsTest, HundredRequestsAtOnceAreEachAskedAbout) {
    page("/many", "<script>onload = () => { for (let i = 0; i < 100; ++i) open('/popup?' + i) }</script>");
    start();
    answer_boxes(std::vector<std::string>(100, "Yes"));
    browse_answering("/many");
    wait("a hundred blocked", [this] { return user().status(2) == "100 Pop-up is blocked"; });
    EXPECT_THAT(asked(), SizeIs(100));
    EXPECT_EQ(server().count_of("/popup"), 0);
}

TEST_F(PopupsTest, RequestWhileAnotherQuestionIsOpenWaitsAndIsAskedAboutAfterwards) {
    page("/site", "<a href=/plain>Submit</a><script>onload = () => setTimeout(() => { fetch('/asking'); "
                  "setTimeout(() => open('/popup'), 100) }, 300)</script>");
    start();
    std::vector<std::string> order;
    user().answer_with([&](QDialog& box) {
        order.push_back(drive::Driver::text(box, "Text"));
        if (order.back() == link_question) {
            answer_once_asked(
                box, [&] { EXPECT_THAT(order, SizeIs(1)) << "nothing lies over a question that is open"; });
        } else {
            user().answer(box, "Yes");
        }
    });
    window().OpenSiteForPlayback(url("/site"), "A site");
    wait("the request to be blocked", [this] { return user().status(2) == "1 Pop-up is blocked"; });
    EXPECT_THAT(order, ElementsAre(link_question, block_question));
}

TEST_F(PopupsTest, RequestWhileAnotherQuestionIsOpenKeepsItsOpenerWhenItIsLetThrough) {
    page("/site", "<a href=/plain>Submit</a><script>onload = () => setTimeout(() => { fetch('/asking'); "
                  "setTimeout(() => open('/talks'), 100) }, 300)</script>");
    page("/talks",
         "<script>opener.document.title = 'told'; fetch('/title?' + opener.document.title)</script>");
    start();
    user().answer_with([&](QDialog& box) {
        const std::string text = drive::Driver::text(box, "Text");
        if (text == link_question)
            answer_once_asked(box, [] {});
        else
            user().answer(box, text == notice ? "OK" : "No");
    });
    window().OpenSiteForPlayback(url("/site"), "A site");
    wait_for_popup("/talks");
    wait("the opener's title", [this] { return server().count_of("/title") == 1; });
}

TEST_F(PopupsTest, FormWithATargetOpensAPopupWithWhatWasSent) {
    page("/form", "<form action=/sent method=post target=_blank><input name=n value=v></form>"
                  "<script>onload = () => document.forms[0].submit()</script>");
    page("/sent", "sent");
    start();
    switch_blocking_off(window());
    browse("/form");
    wait_for_popup("/sent");
    std::string sent;
    for (const SiteServer::Request& request : server().requests()) {
        if (request.target == "/sent")
            sent += request.method + " " + request.body;
    }
    EXPECT_EQ(sent, "POST n=v");
}

TEST_F(PopupsTest, BlockedFormSendsNothing) {
    page("/form", "<form action=/sent method=post target=_blank><input name=n value=v></form>"
                  "<script>onload = () => document.forms[0].submit()</script>");
    start();
    answer_boxes({"Yes"});
    browse_answering("/form");
    wait("the request to be blocked", [this] { return user().status(2) == "1 Pop-up is blocked"; });
    browse("/plain");
    EXPECT_EQ(server().count_of("/sent"), 0);
}

TEST_F(PopupsTest, OpenerAndPopupTalkAndThePopupClosesItself) {
    page("/one",
         "<input id=heard><script>onmessage = e => { heard.value = e.data; fetch('/heard?' + e.data) };"
         "onload = () => open('/talker')</script>");
    page("/talker", "<script>onload = () => { opener.postMessage('hello', '*'); window.close() }</script>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait("the message", [this] { return server().count_of("/heard") == 1; });
    wait_for_windows(1);
    EXPECT_TRUE(visible(window()));
    EXPECT_EQ(title(), "Kestrune V1.0 (First Window)");
}

TEST_F(PopupsTest, OpenerClosesItsPopup) {
    page("/one", "<script>onload = () => { const w = open('/popup'); setInterval(() => { try { "
                 "if (w.document.title == 'popup') w.close() } catch (e) {} }, 50) }</script>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait("the pop-up to be asked for", [this] { return server().count_of("/popup") == 1; });
    wait_for_windows(1);
    EXPECT_TRUE(visible(window()));
}

TEST_F(PopupsTest, FirstWindowIsNotClosedByAScript) {
    page("/one", "<script>onload = () => { window.close(); fetch('/closed') }</script>");
    start();
    browse("/one");
    wait("the script", [this] { return server().count_of("/closed") == 1; });
    browse("/plain");
    EXPECT_TRUE(visible(window()));
}

TEST_F(PopupsTest, ClosingAPopupHandsTheTwoMenuStatesBackAndNothingElse) {
    page("/one", "<script>onload = () => open('/popup')</script>");
    start();
    switch_blocking_off(window());
    window().mnuNoPAD.choose();
    browse("/one");
    wait_for_popup("/popup");
    BrowserWindow& popup = newest();
    EXPECT_TRUE(popup.mnuNoPAD.Checked.get());
    EXPECT_TRUE(popup.mnuWithPAD.Checked.get()) << "its designed state";
    EXPECT_TRUE(popup.mnuBlock.Checked.get()) << "its designed state";
    popup.mnuNoPAD.Checked = false;
    popup.mnuPromptFill.choose();
    close_box();
    wait_for_windows(1);
    EXPECT_FALSE(window().mnuNoPAD.Checked.get());
    EXPECT_TRUE(window().mnuPromptFill.Checked.get());
}

TEST_F(PopupsTest, LinkSearchInAPopupWorksByItsOwnStateOnceASiteIsOpenedThere) {
    page("/one", "<script>onload = () => open('/two')</script>");
    page("/two", "<a href=/popup>Submit</a>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait_for_popup("/two");
    EXPECT_THAT(asked(), IsEmpty()) << "nothing was opened for playback in the pop-up yet";
    answer_boxes({"Yes"});
    newest().OpenSiteForPlayback(url("/two"), "A site");
    wait_for_popup("/popup");
    EXPECT_THAT(asked(), ElementsAre(link_question));
    EXPECT_EQ(window().gstrCurMode, "");
}

TEST_F(PopupsTest, ExitInAPopupAsksAboutItsOwnRecordsAndEndsTheProgram) {
    page("/one", "<script>onload = () => open('/popup')</script>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait_for_popup("/popup");
    window().ListView1.add({"K1", "Session1", {"Form"}});
    newest().ListView1.add({"K1", "Session1", {"Form"}});
    answer_boxes({"No"});
    user().choose("mnuExit");
    EXPECT_THAT(
        asked(),
        ElementsAre("You have temporary record not saved as permanent yet, do you really want to exit?"));
    EXPECT_EQ(count(), 2U) << "No keeps the program running";
    newest().ListView1.clear();
    EXPECT_TRUE(ends_the_program([this] { user().choose("mnuExit"); }));
    EXPECT_THAT(asked(), SizeIs(1)) << "it asks about the pop-up's own list only";
}

TEST_F(PopupsTest, ClosingTheFirstWindowWhilePopupsAreOpenEndsTheProgram) {
    page("/one", "<script>onload = () => open('/popup')</script>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait_for_popup("/popup");
    EXPECT_TRUE(ends_the_program([this] { window().form.CloseRequested(); }));
}

TEST_F(PopupsTest, ClosingAPopupThatChangedTheStoreMakesItsOpenerListItAndOneThatDidNotDoesNot) {
    page("/one", "<a href=/popup target=_blank>again</a>");
    start();
    switch_blocking_off(window());
    for (const bool changed : {false, true}) {
        browse("/one");
        click_first_link(window());
        wait_for_popup("/popup");
        RecordSession record;
        record.Session = changed ? "Changed" : "Unchanged";
        record.Type = "Form";
        record.Url = url(changed ? "/changed" : "/unchanged");
        program().record_files().write(record);
        newest().gbRecordChanged = changed;
        close_box();
        wait_for_windows(1);
        if (changed)
            wait("the opener's list", [this] { return window().lvwPermanent.size() == 2; });
        else
            EXPECT_EQ(window().lvwPermanent.size(), 0U);
    }
}

TEST_F(PopupsTest, SecondPopupOfAWindowComesOverTheFirstAndTheWindowReturnsWithTheLast) {
    page("/one", "<script>onload = () => { open('/popup?1'); open('/popup?2') }</script>");
    start();
    switch_blocking_off(window());
    browse("/one");
    wait_for_windows(3);
    wait_for_popup("/popup?2");
    EXPECT_TRUE(visible(newest()));
    EXPECT_FALSE(visible(*program().windows()[1]));
    newest().form.CloseRequested();
    wait_for_windows(2);
    EXPECT_TRUE(visible(newest())) << "the first one comes back";
    EXPECT_FALSE(visible(window()));
    newest().form.CloseRequested();
    wait_for_windows(1);
    EXPECT_TRUE(visible(window()));
}

} // namespace
} // namespace kestrune
