#include "library/submit_status.h"

#include "libraries.h"
#include "platform/memory/memory_ui.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace kestrune {
namespace {

using testing::IsEmpty;

const std::string lib{site_library_name};
constexpr int pad_tab = 2;
constexpr int non_pad_tab = 3;

const std::vector<std::string> site_keys{"url", "Status", "Category", "Comment"};

template <typename Libraries>
class SubmitStatusTest : public testing::Test {
protected:
    SubmitStatusTest() {
        form.Left = 1000;
        form.Top = 2000;
        form.Width = 13170;
        form.Height = 10800;
        StatusBar1.set_text(1, "before");
    }
    ~SubmitStatusTest() override {
        EXPECT_THAT(desktop.failures, IsEmpty());
        EXPECT_TRUE(desktop.script_done());
    }

    // One site in each half of the library, and both lists loaded.
    void create() {
        SiteRow other = site(2, "Two");
        other.pad = "NO";
        other.status = "Y";
        libraries.create(lib, {site(1, "One"), other});
        load();
    }
    void load() {
        library.LoadSiteList(lib, lvwPAD, true, pads);
        library.LoadSiteList(lib, lvwNonPad, false, non_pads);
    }
    void visit(int padkey) {
        txtUrl.Text = "http://site" + std::to_string(padkey) + ".example/";
        txtDesc.Text = "Site " + std::to_string(padkey);
    }
    // The user chooses an outcome, types a note and saves.
    void expect_outcome(int outcome, std::string note) {
        desktop.expect_form("frmNote", [outcome, note = std::move(note)](Form& frmNote) {
            EXPECT_TRUE(choose_option(frmNote, "optSubmit", outcome));
            EXPECT_TRUE(type_into(frmNote, "txtNote", note));
            EXPECT_TRUE(press_button(frmNote, "cmdSave"));
        });
    }
    void edit(ListView& list, const std::string& key) {
        const ListItem entry = *list.find(key);
        list.select(key);
        EditSiteRecord(window, list, entry.Key, entry.Text, entry.SubItems[0], entry.SubItems[1],
                       entry.SubItems[2], entry.SubItems[3]);
    }
    SiteRow stored(std::size_t index) { return libraries.sites(lib).at(index); }
    std::string shown(const ListView& list, const std::string& key, const std::string& sub_item) {
        const ListItem* const entry = list.find(key);
        return entry == nullptr ? "no entry" : std::string(list.sub_item(*entry, sub_item));
    }

    Libraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    MemoryUserInterface desktop;
    WindowForm form{"frmBrowser"};
    TextBox txtUrl{"txtUrl"};
    TextBox txtDesc{"txtDesc"};
    ListView lvwPAD{"lvwPAD", site_keys};
    ListView lvwNonPad{"lvwNonPad", site_keys};
    StatusBar StatusBar1{"StatusBar1"};
    SubmitStatusControls window{desktop, library, form, txtUrl, txtDesc, lvwPAD, lvwNonPad, StatusBar1};
    int pads = 0;
    int non_pads = 0;
};
TYPED_TEST_SUITE(SubmitStatusTest, EveryLibrary);

TYPED_TEST(SubmitStatusTest, OutcomeDialogShowsTheSiteOverTheWindowWithSuccessChosen) {
    this->create();
    this->visit(1);
    this->desktop.expect_form("frmNote", [](Form& shown) {
        auto& frmNote = dynamic_cast<FrmNote&>(shown);
        EXPECT_EQ(frmNote.Caption.get(), "Mark Submit Status");
        EXPECT_EQ(frmNote.txtSiteUrl.Text.get(), "http://site1.example/");
        EXPECT_EQ(frmNote.txtSiteDesc.Text.get(), "Site 1");
        EXPECT_EQ(frmNote.txtNote.Text.get(), "");
        EXPECT_EQ(frmNote.optSubmit.Selected.get(), 0);
        EXPECT_FALSE(frmNote.bSaved);
        EXPECT_FALSE(type_into(frmNote, "txtSiteUrl", "x")) << "read-only";
        EXPECT_FALSE(type_into(frmNote, "txtSiteDesc", "x")) << "read-only";
        EXPECT_EQ(frmNote.Left.get(), 1000 + (13170 - frmNote.Width.get()) / 2);
        EXPECT_EQ(frmNote.Top.get(), 2000 + (10800 - frmNote.Height.get()) / 2);
        EXPECT_EQ(frmNote.Default, &frmNote.cmdSave);
        EXPECT_EQ(frmNote.Cancel, &frmNote.cmdCancel);
        press_button(frmNote, "cmdCancel");
    });
    MarkSubmitStatus(this->window, pad_tab, 1);
}

TYPED_TEST(SubmitStatusTest, EachOutcomeIsWrittenWithTheNoteAndShownInTheList) {
    this->create();
    this->visit(1);
    const std::vector<std::string> statuses{"Y", "P", "N"};
    for (int outcome = 0; outcome < 3; ++outcome) {
        const std::string note = "it's note " + std::to_string(outcome);
        this->expect_outcome(outcome, note);
        MarkSubmitStatus(this->window, pad_tab, 1);
        const std::string& status = statuses[static_cast<std::size_t>(outcome)];
        EXPECT_EQ(this->stored(0).status, status);
        EXPECT_EQ(this->stored(0).note, note);
        EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Status"), status);
        EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Comment"), note);
        EXPECT_EQ(this->StatusBar1.text(1), "Submit Status is updated");
    }
}

TYPED_TEST(SubmitStatusTest, NoOutcomeChosenCountsAsRetry) {
    this->create();
    this->visit(1);
    this->desktop.expect_form("frmNote", [](Form& frmNote) {
        choose_option(frmNote, "optSubmit", -1);
        press_button(frmNote, "cmdSave");
    });
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->stored(0).status, "N");
}

