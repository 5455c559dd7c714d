#include "shell/window_controls.h"

#include <initializer_list>

namespace kestrune {
namespace {

// The designed inner area, twips.
constexpr int designed_width = 13050;
constexpr int designed_height = 9930;

const std::vector<std::string> record_keys{"Type", "Url", "Action", "Postdata", "Header", "Frame"};
const std::vector<std::string> site_keys{"url", "Status", "Category", "Comment"};

} // namespace

Switches::Switches() {
    mnuFile.Items = {&mnuSetting, &mnuExit};
    mnuPAD.Items = {&mnuWithPAD,        &mnuNoPAD,          &mnuSep2a,
                    &mnuSelectGeneral,  &mnuSelectGame,     &mnuSelectDeveloper,
                    &mnuSelectBusiness, &mnuSelectFreeware, &mnuSelectSpecial};
    mnuView.Items = {&mnuHideRecord, &mnuAutoHide};
    mnuPlayback.Items = {&mnuPromptFill, &mnuPlaybackSep1, &mnuManualClick, &mnuAutoClick, &mnuNoFill};
    mnuRecord.Items = {&mnuAutoRecord};
    mnuPopup.Items = {&mnuBlock};
    mnuHelp.Items = {&mnuWebsite, &mnuAbout};
    mnuRightClickMenu.Items = {&fill_menu.mnuProduct, &fill_menu.mnuAll};
    for (MenuItem* item :
         {&mnuWithPAD, &mnuNoPAD, &mnuSelectGeneral, &mnuSelectGame, &mnuSelectDeveloper, &mnuSelectBusiness,
          &mnuSelectFreeware, &mnuSelectSpecial, &mnuHideRecord, &mnuAutoHide, &mnuPromptFill,
          &mnuManualClick, &mnuAutoClick, &mnuNoFill, &mnuAutoRecord, &mnuBlock})
        item->IsSwitch = true;
    mnuAbout.Shortcut = "F1";
}

WindowControls::WindowControls()
    : lvwPermanent("lvwPermanent", record_keys), ListView1("ListView1", record_keys),
      lvwPAD("lvwPAD", site_keys), lvwNonPad("lvwNonPad", site_keys),
      SSTab1("SSTab1", {{"Permanent Record", &lvwPermanent},
                        {"Temporary Record", &ListView1},
                        {"PAD Record", &lvwPAD},
                        {"NON-PAD Record", &lvwNonPad}}) {
    place_controls();
    order_controls();
    Timer1.Interval = 1000;
    // Every sort flips the order, so the first one a user sees is ascending.
    for (ListView* list : {&lvwPermanent, &ListView1, &lvwPAD, &lvwNonPad})
        list->set_sort_order(ListView::Order::descending);
    form.Caption = "Kestrune v1.0 - Shareware/Freeware program submission Assistant";
    form.Width = designed_width + WindowForm::frame_width;
    form.Height = designed_height + WindowForm::frame_height;
    form.Timers = {&Timer1};
}

void WindowControls::place_controls() {
    Frame1.place(120, 0, 11120, 650);
    Command3.place(4200, 120, 2055, 495);
    cmdBack.place(0, 120, 1600, 495);
    cmdPlayback.place(1560, 120, 1600, 495);
    cmdHideRecord.place(3120, 120, 1600, 495);
    cmdRecord.place(4720, 120, 1600, 495);
    cmdAutoHide.place(6320, 120, 1600, 495);
    cmdPrompt.place(8040, 120, 1600, 495);
    cmdAutoClick.place(9480, 120, 1600, 495);
    lblUrl.place(120, 840, 615, 255);
    txtUrl.place(840, 720, 5295, 375);
    txtDesc.place(6240, 720, 6615, 375);
    wbMyBrowser.place(120, 1200, 12735, 5295);
    SSTab1.place(120, 6600, 10935, 2895);
    // Inside the tab control the lists stand below the strip; the layout sets their width alone.
    for (ListView* list : {&lvwPermanent, &ListView1, &lvwPAD, &lvwNonPad})
        list->place(120, 420, 10685, 2355);
    cmdEdit.place(11160, 6600, 1695, 495);
    cmdDelete.place(11160, 7200, 1695, 495);
    cmdSave.place(11160, 7800, 1695, 495);
    cmdGoto.place(11160, 8400, 1695, 495);
    cmdReset.place(11160, 9000, 1695, 495);
    StatusBar1.place(0, 9555, 13050, 375);
}

void WindowControls::order_controls() {
    Frame1.Controls = {&Command3,  &cmdBack,     &cmdPlayback, &cmdHideRecord,
                       &cmdRecord, &cmdAutoHide, &cmdPrompt,   &cmdAutoClick};
    // The browser reaches a little below the top of the status bar when the record lists are hidden.
    form.Controls = {&Frame1,  &lblUrl,    &txtUrl,  &txtDesc, &wbMyBrowser, &SSTab1,
                     &cmdEdit, &cmdDelete, &cmdSave, &cmdGoto, &cmdReset,    &StatusBar1};
    form.TabOrder = {&cmdBack,   &cmdPlayback,  &cmdHideRecord, &cmdRecord, &cmdAutoHide,
                     &cmdPrompt, &cmdAutoClick, &txtUrl,        &txtDesc,   &wbMyBrowser,
                     &SSTab1,    &lvwPermanent, &ListView1,     &lvwPAD,    &lvwNonPad,
                     &cmdEdit,   &cmdDelete,    &cmdSave,       &cmdGoto,   &cmdReset};
    form.MenuBar = {&mnuFile,   &mnuPAD,   &mnuView, &mnuPlayback,
                    &mnuRecord, &mnuPopup, &mnuHelp, &mnuRightClickMenu};

    txtUrl.AccessibleName = "Address of the site";
    txtDesc.AccessibleName = "Description of the site";
    wbMyBrowser.AccessibleName = "Web page";
    SSTab1.AccessibleName = "Record lists";
    lvwPermanent.AccessibleName = "Permanent records";
    ListView1.AccessibleName = "Temporary records";
    lvwPAD.AccessibleName = "Sites with PAD";
    lvwNonPad.AccessibleName = "Sites without PAD";
    StatusBar1.AccessibleName = "Status";
    Frame1.AccessibleName = "Button bar";
}

} // namespace kestrune
