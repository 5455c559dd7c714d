#pragma once

#include <QElapsedTimer>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace kestrune {

// Says how far a piece of work is that something waits for, and lets the user end it. Work that is done soon
// shows nothing.
class ProgressWindow {
public:
    // Longer work is shown.
    static constexpr std::chrono::milliseconds patience = std::chrono::seconds(1);

    // The heading says what is being done, the text why; stop is the caption of the button that ends it.
    struct Texts {
        std::string heading;
        std::string text;
        std::string stop;
    };

    explicit ProgressWindow(Texts texts, std::chrono::milliseconds after = patience);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;
    ProgressWindow(ProgressWindow&&) = delete;
    ProgressWindow& operator=(ProgressWindow&&) = delete;

    // To be called several times a second: shows the window when it is time to, and serves the events of the
    // user interface. A total of 0 is one that is not known yet. False once the user has pressed the button
    // or closed the window.
    [[nodiscard]] bool show(std::int64_t done, std::int64_t total);

private:
    class Dialog;

    Texts texts_;
    std::chrono::milliseconds after_;
    QElapsedTimer since_;
    std::unique_ptr<Dialog> dialog_; // none before it is time
};

} // namespace kestrune
