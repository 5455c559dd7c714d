#include "platform/qt/qt_window.h"

#include "platform/qt/accessibility.h"
#include "platform/qt/child_of.h"
#include "platform/qt/menus.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/twips.h"

#include <QCloseEvent>
#include <QMenu>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QTimer>

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

// The controls have fixed places, made for letters of this size; a larger system font would not fit them.
constexpr int letter_pixels = 12;

// Moves within this time after a window was shown are the window manager's, in milliseconds; how often they
// are undone.
constexpr qint64 settling_time = 1000;
constexpr int most_moves_back = 3;
constexpr std::array look_at_place = {30, 100, 300, 900};

QFont window_font(const QFont& base) {
    QFont font = base;
    font.setPixelSize(letter_pixels);
    return font;
}

// A button that the Tab key never reaches is not meant for anybody.
void hide_unreachable(const WindowForm& form, const std::vector<Control*>& controls,
                      const ControlWidgets& widgets) {
    for (Control* control : controls) {
        if (const auto* const frame = dynamic_cast<Frame*>(control))
            hide_unreachable(form, frame->Controls, widgets);
        const bool reachable =
            std::find(form.TabOrder.begin(), form.TabOrder.end(), control) != form.TabOrder.end();
        if (dynamic_cast<Button*>(control) == nullptr || reachable)
            continue;
        QWidget& widget = *widgets.widget(control);
        widget.setFocusPolicy(Qt::NoFocus);
        hide_from_assistance(widget);
    }
}

bool holds(const std::vector<MenuItem*>& items, const MenuItem& sought) {
    return std::any_of(items.begin(), items.end(), [&sought](const MenuItem* item) {
        return item == &sought || holds(item->Items, sought);
    });
}

void show_timer(const Timer& timer, QTimer& clock) {
    const bool running = timer.Enabled.get() && timer.Interval.get() > 0;
    if (!running)
        clock.stop();
    else if (!clock.isActive() || clock.interval() != timer.Interval.get())
        clock.start(timer.Interval.get());
}

} // namespace

QtWindow::QtWindow(WindowForm& form)
    : form_(&form), menu_bar_(&child_of<QMenuBar>(*this)), inner_(&child_of<ControlContainer>(*this)),
      page_area_(inner_) {
    setObjectName(to_qt(form.Name));
    setFont(window_font(font()));
    menu_bar_->setNativeMenuBar(false);
    menu_bar_->setObjectName(QStringLiteral("MenuBar"));
    inner_->setObjectName(QStringLiteral("Inner"));
    add_menus(*menu_bar_, form.MenuBar, controls_.bindings());
    make_controls();
    make_timers();
    make_shortcuts();
    controls_.bindings().observe(form, [this] { show_form(); });
    order_tabs();
}

QtWindow::~QtWindow() { release(); }

void QtWindow::release() {
    form_ = nullptr;
    controls_.release();
    hide();
}

QMenu* QtWindow::shown_menu(const MenuItem& item) const {
    if (form_ == nullptr || !isVisible() || !holds(form_->MenuBar, item))
        return nullptr;
    return menu_bar_->findChild<QMenu*>(to_qt(item.Name));
}

void QtWindow::make_controls() {
    for (Control* control : form_->Controls) {
        QWidget& made = controls_.add(*control, *inner_);
        if (dynamic_cast<BrowserPlace*>(control) != nullptr) {
            page_area_ = &child_of<QWidget>(made);
            page_area_->setObjectName(made.objectName() + QStringLiteral(".Page"));
            page_area_->setAccessibleName(made.accessibleName());
            made.installEventFilter(this);
        }
        if (dynamic_cast<StatusBar*>(control) != nullptr) {
            status_bar_ = &made;
            made.installEventFilter(this);
        }
    }
    hide_unreachable(*form_, form_->Controls, controls_);
    // Who presses a button by the mouse goes on with the page, as in any browser.
    for (QPushButton* const button : inner_->findChildren<QPushButton*>()) {
        if (button->focusPolicy() == Qt::StrongFocus)
            button->setFocusPolicy(Qt::TabFocus);
    }
    place_page();
}

void QtWindow::make_timers() {
    for (Timer* timer : form_->Timers) {
        auto& clock = child_of<QTimer>(*this);
        clock.setObjectName(to_qt(timer->Name));
        controls_.bindings().observe(*timer, [timer, &clock] { show_timer(*timer, clock); });
        connect(&clock, &QTimer::timeout, controls_.bindings().context(), [timer] { timer->tick(); });
    }
}

void QtWindow::make_shortcuts() {
    for (const WindowForm::Shortcut& shortcut : form_->Shortcuts) {
        auto& key = child_of<QShortcut>(*this);
        key.setKey(QKeySequence(to_qt(shortcut.Keys), QKeySequence::PortableText));
        connect(&key, &QShortcut::activated, controls_.bindings().context(), [press = shortcut.Press] {
            if (press)
                press();
        });
    }
}

void QtWindow::order_tabs() {
    if (form_ == nullptr)
        return;
    QWidget* before = nullptr;
    for (const Control* control : form_->TabOrder) {
        QWidget* next = controls_.focus_widget(control);
        if (controls_.widget(control) == page_area_->parentWidget())
            next = page_focus();
        if (next == nullptr)
            continue;
        if (before != nullptr)
            setTabOrder(before, next);
        before = next;
    }
    keep_page_together();
}

