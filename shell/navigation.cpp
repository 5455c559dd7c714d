#include "shell/browser_window.h"

#include "platform/center_form.h"
#include "shell/dialogs.h"
#include "shell/makers_site.h"

#include <cstddef>

namespace kestrune {
namespace {

constexpr std::size_t fewest_dots_to_restart = 20;

// Dots at the end of the text; a text of nothing but dots counts as none.
std::size_t dots_at_end(std::string_view text) {
    const auto last_other = text.find_last_not_of('.');
    return last_other == std::string_view::npos ? 0 : text.size() - last_other - 1;
}

} // namespace

void BrowserWindow::navigate(std::string_view url) {
    ++visit_;
    browser_->Navigate(url);
}

void BrowserWindow::OpenSiteForPlayback(std::string_view url, std::string_view description) {
    gbRightClickDone = false;
    bAutoFillFlag = true;
    bFindLinkFlag = true;
    txtUrl.Text = std::string(url);
    txtDesc.Text = std::string(description);
    strLastUrl.clear();
    lngFormCount = 0;
    gstrCurMode = playback_mode;
    navigate(txtUrl.Text.get());
    AutoHideRecordPanel();
}

void BrowserWindow::cmdGoto_Click() {
    lngFormCount = 0;
    const auto selected = ReadSelectedEntry(CurrentRecordList());
    if (!selected.found) {
        program_.ui().MessageBox(nothing_selected);
        return;
    }
    const Answer answer = program_.ui().MessageBox("Do you want to go to this site?", Buttons::YesNo,
                                                   "Address: " + selected.url);
    if (answer != Answer::Yes)
        return;
    OpenSiteForPlayback(selected.url, selected.text);
    AutoHideRecordPanel();
}

void BrowserWindow::cmdBack_Click() {
    if (objParentForm != nullptr && !bBackEnabled) {
        Unload();
        return;
    }
    gbGobackFlag = true;
    browser_->GoBack();
    AutoHideRecordPanel();
}

void BrowserWindow::mnuWebsite_Click() {
    navigate(makers_site);
    AutoHideRecordPanel();
}

void BrowserWindow::reload() { browser_->Reload(); }

void BrowserWindow::stop() { browser_->Stop(); }

void BrowserWindow::open_address() {
    FrmOpenAddress dialog{browser_->LocationURL()};
    CenterForm(dialog, program_.ui().screen());
    program_.ui().ShowModal(dialog);
    if (!dialog.bSaved || dialog.txtAddress.Text.get().empty())
        return;
    // From here on the user browses; the site that was being played must not have its link searched or its
    // form replayed on a page the user chose.
    gstrCurMode.clear();
    bFindLinkFlag = false;
    navigate(dialog.txtAddress.Text.get());
    AutoHideRecordPanel();
}

void BrowserWindow::mnuAbout_Click() {
    FrmAbout dialog{program_.ui().engine_version(), [this] { forget_sites(); }};
    CenterForm(dialog, program_.ui().screen());
    program_.ui().ShowModal(dialog);
}

void BrowserWindow::forget_sites() {
    UserInterface& ui = program_.ui();
    const Answer answer =
        ui.MessageBox("Do you want to forget what all sites have stored on this computer? "
                      "You will be signed out, of sites that ask for a name and a password above the "
                      "page when the program ends.",
                      Buttons::YesNo);
    if (answer != Answer::Yes)
        return;
    ui.forget_sites();
    ui.MessageBox(
        "Cookies are deleted. What else sites have stored, the cache included, is deleted when the program "
        "starts the next time; passwords given above the page are kept until it ends.");
}

void BrowserWindow::CommandStateChange(int command, bool enable) {
    events_.handle([this, command, enable] { on_command_state(command, enable); });
}

void BrowserWindow::on_command_state(int command, bool enable) {
    if (command != navigate_back)
        return;
    if (objParentForm == nullptr)
        cmdBack.Enabled = enable;
    bBackEnabled = enable;
    // The user went back past the first page of a pop-up.
    if (!enable && objParentForm != nullptr && gbGobackFlag)
        Unload();
}

void BrowserWindow::BeforeNavigate2(NavigateEvent event) {
    if (event.top_level)
        ++visit_;
    events_.handle([this, event = std::move(event)]() mutable {
        StatusBar1.set_text(1, "Going to " + event.url + "...");
        Timer1.Interval = 1000;
        Timer1.Enabled = true;
        CaptureSubmission(capture(), std::move(event));
    });
}

void BrowserWindow::Timer1_Timer() {
    std::string text = StatusBar1.text(1);
    const std::size_t dots = dots_at_end(text);
    if (dots < fewest_dots_to_restart) {
        text += "..";
    } else {
        text.resize(text.size() - dots);
        text += '.';
    }
    StatusBar1.set_text(1, text);
}

PageParts BrowserWindow::wanted_parts() { return kestrune::wanted_parts(page_processing()); }

void BrowserWindow::DocumentComplete(PageDocument image) {
    events_.handle([this, visit = visit_, image = std::move(image)]() mutable {
        if (visit != visit_)
            return;
        store_.wait_until_loaded();
        OnDocumentComplete(page_processing(), std::move(image));
    });
}

} // namespace kestrune
