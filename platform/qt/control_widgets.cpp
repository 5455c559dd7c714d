#include "platform/qt/control_widgets.h"

#include "platform/qt/accessibility.h"
#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/list_widget.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/tab_panel.h"
#include "platform/qt/twips.h"

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

// How far the text of a label of fixed size may be squeezed to fit.
constexpr double label_squeeze = 0.75;

bool on_front_tab(const TabControl& tabs, const ListView& list) {
    const auto tab = static_cast<std::size_t>(tabs.Tab());
    return tab < tabs.Pages.size() && tabs.Pages[tab].List == &list;
}

} // namespace

QWidget& ControlWidgets::add(Control& control, QWidget& parent) {
    QWidget& made = make(control, parent);
    made.setObjectName(to_qt(control.Name));
    if (made.accessibleName().isEmpty() && !control.AccessibleName.empty())
        made.setAccessibleName(to_qt(control.AccessibleName));
    return made;
}

QWidget* ControlWidgets::widget(const Control* control) const {
    const auto found = widgets_.find(control);
    return found == widgets_.end() ? nullptr : found->second;
}

QWidget* ControlWidgets::focus_widget(const Control* control) const {
    QWidget* const found = widget(control);
    if (auto* const tabs = dynamic_cast<TabPanel*>(found))
        return &tabs->strip();
    return found != nullptr && (found->focusPolicy() & Qt::TabFocus) != 0 ? found : nullptr;
}

QWidget& ControlWidgets::make(Control& control, QWidget& parent) {
    if (auto* const button = dynamic_cast<Button*>(&control))
        return make_button(*button, parent);
    if (auto* const label = dynamic_cast<Label*>(&control))
        return make_label(*label, parent);
    if (auto* const box = dynamic_cast<TextBox*>(&control))
        return make_text_box(*box, parent);
    if (auto* const options = dynamic_cast<OptionGroup*>(&control))
        return make_options(*options, parent);
    if (auto* const frame = dynamic_cast<Frame*>(&control))
        return make_frame(*frame, parent);
    if (auto* const bar = dynamic_cast<StatusBar*>(&control))
        return make_status_bar(*bar, parent);
    if (auto* const tabs = dynamic_cast<TabControl*>(&control))
        return make_tabs(*tabs, parent);
    if (auto* const list = dynamic_cast<ListView*>(&control))
        return make_list(*list, parent);
    auto& place = child_of<ControlContainer>(parent);
    tie(control, place);
    return place;
}

void ControlWidgets::tie(Control& control, QWidget& widget, std::function<void()> rest) {
    widgets_[&control] = &widget;
    bindings_.observe(control, [this, &control, &widget, rest = std::move(rest)] {
        show_state(control, widget);
        if (rest)
            rest();
    });
}

void ControlWidgets::show_state(const Control& control, QWidget& widget) const {
    if (placing_ == Placing::by_control)
        widget.setGeometry(to_pixels(control.Left.get()), to_pixels(control.Top.get()),
                           std::max(0, to_pixels(control.Width.get())),
                           std::max(0, to_pixels(control.Height.get())));
    widget.setEnabled(control.Enabled.get());
    bool visible = control.Visible.get();
    if (const auto* const list = dynamic_cast<const ListView*>(&control)) {
        const auto tabs = on_tab_.find(list);
        visible = visible && (tabs == on_tab_.end() || on_front_tab(*tabs->second, *list));
    }
    widget.setVisible(visible);
}

QWidget& ControlWidgets::make_button(Button& button, QWidget& parent) {
    auto& made = child_of<CaptionButton>(parent);
    tie(button, made, [&button, &made] { made.set_caption(button.Caption.get()); });
    QObject::connect(&made, &QPushButton::clicked, bindings_.context(), [&button] { button.press(); });
    return made;
}

QWidget& ControlWidgets::make_label(Label& label, QWidget& parent) {
    if (placing_ == Placing::by_layout) {
        auto& made = child_of<WrappedLabel>(parent);
        tie(label, made, [&label, &made] { made.setText(to_qt(label.Caption.get())); });
        return made;
    }
    auto& made = child_of<FittedLabel>(parent, label_squeeze);
    made.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    tie(label, made, [&label, &made] { made.set_caption(to_qt(label.Caption.get())); });
    return made;
}

FittedLabel& ControlWidgets::add_title(Label& title, QWidget& parent, QWidget& field,
                                       std::function<void()> changed) {
    auto& made = child_of<FittedLabel>(parent, 1.0);
    made.setObjectName(to_qt(title.Name));
    made.setBuddy(&field);
    const bool named = !field.accessibleName().isEmpty();
    tie(title, made, [&title, &made, &field, named, changed = std::move(changed)] {
        const QString caption = to_qt(title.Caption.get());
        made.set_caption(caption);
        if (!named)
            field.setAccessibleName(caption);
        changed();
    });
    return made;
}

QWidget& ControlWidgets::make_frame(Frame& frame, QWidget& parent) {
    auto& made = child_of<ControlContainer>(parent);
    tie(frame, made);
    for (Control* control : frame.Controls)
        add(*control, made);
    return made;
}

QWidget& ControlWidgets::make_status_bar(StatusBar& bar, QWidget& parent) {
    auto& made = child_of<StatusPanels>(parent);
    made.set_names(to_qt(bar.Name));
    tie(bar, made, [&bar, &made] {
        for (int index = 1; index <= 3; ++index)
            made.set_panel(index - 1, to_qt(bar.text(index)), to_pixels(bar.width(index)));
    });
    return made;
}

QWidget& ControlWidgets::make_tabs(TabControl& tabs, QWidget& parent) {
    auto& made = child_of<TabPanel>(parent);
    made.strip().setObjectName(to_qt(tabs.Name) + QStringLiteral(".Strip"));
    made.strip().setAccessibleName(to_qt(tabs.AccessibleName.empty() ? tabs.Name : tabs.AccessibleName));
    for (const TabControl::Page& page : tabs.Pages) {
        made.add_tab(literal(page.Caption));
        on_tab_[page.List] = &tabs;
        add(*page.List, made);
    }
    tie(tabs, made, [this, &tabs, &made] {
        made.set_strip_height(to_pixels(tabs.TabHeight.get()));
        made.set_current(tabs.Tab());
        for (const TabControl::Page& page : tabs.Pages)
            show_state(*page.List, *widgets_.at(page.List));
    });
    made.chosen = [&tabs](int tab) { tabs.set_tab(tab); };
    bindings_.at_release([&made] { made.chosen = nullptr; });
    return made;
}

QWidget& ControlWidgets::make_list(ListView& list, QWidget& parent) {
    auto& made = child_of<ListWidget>(parent, list);
    tie(list, made);
    bindings_.at_release([&made] { made.release(); });
    return made;
}

} // namespace kestrune
