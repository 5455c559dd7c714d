#pragma once

#include "library/site_library.h"
#include "platform/control.h"
#include "platform/form.h"
#include "platform/list_view.h"
#include "platform/user_interface.h"
#include "platform/window_form.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune {

// Asks how the submission to a site went.
class FrmNote : public Form {
public:
    TextBox txtSiteUrl{"txtSiteUrl"};
    TextBox txtSiteDesc{"txtSiteDesc"};
    OptionGroup optSubmit{"optSubmit", {"Submit Successfully", "Submit Failure", "Retry Now"}};
    TextBox txtNote{"txtNote", true};
    Button cmdSave{"cmdSave", "Save"};
    Button cmdCancel{"cmdCancel", "Cancel"};
    bool bSaved = false;

    FrmNote();
};

// Edits one site of the library; the title is the same for sites without PAD support.
class FrmEditPad : public Form {
public:
    TextBox txtPadDesc{"txtPadDesc"};
    TextBox txtPADUrl{"txtPADUrl"};
    OptionGroup optStatus{"optStatus", {"N=Not yet submitted", "Y=Submitted", "P=Submit Failure"}};
    OptionGroup optCategory;
    TextBox txtPadComment{"txtPadComment", true};
    Button cmdSave{"cmdSave", "Save"};
    Button cmdCancel{"cmdCancel", "Cancel"};
    bool bSaved = false;

    FrmEditPad();
};

// What of a window the procedures below work on.
struct SubmitStatusControls {
    UserInterface& desktop;
    SiteLibrary& library;
    const WindowForm& form;
    const TextBox& txtUrl;
    const TextBox& txtDesc;
    ListView& lvwPAD;
    ListView& lvwNonPad;
    StatusBar& StatusBar1;
};

// Asks for the outcome at the site in the address box and stores it with the site of that address. The list
// entry that shows it is the one of lngCurPadKey, the site that playback picked last, on the tab that was
// current then (2 or 3; no list on any other). A list without that entry is left alone, and the site is
// stored all the same.
void MarkSubmitStatus(const SubmitStatusControls& window, int glngCurTab, std::int32_t lngCurPadKey);

// Edits the site of a list entry: the selected entry of the list shows what was saved, and the site is
// written back, after a cancel with the values given here.
void EditSiteRecord(const SubmitStatusControls& window, ListView& listView, std::string_view listKey,
                    std::string description, std::string url, std::string status, std::string category,
                    std::string comment);

// Sets the status of every site with (or without) PAD support to "N", and of every entry of the list;
// comments stay. An error ends it: sites reset by then stay so, and the list is left as it is.
void ResetSiteStatus(SiteLibrary& library, std::string_view dbName, ListView& listView, bool padEnabled);

// The reset button: asks, then resets the sites of the PAD list when its tab (2) is current, and those of the
// other list on every other tab.
void cmdReset_Click(const SubmitStatusControls& window, int glngCurTab);

} // namespace kestrune
