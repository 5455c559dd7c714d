#include "shell/browser_window.h"

#include <utility>

namespace kestrune {

BrowserWindow::BrowserWindow(Program& program, BrowserWindow* opener)
    : objParentForm(opener), glngPopupLevel(opener == nullptr ? 0 : opener->glngPopupLevel + 1),
      gstrSessionPath(program.record_files().gstrSessionPath()), program_(program),
      store_(record_panel(), program.record_files(), program.library(), program.ui(),
             [this](std::string_view text) { read_profile(text); }),
      editor_(record_panel(), store_, program.record_files(), program.ui()) {
    wire();
    browser_ = program_.ui().open_window(form, *this);
}

BrowserWindow::~BrowserWindow() {
    events_.close();
    browser_.reset();
}

std::function<void()> BrowserWindow::in_turn(Procedure procedure) {
    return [this, procedure] { events_.handle([this, procedure] { (this->*procedure)(); }); };
}

void BrowserWindow::wire() {
    cmdBack.Click = in_turn(&BrowserWindow::cmdBack_Click);
    cmdPlayback.Click = in_turn(&BrowserWindow::cmdPlayback_Click);
    cmdHideRecord.Click = in_turn(&BrowserWindow::cmdHideRecord_Click);
    cmdRecord.Click = in_turn(&BrowserWindow::cmdRecord_Click);
    cmdAutoHide.Click = in_turn(&BrowserWindow::cmdAutoHide_Click);
    cmdPrompt.Click = in_turn(&BrowserWindow::cmdPrompt_Click);
    cmdAutoClick.Click = in_turn(&BrowserWindow::cmdAutoClick_Click);
    cmdEdit.Click = in_turn(&BrowserWindow::cmdEdit_Click);
    cmdDelete.Click = in_turn(&BrowserWindow::cmdDelete_Click);
    cmdSave.Click = in_turn(&BrowserWindow::cmdSave_Click);
    cmdGoto.Click = in_turn(&BrowserWindow::cmdGoto_Click);
    cmdReset.Click = in_turn(&BrowserWindow::cmdReset_Click);
    wire_menus();
    wire_keys();

    // These only rearrange what is on screen and may come in the middle of a handler: a tab is changed by
    // code, the window is resized and the timer ticks while a question is open.
    SSTab1.Click = [this] { SSTab1_Click(); };
    Timer1.Tick = [this] { Timer1_Timer(); };
    lvwPermanent.ColumnClick = [this](int header) { SortPermanentList(header - 1); };
    lvwPAD.ColumnClick = [this](int header) { SortPadList(header - 1); };
    lvwNonPad.ColumnClick = [this](int header) { SortNonPadList(header - 1); };
    form.Resize = [this] { Form_Resize(); };
    form.CloseRequested = in_turn(&BrowserWindow::Unload);
}

void BrowserWindow::wire_menus() {
    fill_menu.on_choice = [this](std::int32_t index) { glngMnuIdx = index; };
    mnuSetting.Click = in_turn(&BrowserWindow::mnuSetting_Click);
    mnuExit.Click = in_turn(&BrowserWindow::mnuExit_Click);
    mnuWithPAD.Click = in_turn(&BrowserWindow::mnuWithPAD_Click);
    mnuNoPAD.Click = in_turn(&BrowserWindow::mnuNoPAD_Click);
    mnuSelectGeneral.Click = in_turn(&BrowserWindow::mnuSelectGeneral_Click);
    mnuSelectGame.Click = in_turn(&BrowserWindow::mnuSelectGame_Click);
    mnuSelectDeveloper.Click = in_turn(&BrowserWindow::mnuSelectDeveloper_Click);
    mnuSelectBusiness.Click = in_turn(&BrowserWindow::mnuSelectBusiness_Click);
    mnuSelectFreeware.Click = in_turn(&BrowserWindow::mnuSelectFreeware_Click);
    mnuSelectSpecial.Click = in_turn(&BrowserWindow::mnuSelectSpecial_Click);
    mnuHideRecord.Click = in_turn(&BrowserWindow::mnuHideRecord_Click);
    mnuAutoHide.Click = in_turn(&BrowserWindow::mnuAutoHide_Click);
    mnuPromptFill.Click = in_turn(&BrowserWindow::mnuPromptFill_Click);
    mnuManualClick.Click = in_turn(&BrowserWindow::mnuManualClick_Click);
    mnuAutoClick.Click = in_turn(&BrowserWindow::mnuAutoClick_Click);
    mnuNoFill.Click = in_turn(&BrowserWindow::mnuNoFill_Click);
    mnuAutoRecord.Click = in_turn(&BrowserWindow::mnuAutoRecord_Click);
    mnuBlock.Click = in_turn(&BrowserWindow::mnuBlock_Click);
    mnuWebsite.Click = in_turn(&BrowserWindow::mnuWebsite_Click);
    mnuAbout.Click = in_turn(&BrowserWindow::mnuAbout_Click);
}

void BrowserWindow::wire_keys() {
    // The keys press the buttons, so that a disabled button's key does nothing either.
    form.Shortcuts = {
        {"Alt+Left", [this] { cmdBack.press(); }},
        {"F9", [this] { cmdPlayback.press(); }},
        {"F8", in_turn(&BrowserWindow::show_fill_report)},
        {"F5", in_turn(&BrowserWindow::reload)},
        {"Esc", in_turn(&BrowserWindow::stop)},
        {"Ctrl+L", in_turn(&BrowserWindow::open_address)},
        {"Ctrl+Shift+Del", in_turn(&BrowserWindow::forget_sites)},
        {"Ctrl+D", in_turn(&BrowserWindow::bookmark_page)},
        // With the record lists hidden the button lies below the window's edge.
        {"Ctrl+Alt+R", [this] { cmdReset.press(); }},
    };
}

RecordPanel BrowserWindow::record_panel() {
    return {lvwPermanent, ListView1, lvwPAD, lvwNonPad, StatusBar1, *this};
}

Capture BrowserWindow::capture() {
    return {page_processing(), *this, mnuAutoRecord, ListView1, SSTab1, [this] { cmdEdit_Click(); }};
}

PageProcessing BrowserWindow::page_processing() {
    return {*this,  *browser_,    program_.ui(), StatusBar1,     Timer1,
            txtUrl, lvwPermanent, mnuPromptFill, mnuManualClick, mnuAutoClick};
}

} // namespace kestrune
