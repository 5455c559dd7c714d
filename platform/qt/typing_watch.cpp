#include "platform/qt/typing_watch.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

namespace kestrune {
namespace {

// Keys that only give commands write nothing that could land in the wrong place.
bool writes(const QEvent& event) {
    if (event.type() == QEvent::InputMethod)
        return true;
    const auto& key = static_cast<const QKeyEvent&>(event);
    const auto held = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    // Both together stand for the key that some keyboards write their third letters with.
    const bool command = held != Qt::NoModifier && held != (Qt::ControlModifier | Qt::AltModifier);
    return !command && !key.text().isEmpty() && key.text().front().isPrint();
}

} // namespace

TypingWatch::TypingWatch(const QWidget& in_window_of, const QWidget& part)
    : place_(in_window_of), part_(part) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool TypingWatch::typing() const { return typed_ && clock_() - *typed_ < pause; }

bool TypingWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::InputMethod)
        return false;
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (widget != nullptr && widget->window() == place_.window() && !part_.isAncestorOf(widget) &&
        writes(*event))
        typed_ = clock_();
    return false;
}

} // namespace kestrune
