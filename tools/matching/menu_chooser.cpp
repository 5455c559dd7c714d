#include "tools/matching/menu_chooser.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>

#include <utility>

namespace kestrune::matching {
namespace {

void click(QMenu& menu, QAction& action) {
    const QPoint at = menu.actionGeometry(&action).center();
    const QPointer<QMenu> target(&menu);
    for (const auto kind : {QEvent::MouseMove, QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool held = kind == QEvent::MouseButtonPress;
        QMouseEvent event(kind, at, menu.mapToGlobal(at),
                          kind == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        if (target)
            QCoreApplication::sendEvent(target, &event);
    }
}

} // namespace

MenuChooser::MenuChooser(QString menu, QString action) : menu_(std::move(menu)), action_(std::move(action)) {
    QCoreApplication::instance()->installEventFilter(this);
}

MenuChooser::~MenuChooser() = default;

bool MenuChooser::eventFilter(QObject* watched, QEvent* event) {
    auto* const menu = event->type() == QEvent::Show ? qobject_cast<QMenu*>(watched) : nullptr;
    if (menu == nullptr || menu->objectName() != menu_)
        return false;
    // Once the menu's own event loop runs.
    QMetaObject::invokeMethod(
        this,
        [this, shown = QPointer<QMenu>(menu)] {
            if (!shown || !shown->isVisible())
                return;
            for (QAction* const action : shown->actions()) {
                if (action->objectName() != action_)
                    continue;
                ++chosen_;
                click(*shown, *action);
                return;
            }
        },
        Qt::QueuedConnection);
    return false;
}

} // namespace kestrune::matching
