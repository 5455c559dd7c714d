#include "shell/browser_window.h"

#include "platform/center_form.h"
#include "shell/dialogs.h"

#include <utility>

namespace kestrune {

bool BrowserWindow::ContextMenu(const ElementRef& field) {
    // The browser waits to hear whether it shall show its own menu, so this cannot stand in line behind a
    // question that is open already.
    if (events_.busy())
        return false;
    bool done = false;
    events_.handle([this, &field, &done] { done = fill_by_menu(field); });
    return done;
}

// True when an entry was chosen.
bool BrowserWindow::fill_by_menu(const ElementRef& field) {
    FrmPreference& profile = frmPreference();
    fill_menu.show_values(profile);
    glngMnuIdx = fill_nothing;
    program_.ui().PopupMenu(mnuRightClickMenu);
    if (glngMnuIdx == fill_nothing)
        return false;
    // The image is taken now, not when the menu opened: a page does not wait.
    auto image = browser_->take_image(field.document, parts_for_entry(glngMnuIdx));
    if (!image)
        return true;
    // The user has pointed at one field; a page that has put another in its place gets nothing.
    if (image->active_element.ref.element != field.element)
        image->active_element = {};
    LivePage page{*browser_, *std::move(image)};
    if (auto report = FillFromMenu(page, profile, glngMnuIdx))
        last_fill_ = std::move(report);
    return true;
}

void BrowserWindow::show_fill_report() {
    FrmFillReport dialog{!last_fill_ ? "No form has been filled by \"Multi-input\" in this window yet."
                         : last_fill_->empty()
                             ? "The last \"Multi-input\" found no form around the focused field."
                             : FillReportText(*last_fill_)};
    CenterForm(dialog, program_.ui().screen());
    program_.ui().ShowModal(dialog);
}

} // namespace kestrune
