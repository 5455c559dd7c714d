#pragma once

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QObject>

#include <deque>
#include <functional>
#include <string>

namespace kestrune::testing_desktop {

// The user in front of modal dialogs: does in each one, as it comes up, what the test said beforehand.
class DialogUser final : public QObject {
public:
    using Action = std::function<void(QDialog&)>;

    DialogUser() { qApp->installEventFilter(this); }

    // The next dialog must have this object name.
    void expect(std::string name, Action action) {
        expected_.push_back({std::move(name), std::move(action)});
    }

    [[nodiscard]] bool done() const { return expected_.empty() && surprises.empty(); }
    std::deque<std::string> surprises; // dialogs that nobody expected

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const dialog = qobject_cast<QDialog*>(watched);
        if (dialog == nullptr || event->type() != QEvent::Show)
            return false;
        const std::string name = dialog->objectName().toStdString();
        if (expected_.empty() || expected_.front().name != name) {
            surprises.push_back(name);
            QMetaObject::invokeMethod(
                dialog, [dialog] { dialog->done(0); }, Qt::QueuedConnection);
            return false;
        }
        Action action = std::move(expected_.front().action);
        expected_.pop_front();
        QMetaObject::invokeMethod(
            dialog, [dialog, action = std::move(action)] { action(*dialog); }, Qt::QueuedConnection);
        return false;
    }

private:
    struct Expected {
        std::string name;
        Action action;
    };
    std::deque<Expected> expected_;
};

} // namespace kestrune::testing_desktop
