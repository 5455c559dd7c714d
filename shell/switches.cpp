#include "shell/browser_window.h"

namespace kestrune {
namespace {

// Flips a switch and tells its new state.
bool flip(MenuItem& item) {
    item.Checked = !item.Checked;
    return item.Checked;
}

const char* on_or_off(bool on, const char* when_on, const char* when_off) { return on ? when_on : when_off; }

} // namespace

void BrowserWindow::mnuWithPAD_Click() { mnuNoPAD.Checked = !flip(mnuWithPAD); }

void BrowserWindow::mnuNoPAD_Click() { mnuWithPAD.Checked = !flip(mnuNoPAD); }

void BrowserWindow::mnuPromptFill_Click() {
    cmdPrompt.Caption = on_or_off(flip(mnuPromptFill), "Prompt User is On", "Prompt User is Off");
}

void BrowserWindow::mnuAutoRecord_Click() {
    cmdRecord.Caption = on_or_off(flip(mnuAutoRecord), "Auto Record is On", "Auto Record is Off");
}

void BrowserWindow::mnuAutoHide_Click() {
    cmdAutoHide.Caption = on_or_off(flip(mnuAutoHide), "Auto Hide is On", "Auto Hide is Off");
}

void BrowserWindow::mnuBlock_Click() { flip(mnuBlock); }
void BrowserWindow::mnuSelectGeneral_Click() { flip(mnuSelectGeneral); }
void BrowserWindow::mnuSelectGame_Click() { flip(mnuSelectGame); }
void BrowserWindow::mnuSelectDeveloper_Click() { flip(mnuSelectDeveloper); }
void BrowserWindow::mnuSelectBusiness_Click() { flip(mnuSelectBusiness); }
void BrowserWindow::mnuSelectFreeware_Click() { flip(mnuSelectFreeware); }
void BrowserWindow::mnuSelectSpecial_Click() { flip(mnuSelectSpecial); }

// Of the three fill modes one is checked; clicking the checked one moves the check on. The two handlers below
// leave mnuNoFill alone when their own item was checked.

void BrowserWindow::mnuAutoClick_Click() {
    if (mnuAutoClick.Checked.get()) {
        mnuAutoClick.Checked = false;
        mnuManualClick.Checked = true;
        cmdAutoClick.Caption = "Auto Click is Off";
    } else {
        mnuManualClick.Checked = false;
        mnuAutoClick.Checked = true;
        mnuNoFill.Checked = false;
        cmdAutoClick.Caption = "Auto Click is On";
    }
}

void BrowserWindow::mnuManualClick_Click() {
    if (mnuManualClick.Checked.get()) {
        mnuManualClick.Checked = false;
        mnuAutoClick.Checked = true;
        cmdAutoClick.Caption = "Auto Click is On";
    } else {
        mnuManualClick.Checked = true;
        mnuAutoClick.Checked = false;
        mnuNoFill.Checked = false;
        cmdAutoClick.Caption = "Auto Click is Off";
    }
}

void BrowserWindow::mnuNoFill_Click() {
    if (mnuNoFill.Checked.get()) {
        mnuNoFill.Checked = false;
        mnuManualClick_Click();
    } else {
        mnuManualClick.Checked = false;
        mnuAutoClick.Checked = false;
        mnuNoFill.Checked = true;
        cmdAutoClick.Caption = "Auto Click is Off";
    }
}

void BrowserWindow::cmdRecord_Click() { mnuAutoRecord_Click(); }
void BrowserWindow::cmdPrompt_Click() { mnuPromptFill_Click(); }
void BrowserWindow::cmdAutoClick_Click() { mnuAutoClick_Click(); }
void BrowserWindow::cmdAutoHide_Click() { mnuAutoHide_Click(); }

} // namespace kestrune
