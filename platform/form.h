#pragma once

#include "platform/control.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

// A modal dialog as data: rows of a label and a control, then a row of buttons. Whoever shows it (see
// UserInterface::ShowModal) lays the rows out; the order is the one given here.
class Form : public Observed {
public:
    struct Row {
        std::string Label;        // as shown, colon included
        Control* Field = nullptr; // a TextBox, an OptionGroup or a Label; owned by the dialog's own class
        std::string Group = {};   // rows in a run with the same non-empty group stand under it as a heading
        // Rows in a run with the same non-empty page lie together on a page of that caption; pages that
        // follow one another make one tab control, its first page in front.
        std::string Page = {};
        // Shown in place of `Label` and followed as it changes; owned like the field.
        kestrune::Label* Title = nullptr;
        // Shown small below or beside the field, and followed as it changes; owned like the field.
        kestrune::Label* Hint = nullptr;
    };

    Form(std::string name, std::string caption) : Name(std::move(name)), Caption(*this, std::move(caption)) {}

    const std::string Name;
    Property<std::string> Caption;
    // Outer geometry in twips; the view keeps Left and Top and may enlarge Width and Height to fit the
    // content.
    Property<int> Left{*this};
    Property<int> Top{*this};
    Property<int> Width{*this};
    Property<int> Height{*this};
    // True while it is shown; setting it false ends ShowModal.
    Property<bool> Visible{*this};

    std::vector<Row> Rows;
    std::vector<Button*> Buttons;  // left to right
    Button* Default = nullptr;     // pressed by Enter, except in a multi-line text box
    Button* Cancel = nullptr;      // pressed by Esc and by the close box; without one neither does anything
    Control* FirstFocus = nullptr; // where the user types first

    void Hide() { Visible = false; }

    // The control or title of a row or the button with this name, or null.
    [[nodiscard]] Control* find(std::string_view name) const {
        for (const Row& row : Rows) {
            if (row.Field != nullptr && row.Field->Name == name)
                return row.Field;
            if (row.Title != nullptr && row.Title->Name == name)
                return row.Title;
        }
        for (Button* button : Buttons) {
            if (button->Name == name)
                return button;
        }
        return nullptr;
    }
};

} // namespace kestrune