TYPED_TEST(SubmitStatusTest, OutcomeDialogClosedWithCancelWritesNothingAndSaysNothing) {
    this->create();
    this->visit(1);
    const auto before = this->libraries.sites(lib);
    this->desktop.expect_form("frmNote", [](Form& frmNote) {
        type_into(frmNote, "txtNote", "dropped");
        press_button(frmNote, "cmdCancel");
    });
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->libraries.sites(lib), before);
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Status"), "N");
    EXPECT_EQ(this->StatusBar1.text(1), "before");
}

TYPED_TEST(SubmitStatusTest, OutcomeDialogClosedWithItsCloseBoxWritesNothingAndSaysNothing) {
    this->create();
    this->visit(1);
    const auto before = this->libraries.sites(lib);
    this->desktop.expect_form("frmNote", [](Form& frmNote) { type_into(frmNote, "txtNote", "dropped"); });
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->libraries.sites(lib), before);
    EXPECT_EQ(this->StatusBar1.text(1), "before");
}

TYPED_TEST(SubmitStatusTest, AddressOfTheWindowIsMarkedNotTheDialogsCopyOfIt) {
    this->create();
    this->visit(1);
    this->desktop.expect_form("frmNote", [this](Form& frmNote) {
        this->visit(2);
        choose_option(frmNote, "optSubmit", 1);
        press_button(frmNote, "cmdSave");
    });
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->stored(0).status, "N");
    EXPECT_EQ(this->stored(1).status, "P");
}

TYPED_TEST(SubmitStatusTest, OutcomeOnTheNonPadTabShowsInThatList) {
    this->create();
    this->visit(2);
    this->expect_outcome(1, "n");
    MarkSubmitStatus(this->window, non_pad_tab, 2);
    EXPECT_EQ(this->shown(this->lvwNonPad, "K2", "Status"), "P");
    EXPECT_EQ(this->shown(this->lvwNonPad, "K2", "Comment"), "n");
}

TYPED_TEST(SubmitStatusTest, OnAnyOtherTabNoListIsTouchedAndTheSiteIsMarked) {
    this->create();
    this->visit(1);
    for (const int tab : {0, 1, 4, -1}) {
        for (const int key : {1, 2}) {
            this->expect_outcome(0, "t");
            MarkSubmitStatus(this->window, tab, key);
        }
    }
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Comment"), "");
    EXPECT_EQ(this->shown(this->lvwNonPad, "K2", "Comment"), "");
    EXPECT_EQ(this->stored(0).status, "Y");
}

