#pragma once

#include <QDialog>
#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QString>

#include <chrono>
#include <deque>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

class QWidget;

namespace kestrune::drive {

// Something did not come about. what() says what was awaited or looked for.
class DriveError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// How long anything may take before it counts as not happening. Generous: it is never waited out when all is
// well.
inline constexpr std::chrono::milliseconds patience = std::chrono::seconds(60);

// Serves events until the condition holds; it is looked at after every batch of events. Throws DriveError,
// which names `what`, when it does not hold in time. May be used while a dialog is open.
void wait_for(std::string_view what, const std::function<bool()>& condition,
              std::chrono::milliseconds time = patience);

// Makes the waits on the user-interface thread look again. From any thread.
void wake();

// Uses the windows of this process as a user does: presses what is to be seen and enabled, types, answers
// dialogs. Widgets are found by object name. Members throw DriveError for what cannot be done. One at a time,
// made after the QApplication.
class Driver : public QObject {
public:
    // Answers a dialog that has come up: the call is to have closed it when it returns. It comes from within
    // the dialog's own event loop. An exception ends the dialog with its last button and reaches the next
    // wait.
    using Answerer = std::function<void(QDialog&)>;

    Driver();
    ~Driver() override;
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;
    Driver(Driver&&) = delete;
    Driver& operator=(Driver&&) = delete;

    // Without an answerer every dialog is an error.
    void answer_with(Answerer answerer) { answerer_ = std::move(answerer); }

    // How long `wait` waits.
    void set_patience(std::chrono::milliseconds time) { patience_ = time; }
    // wait_for, but an error from answering a dialog meanwhile is thrown here.
    void wait(std::string_view what, const std::function<bool()>& condition);
    // Throws an error from answering a dialog that is still to be reported.
    void check();

    // The browser window in front: the visible one that was shown last.
    [[nodiscard]] QWidget& window() const;

    template <typename Widget = QWidget>
    [[nodiscard]] static Widget& find(const QWidget& inside, std::string_view name) {
        if (auto* const found = inside.findChild<Widget*>(to_name(name)))
            return *found;
        throw DriveError("there is no " + std::string(name) + " in " + inside.objectName().toStdString());
    }

    // Presses a button or option with the mouse, where nothing may cover it. Returns when the press has
    // been handled, dialogs that it brings up included.
    void press(std::string_view name);
    void press(QWidget& inside, std::string_view name);
    // Types into a text box in place of what it holds.
    void type(QWidget& inside, std::string_view name, std::string_view text);
    // Chooses an item of the window's menus.
    void choose(std::string_view menu_item);
    // Presses the button of a message box with this caption.
    void answer(QDialog& box, std::string_view button);

    // What the user sees.
    [[nodiscard]] std::string status(int panel) const; // from 1
    [[nodiscard]] std::string text(std::string_view text_box) const;
    [[nodiscard]] static std::string text(const QWidget& inside, std::string_view name);
    // The window with the dialog, if one is open, where it stands.
    [[nodiscard]] QPixmap picture() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static QString to_name(std::string_view name);
    void serve(QDialog& dialog);

    Answerer answerer_;
    std::chrono::milliseconds patience_ = patience;
    std::exception_ptr error_;
    QPointer<QDialog> open_; // the dialog that is being answered
};

} // namespace kestrune::drive
