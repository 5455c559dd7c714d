#include "platform/memory/memory_ui.h"

#include <utility>

namespace kestrune {
namespace {

Answer safest(Buttons buttons) {
    switch (buttons) {
    case Buttons::YesNo:
        return Answer::No;
    case Buttons::OkCancel:
        return Answer::Cancel;
    case Buttons::Ok:
        break;
    }
    return Answer::Ok;
}

bool choose_entry(const MenuItem& menu, const std::string& name) {
    for (const MenuItem* item : menu.Items) {
        if (choose_entry(*item, name))
            return true;
        if (item->Name != name || !item->Enabled.get())
            continue;
        item->choose();
        return true;
    }
    return false;
}

} // namespace

Answer MemoryUserInterface::MessageBox(std::string_view text, Buttons buttons, std::string_view title) {
    asked.push_back({std::string(text), buttons, std::string(title)});
    if (boxes_.empty()) {
        failures.push_back("unexpected message box: " + std::string(text));
        return safest(buttons);
    }
    const Box box = std::move(boxes_.front());
    boxes_.pop_front();
    if (box.text != text)
        failures.push_back("message box \"" + std::string(text) + "\" where \"" + box.text +
                           "\" was expected");
    if (box.meanwhile)
        box.meanwhile();
    return box.answer;
}

void MemoryUserInterface::ShowModal(Form& form) {
    shown_forms.push_back(form.Name);
    form.Visible = true;
    if (forms_.empty()) {
        failures.push_back("unexpected dialog: " + form.Name);
    } else {
        const Dialog dialog = std::move(forms_.front());
        forms_.pop_front();
        if (dialog.name != form.Name)
            failures.push_back("dialog " + form.Name + " where " + dialog.name + " was expected");
        else
            dialog.user(form);
    }
    if (form.Visible.get() && form.Cancel != nullptr)
        form.Cancel->press();
    form.Hide();
}

void MemoryUserInterface::PopupMenu(const MenuItem& menu) {
    if (menus_.empty()) {
        failures.push_back("unexpected menu: " + menu.Name);
        return;
    }
    const auto [name, entry] = std::move(menus_.front());
    menus_.pop_front();
    if (name != menu.Name)
        failures.push_back("menu " + menu.Name + " where " + name + " was expected");
    else if (!entry.empty() && !choose_entry(menu, entry))
        failures.push_back("no entry " + entry + " in menu " + name);
}

std::string MemoryUserInterface::OpenFileDialog(std::string_view filter) {
    if (files_.empty()) {
        failures.push_back("unexpected file dialog: " + std::string(filter));
        return {};
    }
    std::string chosen = std::move(files_.front());
    files_.pop_front();
    return chosen;
}

std::unique_ptr<Browser> MemoryUserInterface::open_window(WindowForm& form, BrowserEvents& events) {
    const std::size_t index = browsers.size();
    auto browser = std::make_unique<MemoryBrowser>(form, events);
    browsers.push_back(browser.get());
    browser->on_destroyed = [this, index] { browsers[index] = nullptr; };
    if (form.Resize)
        form.Resize();
    return browser;
}

void MemoryUserInterface::DoEvents() {
    if (on_do_events)
        on_do_events();
}

void MemoryUserInterface::expect_box(std::string text, Answer answer, std::function<void()> meanwhile) {
    boxes_.push_back({std::move(text), answer, std::move(meanwhile)});
}

void MemoryUserInterface::expect_form(std::string name, std::function<void(Form&)> user) {
    forms_.push_back({std::move(name), std::move(user)});
}

void MemoryUserInterface::run_later() {
    while (run_one_later()) {
    }
}

bool MemoryUserInterface::run_one_later() {
    if (later_.empty())
        return false;
    const auto call = std::move(later_.front());
    later_.pop_front();
    call();
    return true;
}

bool type_into(Form& form, std::string_view name, std::string text) {
    auto* const box = dynamic_cast<TextBox*>(form.find(name));
    if (box == nullptr || box->Locked.get() || !box->Enabled.get())
        return false;
    box->Text = std::move(text);
    return true;
}

bool choose_option(Form& form, std::string_view name, int index) {
    auto* const group = dynamic_cast<OptionGroup*>(form.find(name));
    if (group == nullptr || !group->Enabled.get() || index >= static_cast<int>(group->Captions.size()))
        return false;
    group->Selected = index;
    return true;
}

bool press_button(Form& form, std::string_view name) {
    auto* const button = dynamic_cast<Button*>(form.find(name));
    if (button == nullptr || !button->Enabled.get())
        return false;
    button->press();
    return true;
}

} // namespace kestrune