TYPED_TEST(SubmitStatusTest, WithoutSuchAnEntryTheListIsSkippedAndTheSiteIsMarked) {
    this->create();
    this->visit(1);
    this->expect_outcome(0, "t");
    MarkSubmitStatus(this->window, pad_tab, 2);
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Status"), "N");
    EXPECT_EQ(this->shown(this->lvwNonPad, "K2", "Comment"), "");
    EXPECT_EQ(this->stored(0).status, "Y");
    EXPECT_EQ(this->StatusBar1.text(1), "Submit Status is updated");
}

TYPED_TEST(SubmitStatusTest, SiteOpenedOutsidePlaybackIsMarkedByItsAddressAndTheEntryOfThePickedSiteShowsIt) {
    this->libraries.create(lib, {site(1, "Picked"), site(2, "Opened")});
    this->load();
    this->visit(2);
    this->expect_outcome(1, "t");
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->stored(0).status, "N");
    EXPECT_EQ(this->stored(1).status, "P");
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Status"), "P");
    EXPECT_EQ(this->shown(this->lvwPAD, "K2", "Status"), "N");
}

TYPED_TEST(SubmitStatusTest, AddressWithoutASiteIsReportedAndTheListEntryChangesAllTheSame) {
    this->create();
    this->txtUrl.Text = "http://site1.example/deeper";
    this->expect_outcome(0, "t");
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->StatusBar1.text(1), "Unable to update Submit Status");
    EXPECT_EQ(this->stored(0).status, "N");
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Status"), "Y");
}

TYPED_TEST(SubmitStatusTest, AddressWithAnApostropheIsReported) {
    SiteRow row = site(1, "One");
    row.url = "http://it's/";
    this->libraries.create(lib, {row});
    this->txtUrl.Text = "http://it's/";
    this->expect_outcome(0, "");
    MarkSubmitStatus(this->window, 0, 1);
    EXPECT_EQ(this->StatusBar1.text(1), "Unable to update Submit Status");
    EXPECT_EQ(this->stored(0).status, "N");
}

TYPED_TEST(SubmitStatusTest, LockedOrMissingLibraryIsReported) {
    this->visit(1);
    this->expect_outcome(0, "");
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->StatusBar1.text(1), "Unable to update Submit Status");
    this->create();
    this->StatusBar1.set_text(1, "");
    const Guard locked = this->libraries.lock(lib);
    this->expect_outcome(0, "");
    MarkSubmitStatus(this->window, pad_tab, 1);
    EXPECT_EQ(this->StatusBar1.text(1), "Unable to update Submit Status");
}

TYPED_TEST(SubmitStatusTest, EditorShowsTheRecordInTheMiddleOfTheScreenUnderTheSameTitleForBothLists) {
    this->create();
    for (ListView* const list : {&this->lvwPAD, &this->lvwNonPad}) {
        const ListItem entry = list->item(0);
        this->desktop.expect_form("frmEditPad", [&](Form& shown) {
            auto& frmEditPad = dynamic_cast<FrmEditPad&>(shown);
            EXPECT_EQ(frmEditPad.Caption.get(), "Edit PAD Enabled Download Library Record");
            EXPECT_EQ(frmEditPad.txtPadDesc.Text.get(), entry.Text);
            EXPECT_EQ(frmEditPad.txtPADUrl.Text.get(), entry.SubItems[0]);
            EXPECT_EQ(frmEditPad.optStatus.Selected.get(), entry.SubItems[1] == "N" ? 0 : 1);
            EXPECT_EQ(frmEditPad.optCategory.Selected.get(), 0);
            EXPECT_EQ(frmEditPad.txtPadComment.Text.get(), "");
            EXPECT_FALSE(frmEditPad.bSaved);
            EXPECT_EQ(frmEditPad.Left.get(), (19200 - frmEditPad.Width.get()) / 2);
            EXPECT_EQ(frmEditPad.Top.get(), (14400 - frmEditPad.Height.get()) / 2);
            press_button(frmEditPad, "cmdCancel");
        });
        this->edit(*list, entry.Key);
    }
}

