#include "tests/desktop/capture_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Recording and replaying in a pop-up, by its own switches and its own lists.
class PopupRecords : public ProgramCapture {
protected:
    PopupRecords() {
        server().page("/opener", "<script>onload = () => open('/form')</script><p>words");
        server().page("/form", form("action=/taken method=post", "x y"));
    }

    [[nodiscard]] BrowserWindow& popup() { return *program().windows().back(); }
    void open_popup() {
        window().mnuBlock.choose();
        window().OpenSiteForPlayback(url("/opener"), "A site");
        wait("the pop-up",
             [this] { return program().windows().size() == 2 && popup().strCurDocUrl == url("/form"); });
    }
    // A pop-up starts with its lists hidden.
    void show_lists() {
        user().press("cmdHideRecord");
        wait("the lists", [this] { return popup().SSTab1.Visible.get(); });
    }
    void wait_for_popup(const std::string& path) {
        wait("the pop-up at " + path, [&] { return popup().strCurDocUrl == url(path) && !popup().busy(); });
    }
    void close_popup() {
        popup().form.CloseRequested();
        wait("the opener", [this] { return program().windows().size() == 1; });
    }
};

TEST_F(PopupRecords, NothingIsRecordedByTheOpenersAutoRecord) {
    start_recording();
    open_popup();
    type_and_submit("a typed text");
    wait_for_popup("/taken");
    EXPECT_EQ(popup().ListView1.size() + window().ListView1.size(), 0U);
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(PopupRecords, WithAutoRecordAndASiteOfItsOwnItRecordsIntoItsOwnListAndItsOpenerListsWhatWasKept) {
    start();
    open_popup();
    // What has come into the opener's list belongs to the opener, and its number to nobody else.
    window().ListView1.add({"K1", "Session1", {"Form"}});
    show_lists();
    user().choose("mnuAutoHide");
    user().choose("mnuPromptFill");
    user().press("cmdRecord");
    EXPECT_FALSE(window().mnuAutoRecord.Checked.get());
    popup().OpenSiteForPlayback(url("/form"), "A site");
    wait_for_popup("/form");
    answer_boxes({"No"});
    type_and_submit("a typed text");
    wait("the record", [this] { return popup().ListView1.size() == 1; });
    EXPECT_THAT(asked(), ElementsAre(temporary_record_question));
    EXPECT_EQ(popup().ListView1.item(0).Text, "Session1");
    EXPECT_EQ(window().ListView1.size(), 1U);
    wait_for_popup("/taken");

    popup().SSTab1.set_tab(1);
    popup().ListView1.select("K1");
    user().press("cmdSave");
    ASSERT_EQ(popup().lvwPermanent.size(), 1U);
    EXPECT_EQ(window().lvwPermanent.size(), 0U);
    close_popup();
    ASSERT_EQ(window().lvwPermanent.size(), 1U);
    EXPECT_EQ(RecordOf(window().lvwPermanent, window().lvwPermanent.item(0)).Url, url("/form"));
}

TEST_F(PopupRecords, TemporaryRecordsOfAClosedPopupAreLostWithoutAQuestion) {
    start();
    open_popup();
    popup().ListView1.add({"K1", "Session1", {"Form"}});
    close_popup();
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_EQ(window().ListView1.size(), 0U);
}

TEST_F(PopupRecords, GotoInThePopupReplaysThereByItsOwnSwitches) {
    server().page("/form", form("action=/taken method=post"));
    RecordSession record;
    record.Session = "A record";
    record.Type = "Form";
    record.Url = url("/form");
    record.Action = url("/taken");
    record.Postdata = "given=from+the+record";
    program().record_files().prepare();
    program().record_files().write(record);
    start();
    window().mnuNoFill.choose();
    open_popup();
    EXPECT_THAT(submissions(), IsEmpty()) << "nothing was opened for playback in the pop-up yet";
    show_lists();
    popup().SSTab1.set_tab(0);
    popup().lvwPermanent.select(popup().lvwPermanent.item(0).Key);
    answer_boxes({"Yes", "OK"});
    user().press("cmdGoto");
    wait("the submission", [this] { return submissions().size() == 1; });
    EXPECT_THAT(asked(),
                ElementsAre("Do you want to go to this site?", "Do you want to auto fill-in this form"));
    EXPECT_EQ(submissions()[0].body, "typed=&given=from+the+record&s=one&go=Send");
    EXPECT_EQ(window().strCurDocUrl, url("/opener"));
    EXPECT_EQ(window().txtUrl.Text.get(), url("/opener"));
}

} // namespace
} // namespace kestrune
