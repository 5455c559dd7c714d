#include "shell/browser_window.h"

#include <algorithm>

namespace kestrune {

void BrowserWindow::Form_Load() {
    gbGobackFlag = false;
    objMeForm = this;
    if (objParentForm == nullptr) {
        glngPopupLevel = 0;
        form.Caption = "Kestrune V1.0 (First Window)";
        // The browser has no page to go back to yet. A pop-up's button stays enabled: it closes the pop-up.
        cmdBack.Enabled = false;
    } else {
        AutoHideRecordPanel();
    }
    mnuRightClickMenu.Visible = false;
    Timer1.Enabled = false;
    CallLoadPermanentRecord();
    bFirstFlag = true;
    if (objParentForm != nullptr) {
        CopyMenuStateFromParent();
        program_.hide_all_but(*this);
    }
    navigate("about:blank");
}

void BrowserWindow::CallLoadPermanentRecord() {
    if (store_.loaded())
        ++loads_;
    store_.LoadPermanentSession();
    SortPermanentList(0);
    gbRecordChanged = false;
}

// Only the first load of all reads the profile: a later one would undo what the user left in the boxes
// without saving it.
void BrowserWindow::read_profile(std::string_view text) {
    if (objParentForm == nullptr && loads_ == 1)
        ReadProfileXml(text, program_.frmPreference());
}

FrmPreference& BrowserWindow::frmPreference() {
    BrowserWindow* first = this;
    while (first->objParentForm != nullptr)
        first = first->objParentForm;
    first->store_.wait_until_loaded();
    return program_.frmPreference();
}

// The menu title and one of its two entries, not the pair: a pop-up may thereby end with both or neither of
// the pair checked.
void BrowserWindow::CopyMenuStateFromParent() {
    mnuPAD.Checked = objParentForm->mnuPAD.Checked.get();
    mnuNoPAD.Checked = objParentForm->mnuNoPAD.Checked.get();
}

void BrowserWindow::CopyMenuStateToParent() {
    objParentForm->mnuPAD.Checked = mnuPAD.Checked.get();
    objParentForm->mnuNoPAD.Checked = mnuNoPAD.Checked.get();
}

bool BrowserWindow::has_popup() const {
    const auto& windows = program_.windows();
    return std::any_of(windows.begin(), windows.end(), [this](const auto& window) {
        return window->objParentForm == this && !window->unloaded_;
    });
}

void BrowserWindow::Form_QueryUnload() {
    unloaded_ = true;
    if (objParentForm == nullptr)
        return;
    program_.show_uppermost();
    if (gbRecordChanged)
        objParentForm->CallLoadPermanentRecord();
    CopyMenuStateToParent();
}

void BrowserWindow::Form_Unload() {
    events_.close();
    if (objParentForm == nullptr) {
        program_.end();
        return;
    }
    form.Visible = false;
    program_.destroy_later(*this);
    if (objParentForm->unload_waits_)
        objParentForm->Unload();
}

void BrowserWindow::Unload() {
    if (unloaded_)
        return;
    if (objParentForm != nullptr && has_popup()) {
        unload_waits_ = true;
        return;
    }
    Form_QueryUnload();
    Form_Unload();
}

void BrowserWindow::mnuExit_Click() {
    if (ListView1.size() > 0) {
        const Answer answer = program_.ui().MessageBox(
            "You have temporary record not saved as permanent yet, do you really want to exit?",
            Buttons::YesNo);
        if (answer != Answer::Yes)
            return;
    }
    Unload();
    program_.end();
}

} // namespace kestrune
