#pragma once

#include "platform/user_interface.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrune::drive {

// What a window's browser reported, in order, noted on its way to the window.
struct BrowserReport {
    enum class Kind : std::uint8_t { navigating, completed };
    Kind kind = Kind::navigating;
    std::string url;
    bool top_level = true;    // of a navigation
    DocumentId document = {}; // that completed
};

// The real user interface with an ear on the browsers of its windows. Everything is passed on as it is.
class WatchedInterface final : public UserInterface {
public:
    // `real` outlives it; `browser_made` hears of each browser before it is used.
    explicit WatchedInterface(UserInterface& real, std::function<void(Browser&)> browser_made = {});
    ~WatchedInterface() override;
    WatchedInterface(const WatchedInterface&) = delete;
    WatchedInterface& operator=(const WatchedInterface&) = delete;
    WatchedInterface(WatchedInterface&&) = delete;
    WatchedInterface& operator=(WatchedInterface&&) = delete;

    [[nodiscard]] const std::vector<BrowserReport>& reports() const { return reports_; }
    void forget_reports() { reports_.clear(); }
    // Whether a document at this address has completed since the reports were last forgotten.
    [[nodiscard]] bool completed(std::string_view url) const;
    // The document that completed at this address; the last one, "" when none has.
    [[nodiscard]] DocumentId completed_document(std::string_view url) const;
    // Asks the window opened last for its menu, as its browser does when the user right-clicks on this field,
    // which has the focus.
    bool ask_for_menu(const ElementRef& field);
    // The address of the top window's last navigation.
    [[nodiscard]] std::string last_navigation() const;

    using UserInterface::MessageBox;
    Answer MessageBox(std::string_view text, Buttons buttons, std::string_view title) override {
        return real_.MessageBox(text, buttons, title);
    }
    void ShowModal(Form& form) override { real_.ShowModal(form); }
    void PopupMenu(const MenuItem& menu) override { real_.PopupMenu(menu); }
    std::string OpenFileDialog(std::string_view filter) override { return real_.OpenFileDialog(filter); }
    [[nodiscard]] ScreenSize screen() const override { return real_.screen(); }
    std::unique_ptr<Browser> open_window(WindowForm& form, BrowserEvents& events) override;
    void DoEvents() override { real_.DoEvents(); }
    void call_later(std::function<void()> call) override { real_.call_later(std::move(call)); }
    void EndProgram() override { real_.EndProgram(); }
    void forget_sites() override { real_.forget_sites(); }
    [[nodiscard]] std::string engine_version() const override { return real_.engine_version(); }

private:
    class Ear;

    UserInterface& real_;
    std::function<void(Browser&)> browser_made_;
    std::vector<std::unique_ptr<Ear>> ears_;
    std::vector<BrowserReport> reports_;
};

} // namespace kestrune::drive
