#include "tests/desktop/program_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* question = "Do you want to auto fill-in this form";
constexpr const char* no_button = "System is unable to do auto-click, please perform click manually!";

// Sites that come up again whose forms are on record; what the server gets is what the page made of it.
class ProgramReplay : public ProgramTest {
protected:
    ProgramReplay() { server().page("/taken", "<p>taken</p>"); }

    void start_with(const std::vector<std::string>& postdata, const std::string& action = "/taken") {
        start();
        for (const std::string& data : postdata) {
            const std::string number = std::to_string(window().lvwPermanent.size() + 1);
            window().lvwPermanent.add(
                ItemOf("k" + number, {"Form", "record " + number, url("/form"), url(action), data, "", ""}));
        }
    }
    void play() { window().OpenSiteForPlayback(url("/form"), "A site"); }
    [[nodiscard]] std::vector<std::string> posted() {
        std::vector<std::string> bodies;
        for (const SiteServer::Request& request : server().requests()) {
            if (request.method == "POST")
                bodies.push_back(request.body);
        }
        return bodies;
    }
    void wait_for_post() {
        wait("a submission", [this] { return !posted().empty(); });
    }
    void wait_for_rest() {
        wait("rest", [this] { return !window().busy() && window().strCurDocUrl == url("/form"); });
    }
    // The answer to the question waits until the page says that it is ready.
    void answer_when_asked_for(const std::string& path, const std::string& button) {
        user().answer_with([this, path, button](QDialog& box) {
            drive::wait_for("the page to ask for " + path, [&] { return server().count_of(path) > 0; });
            user().answer(box, button);
        });
    }
};

TEST_F(ProgramReplay, QuestionNamesTheRecordAndAfterOkTheFormIsFilledAndSubmitted) {
    server().page("/form", "<form action=/taken method=post><input name=a><input type=submit></form>");
    start_with({"a=x+%26+y"});
    std::string title;
    user().answer_with([&](QDialog& box) {
        title = box.windowTitle().toStdString();
        user().answer(box, "OK");
    });
    play();
    wait_for_post();
    EXPECT_EQ(title, "Session=record 1");
    EXPECT_THAT(posted(), ElementsAre("a=x+%26+y"));
}

TEST_F(ProgramReplay, AfterCancelTheQuestionComesASecondTimeForTheSecondRecordOfThePage) {
    server().page("/form", "<form action=/taken method=post><input name=a><input type=submit></form>");
    start_with({"a=first", "a=second"});
    answer_boxes({"Cancel", "OK"});
    play();
    wait_for_post();
    EXPECT_THAT(asked(), ElementsAre(question, question));
    EXPECT_THAT(posted(), ElementsAre("a=second"));
}

TEST_F(ProgramReplay, FieldThatThePageReplacedBeforeTheAnswerIsWrittenInItsNewForm) {
    server().page("/form", "<form action=/taken method=post><input name=a><input type=submit></form><script>"
                           "setTimeout(() => { document.forms[0].innerHTML = '<input name=b value=own><input "
                           "name=a><input type=submit>'; fetch('/ready') }, 200)</script>");
    start_with({"a=x"});
    answer_when_asked_for("/ready", "OK");
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("b=own&a=x"));
}

TEST_F(ProgramReplay, FormThatThePageRemovedBeforeTheAnswerIsNotWrittenElsewhere) {
    server().page("/form", "<form action=/taken method=post><input name=a><input type=submit></form><script>"
                           "setTimeout(() => { document.body.innerHTML = '<form action=/other method=post>"
                           "<input name=a value=own><input type=submit></form>'; fetch('/ready') }, 200)"
                           "</script>");
    start_with({"a=x"});
    answer_when_asked_for("/ready", "OK");
    play();
    wait("the status", [this] { return window().StatusBar1.text(1) == no_button; });
    EXPECT_THAT(posted(), IsEmpty());
    EXPECT_TRUE(window().bAutoFillFlag);
}

TEST_F(ProgramReplay, PageThatWasLeftBeforeTheAnswerGetsNothingNorDoesItsSuccessor) {
    const std::string form = "<form action=/taken method=post><input name=a><input type=submit></form>";
    server().page("/form", form + "<script>setTimeout(() => location = '/next', 200)</script>");
    server().page("/next", form + "<script>fetch('/ready')</script>");
    start_with({"a=x"});
    answer_when_asked_for("/ready", "OK");
    play();
    wait("the next page", [this] { return !window().busy() && window().strCurDocUrl == url("/next"); });
    EXPECT_THAT(posted(), IsEmpty());
}

