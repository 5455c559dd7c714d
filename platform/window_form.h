#pragma once

#include "platform/control.h"
#include "platform/list_view.h"
#include "platform/menu.h"
#include "platform/tab_control.h"

#include <functional>
#include <string>
#include <vector>

namespace kestrune {

// A main window as data: what a view needs to know to make a real window of it. All pointers are to controls
// that the window's own class holds; they outlive the view.
class WindowForm : public Observed {
public:
    explicit WindowForm(std::string name) : Name(std::move(name)) {}

    // A key that works anywhere in the window without standing in a menu.
    struct Shortcut {
        std::string Keys; // portable notation, such as "Alt+Left"
        std::function<void()> Press;
    };

    const std::string Name;
    Property<std::string> Caption{*this};
    // Outer place and size in twips. The view keeps them true to the real window and calls `Resize` after
    // each change of the size; setting them from code moves and sizes the real window.
    Property<int> Left{*this};
    Property<int> Top{*this};
    Property<int> Width{*this};
    Property<int> Height{*this};
    Property<bool> Visible{*this};
    Property<bool> Minimised{*this};

    // What the outer size has over the inner area, in twips: borders across; title, menu bar and borders
    // down. Platforms differ and some have no frame at all, so the layout takes this one fixed difference
    // everywhere.
    static constexpr int frame_width = 120;
    static constexpr int frame_height = 870;

    std::vector<MenuItem*> MenuBar;
    std::vector<Control*> Controls; // children of the inner area in stacking order, lowest first
    std::vector<Control*> TabOrder; // in the order in which the Tab key walks them
    std::vector<Timer*> Timers;
    std::vector<Shortcut> Shortcuts;

    std::function<void()> Resize;
    // The user asks to close the window (close box). The view closes only through UserInterface.
    std::function<void()> CloseRequested;
};

} // namespace kestrune
