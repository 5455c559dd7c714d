#pragma once

#include "platform/memory/memory_ui.h"
#include "platform/qt/qt_user_interface.h"
#include "shell/window_controls.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace kestrune::testing_desktop {

// Serves events until the condition holds; false when it does not within ten seconds.
inline bool wait_until(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(10000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    }
    return true;
}

class NoEvents final : public BrowserEvents {
public:
    [[nodiscard]] PageParts wanted_parts() override { return {}; }
    void BeforeNavigate2(NavigateEvent /*event*/) override {}
    void DocumentComplete(PageDocument /*image*/) override {}
    void CommandStateChange(int /*command*/, bool /*enable*/) override {}
    Browser* NewWindow2() override { return nullptr; }
};

// The designed controls in a real window, without the logic that moves them.
struct RealWindow {
    WindowControls controls;
    NoEvents events;
    QtUserInterface desktop;
    std::unique_ptr<Browser> browser;

    void open() { browser = desktop.open_window(controls.form, events); }
    void show() {
        if (browser == nullptr)
            open();
        controls.form.Visible = true;
    }

    // One window is open at a time in these tests.
    [[nodiscard]] QWidget& window() const {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "frmBrowser")
                return *top;
        }
        throw std::runtime_error("no window");
    }
    template <typename Widget = QWidget>
    [[nodiscard]] Widget& widget(const std::string& name) const {
        auto* const found = window().findChild<Widget*>(QString::fromStdString(name));
        if (found == nullptr)
            throw std::runtime_error("no widget " + name);
        return *found;
    }
};

} // namespace kestrune::testing_desktop
