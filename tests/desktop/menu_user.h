#pragma once

#include <QApplication>
#include <QEvent>
#include <QMenu>
#include <QObject>

#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace kestrune::testing_desktop {

// The user in front of pop-up menus: does in each one, as it comes up, what the test said beforehand. Menus
// that open out of the one that is being used are the action's own affair.
class MenuUser final : public QObject {
public:
    using Action = std::function<void(QMenu&)>;

    MenuUser() { qApp->installEventFilter(this); }

    // The next menu must have this object name.
    void expect(std::string name, Action action) {
        expected_.push_back({std::move(name), std::move(action)});
    }

    [[nodiscard]] bool done() const { return expected_.empty() && !using_; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const menu = qobject_cast<QMenu*>(watched);
        if (menu == nullptr || event->type() != QEvent::Show || using_ || expected_.empty() ||
            expected_.front().name != menu->objectName().toStdString())
            return false;
        using_ = true;
        Action action = std::move(expected_.front().action);
        expected_.pop_front();
        QMetaObject::invokeMethod(
            menu,
            [this, menu, action = std::move(action)] {
                action(*menu);
                using_ = false;
            },
            Qt::QueuedConnection);
        return false;
    }

private:
    struct Expected {
        std::string name;
        Action action;
    };
    std::deque<Expected> expected_;
    bool using_ = false;
};

} // namespace kestrune::testing_desktop
