#include "tools/tour/hand.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace kestrune::tour {
namespace {

using practice::HandStep;

void send_key(QWidget& page, int key, const QString& text) {
    for (const auto kind : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(kind, key, Qt::NoModifier, text);
        QApplication::sendEvent(&page, &event);
    }
}

void press(QWidget& page, const std::string& key) {
    if (key == "tab")
        send_key(page, Qt::Key_Tab, QStringLiteral("\t"));
    else if (key == "space")
        send_key(page, Qt::Key_Space, QStringLiteral(" "));
    else if (key == "enter")
        send_key(page, Qt::Key_Return, QStringLiteral("\r"));
    else
        send_key(page, Qt::Key_Down, {});
}

void type(QWidget& page, const std::string& text) {
    for (const QChar letter : QString::fromStdString(text))
        send_key(page, letter.unicode() < 128 ? letter.toUpper().unicode() : 0, letter);
}

void click(QWidget& page, QPoint at) {
    for (const auto kind : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = kind == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(kind, at, page.mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(&page, &event);
    }
}

} // namespace

void do_deeds(QWidget& page, const std::vector<HandStep::Deed>& deeds) {
    for (const HandStep::Deed& deed : deeds) {
        if (deed.kind == HandStep::Deed::Kind::click)
            click(page, QPoint(deed.x, deed.y));
        else if (deed.kind == HandStep::Deed::Kind::type)
            type(page, deed.text);
        else
            press(page, deed.text);
    }
}

} // namespace kestrune::tour
