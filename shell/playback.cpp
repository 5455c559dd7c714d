#include "shell/browser_window.h"

#include "library/playback_queue.h"
#include "library/submit_status.h"

#include <string>

namespace kestrune {
namespace {

constexpr int pad_tab = 2;
constexpr int non_pad_tab = 3;

} // namespace

// Choosing a tab that is current already raises no event, so its buttons and count are set here as well.
void BrowserWindow::show_site_tab(int tab, const std::string& count) {
    SSTab1.set_tab(tab);
    cmdSave.Enabled = false;
    cmdGoto.Enabled = true;
    cmdReset.Enabled = true;
    StatusBar1.set_text(1, count);
}

void BrowserWindow::cmdPlayback_Click() {
    if (mnuWithPAD.Checked.get())
        show_site_tab(pad_tab, std::to_string(glngNoOfPadRecord) + " PAD Records");
    if (mnuNoPAD.Checked.get())
        show_site_tab(non_pad_tab, std::to_string(glngNoOfNonPadRecord) + " NON-PAD Records");
    glngCurTab = SSTab1.Tab();
    if (!txtUrl.Text.get().empty())
        MarkSubmitStatus(submit_status_controls(), glngCurTab, lngCurPadKey);

    const QueueSwitches switches{mnuWithPAD,         mnuNoPAD,          mnuSelectGeneral,  mnuSelectGame,
                                 mnuSelectDeveloper, mnuSelectBusiness, mnuSelectFreeware, mnuSelectSpecial};
    const auto site = SelectNextSite(program_.library(), site_library_name, switches, StatusBar1);
    if (!site) {
        program_.ui().MessageBox("No shareware/freeware site found");
        return;
    }
    lngCurPadKey = site->padkey;
    OpenSiteForPlayback(site->url, site->description);
}

} // namespace kestrune
