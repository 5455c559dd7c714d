#include "shell/browser_window.h"

#include <string>

namespace kestrune {

Browser* BrowserWindow::NewWindow2() {
    Browser* opened = nullptr;
    const bool more = events_.handle_now([this, &opened] {
        if (may_open_popup())
            opened = &OpenPopupWindow().browser();
    });
    // Not from here: the browser waits for the answer.
    if (more)
        program_.ui().call_later(events_.drain());
    return opened;
}

void BrowserWindow::WindowClosing() {
    if (objParentForm != nullptr)
        events_.handle([this] { Unload(); });
}

bool BrowserWindow::may_open_popup() {
    if (!mnuBlock.Checked.get())
        return true;
    UserInterface& ui = program_.ui();
    if (ui.MessageBox("A pop-up window is requrested, do you want to block it?", Buttons::YesNo) ==
        Answer::Yes) {
        ++lngBlockedPopups;
        StatusBar1.set_text(2, std::to_string(lngBlockedPopups) + " Pop-up is blocked");
        return false;
    }
    ui.MessageBox("Please be awared that the right-click function is disabled in the pop-up window!");
    return true;
}

BrowserWindow& BrowserWindow::OpenPopupWindow() {
    BrowserWindow& popup = program_.new_window(objMeForm);
    popup.form.Caption = "Moravelt v1.0 (Popup Window - Level " + std::to_string(popup.glngPopupLevel) + ")";
    popup.form.Visible = true;
    popup.form.Left = form.Left.get();
    popup.form.Top = form.Top.get();
    popup.form.Width = form.Width.get();
    popup.form.Height = form.Height.get();
    return popup;
}

} // namespace kestrune
