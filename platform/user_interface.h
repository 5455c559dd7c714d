#pragma once

#include "platform/browser.h"
#include "platform/form.h"
#include "platform/window_form.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kestrune {

enum class Buttons : std::uint8_t { Ok, OkCancel, YesNo };
enum class Answer : std::uint8_t { Ok, Cancel, Yes, No };

struct ScreenSize {
    int Width = 0; // twips
    int Height = 0;
};

// The services of the desktop. All calls on the user-interface thread.
class UserInterface {
public:
    UserInterface() = default;
    virtual ~UserInterface() = default;
    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;
    UserInterface(UserInterface&&) = delete;
    UserInterface& operator=(UserInterface&&) = delete;

    // The title of a message box that is given no other.
    static constexpr std::string_view default_title = "Kestrune";

    // Asks or tells, modally, and returns the button pressed; events are served meanwhile. A Yes/No question
    // can only be answered by its buttons; Esc and the close box answer an OK/Cancel question with Cancel.
    virtual Answer MessageBox(std::string_view text, Buttons buttons, std::string_view title) = 0;
    Answer MessageBox(std::string_view text, Buttons buttons = Buttons::Ok) {
        return MessageBox(text, buttons, default_title);
    }

    // Shows the dialog and returns once it is hidden. The dialog's controls hold what the user left in them.
    virtual void ShowModal(Form& form) = 0;

    // Shows a menu of a window as a pop-up menu where the user asked for it there, and returns once it is
    // closed and the chosen entry has done its work; at once when that window is hidden.
    virtual void PopupMenu(const MenuItem& menu) = 0;

    // Lets the user choose a file to open. filter is "description|pattern". The full path, "" when cancelled.
    virtual std::string OpenFileDialog(std::string_view filter) = 0;

    [[nodiscard]] virtual ScreenSize screen() const = 0;

    // Makes the real window that mirrors `form`, still hidden, with an embedded browser in its BrowserPlace
    // that reports to `events`. The real window lives as long as the browser; both arguments outlive it.
    virtual std::unique_ptr<Browser> open_window(WindowForm& form, BrowserEvents& events) = 0;

    // Serves pending events during long work.
    virtual void DoEvents() = 0;
    // Runs the call later, from the event loop, when no handler is on the stack.
    virtual void call_later(std::function<void()> call) = 0;
    // The program ends once the current event has been served.
    virtual void EndProgram() = 0;

    // Forgets what sites have stored on this computer: sign-ins and cookies at once, the rest when the
    // program starts the next time.
    virtual void forget_sites() = 0;

    // For the About dialog: the engine's name, version and security state, one line each.
    [[nodiscard]] virtual std::string engine_version() const = 0;
};

} // namespace kestrune
