#pragma once

#include "filling/fill_menu.h"
#include "platform/control.h"
#include "platform/list_view.h"
#include "platform/menu.h"
#include "platform/tab_control.h"
#include "platform/window_form.h"

namespace kestrune {

// The menu bar of a window. The checked states are the program's only settings: whoever needs an option reads
// it here when it needs it, and nothing is saved between runs.
struct Switches {
    MenuItem mnuFile{"mnuFile", "File"};
    MenuItem mnuSetting{"mnuSetting", "Setting"};
    MenuItem mnuExit{"mnuExit", "Exit"};

    MenuItem mnuPAD{"mnuPAD", "PAD"};
    MenuItem mnuWithPAD{"mnuWithPAD", "Include PAD Enabled Site", true};
    MenuItem mnuNoPAD{"mnuNoPAD", "Include Site without PAD"};
    MenuItem mnuSep2a{"mnuSep2a", "-"};
    MenuItem mnuSelectGeneral{"mnuSelectGeneral", "Select 1=generate", true};
    MenuItem mnuSelectGame{"mnuSelectGame", "Select 2=game"};
    MenuItem mnuSelectDeveloper{"mnuSelectDeveloper", "Select 3=developer"};
    MenuItem mnuSelectBusiness{"mnuSelectBusiness", "Select 4=business"};
    MenuItem mnuSelectFreeware{"mnuSelectFreeware", "Select 5=freeware"};
    MenuItem mnuSelectSpecial{"mnuSelectSpecial", "Select 9=special"};

    MenuItem mnuView{"mnuView", "View"};
    MenuItem mnuHideRecord{"mnuHideRecord", "Hide Permanent/Temporary Record"};
    MenuItem mnuAutoHide{"mnuAutoHide", "Auto Hide Permanent/Temporary Record", true};

    MenuItem mnuPlayback{"mnuPlayback", "Playback"};
    MenuItem mnuPromptFill{"mnuPromptFill", "Prompt User before Auto Fill-in Form", true};
    MenuItem mnuPlaybackSep1{"mnuPlaybackSep1", "-"};
    MenuItem mnuManualClick{"mnuManualClick", "Auto Fill-in Form (with Manual Click)"};
    MenuItem mnuAutoClick{"mnuAutoClick", "Auto Fill-in Form (with Auto Click)", true};
    MenuItem mnuNoFill{"mnuNoFill", "No auto Fill-in Form"};

    MenuItem mnuRecord{"mnuRecord", "Record"};
    MenuItem mnuAutoRecord{"mnuAutoRecord", "Auto Record"};

    MenuItem mnuPopup{"mnuPopup", "Popup"};
    MenuItem mnuBlock{"mnuBlock", "Block pop-up window", true};

    MenuItem mnuHelp{"mnuHelp", "Help"};
    MenuItem mnuWebsite{"mnuWebsite", "Go to Website"};
    MenuItem mnuAbout{"mnuAbout", "About"};

    // Never on the bar: the browser's context menu.
    MenuItem mnuRightClickMenu{"mnuRightClickMenu", "Right Click Menu"};
    FillMenu fill_menu; // its entries

    Switches();
};

// The controls of a browser window at their designed places. The button bar's buttons lie in Frame1.
struct WindowControls : Switches {
    Frame Frame1{"Frame1"};
    Button Command3{"Command3", "Back"}; // under two other buttons, without behaviour
    Button cmdBack{"cmdBack", "Back"};
    Button cmdPlayback{"cmdPlayback", "Submit"};
    Button cmdHideRecord{"cmdHideRecord", "Hide Record"};
    Button cmdRecord{"cmdRecord", "Auto Record is Off"};
    Button cmdAutoHide{"cmdAutoHide", "Auto Hide is On"};
    Button cmdPrompt{"cmdPrompt", "Prompt User is On"};
    Button cmdAutoClick{"cmdAutoClick", "Auto Click is On"};

    Label lblUrl{"lblUrl", "Address:"};
    TextBox txtUrl{"txtUrl"};
    TextBox txtDesc{"txtDesc"};
    BrowserPlace wbMyBrowser{"wbMyBrowser"};

    ListView lvwPermanent;
    ListView ListView1;
    ListView lvwPAD;
    ListView lvwNonPad;
    TabControl SSTab1;

    Button cmdEdit{"cmdEdit", "Edit"};
    Button cmdDelete{"cmdDelete", "Delete"};
    Button cmdSave{"cmdSave", "Move Record to Permanent"};
    Button cmdGoto{"cmdGoto", "Goto"};
    Button cmdReset{"cmdReset", "Reset All"};

    StatusBar StatusBar1{"StatusBar1"};
    Timer Timer1{"Timer1"};

    // The window itself, with all of the above in it.
    WindowForm form{"frmBrowser"};

    WindowControls();

private:
    void place_controls();
    void order_controls();
};

} // namespace kestrune
