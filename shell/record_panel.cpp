#include "shell/browser_window.h"

#include <string>

namespace kestrune {
namespace {

constexpr int shown_height = 2895;
constexpr int shown_strip = 300;
constexpr int hidden_strip = 1;

// Sorts by the column and flips the order, whatever the column was before.
void sort_and_flip(ListView& list, int column) {
    const bool was_ascending = list.SortOrder() == ListView::Order::ascending;
    list.sort(column, was_ascending ? ListView::Order::descending : ListView::Order::ascending);
}

} // namespace

ListView* BrowserWindow::CurrentRecordList() {
    switch (glngCurTab) {
    case 0:
        store_.wait_until_loaded();
        return &lvwPermanent;
    case 1:
        return &ListView1;
    case 2:
        return &lvwPAD;
    case 3:
        return &lvwNonPad;
    default:
        return nullptr;
    }
}

void BrowserWindow::SSTab1_Click() {
    glngCurTab = SSTab1.Tab();
    const bool site_list = glngCurTab == 2 || glngCurTab == 3;
    cmdSave.Enabled = glngCurTab == 1;
    cmdGoto.Enabled = site_list;
    cmdReset.Enabled = site_list;
    if (glngCurTab == 0) {
        store_.wait_until_loaded();
        StatusBar1.set_text(1, std::to_string(glngNoOfPermanentRecord) + " Permanent Records");
    } else if (glngCurTab == 2) {
        StatusBar1.set_text(1, std::to_string(glngNoOfPadRecord) + " PAD Records");
    } else if (glngCurTab == 3) {
        StatusBar1.set_text(1, std::to_string(glngNoOfNonPadRecord) + " NON-PAD Records");
    }
}

void BrowserWindow::SortPermanentList(int column) { sort_and_flip(lvwPermanent, column); }
void BrowserWindow::SortPadList(int column) { sort_and_flip(lvwPAD, column); }
void BrowserWindow::SortNonPadList(int column) { sort_and_flip(lvwNonPad, column); }

void BrowserWindow::show_panel() {
    SSTab1.Height = shown_height;
    SSTab1.TabHeight = shown_strip;
    SSTab1.Visible = true;
    for (Button* button : {&cmdEdit, &cmdDelete, &cmdSave, &cmdGoto})
        button->Visible = true;
}

// "Reset All" stays on screen, where the layout puts it below the browser.
void BrowserWindow::hide_panel() {
    SSTab1.Visible = false;
    SSTab1.Height = 0;
    SSTab1.TabHeight = hidden_strip;
    for (Button* button : {&cmdEdit, &cmdDelete, &cmdSave, &cmdGoto})
        button->Visible = false;
}

void BrowserWindow::mnuHideRecord_Click() {
    if (mnuHideRecord.Checked.get()) {
        mnuHideRecord.Checked = false;
        cmdHideRecord.Caption = "Hide Record";
        show_panel();
    } else {
        mnuHideRecord.Checked = true;
        cmdHideRecord.Caption = "Show Record";
        hide_panel();
    }
    Form_Resize();
}

void BrowserWindow::cmdHideRecord_Click() { mnuHideRecord_Click(); }

void BrowserWindow::AutoHideRecordPanel() {
    if (!mnuHideRecord.Checked.get() && mnuAutoHide.Checked.get())
        mnuHideRecord_Click();
}

} // namespace kestrune
