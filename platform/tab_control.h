#pragma once

#include "platform/control.h"
#include "platform/list_view.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// A tab control whose pages each hold one list view.
class TabControl : public Control {
public:
    struct Page {
        std::string Caption;
        ListView* List; // owned by the window
    };

    TabControl(std::string name, std::vector<Page> pages)
        : Control(std::move(name)), Pages(std::move(pages)) {}

    const std::vector<Page> Pages;
    Property<int> TabHeight{*this, 300}; // height of the tab strip, twips

    // Called after the current tab changed, by the user or by code.
    std::function<void()> Click;

    [[nodiscard]] int Tab() const { return tab_; } // 0-based
    // Brings a tab to the front. Choosing the tab that is current already changes and calls nothing.
    void set_tab(int tab) {
        if (tab == tab_ || tab < 0 || tab >= static_cast<int>(Pages.size()))
            return;
        tab_ = tab;
        notify();
        if (Click)
            Click();
    }

private:
    int tab_ = 0;
};

} // namespace kestrune
