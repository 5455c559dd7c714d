#pragma once

#include "platform/control.h"
#include "platform/qt/bindings.h"
#include "platform/tab_control.h"

#include <QWidget>

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace kestrune {

class FittedLabel;

// Makes a widget for each control and ties the two: changes of the control show at once, what the user does
// reaches the control. Each widget has the control's name as its object name and an accessible name.
class ControlWidgets {
public:
    enum class Placing : std::uint8_t {
        by_control, // the control's geometry is the widget's
        by_layout,  // a layout places the widget
    };
    explicit ControlWidgets(Placing placing) : placing_(placing) {}

    // The control, which outlives the binding, gets a child widget of `parent` with all that lies in it.
    QWidget& add(Control& control, QWidget& parent);

    // A line of text that names the field, on screen and to assistive technology. Calls `changed` now and
    // after each change.
    FittedLabel& add_title(Label& title, QWidget& parent, QWidget& field, std::function<void()> changed);

    // Null for a control that was not added.
    [[nodiscard]] QWidget* widget(const Control* control) const;
    // What the keyboard focus goes to; null for what cannot be typed into or pressed.
    [[nodiscard]] QWidget* focus_widget(const Control* control) const;

    // Controls and widgets know nothing of each other afterwards.
    void release() { bindings_.release(); }
    [[nodiscard]] Bindings& bindings() { return bindings_; }

private:
    QWidget& make(Control& control, QWidget& parent);
    QWidget& make_button(Button& button, QWidget& parent);
    QWidget& make_label(Label& label, QWidget& parent);
    QWidget& make_text_box(TextBox& box, QWidget& parent);
    QWidget& make_text_line(TextBox& box, QWidget& parent);
    QWidget& make_text_area(TextBox& box, QWidget& parent);
    QWidget& make_options(OptionGroup& group, QWidget& parent);
    QWidget& make_frame(Frame& frame, QWidget& parent);
    QWidget& make_status_bar(StatusBar& bar, QWidget& parent);
    QWidget& make_tabs(TabControl& tabs, QWidget& parent);
    QWidget& make_list(ListView& list, QWidget& parent);

    // Keeps name, geometry, enabled and visible state, then `rest`, true to the control.
    void tie(Control& control, QWidget& widget, std::function<void()> rest = {});
    void show_state(const Control& control, QWidget& widget) const;

    Placing placing_;
    std::map<const Control*, QWidget*> widgets_;          // owned by their parents
    std::map<const ListView*, const TabControl*> on_tab_; // lists show only while their tab is in front
    Bindings bindings_;
};

} // namespace kestrune
