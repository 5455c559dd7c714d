#pragma once

#include "platform/user_interface.h"

#include <QObject>
#include <QPointer>

#include <deque>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

class QDialog;

namespace kestrune {

class EngineProfile;
class QtWindow;

// The desktop on Qt. Needs a QApplication (see QtDesktop); lives as long as the windows that it opened.
class QtUserInterface final : public UserInterface {
public:
    QtUserInterface();
    ~QtUserInterface() override;
    QtUserInterface(const QtUserInterface&) = delete;
    QtUserInterface& operator=(const QtUserInterface&) = delete;
    QtUserInterface(QtUserInterface&&) = delete;
    QtUserInterface& operator=(QtUserInterface&&) = delete;

    // What sites store is kept in a folder of that one from the first window on; without it, it is forgotten
    // at the end.
    void keep_site_data_in(std::filesystem::path folder) { site_data_folder_ = std::move(folder); }

    using UserInterface::MessageBox;
    Answer MessageBox(std::string_view text, Buttons buttons, std::string_view title) override;
    void ShowModal(Form& form) override;
    void PopupMenu(const MenuItem& menu) override;
    std::string OpenFileDialog(std::string_view filter) override;
    [[nodiscard]] ScreenSize screen() const override;
    std::unique_ptr<Browser> open_window(WindowForm& form, BrowserEvents& events) override;
    void DoEvents() override;
    void call_later(std::function<void()> call) override;
    void EndProgram() override;
    void forget_sites() override;
    [[nodiscard]] std::string engine_version() const override;

private:
    class Nested;

    // Keeps a dialog above the dialog or window that asks by it.
    void stand_above_window(QDialog& dialog) const;
    // Null when no window is showing.
    [[nodiscard]] QtWindow* shown_window() const;
    [[nodiscard]] bool handler_on_stack() const;
    void wake();
    void run_calls();
    const std::shared_ptr<EngineProfile>& profile();

    std::filesystem::path site_data_folder_;
    std::shared_ptr<EngineProfile> profile_; // made for the first window
    QObject context_;                        // calls put off end with it
    std::vector<QPointer<QtWindow>> windows_;
    std::deque<std::function<void()>> later_;
    bool woken_ = false;
    bool started_ = false; // a window has been opened
    int nested_ = 0;
};

} // namespace kestrune
