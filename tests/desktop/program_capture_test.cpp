#include "tests/desktop/painted.h"
#include "tests/desktop/program_fixture.h"

#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* question = "A temporary record is created, do you want to view/edit it now?";

// A user who records with Auto Record on, types into the page itself, and keeps what was recorded.
class ProgramCapture : public ProgramTest {
protected:
    ProgramCapture() { server().page("/taken", "<p>taken</p>"); }

    void start_recording() {
        start();
        user().choose("mnuAutoHide"); // the lists stay in view
        user().choose("mnuPromptFill");
        user().press("cmdRecord");
        ASSERT_TRUE(window().mnuAutoRecord.Checked.get());
    }
    void show_site(const std::string& path) {
        window().OpenSiteForPlayback(url(path), "A site");
        wait_for_document(url(path));
    }
    QWidget& page() {
        auto* const view = user().window().findChild<QWebEngineView*>();
        view->setFocus();
        return *view->focusProxy();
    }
    // Clicks at the page's left upper corner, where each page has its text box, types there and submits.
    void type_and_submit(const QString& text) {
        ASSERT_TRUE(wait_until_painted(*user().window().findChild<QWebEngineView*>()));
        QTest::mouseClick(&page(), Qt::LeftButton, {}, QPoint(20, 10));
        QTest::keyClicks(&page(), text);
        QTest::keyClick(&page(), Qt::Key_Return);
    }
    static std::string form(const std::string& attributes, const std::string& value = "") {
        return "<style>body, form { margin: 0 } input { width: 200px; height: 20px }</style><form " +
               attributes + "><input name=typed value='' autofocus><br><input name=given value='" + value +
               "'><select name=s><option>one</option><option" + (value.empty() ? "" : " selected") +
               ">two words</option></select><input type=checkbox name=c value=yes" +
               (value.empty() ? "" : " checked") + "><input type=submit name=go value=Send></form>";
    }
    [[nodiscard]] std::vector<SiteServer::Request> submissions() {
        std::vector<SiteServer::Request> found;
        for (const SiteServer::Request& request : server().requests()) {
            if (request.target.substr(0, request.target.find('?')) == "/taken")
                found.push_back(request);
        }
        return found;
    }
    void submit_recorded(const std::string& path) {
        answer_boxes({"No"});
        show_site(path);
        type_and_submit("a typed text");
        wait("the record", [this] { return window().ListView1.size() == 1; });
        wait("the submission", [this] { return submissions().size() == 1; });
        EXPECT_THAT(asked(), ElementsAre(question));
        user().answer_with({});
    }
    RecordSession recorded() {
        const ListItem* const item = window().ListView1.find("K1");
        return item == nullptr ? RecordSession{} : RecordOf(window().ListView1, *item);
    }
    void keep_and_replay(const std::string& path) {
        window().SSTab1.set_tab(1);
        window().ListView1.select("K1");
        user().press("cmdSave");
        ASSERT_EQ(window().lvwPermanent.size(), 1U);
        ASSERT_EQ(window().ListView1.size(), 0U);
        user().press("cmdRecord");
        window().OpenSiteForPlayback(url(path), "A site");
        wait("the second submission", [this] { return submissions().size() == 2; });
    }
    void expect_same_requests() {
        const std::vector<SiteServer::Request> both = submissions();
        ASSERT_THAT(both, SizeIs(2));
        EXPECT_EQ(both[0].method, both[1].method);
        EXPECT_EQ(both[0].target, both[1].target);
        EXPECT_EQ(both[0].body, both[1].body);
        EXPECT_EQ(both[0].parts, both[1].parts);
    }
};

