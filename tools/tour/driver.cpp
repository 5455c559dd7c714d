#include "tools/tour/driver.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTimer>

#include <utility>

namespace kestrune::drive {
namespace {

constexpr auto window_name = "frmBrowser";

bool within(const QWidget* widget, const QWidget* ancestor) {
    return widget == ancestor || (widget != nullptr && ancestor->isAncestorOf(widget));
}

// Where a press works: an option is pressed at its mark, because the rest of its row may be empty.
QPoint handle_of(const QWidget& widget) {
    const QPoint middle = widget.rect().center();
    if (const auto* const option = qobject_cast<const QRadioButton*>(&widget))
        return {option->style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) / 2, middle.y()};
    return middle;
}

// What keeps the user from pressing this; empty when nothing does.
std::string obstacle(const QWidget& widget) {
    if (!widget.isVisible())
        return "cannot be seen";
    if (!widget.isEnabled())
        return "is disabled";
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal != nullptr && !within(&widget, modal))
        return "is behind the dialog " + modal->objectName().toStdString();
    const QWidget* top = widget.window()->childAt(widget.mapTo(widget.window(), handle_of(widget)));
    if (!within(top, &widget))
        return "is covered by " + (top == nullptr ? std::string("nothing") : top->objectName().toStdString());
    return {};
}

void click(QWidget& widget) {
    if (const std::string why = obstacle(widget); !why.empty())
        throw DriveError(widget.objectName().toStdString() + " " + why);
    const QPoint handle = handle_of(widget);
    const QPoint on_screen = widget.mapToGlobal(handle);
    const QPointer<QWidget> target(&widget);
    for (const auto kind : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = kind == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(kind, handle, on_screen, Qt::LeftButton, held, Qt::NoModifier);
        if (target)
            QCoreApplication::sendEvent(target, &event);
    }
}

void type_text(QWidget& box, const QString& text) {
    for (const QChar letter : text) {
        const bool line_end = letter == u'\n';
        for (const auto kind : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(kind, line_end ? Qt::Key_Return : 0, Qt::NoModifier,
                            QString(line_end ? QChar(u'\r') : letter));
            QCoreApplication::sendEvent(&box, &event);
        }
    }
}

} // namespace

void wait_for(std::string_view what, const std::function<bool()>& condition, std::chrono::milliseconds time) {
    if (condition())
        return;
    QEventLoop loop;
    bool late = false;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, [&] {
        late = true;
        loop.quit();
    });
    deadline.start(time);
    const auto look = [&] {
        if (condition())
            loop.quit();
    };
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop,
                     look);
    while (!late && !condition())
        loop.exec();
    if (!condition())
        throw DriveError("waited " + std::to_string(time.count()) + " ms in vain for " + std::string(what));
}

void wake() {
    if (QCoreApplication* const application = QCoreApplication::instance())
        QMetaObject::invokeMethod(
            application, [] {}, Qt::QueuedConnection);
}

Driver::Driver() { QCoreApplication::instance()->installEventFilter(this); }

Driver::~Driver() = default;

QString Driver::to_name(std::string_view name) {
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

void Driver::wait(std::string_view what, const std::function<bool()>& condition) {
    check();
    wait_for(
        what, [&] { return error_ != nullptr || condition(); }, patience_);
    check();
}

void Driver::check() {
    if (error_)
        std::rethrow_exception(std::exchange(error_, nullptr));
}

bool Driver::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Show)
        return false;
    auto* const dialog = qobject_cast<QDialog*>(watched);
    if (dialog == nullptr || !dialog->isModal())
        return false;
    // Once the dialog's own event loop runs.
    QMetaObject::invokeMethod(
        this,
        [this, shown = QPointer<QDialog>(dialog)] {
            if (shown && shown->isVisible())
                serve(*shown);
        },
        Qt::QueuedConnection);
    return false;
}

void Driver::serve(QDialog& dialog) {
    const QPointer<QDialog> shown(&dialog);
    const QPointer<QDialog> outer = std::exchange(open_, shown);
    try {
        if (!answerer_)
            throw DriveError("nobody expected the dialog \"" + dialog.windowTitle().toStdString() + "\"");
        answerer_(dialog);
        if (shown && shown->isVisible())
            throw DriveError("the dialog \"" + shown->windowTitle().toStdString() + "\" was left unanswered");
    } catch (...) {
        error_ = std::current_exception();
        // The last button is the one that does least.
        if (shown && shown->isVisible()) {
            const auto buttons = shown->findChildren<QPushButton*>();
            if (!buttons.isEmpty())
                buttons.last()->click();
        }
    }
    open_ = outer;
    wake();
}

QWidget& Driver::window() const {
    QWidget* found = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == QLatin1String(window_name) && top->isVisible())
            found = top;
    }
    if (found == nullptr)
        throw DriveError("no browser window is to be seen");
    return *found;
}

void Driver::press(std::string_view name) { press(window(), name); }

void Driver::press(QWidget& inside, std::string_view name) {
    click(find(inside, name));
    check();
}

void Driver::type(QWidget& inside, std::string_view name, std::string_view text) {
    auto& box = find(inside, name);
    click(box);
    if (auto* const line = qobject_cast<QLineEdit*>(&box)) {
        line->selectAll();
        line->del();
    } else if (auto* const area = qobject_cast<QPlainTextEdit*>(&box)) {
        area->selectAll();
        area->textCursor().removeSelectedText();
    } else {
        throw DriveError(std::string(name) + " is no text box");
    }
    type_text(box, to_name(text));
}

void Driver::choose(std::string_view menu_item) {
    auto& action = *[&] {
        auto* const found = window().findChild<QAction*>(to_name(menu_item));
        if (found == nullptr || !found->isVisible() || !found->isEnabled())
            throw DriveError("the menu item " + std::string(menu_item) + " cannot be chosen");
        return found;
    }();
    action.trigger();
    check();
}

void Driver::answer(QDialog& box, std::string_view button) { click(find<QPushButton>(box, button)); }

std::string Driver::status(int panel) const {
    return text(window(), "StatusBar1.Panel" + std::to_string(panel));
}

std::string Driver::text(std::string_view text_box) const { return text(window(), text_box); }

std::string Driver::text(const QWidget& inside, std::string_view name) {
    const auto& widget = find(inside, name);
    if (const auto* const label = qobject_cast<const QLabel*>(&widget))
        return label->text().toStdString();
    if (const auto* const line = qobject_cast<const QLineEdit*>(&widget))
        return line->text().toStdString();
    if (const auto* const area = qobject_cast<const QPlainTextEdit*>(&widget))
        return area->toPlainText().toStdString();
    throw DriveError(std::string(name) + " shows no text");
}

QPixmap Driver::picture() const {
    QWidget& behind = window();
    QPixmap whole = behind.grab();
    if (open_ && open_->isVisible()) {
        const QPixmap dialog = open_->grab();
        QPainter painter(&whole);
        const QPoint corner = behind.mapFromGlobal(open_->mapToGlobal(QPoint(0, 0)));
        painter.fillRect(whole.rect(), QColor(0, 0, 0, 40));
        painter.setPen(QColor(60, 60, 60));
        painter.drawPixmap(corner, dialog);
        painter.drawRect(QRect(corner, dialog.deviceIndependentSize().toSize()).adjusted(-1, -1, 0, 0));
    }
    return whole;
}

} // namespace kestrune::drive