TEST_F(ProgramReplay, PasswordOnRecordIsFilledLikeAnyOtherValue) {
    server().page("/form", "<form action=/taken method=post><input name=user><input type=password name=pass>"
                           "<input type=submit></form>");
    start_with({"user=me&pass=s%26cret%21"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("user=me&pass=s%26cret%21"));
}

TEST_F(ProgramReplay, OfFramesTheOneWithTheFormIsFilledAndLaterOnesAreLeftAlone) {
    const std::string form =
        "<form action=/taken method=post><input name=a value=old><input type=submit></form>";
    server().page("/form",
                  "<frameset rows='*,*,*'><frame src=/one><frame src=/two><frame src=/three></frameset>");
    server().page("/one", "<form action=/search><input name=a></form>");
    server().page("/two", form);
    server().page("/three", form);
    start_with({"a=x"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    wait("rest", [this] { return !window().busy(); });
    EXPECT_THAT(posted(), ElementsAre("a=x"));
}

TEST_F(ProgramReplay, FirstOfTwoSubmitButtonsIsPressed) {
    server().page("/form", "<form action=/taken method=post><input name=a><button name=b value=1>one</button>"
                           "<input type=submit name=b value=2></form>");
    start_with({"a=x&b=2"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("a=x&b=1"));
}

TEST_F(ProgramReplay, ImageButtonWithoutASourceIsPassedOverAndALaterOneIsPressed) {
    server().page("/form",
                  "<form action=/search><input type=image src=/i name=find></form>"
                  "<form action=/taken method=post><input name=EMAIL><input type=image name=none src=''>"
                  "<input type=image src=/i name=send></form>");
    start_with({"Email=x"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("EMAIL=x&send.x=0&send.y=0"));
}

TEST_F(ProgramReplay, FormWhoseRecordedFieldsAreAllTextAreasHasNoButtonToPress) {
    server().page("/form", "<form action=/taken method=post><textarea name=a></textarea><input type=image "
                           "src=/i></form>");
    start_with({"a=x"});
    answer_boxes({"OK"});
    play();
    wait("the status", [this] { return window().StatusBar1.text(1) == no_button; });
    wait_for_rest();
    EXPECT_THAT(posted(), IsEmpty());
}

TEST_F(ProgramReplay, ActionThatDiffersInItsQueryMatchesInTheSecondPassOnly) {
    server().page("/form", "<form action='/taken?x=1' method=post><input name=a><input type=submit></form>");
    start_with({"a=x"}, "/cgi/taken");
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("a=x"));
}

TEST_F(ProgramReplay, SecondPassGivesUpAFormWhoseFirstElementIsNotOnRecord) {
    server().page("/form", "<form action='/taken?x=1' method=post><input type=hidden name=h><input name=a>"
                           "<input type=submit></form>");
    start_with({"a=x"}, "/cgi/taken");
    answer_boxes({"OK"});
    play();
    wait("the status", [this] { return window().StatusBar1.text(1) == no_button; });
    EXPECT_THAT(posted(), IsEmpty());
}

TEST_F(ProgramReplay, InputNamedActionWithoutAnIdOnTheFormIsTakenForItsAction) {
    server().page("/form", "<form action=/elsewhere method=post><input type=hidden name=action value=taken>"
                           "<input name=a><input type=submit></form>");
    start_with({"a=x"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("action=taken&a=x"));
}

TEST_F(ProgramReplay, ListIsChosenByTextAndMultipleListByValue) {
    server().page("/form",
                  "<form action=/taken method=post><select name=s><option value=0>none<option value=1>"
                  "one<option value=2>1</select><select name=m multiple><option value=u>v<option "
                  "value=v>u<option value=w>w</select><input type=submit></form>");
    start_with({"s=1&m=u&m=w"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre("s=2&m=u&m=w"));
}

TEST_F(ProgramReplay, WithNoAutoFillInForceNothingIsAskedOrFilled) {
    server().page("/form", "<form action=/taken method=post><input name=a><input type=submit></form>");
    start_with({"a=x"});
    user().choose("mnuNoFill");
    play();
    wait_for_rest();
    EXPECT_THAT(posted(), IsEmpty());
    EXPECT_TRUE(window().bAutoFillFlag);
}

TEST_F(ProgramReplay, FrameAndPageOfTheSameAddressAreReplayedOnce) {
    // A page that shows itself in a frame: the frame completes first and is asked about.
    const std::string form = "<form action=/taken method=post><input name=a><input type=submit></form>";
    server().page("/form", form + "<iframe src=/form></iframe>");
    start_with({"a=x"});
    answer_boxes({"Cancel"});
    play();
    wait("both documents", [this] { return !window().busy() && window().lngFormCount >= 2; });
    EXPECT_THAT(window().astrFormPageUrl, ::testing::Each(url("/form")));
    EXPECT_THAT(asked(), ElementsAre(question));
}

TEST_F(ProgramReplay, PageLoadedOutsidePlaybackIsNotReplayed) {
    server().page("/form", "<form action=/taken method=post><input name=a><input type=submit></form>");
    start_with({"a=x"});
    open_address(url("/form"));
    open_address(url("/taken"));
    EXPECT_THAT(posted(), IsEmpty());
}

TEST_F(ProgramReplay, FramesetGivesOneEntryInTheFormTableAndOtherPagesOneForEachForm) {
    server().page("/forms", "<form action=/a></form><form method=post></form>");
    server().page("/form", "<frameset cols='*,*'><frame src=/forms><frame src=/empty></frameset>");
    server().page("/empty", "<p>empty</p>");
    start_with({});
    play();
    wait_for_rest();
    ASSERT_EQ(window().lngFormCount, 3);
    EXPECT_THAT(window().astrFormPageUrl, ElementsAre(url("/forms"), url("/forms"), url("/form")));
    EXPECT_THAT(window().astrFormAction, ElementsAre("/a", "", "*frame*"));
}

TEST_F(ProgramReplay, ImageButtonBehindABoxOnRecordInAnotherLetterCaseIsPressed) {
    server().page("/form", "<form action=/search><input type=image name=no src=/no.png></form><form "
                           "action=/taken method=post><input name=EMAIL><input type=image name=go "
                           "src=/go.png></form>");
    start_with({"Email=me%40a.example"});
    answer_boxes({"OK"});
    play();
    wait_for_post();
    EXPECT_THAT(posted(), ElementsAre(::testing::StartsWith("EMAIL=me%40a.example&go.x=")));
}

} // namespace
} // namespace kestrune
