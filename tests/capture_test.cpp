#include "window_fixture.h"

#include "sessions/record_dialogs.h"
#include "shell/capture.h"

#include <gmock/gmock.h>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* question = "A temporary record is created, do you want to view/edit it now?";
constexpr const char* page_url = "http://a.b/page.html";

class CaptureTest : public WindowTest {
protected:
    CaptureTest() {
        start();
        window().mnuAutoRecord.choose();
        window().bAutoFillFlag = true;
    }
    ~CaptureTest() override { EXPECT_TRUE(ui.script_done()); }

    static PageDocument page_with(const std::vector<std::string>& actions) {
        std::vector<PageForm> forms;
        forms.reserve(actions.size());
        for (const std::string& action : actions)
            forms.push_back(form_of(action, {}));
        return page_of_forms(page_url, forms);
    }
    void show(PageDocument page) {
        const std::string url = page.url;
        browser().pages[url] = std::move(page);
        browser().page_navigates(url);
        arrive();
    }
    void show_forms(const std::vector<std::string>& actions) { show(page_with(actions)); }

    void get(std::string url) { browser().page_submits({.url = std::move(url)}); }
    void post(std::string url, std::string postdata = "a=1") {
        browser().page_submits({.url = std::move(url), .postdata = std::move(postdata)});
    }
    void expect_capture(Answer answer = Answer::No) { ui.expect_box(question, answer); }

    std::size_t captured() { return window().ListView1.size(); }
    RecordSession record(const std::string& key = "K1") {
        const ListItem* const entry = window().ListView1.find(key);
        return entry == nullptr ? RecordSession{} : RecordOf(window().ListView1, *entry);
    }
};

TEST_F(CaptureTest, GetSubmissionRecordsThePageTheActionAndTheQuery) {
    show_forms({"http://a.b/find"});
    expect_capture();
    get("http://a.b/find?q=x");
    EXPECT_EQ(record(), (RecordSession{"Form", "Session1", page_url, "http://a.b/find", "q=x", "", ""}));
    EXPECT_EQ(ui.asked.back().buttons, Buttons::YesNo);
}

TEST_F(CaptureTest, PostSubmissionRecordsDataHeadersAndTargetFrameAsTheyAreSent) {
    show_forms({"add.php"});
    expect_capture();
    browser().page_submits({.url = "http://a.b/add.php?x=1&y=2",
                            .frame_name = "main",
                            .postdata = "name=A+B%2C&u=%FC",
                            .headers = "Content-Type: application/x-www-form-urlencoded\r\nReferer: r\r\n"});
    EXPECT_EQ(record(),
              (RecordSession{"Form", "Session1", page_url, "http://a.b/add.php?x=1&y=2", "name=A+B%2C&u=%FC",
                             "Content-Type: application/x-www-form-urlencoded\r\nReferer: r\r\n", "main"}));
}

TEST_F(CaptureTest, PostedBytesBeyondAsciiAreTheCharactersOfTheCodePage) {
    show_forms({"add.php"});
    expect_capture();
    post("http://a.b/add.php", "a=\xFC");
    EXPECT_EQ(record().Postdata, "a=\u00fc");
}

TEST_F(CaptureTest, PostWhoseLastPartDiffersInLetterCaseIsNotCaptured) {
    show_forms({"submit.php"});
    post("http://a.b/cgi/Submit.php");
    EXPECT_EQ(captured(), 0U);
    EXPECT_TRUE(browser().under_way);
}

TEST_F(CaptureTest, WholeAddressComparesWithoutLetterCase) {
    show_forms({"HTTP://a.b/cgi/SUBMIT.php"});
    expect_capture();
    post("http://a.b/cgi/Submit.php");
    EXPECT_EQ(captured(), 1U);
}

TEST_F(CaptureTest, PostToAnotherQueryPassesTheLooseComparisonAlone) {
    EXPECT_FALSE(ActionMatchesExact("http://a.b/add.php?step=2", "add.php?step=1"));
    EXPECT_TRUE(ActionMatchesLoose("http://a.b/add.php?step=2", "add.php?step=1"));
    show_forms({"add.php?step=1"});
    expect_capture();
    post("http://a.b/add.php?step=2");
    EXPECT_EQ(record().Action, "http://a.b/add.php?step=2");
}