TYPED_TEST(SubmitStatusTest, EachStatusAndCategorySelectsItsOptionAndAnyOtherTextNone) {
    this->create();
    const std::vector<std::pair<std::string, int>> statuses{
        {"N", 0}, {"Y", 1}, {"P", 2}, {"n", -1}, {"", -1}};
    const std::vector<std::pair<std::string, int>> categories{
        {"1=general", 0},  {"2=game", 1},    {"3=developer", 2}, {"4=business", 3},
        {"5=freeware", 4}, {"9=special", 5}, {"1=General", -1},  {"general", -1}};
    const auto expect_selected = [this](const std::string& status, const std::string& category, int s,
                                        int c) {
        this->desktop.expect_form("frmEditPad", [=](Form& shown) {
            auto& frmEditPad = dynamic_cast<FrmEditPad&>(shown);
            EXPECT_EQ(frmEditPad.optStatus.Selected.get(), s) << status;
            EXPECT_EQ(frmEditPad.optCategory.Selected.get(), c) << category;
            press_button(frmEditPad, "cmdCancel");
        });
        EditSiteRecord(this->window, this->lvwPAD, "K9", "d", "u", status, category, "");
    };
    for (const auto& [status, index] : statuses)
        expect_selected(status, "", index, -1);
    for (const auto& [category, index] : categories)
        expect_selected("", category, -1, index);
}

TYPED_TEST(SubmitStatusTest, SavedEditGoesToTheSelectedEntryTheStatusBarAndTheLibrary) {
    this->create();
    this->desktop.expect_form("frmEditPad", [](Form& frmEditPad) {
        type_into(frmEditPad, "txtPadDesc", "it's new");
        type_into(frmEditPad, "txtPADUrl", "http://new/");
        choose_option(frmEditPad, "optStatus", 2);
        choose_option(frmEditPad, "optCategory", 5);
        type_into(frmEditPad, "txtPadComment", "comment");
        press_button(frmEditPad, "cmdSave");
    });
    this->edit(this->lvwPAD, "K1");
    const ListItem& entry = *this->lvwPAD.find("K1");
    EXPECT_EQ(entry.Text, "it's new");
    EXPECT_EQ(entry.SubItems, (std::vector<std::string>{"http://new/", "P", "9=special", "comment"}));
    EXPECT_EQ(this->StatusBar1.text(1), "PAD Enabled Download Library Record is modified!");
    SiteRow expected = site(1, "it's new");
    expected.url = "http://new/";
    expected.status = "P";
    expected.softtype = "9=special";
    expected.note = "comment";
    EXPECT_EQ(this->stored(0), expected);
}

TYPED_TEST(SubmitStatusTest, CancelledEditSaysSoLeavesTheEntryAndWritesTheUnchangedValuesBack) {
    this->create();
    // What the list shows and what the library holds can differ; the list's values are written.
    this->lvwPAD.set_sub_item("K1", "Comment", "from the list");
    this->desktop.expect_form("frmEditPad", [](Form& frmEditPad) {
        type_into(frmEditPad, "txtPadDesc", "dropped");
        press_button(frmEditPad, "cmdCancel");
    });
    this->edit(this->lvwPAD, "K1");
    EXPECT_EQ(this->lvwPAD.find("K1")->Text, "One");
    EXPECT_EQ(this->StatusBar1.text(1), "Modification is cancelled!");
    SiteRow expected = site(1, "One");
    expected.note = "from the list";
    EXPECT_EQ(this->stored(0), expected);
}

TYPED_TEST(SubmitStatusTest, CategoryThatIsNullSelectsNoneAndIsSavedAsEmpty) {
    SiteRow row = site(1, "One");
    row.softtype = std::nullopt;
    this->libraries.create(lib, {row});
    this->load();
    this->desktop.expect_form("frmEditPad", [](Form& shown) {
        EXPECT_EQ(dynamic_cast<FrmEditPad&>(shown).optCategory.Selected.get(), -1);
        press_button(shown, "cmdSave");
    });
    this->edit(this->lvwPAD, "K1");
    EXPECT_EQ(this->stored(0).softtype, "");
}