TEST_F(ProgramCapture, RecordedPostIsKeptAndItsReplaySendsTheSameBytes) {
    server().page("/form", form("action=/taken method=post", "\u00fc & \u20ac"));
    start_recording();
    submit_recorded("/form");
    const RecordSession record = recorded();
    EXPECT_EQ(record.Url, url("/form"));
    EXPECT_EQ(record.Action, url("/taken"));
    EXPECT_EQ(record.Postdata, submissions()[0].body);
    EXPECT_EQ(record.Header,
              "Content-Type: application/x-www-form-urlencoded\r\nReferer: " + url("/form") + "\r\n");
    EXPECT_EQ(record.Frame, "");
    server().page("/form", form("action=/taken method=post"));
    keep_and_replay("/form");
    expect_same_requests();
}

TEST_F(ProgramCapture, RecordedGetIsKeptAndItsReplayAsksForTheSame) {
    server().page("/form", form("action=/taken", "x y"));
    start_recording();
    submit_recorded("/form");
    EXPECT_EQ(recorded().Action, url("/taken"));
    EXPECT_EQ("/taken?" + recorded().Postdata, submissions()[0].target);
    server().page("/form", form("action=/taken"));
    keep_and_replay("/form");
    expect_same_requests();
}

TEST_F(ProgramCapture, RecordedFormOfAFrameOfAnotherOriginIsReplayedThere) {
    const std::string frame = server().url("/inner", "127.0.0.2");
    server().page("/inner", form("action=/taken method=post target=_self", "x y"));
    server().page("/page", "<style>body { margin: 0 } iframe { border: 0 }</style><iframe src=" + frame +
                               "></iframe><p>words");
    start_recording();
    submit_recorded("/page");
    // The frame's own document completed before the page that it lies in.
    EXPECT_EQ(recorded().Url, frame);
    EXPECT_EQ(recorded().Action, server().url("/taken", "127.0.0.2"));
    EXPECT_EQ(recorded().Postdata, submissions()[0].body);
    server().page("/inner", form("action=/taken method=post target=_self"));
    keep_and_replay("/page");
    expect_same_requests();
}

TEST_F(ProgramCapture, RecordedMultipartFormIsReplayedWithItsTexts) {
    const std::string attributes = "action=/taken method=post enctype=multipart/form-data";
    server().page("/form", form(attributes, "x y"));
    start_recording();
    submit_recorded("/form");
    EXPECT_EQ(recorded().Postdata, "typed=a+typed+text&given=x+y&s=two+words&c=yes&go=Send");
    server().page("/form", form(attributes));
    keep_and_replay("/form");
    expect_same_requests();
    EXPECT_EQ(submissions()[1].parts.find("given")->second, "x y");
}

struct NotCaptured {
    const char* name;
    const char* page;
    bool recording;
};
class ProgramDoesNotCapture : public ProgramCapture, public ::testing::WithParamInterface<NotCaptured> {};

TEST_P(ProgramDoesNotCapture, AndAsksNothing) {
    const std::string box = "<input name=typed style='position:fixed;left:0;top:0' autofocus>";
    std::string body = GetParam().page;
    if (const auto at = body.find("BOX"); at != std::string::npos)
        body.replace(at, 3, box);
    // Until something is there to be read the engine drops what the mouse does.
    server().page("/form", body + "<p>words");
    server().page("/inner", "inner");
    start_recording();
    if (!GetParam().recording)
        user().press("cmdRecord");
    show_site("/form");
    const std::size_t before = server().requests().size();
    type_and_submit("x");
    wait("the submission", [&] { return server().requests().size() > before; });
    wait("the next page", [&] { return window().strCurDocUrl != url("/form"); });
    EXPECT_EQ(window().ListView1.size(), 0U);
    EXPECT_THAT(asked(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProgramDoesNotCapture,
    ::testing::Values(NotCaptured{"form_without_an_action", "<form>BOX</form>", true},
                      NotCaptured{
                          "address_of_no_form_tag",
                          "<form action=/nowhere method=post>BOX<input type=submit formaction=/taken></form>",
                          true},
                      NotCaptured{"get_form_on_a_page_with_frames",
                                  "<form action=/taken>BOX</form><iframe src=/inner></iframe>", true},
                      NotCaptured{"auto_record_off", "<form action=/taken method=post>BOX</form>", false}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace kestrune