TEST(ActionMatchesLoose, LastPartIsTakenBeforeTheQueryIsCutOff) {
    EXPECT_FALSE(ActionMatchesLoose("http://a.b/add.php?back=/home", "add.php"));
    EXPECT_TRUE(ActionMatchesLoose("http://a.b/add.php?back=/home", "home?x"));
    EXPECT_TRUE(ActionMatchesLoose("http://a.b/dir/", "dir/"));
    EXPECT_FALSE(ActionMatchesLoose("http://a.b/?q=1", "?q=2"));
    EXPECT_TRUE(ActionMatchesLoose("HTTP://A.B/", "http://a.b/"));
}

TEST_F(CaptureTest, ExactComparisonGoesThroughAllFormsBeforeTheLooseOne) {
    PageDocument first = page_with({"add.php?step=1"});
    first.url = "http://a.b/first";
    show(first);
    show_forms({"add.php?step=2"});
    expect_capture();
    post("http://a.b/add.php?step=2");
    EXPECT_EQ(record().Url, page_url);
}

TEST_F(CaptureTest, OfSeveralFormsThatMatchTheFirstInPageOrderIsRecorded) {
    PageDocument first = page_with({"", "add.php"});
    first.url = "http://a.b/first";
    show(first);
    show_forms({"add.php"});
    expect_capture();
    post("http://a.b/add.php");
    EXPECT_EQ(record().Url, "http://a.b/first");
}

TEST_F(CaptureTest, FormWithoutAnActionIsNeverCaptured) {
    show_forms({"", ""});
    post(page_url);
    get(std::string(page_url) + "?q=1");
    EXPECT_EQ(captured(), 0U);
}

TEST_F(CaptureTest, SubmissionThatMatchesNoFormIsNotCapturedAndNothingIsSaid) {
    show_forms({"add.php"});
    post("http://a.b/other.php");
    get("http://a.b/other?q=1");
    EXPECT_EQ(captured(), 0U);
    EXPECT_THAT(ui.asked, IsEmpty());
    EXPECT_EQ(window().lngFormCount, 1);
}

TEST_F(CaptureTest, NavigationWithoutQueryAndPostDataIsNeverCaptured) {
    show_forms({"http://a.b/find"});
    get("http://a.b/find");
    EXPECT_EQ(captured(), 0U);
}

TEST_F(CaptureTest, SecondSubmissionFromTheSamePageIsNotCapturedUntilTheNextPageLoad) {
    show_forms({"add.php", "more.php"});
    expect_capture();
    post("http://a.b/add.php");
    EXPECT_EQ(window().lngFormCount, 0);
    post("http://a.b/more.php");
    EXPECT_EQ(captured(), 1U);
    show_forms({"add.php", "more.php"});
    expect_capture();
    post("http://a.b/more.php");
    EXPECT_EQ(captured(), 2U);
}

TEST_F(CaptureTest, WithAutoRecordUncheckedNothingIsCaptured) {
    show_forms({"add.php"});
    window().mnuAutoRecord.choose();
    post("http://a.b/add.php");
    EXPECT_EQ(captured(), 0U);
    EXPECT_EQ(window().lngFormCount, 1);
}

TEST_F(CaptureTest, WithNoReplayPendingNothingIsCaptured) {
    show_forms({"add.php"});
    window().bAutoFillFlag = false;
    post("http://a.b/add.php");
    EXPECT_EQ(captured(), 0U);
    EXPECT_EQ(window().lngFormCount, 1);
}

TEST_F(CaptureTest, FirstCaptureIsSession1WithKeyK1AndAfterItIsDeletedTheNextIsSession2) {
    show_forms({"add.php"});
    expect_capture();
    post("http://a.b/add.php");
    EXPECT_EQ(record("K1").Session, "Session1");
    window().SSTab1.set_tab(1);
    window().ListView1.select("K1");
    window().cmdDelete.press();
    EXPECT_EQ(captured(), 0U);
    show_forms({"add.php"});
    expect_capture();
    post("http://a.b/add.php");
    EXPECT_EQ(record("K2").Session, "Session2");
}

TEST_F(CaptureTest, PostFromAPageOfFramesIsTakenWhateverItsActionAGetIsNot) {
    PageDocument page = page_with({});
    page.frames.resize(1);
    page.frames[0].url = "http://a.b/frame";
    show(page);
    get("http://a.b/find?q=1");
    EXPECT_EQ(captured(), 0U);
    expect_capture();
    browser().page_submits({.top_level = false, .url = "http://c.d/any", .postdata = "a=1"});
    EXPECT_EQ(record().Url, page_url);
    EXPECT_EQ(record().Action, "http://c.d/any");
}

