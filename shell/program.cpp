#include "shell/program.h"

#include "shell/browser_window.h"

#include <algorithm>
#include <utility>

namespace kestrune {

Program::Program(UserInterface& ui, Files& files, Database& database, std::string folder)
    : ui_(ui), files_(files), folder_(std::move(folder)), backup_(database, files, folder_),
      library_(database, files, folder_), record_files_(files, folder_), frmPreference_(ui, files) {
    library_.keep_backups(backup_);
}

Program::~Program() {
    // Pop-ups refer to their openers, so the newest goes first.
    while (!windows_.empty())
        windows_.pop_back();
}

BrowserWindow& Program::start() {
    BrowserWindow& window = new_window(nullptr);
    window.form.Visible = true;
    return window;
}

BrowserWindow& Program::new_window(BrowserWindow* opener) {
    BrowserWindow& window = *windows_.emplace_back(std::make_unique<BrowserWindow>(*this, opener));
    try {
        window.Form_Load();
    } catch (...) {
        windows_.pop_back();
        show_uppermost();
        throw;
    }
    return window;
}

void Program::hide_all_but(const BrowserWindow& window) {
    for (const auto& other : windows_) {
        if (other.get() != &window)
            other->form.Visible = false;
    }
}

void Program::show_uppermost() {
    const auto uppermost =
        std::find_if(windows_.rbegin(), windows_.rend(), [](const auto& window) { return !window->going(); });
    if (uppermost != windows_.rend())
        (*uppermost)->form.Visible = true;
}

void Program::destroy_later(const BrowserWindow& window) {
    ui_.call_later([this, gone = &window] {
        std::erase_if(windows_, [gone](const auto& candidate) { return candidate.get() == gone; });
    });
}

void Program::end() { ui_.EndProgram(); }

} // namespace kestrune