TYPED_TEST(SubmitStatusTest, EditorReportsNoFailureOfTheLibrary) {
    this->create();
    const Guard locked = this->libraries.lock(lib);
    this->desktop.expect_form("frmEditPad", [](Form& frmEditPad) { press_button(frmEditPad, "cmdSave"); });
    this->edit(this->lvwPAD, "K1");
    EXPECT_EQ(this->StatusBar1.text(1), "PAD Enabled Download Library Record is modified!");
}

TYPED_TEST(SubmitStatusTest, ResetAsksFirstAndDoesNothingOnNo) {
    this->create();
    const auto before = this->libraries.sites(lib);
    this->desktop.expect_box("Do you want to reset all status to 'Not Yet Processed'?", Answer::No);
    cmdReset_Click(this->window, non_pad_tab);
    EXPECT_EQ(this->libraries.sites(lib), before);
    EXPECT_EQ(this->shown(this->lvwNonPad, "K2", "Status"), "Y");
    ASSERT_EQ(this->desktop.asked.size(), 1U);
    EXPECT_EQ(this->desktop.asked[0].buttons, Buttons::YesNo);
    EXPECT_EQ(this->desktop.asked[0].title, UserInterface::default_title);
}

TYPED_TEST(SubmitStatusTest, ResetOnThePadTabResetsThatHalfAndKeepsComments) {
    SiteRow one = site(1, "One");
    one.status = "Y";
    one.note = "kept";
    SiteRow two = site(2, "Two");
    two.status = "P";
    SiteRow other = site(3, "Other");
    other.pad = "NO";
    other.status = "Y";
    this->libraries.create(lib, {one, two, other});
    this->load();
    this->desktop.expect_box("Do you want to reset all status to 'Not Yet Processed'?", Answer::Yes);
    cmdReset_Click(this->window, pad_tab);
    one.status = "N";
    two.status = "N";
    EXPECT_EQ(this->libraries.sites(lib), (std::vector<SiteRow>{one, two, other}));
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Status"), "N");
    EXPECT_EQ(this->shown(this->lvwPAD, "K1", "Comment"), "kept");
    EXPECT_EQ(this->shown(this->lvwPAD, "K2", "Status"), "N");
    EXPECT_EQ(this->shown(this->lvwNonPad, "K3", "Status"), "Y");
}

TYPED_TEST(SubmitStatusTest, ResetOnThePermanentTabResetsTheNonPadList) {
    SiteRow pad = site(1, "One");
    pad.status = "Y";
    SiteRow other = site(3, "Other");
    other.pad = "NO";
    other.status = "Y";
    this->libraries.create(lib, {pad, other});
    this->load();
    this->desktop.expect_box("Do you want to reset all status to 'Not Yet Processed'?", Answer::Yes);
    cmdReset_Click(this->window, 0);
    EXPECT_EQ(this->stored(0).status, "Y");
    EXPECT_EQ(this->stored(1).status, "N");
    EXPECT_EQ(this->shown(this->lvwNonPad, "K3", "Status"), "N");
}

TYPED_TEST(SubmitStatusTest, ResetThatCannotWriteLeavesTheList) {
    this->create();
    const Guard read_only = this->libraries.make_read_only(lib);
    ResetSiteStatus(this->library, lib, this->lvwNonPad, false);
    EXPECT_EQ(this->shown(this->lvwNonPad, "K2", "Status"), "Y");
}

TEST(ResetSiteStatusTest, ErrorInTheMiddleKeepsTheSitesResetByThen) {
    MemoryLibraries libraries;
    std::vector<SiteRow> rows{site(1, "1"), site(2, "2"), site(3, "3")};
    for (SiteRow& row : rows)
        row.status = "Y";
    libraries.create(lib, rows);
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    ListView list{"lvwPAD", site_keys};
    int counter = 0;
    library.LoadSiteList(lib, list, true, counter);
    // Opening, update, move, update, move and then the third update.
    libraries.database.faults.operations = 0;
    libraries.database.faults.fail_at = 6;
    ResetSiteStatus(library, lib, list, true);
    rows[0].status = "N";
    rows[1].status = "N";
    EXPECT_EQ(libraries.sites(lib), rows);
    EXPECT_EQ(list.sub_item(list.item(0), "Status"), "Y");
}

} // namespace
} // namespace kestrune
