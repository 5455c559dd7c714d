#include "library/submit_status.h"

#include "platform/center_form.h"
#include "platform/statement.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

constexpr int pad_tab = 2;
constexpr int non_pad_tab = 3;

// In the order of the choices in the two dialogs.
constexpr std::array<std::string_view, 3> outcome_status{"Y", "P", "N"};
constexpr std::array<std::string_view, 3> editor_status{"N", "Y", "P"};

// Index of a text among the options, -1 when it is none of them.
template <typename Options>
int index_of(const Options& options, std::string_view text) {
    const auto found = std::find(options.begin(), options.end(), text);
    return found == options.end() ? -1 : static_cast<int>(found - options.begin());
}

// Unchanged when no option is selected.
template <typename Options>
void take_selected(std::string& text, const OptionGroup& group, const Options& options) {
    const int selected = group.Selected.get();
    if (selected >= 0)
        text = options.at(static_cast<std::size_t>(selected));
}

void show_outcome(const SubmitStatusControls& window, int glngCurTab, std::int32_t lngCurPadKey,
                  const std::string& status, const std::string& note) {
    if (glngCurTab != pad_tab && glngCurTab != non_pad_tab)
        return;
    ListView& list = glngCurTab == pad_tab ? window.lvwPAD : window.lvwNonPad;
    const std::string key = ListKey(lngCurPadKey);
    list.set_sub_item(key, "Status", status);
    list.set_sub_item(key, "Comment", note);
}

} // namespace

FrmNote::FrmNote() : Form("frmNote", "Mark Submit Status") {
    Width = 7200;
    Height = 4800;
    txtSiteUrl.Locked = true;
    txtSiteDesc.Locked = true;
    optSubmit.AccessibleName = "Outcome of the submission";
    Rows = {{"Site Address:", &txtSiteUrl},
            {"Site Description:", &txtSiteDesc},
            {"", &optSubmit},
            {"Note:", &txtNote}};
    Form::Buttons = {&cmdSave, &cmdCancel};
    Default = &cmdSave;
    Cancel = &cmdCancel;
    FirstFocus = &txtNote;
    cmdSave.Click = [this] {
        bSaved = true;
        Hide();
    };
    cmdCancel.Click = [this] { Hide(); };
}

FrmEditPad::FrmEditPad()
    : Form("frmEditPad", "Edit PAD Enabled Download Library Record"),
      optCategory("optCategory", {category_labels.begin(), category_labels.end()}) {
    Width = 8400;
    Height = 6600;
    Rows = {{"Pad Site Name:", &txtPadDesc},
            {"Pad Site Url:", &txtPADUrl},
            {"Status", &optStatus},
            {"Category:", &optCategory},
            {"Comment:", &txtPadComment}};
    Form::Buttons = {&cmdSave, &cmdCancel};
    Default = &cmdSave;
    Cancel = &cmdCancel;
    FirstFocus = &txtPadDesc;
    cmdSave.Click = [this] {
        bSaved = true;
        Hide();
    };
    cmdCancel.Click = [this] { Hide(); };
}

void MarkSubmitStatus(const SubmitStatusControls& window, int glngCurTab, std::int32_t lngCurPadKey) {
    FrmNote frmNote;
    CenterForm(frmNote, window.form);
    frmNote.txtSiteUrl.Text = window.txtUrl.Text.get();
    frmNote.txtSiteDesc.Text = window.txtDesc.Text.get();
    frmNote.optSubmit.Selected = 0;
    window.desktop.ShowModal(frmNote);
    if (!frmNote.bSaved)
        return;

    const std::string url = window.txtUrl.Text.get();
    std::string status{outcome_status.back()};
    take_selected(status, frmNote.optSubmit, outcome_status);
    const std::string note = frmNote.txtNote.Text.get();
    show_outcome(window, glngCurTab, lngCurPadKey, status, note);
    const bool updated = window.library.UpdateSubmitStatus(site_library_name, url, status, note);
    window.StatusBar1.set_text(1, updated ? "Submit Status is updated" : "Unable to update Submit Status");
}

void EditSiteRecord(const SubmitStatusControls& window, ListView& listView, std::string_view listKey,
                    std::string description, std::string url, std::string status, std::string category,
                    std::string comment) {
    // The key may be that of the entry itself, which can be gone after the dialog.
    const std::string key{listKey};
    FrmEditPad frmEditPad;
    CenterForm(frmEditPad, window.desktop.screen());
    frmEditPad.txtPadDesc.Text = description;
    frmEditPad.txtPADUrl.Text = url;
    frmEditPad.optCategory.Selected = index_of(category_labels, category);
    frmEditPad.optStatus.Selected = index_of(editor_status, status);
    frmEditPad.txtPadComment.Text = comment;
    window.desktop.ShowModal(frmEditPad);

    if (frmEditPad.bSaved) {
        description = frmEditPad.txtPadDesc.Text.get();
        url = frmEditPad.txtPADUrl.Text.get();
        take_selected(category, frmEditPad.optCategory, category_labels);
        take_selected(status, frmEditPad.optStatus, editor_status);
        comment = frmEditPad.txtPadComment.Text.get();
        if (const ListItem* const selected = listView.selected()) {
            const std::string entry = selected->Key;
            listView.set_text(entry, description);
            listView.set_sub_item(entry, "url", url);
            listView.set_sub_item(entry, "Status", status);
            listView.set_sub_item(entry, "Category", category);
            listView.set_sub_item(entry, "Comment", comment);
        }
        window.StatusBar1.set_text(1, "PAD Enabled Download Library Record is modified!");
    } else {
        window.StatusBar1.set_text(1, "Modification is cancelled!");
    }
    window.library.UpdateSiteRecord(site_library_name, key, description, url, status, category, comment);
}

void ResetSiteStatus(SiteLibrary& library, std::string_view dbName, ListView& listView, bool padEnabled) {
    library.back_up(dbName);
    run_database_step("ResetSiteStatus", [&] {
        {
            const auto rows =
                library.database().open(library.path(dbName), SiteListStatement(PadFilter(padEnabled)));
            for (; !rows->at_end(); rows->move_next()) {
                rows->set("status", std::string("N"));
                rows->update();
            }
        }
        listView.set_all_sub_items("Status", "N");
    });
}

void cmdReset_Click(const SubmitStatusControls& window, int glngCurTab) {
    const std::string question = "Do you want to reset all status to " + SqlQuote("Not Yet Processed") + "?";
    if (window.desktop.MessageBox(question, Buttons::YesNo) != Answer::Yes)
        return;
    if (glngCurTab == pad_tab)
        ResetSiteStatus(window.library, site_library_name, window.lvwPAD, true);
    else
        ResetSiteStatus(window.library, site_library_name, window.lvwNonPad, false);
}

} // namespace kestrune
