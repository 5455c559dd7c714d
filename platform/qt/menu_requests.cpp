#include "platform/qt/menu_requests.h"

#include "platform/qt/engine_bridge.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QTimer>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <algorithm>
#include <chrono>
#include <utility>

namespace kestrune {
namespace {

// A page that does not answer within this time has the click or key after all.
constexpr std::chrono::milliseconds page_time{1500};

// A page can put its boxes anywhere, and farther away than a number of pixels can tell.
QPoint within(QPointF place, const QWidget& view) {
    const QPointF farthest(std::max(0, view.width() - 1), std::max(0, view.height() - 1));
    return QPointF(std::clamp(place.x(), 0.0, farthest.x()), std::clamp(place.y(), 0.0, farthest.y()))
        .toPoint();
}

bool asks_for_menu(const QKeyEvent& key) {
    return key.key() == Qt::Key_Menu || (key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier);
}

} // namespace

MenuRequests::MenuRequests(QWebEngineView& view, Show show, QWidget* place)
    : QObject(place), view_(view), show_(std::move(show)) {
    // The widgets that the events go to come and go with the engine's processes.
    QCoreApplication::instance()->installEventFilter(this);
}

bool MenuRequests::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        break;
    default:
        return false;
    }
    auto* const widget = qobject_cast<QWidget*>(watched);
    if (handing_on_ || widget == nullptr || !view_.isAncestorOf(widget))
        return false;
    if (auto* const mouse = dynamic_cast<QMouseEvent*>(event))
        return press(*widget, *mouse);
    if (auto* const typed = dynamic_cast<QKeyEvent*>(event))
        return key(*widget, *typed);
    return false;
}

bool MenuRequests::press(QWidget& widget, const QMouseEvent& event) {
    if (event.button() != Qt::RightButton)
        return false;
    if (event.type() == QEvent::MouseButtonRelease)
        return std::exchange(held_button_, false);
    held_button_ = true;
    ask({&widget, false, event.position(), event.globalPosition().toPoint(), 0, event.modifiers()});
    return true;
}

bool MenuRequests::key(QWidget& widget, const QKeyEvent& event) {
    if (event.type() == QEvent::KeyRelease)
        return event.key() == held_key_ && std::exchange(held_key_, 0) != 0;
    if (!asks_for_menu(event))
        return false;
    held_key_ = event.key();
    if (!event.isAutoRepeat())
        ask({&widget, true, {}, widget.mapToGlobal(QPoint()), event.key(), event.modifiers()});
    return true;
}

void MenuRequests::ask(Request request) {
    if (open_) {
        next_ = std::make_unique<Request>(std::move(request));
        return;
    }
    open_ = std::make_unique<Request>(std::move(request));
    ask_page();
}

void MenuRequests::ask_page() {
    asked_ = true;
    const quint32 number = ++number_;
    const auto give_up = [self = QPointer<MenuRequests>(this), number] {
        if (self && self->asked_ && self->number_ == number) {
            self->asked_ = false;
            self->finish(false);
        }
    };
    QString point = QStringLiteral("null");
    if (!open_->by_key && open_->widget) {
        const QPointF place =
            QPointF(open_->widget->mapTo(&view_, open_->place.toPoint())) / view_.zoomFactor();
        point = QStringLiteral("{x:%1,y:%2}").arg(place.x()).arg(place.y());
    }
    view_.page()->runJavaScript(
        QStringLiteral("typeof kestrune === 'object' && !!kestrune.menu && (kestrune.menu(%1,%2), true)")
            .arg(point)
            .arg(number),
        QWebEngineScript::ApplicationWorld, [give_up](const QVariant& heard) {
            if (!heard.toBool())
                QTimer::singleShot(0, give_up);
        });
    QTimer::singleShot(page_time, this, give_up);
}

void MenuRequests::answered(const PageNotice& notice) {
    if (!asked_ || notice.request != number_)
        return;
    asked_ = false;
    if (open_->by_key)
        open_->on_screen = view_.mapToGlobal(within(QPointF(notice.x, notice.y) * view_.zoomFactor(), view_));
    // The engine stands still in an event loop that it has called itself.
    QTimer::singleShot(0, this, [this, field = ElementRef{notice.id, notice.element}] { show_menu(field); });
}

std::optional<QPoint> MenuRequests::menu_place() const {
    return open_ && !asked_ ? std::optional(open_->on_screen) : std::nullopt;
}

void MenuRequests::show_menu(const ElementRef& field) {
    const QPointer<MenuRequests> self(this);
    const bool done = !field.document.empty() && show_(field);
    if (self)
        finish(done);
}

void MenuRequests::finish(bool done) {
    const std::unique_ptr<Request> request = std::move(open_);
    if (next_) {
        // Another click took the menu away.
        open_ = std::move(next_);
        ask_page();
    } else if (!done) {
        hand_on(*request);
    }
}

void MenuRequests::hand_on(const Request& request) {
    if (!request.widget)
        return;
    const QScopedValueRollback passing(handing_on_, true);
    const QPointer<QWidget> widget = request.widget;
    if (request.by_key) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, request.key, request.modifiers);
            if (widget)
                QCoreApplication::sendEvent(widget, &event);
        }
        return;
    }
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, request.place, request.on_screen, Qt::RightButton,
                          type == QEvent::MouseButtonPress ? Qt::RightButton : Qt::NoButton,
                          request.modifiers);
        if (widget)
            QCoreApplication::sendEvent(widget, &event);
    }
}

} // namespace kestrune
