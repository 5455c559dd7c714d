#pragma once

#include "platform/form.h"
#include "platform/user_interface.h"
#include "platform/window_form.h"

namespace kestrune {

// Puts a dialog in the middle of the screen, or of a window. Sizes are those the dialog was designed with.
inline void CenterForm(Form& form, const ScreenSize& screen) {
    form.Left = (screen.Width - form.Width.get()) / 2;
    form.Top = (screen.Height - form.Height.get()) / 2;
}

inline void CenterForm(Form& form, const WindowForm& window) {
    form.Left = window.Left.get() + (window.Width.get() - form.Width.get()) / 2;
    form.Top = window.Top.get() + (window.Height.get() - form.Height.get()) / 2;
}

} // namespace kestrune
