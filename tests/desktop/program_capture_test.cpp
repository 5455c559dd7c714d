#include "tests/desktop/capture_fixture.h"

namespace kestrune {
namespace {

using ::testing::IsEmpty;

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

TEST_F(ProgramCapture, ActionThatDiffersInItsQueryAloneIsCaptured) {
    server().page("/form",
                  "<style>body, form { margin: 0 } input { width: 200px; height: 20px }</style><form "
                  "action=/taken?step=1 method=post><input name=typed autofocus><input type=submit "
                  "formaction=/taken?step=2></form><p>words");
    start_recording();
    submit_recorded("/form");
    EXPECT_EQ(recorded().Action, url("/taken?step=2"));
    EXPECT_EQ(recorded().Postdata, "typed=a+typed+text");
}

TEST_F(ProgramCapture, SecondSubmissionFromTheSameLoadedPageIsNotCaptured) {
    server().answer("/taken", {"", 204});
    server().page("/form", form("action=/taken method=post"));
    start_recording();
    submit_recorded("/form");
    EXPECT_TRUE(window().bAutoFillFlag);
    type_and_submit(" and more");
    wait("the second submission", [this] { return submissions().size() == 2; });
    server().page("/next", "<p>next");
    show_site("/next");
    EXPECT_EQ(window().ListView1.size(), 1U);
}

TEST_F(ProgramCapture, FirstCaptureIsSession1AndAfterItsDeletionTheNextIsSession2) {
    server().page("/form", form("action=/taken method=post"));
    start_recording();
    submit_recorded("/form");
    wait_for_document(url("/taken"));
    EXPECT_EQ(recorded().Session, "Session1");
    window().SSTab1.set_tab(1);
    window().ListView1.select("K1");
    answer_boxes({"Yes"});
    user().press("cmdDelete");
    ASSERT_EQ(window().ListView1.size(), 0U);
    answer_boxes({"No"});
    show_site("/form");
    type_and_submit("again");
    wait("the next record", [this] { return window().ListView1.size() == 1; });
    EXPECT_EQ(window().ListView1.item(0).Text, "Session2");
    EXPECT_NE(window().ListView1.find("K2"), nullptr);
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
    server().page("/Taken", "taken");
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
    ::testing::Values(
        NotCaptured{"form_without_an_action", "<form>BOX</form>", true},
        NotCaptured{"address_of_no_form_tag",
                    "<form action=/nowhere method=post>BOX<input type=submit formaction=/taken></form>",
                    true},
        NotCaptured{"action_of_another_letter_case",
                    "<form action=/taken method=post>BOX<input type=submit formaction=/Taken></form>", true},
        NotCaptured{"get_form_on_a_page_with_frames",
                    "<form action=/taken>BOX</form><iframe src=/inner></iframe>", true},
        NotCaptured{"auto_record_off", "<form action=/taken method=post>BOX</form>", false}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace kestrune