TEST_F(CaptureTest, FormOfAFrameIsRecordedUnderTheFramesAddress) {
    PageDocument page = page_with({});
    page.frames = {page_of_forms("http://a.b/frame", {form_of("add.php", {})})};
    show(page);
    expect_capture();
    browser().page_submits({.top_level = false, .url = "http://a.b/add.php", .postdata = "a=1"});
    EXPECT_EQ(record().Url, "http://a.b/frame");
}

TEST_F(CaptureTest, FrameOfAnotherOriginAddsNothingToTheRecordOfAFormOfThePage) {
    PageDocument page = page_of_forms(page_url, {form_of("add.php", {element("text", "a", "mine")})});
    page.frames = {
        page_of_forms("http://stranger/", {form_of("add.php", {element("text", "token", "a stranger's")})})};
    show(page);
    expect_capture();
    browser().page_submits(
        {.top_level = true, .url = "http://a.b/add.php", .postdata = "a=mine&token=added"});
    EXPECT_EQ(record().Postdata, "a=mine&token=added");
}

TEST_F(CaptureTest, FieldsAreRecordedAsTheyStandWhenTheFormIsSubmitted) {
    PageElement list = list_of("select-one", "category", {{"Choose", "0"}, {"Games", "3"}});
    list.options[1].selected = true;
    show(page_of_forms(page_url, {form_of("add.php", {element("text", "a", "1"), list})}));
    browser().showing()->forms.at(0).elements.at(0).value = "typed later";
    expect_capture();
    post("http://a.b/add.php", "a=1&category=3");
    EXPECT_EQ(record().Postdata, "a=typed%20later&category=Games");
    EXPECT_TRUE(window().bAutoFillFlag);
}

TEST_F(CaptureTest, PageThatIsGoneWhenTheEventIsHandledIsStillRead) {
    show(page_of_forms(page_url, {form_of("add.php", {element("text", "a", "new")})}));
    PageDocument submitted = *browser().take_image(browser().showing()->id, {.links = false, .forms = true});
    browser().lose_page();
    expect_capture();
    browser().page_submits(
        {.url = "http://a.b/add.php", .postdata = "a=old", .submitted = std::move(submitted)});
    EXPECT_EQ(record().Postdata, "a=new");
}

TEST_F(CaptureTest, SubmissionFromADocumentThatIsNotKnownIsRecordedAsSent) {
    show_forms({"add.php"});
    browser().lose_page();
    expect_capture();
    post("http://a.b/add.php", "a=1&flag");
    EXPECT_EQ(record().Postdata, "a=1&flag");
}

TEST_F(CaptureTest, StatusShowsTheNavigationBeforeTheQuestionIsAsked) {
    show_forms({"add.php"});
    std::string status;
    ui.expect_box(question, Answer::No, [&] { status = panel(1); });
    post("http://a.b/add.php");
    EXPECT_EQ(status, "Going to http://a.b/add.php...");
    EXPECT_TRUE(window().Timer1.Enabled.get());
}

TEST_F(CaptureTest, NoLeavesTheRecordWaitingInTheListAndTheTabsAsTheyWere) {
    show_forms({"add.php"});
    expect_capture(Answer::No);
    post("http://a.b/add.php");
    EXPECT_EQ(captured(), 1U);
    EXPECT_EQ(window().glngCurTab, 0);
    EXPECT_EQ(window().ListView1.selected(), nullptr);
    EXPECT_THAT(ui.shown_forms, IsEmpty());
}

TEST_F(CaptureTest, YesBringsTheTemporaryTabToTheFrontAndOpensTheEditorOnTheNewRecord) {
    show_forms({"add.php"});
    expect_capture(Answer::Yes);
    ui.expect_form("frmEdit", [](Form& dialog) {
        EXPECT_EQ(dialog.Caption, "Edit Temporary Record Session");
        type_into(dialog, "txtValue(0)", "2");
        press_button(dialog, "cmdOK");
    });
    post("http://a.b/add.php");
    EXPECT_EQ(window().SSTab1.Tab(), 1);
    EXPECT_EQ(window().glngCurTab, 1);
    EXPECT_EQ(window().ListView1.selected(), window().ListView1.find("K1"));
    EXPECT_EQ(record().Postdata, "a=2");
}

