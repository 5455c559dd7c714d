#pragma once

#include "platform/control.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// A menu title, a menu entry or (caption "-") a separator. An entry with children is a submenu.
class MenuItem : public Observed {
public:
    MenuItem(std::string name, std::string caption, bool checked = false)
        : Name(std::move(name)), Caption(*this, std::move(caption)), Checked(*this, checked) {}

    const std::string Name;
    Property<std::string> Caption;
    Property<bool> Checked;
    Property<bool> Enabled{*this, true};
    Property<bool> Visible{*this, true};
    std::vector<MenuItem*> Items; // in order; owned by the window
    bool IsSwitch = false;        // its check mark is shown
    std::string Shortcut;         // key sequence in the portable notation, such as "F1"; empty for none

    // What choosing the entry does. Views call `choose`.
    std::function<void()> Click;

    void choose() const {
        if (Enabled.get() && Click)
            Click();
    }
};

} // namespace kestrune