// The view of a page and the widget in it that takes the keys are both stops of the Tab key. Apart, they make
// two rings out of one, and the page's never leads to the buttons.
void QtWindow::keep_page_together() {
    QWidget* const keys = page_focus();
    QWidget* const page = keys == nullptr ? nullptr : keys->parentWidget();
    if (page == nullptr || page->focusProxy() != keys)
        return;
    QWidget* const before = keys->previousInFocusChain();
    // With its proxy it would take along whatever stands between the two.
    page->setFocusProxy(nullptr);
    if (before != page)
        setTabOrder(before, page);
    setTabOrder(page, keys);
    page->setFocusProxy(keys);
}

QWidget* QtWindow::page_focus() {
    const auto pages = page_area_->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    if (pages.isEmpty())
        return nullptr;
    // The widget that takes the keys comes with the first page, and a new one with a page of another process.
    QWidget& page = *pages.first();
    page.installEventFilter(this);
    return page.focusProxy() != nullptr ? page.focusProxy() : &page;
}

void QtWindow::show_form() {
    if (reporting_)
        return;
    const QString title = title_text(form_->Caption.get());
    if (windowTitle() != title)
        setWindowTitle(title);
    follow_size();
    follow_place();
    if (form_->Minimised.get() != isMinimized())
        setWindowState(windowState().setFlag(Qt::WindowMinimized, form_->Minimised.get()));
    if (form_->Visible.get() == isVisible())
        return;
    if (form_->Visible.get() && corner_)
        move(*corner_);
    setVisible(form_->Visible.get());
    if (isVisible()) {
        raise();
        activateWindow();
    }
}

void QtWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    shown_.start();
    moved_back_ = 0;
    // A frame that is put around the window tells nothing where its place in the frame stays the same.
    for (const int moment : look_at_place)
        QTimer::singleShot(moment, this, [this] {
            if (shifted())
                move_back();
        });
    if (QWidget* const page = focusWidget() == nullptr ? page_focus() : nullptr)
        page->setFocus();
}

void QtWindow::follow_size() {
    const QSize inner(to_pixels(form_->Width.get() - WindowForm::frame_width),
                      to_pixels(form_->Height.get() - WindowForm::frame_height));
    if (inner.isEmpty() || inner == inner_->size())
        return;
    resize(inner.width(), inner.height() + menu_bar_->heightForWidth(inner.width()));
    // A hidden window learns of its size only when it is shown; the layout is due now.
    if (!isVisible()) {
        place_parts();
        report_size();
    }
}

void QtWindow::follow_place() {
    const QPoint corner(to_pixels(form_->Left.get()), to_pixels(form_->Top.get()));
    if (corner == pos())
        return;
    corner_ = corner;
    move(corner);
}

bool QtWindow::shifted() const {
    return form_ != nullptr && corner_ && pos() != *corner_ && isVisible() && !isMaximized() &&
           !isMinimized() && shown_.isValid() && shown_.elapsed() < settling_time &&
           moved_back_ < most_moves_back;
}

void QtWindow::move_back() {
    ++moved_back_;
    move(*corner_);
}

void QtWindow::place_parts() {
    const int menu_height = menu_bar_->heightForWidth(width());
    menu_bar_->setGeometry(0, 0, width(), menu_height);
    inner_->setGeometry(0, menu_height, width(), std::max(0, height() - menu_height));
}

void QtWindow::place_page() {
    const QWidget* const place = page_area_->parentWidget();
    if (page_area_ == inner_)
        return;
    int bottom = place->geometry().bottom() + 1;
    if (status_bar_ != nullptr && !status_bar_->isHidden())
        bottom = std::min(bottom, status_bar_->geometry().top());
    page_area_->setGeometry(0, 0, place->width(), std::max(0, bottom - place->geometry().top()));
}

void QtWindow::report_size() {
    if (form_ == nullptr || minimised_)
        return;
    {
        const QScopedValueRollback quiet(reporting_, true);
        const int width = inner_->width();
        const int height = inner_->height();
        // Twips that round to the real size stay as code set them.
        if (to_pixels(form_->Width.get() - WindowForm::frame_width) != width)
            form_->Width = to_twips(width) + WindowForm::frame_width;
        if (to_pixels(form_->Height.get() - WindowForm::frame_height) != height)
            form_->Height = to_twips(height) + WindowForm::frame_height;
    }
    if (form_->Resize)
        form_->Resize();
}

void QtWindow::resizeEvent(QResizeEvent* /*event*/) {
    if (isMinimized())
        return;
    place_parts();
    report_size();
}

void QtWindow::moveEvent(QMoveEvent* event) {
    if (form_ == nullptr || isMinimized())
        return;
    if (event->spontaneous() && shifted()) {
        move_back();
        return;
    }
    corner_ = pos();
    const QScopedValueRollback quiet(reporting_, true);
    if (to_pixels(form_->Left.get()) != pos().x())
        form_->Left = to_twips(pos().x());
    if (to_pixels(form_->Top.get()) != pos().y())
        form_->Top = to_twips(pos().y());
}

void QtWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || form_ == nullptr || isMinimized() == minimised_)
        return;
    minimised_ = isMinimized();
    {
        const QScopedValueRollback quiet(reporting_, true);
        form_->Minimised = minimised_;
    }
    if (!minimised_) {
        place_parts();
        report_size();
    }
}

void QtWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (form_ != nullptr && form_->CloseRequested)
        form_->CloseRequested();
}

bool QtWindow::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
        if (watched == status_bar_ || watched == page_area_->parentWidget())
            place_page();
        break;
    case QEvent::ChildAdded:
        QMetaObject::invokeMethod(
            this, [this] { order_tabs(); }, Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace kestrune
