#pragma once

#include "platform/memory/memory_browser.h"
#include "platform/user_interface.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kestrune {

// A desktop without a screen. Questions and dialogs are answered from a script that the test writes
// beforehand; one that nobody expected is noted as a failure and answered in the way that changes least.
class MemoryUserInterface : public UserInterface {
public:
    struct Asked {
        std::string text;
        Buttons buttons = Buttons::Ok;
        std::string title;
        friend bool operator==(const Asked&, const Asked&) = default;
    };

    using UserInterface::MessageBox;
    Answer MessageBox(std::string_view text, Buttons buttons, std::string_view title) override;
    void ShowModal(Form& form) override;
    void PopupMenu(const MenuItem& menu) override;
    std::string OpenFileDialog(std::string_view filter) override;
    [[nodiscard]] ScreenSize screen() const override { return screen_size; }
    std::unique_ptr<Browser> open_window(WindowForm& form, BrowserEvents& events) override;
    void DoEvents() override;
    void call_later(std::function<void()> call) override { later_.push_back(std::move(call)); }
    void EndProgram() override { ended = true; }
    void forget_sites() override { ++times_sites_forgotten; }
    [[nodiscard]] std::string engine_version() const override { return "no engine"; }

    // The next message box must have this text and is answered so; `meanwhile` runs while it is open.
    void expect_box(std::string text, Answer answer, std::function<void()> meanwhile = {});
    // The next dialog must have this name; `user` does in it what the user does. A dialog that `user` leaves
    // open is closed as by its close box.
    void expect_form(std::string name, std::function<void(Form&)> user);
    // The next pop-up menu must have this name; the entry of that name is chosen, with "" it is dismissed.
    void expect_menu(std::string name, std::string entry) {
        menus_.push_back({std::move(name), std::move(entry)});
    }
    void expect_file_dialog(std::string chosen) { files_.push_back(std::move(chosen)); }

    // Runs what was put off with call_later, including what that puts off.
    void run_later();
    // Runs the first of them; false when there is none.
    bool run_one_later();

    ScreenSize screen_size{19200, 14400};
    bool ended = false;
    int times_sites_forgotten = 0;
    std::vector<Asked> asked;             // every message box so far
    std::vector<std::string> shown_forms; // names of the dialogs shown so far
    std::vector<std::string> failures;    // what was not expected; a test asserts that it is empty
    std::function<void()> on_do_events;
    std::vector<MemoryBrowser*> browsers; // one for each window opened, null once it is gone

    [[nodiscard]] bool script_done() const {
        return boxes_.empty() && forms_.empty() && files_.empty() && menus_.empty();
    }

private:
    struct Box {
        std::string text;
        Answer answer;
        std::function<void()> meanwhile;
    };
    struct Dialog {
        std::string name;
        std::function<void(Form&)> user;
    };
    std::deque<Box> boxes_;
    std::deque<Dialog> forms_;
    std::deque<std::string> files_;
    std::deque<std::pair<std::string, std::string>> menus_;
    std::deque<std::function<void()>> later_;
};

// Types into a text box, selects an option or presses a button of a dialog, by the control's name, as a user
// does; false when there is no such control or it is locked or disabled.
bool type_into(Form& form, std::string_view name, std::string text);
bool choose_option(Form& form, std::string_view name, int index);
bool press_button(Form& form, std::string_view name);

} // namespace kestrune
