#include "shell/browser_window.h"

#include "library/submit_status.h"
#include "platform/center_form.h"

namespace kestrune {

void BrowserWindow::mnuSetting_Click() {
    FrmPreference& profile = frmPreference();
    CenterForm(profile, program_.ui().screen());
    kestrune::mnuSetting_Click(profile, program_.ui(), StatusBar1, [this](std::string_view text) {
        program_.record_files().write_profile(text);
    });
}

void BrowserWindow::cmdEdit_Click() {
    ListView* const list = CurrentRecordList();
    if (list != &lvwPAD && list != &lvwNonPad) {
        editor_.cmdEdit_Click(list);
        return;
    }
    const SelectedEntry selected = ReadSelectedEntry(list);
    if (!selected.found) {
        program_.ui().MessageBox(nothing_selected);
        return;
    }
    const ListItem& site = *list->selected();
    const auto field = [list, &site](std::string_view key) { return std::string(list->sub_item(site, key)); };
    EditSiteRecord(submit_status_controls(), *list, selected.key, selected.text, field("url"),
                   field("Status"), field("Category"), field("Comment"));
}

void BrowserWindow::cmdDelete_Click() { store_.cmdDelete_Click(CurrentRecordList()); }

void BrowserWindow::cmdSave_Click() { store_.cmdSave_Click(); }

void BrowserWindow::cmdReset_Click() { kestrune::cmdReset_Click(submit_status_controls(), glngCurTab); }

void BrowserWindow::bookmark_page() {
    if (editor_.BookmarkPage(browser_->LocationURL(), txtUrl.Text.get()))
        SSTab1.set_tab(1);
}

SubmitStatusControls BrowserWindow::submit_status_controls() {
    return {program_.ui(), program_.library(), form, txtUrl, txtDesc, lvwPAD, lvwNonPad, StatusBar1};
}

} // namespace kestrune