TEST_F(CaptureTest, NavigationGoesOnAndItsDocumentWaitsUntilTheQuestionIsAnswered) {
    show_forms({"add.php"});
    browser().pages["http://a.b/add.php"] = page_of_forms("http://a.b/add.php", {form_of("next.php", {})});
    int entries_meanwhile = -1;
    ui.expect_box(question, Answer::No, [&] {
        arrive();
        entries_meanwhile = window().lngFormCount;
    });
    post("http://a.b/add.php");
    EXPECT_EQ(entries_meanwhile, 1);
    EXPECT_EQ(window().lngFormCount, 1);
    EXPECT_EQ(window().astrFormAction.at(0), "next.php");
}

TEST_F(CaptureTest, FormThatTheProgramSubmitsItselfIsNotCaptured) {
    window().lvwPermanent.add(ItemOf("k", {"Form", "r", page_url, "http://a.b/add.php", "a=1", "", ""}));
    browser().pages[page_url] =
        page_of_forms(page_url, {form_of("add.php", {element("text", "a"), element("submit", "send")})});
    browser().on_press = [this](const PageElement& /*button*/) { post("http://a.b/add.php"); };
    window().mnuPromptFill.choose();
    window().OpenSiteForPlayback(page_url, "A site");
    arrive();
    EXPECT_THAT(browser().pressed, ElementsAre("send"));
    EXPECT_EQ(captured(), 0U);
}

TEST_F(CaptureTest, RecordedFormIsRefilledAndSubmittedWhenItsPageComesUpAgain) {
    const PageDocument blank =
        page_of_forms(page_url, {form_of("add.php", {element("text", "name"), element("submit", "send")})});
    browser().pages[page_url] = blank;
    window().OpenSiteForPlayback(page_url, "A site");
    arrive();
    browser().showing()->forms.at(0).elements.at(0).value = "My program";
    expect_capture(Answer::Yes);
    ui.expect_form("frmEdit", [](Form& dialog) { press_button(dialog, "cmdPermanentOK"); });
    post("http://a.b/add.php", "name=My+program&send=Go");
    EXPECT_EQ(captured(), 0U);
    EXPECT_EQ(window().lvwPermanent.size(), 1U);

    ui.expect_box("Do you want to auto fill-in this form", Answer::Ok);
    window().OpenSiteForPlayback(page_url, "A site");
    arrive();
    EXPECT_EQ(browser().showing()->forms.at(0).elements.at(0).value, "My program");
    EXPECT_THAT(browser().pressed, ElementsAre("send"));
}

TEST_F(CaptureTest, EditWithNoRecordSelectedOnlySaysSo) {
    ui.expect_box("Please select a record session from the list first!", Answer::Ok);
    window().cmdEdit.press();
}

TEST_F(CaptureTest, CtrlDOffersThePageInTheBrowserAsABookmark) {
    show_forms({});
    window().txtUrl.Text = "http://a.b/";
    ui.expect_form("frmBookmark", [](Form& dialog) {
        EXPECT_EQ(dynamic_cast<TextBox&>(*dialog.find("txtDestination")).Text, page_url);
        EXPECT_EQ(dynamic_cast<TextBox&>(*dialog.find("txtOriginating")).Text, "http://a.b/");
        press_button(dialog, "cmdOK");
    });
    press_key("Ctrl+D");
    EXPECT_EQ(window().SSTab1.Tab(), 1);
    EXPECT_EQ(record().Type, "Bookmark");
    window().cmdEdit.press();
    EXPECT_EQ(panel(1), "Cannot edit bookmark record!");
    window().cmdSave.press();
    ASSERT_EQ(window().lvwPermanent.size(), 1U);
    EXPECT_EQ(window().lvwPermanent.item(0).Key, page_url);
}

TEST_F(CaptureTest, CancelledBookmarkLeavesTheTabs) {
    ui.expect_form("frmBookmark", [](Form& dialog) { press_button(dialog, "cmdCancel"); });
    press_key("Ctrl+D");
    EXPECT_EQ(window().SSTab1.Tab(), 0);
    EXPECT_EQ(captured(), 0U);
}

} // namespace
} // namespace kestrune
