#include "platform/qt/dialog_pages.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"

#include <QApplication>
#include <QKeyEvent>
#include <QStyle>
#include <QTabBar>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace kestrune {
namespace {

constexpr int least_page_height = 120; // pixels
constexpr int around_focus = 12;

// 1 forward, -1 back, 0 for every other key.
int pages_to_turn(const QKeyEvent& key) {
    const auto held = key.modifiers() & ~Qt::KeypadModifier;
    const bool back = held == (Qt::ControlModifier | Qt::ShiftModifier);
    if (!back && held != Qt::ControlModifier)
        return 0;
    switch (key.key()) {
    case Qt::Key_Tab:
        return back ? -1 : 1;
    case Qt::Key_Backtab:
        return -1;
    case Qt::Key_PageDown:
        return back ? 0 : 1;
    case Qt::Key_PageUp:
        return back ? 0 : -1;
    default:
        return 0;
    }
}

} // namespace

ContentScroll::ContentScroll(QWidget& content, int least_height, QWidget* parent)
    : QScrollArea(parent), least_height_(least_height) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidget(&content);
    // What it lies on shows through.
    content.setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*before*/, QWidget* now) {
        // Nothing moves away under a mouse button that is held down.
        if (now != nullptr && widget() != nullptr && widget()->isAncestorOf(now) &&
            QGuiApplication::mouseButtons() == Qt::NoButton)
            ensureWidgetVisible(now, 0, around_focus);
    });
}

QSize ContentScroll::sizeHint() const {
    return widget()->sizeHint() + QSize(style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 4, 0);
}

QSize ContentScroll::minimumSizeHint() const {
    return {widget()->minimumSizeHint().width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 4,
            std::min(least_height_, widget()->minimumSizeHint().height())};
}

DialogPages::DialogPages(QWidget* parent) : QTabWidget(parent) { setUsesScrollButtons(true); }

QVBoxLayout& DialogPages::add_page(std::string_view caption) {
    auto& content = child_of<QWidget>(*this);
    auto& whole = child_of<QVBoxLayout>(content);
    whole.setContentsMargins(12, 12, 12, 12);
    auto rows = std::make_unique<QVBoxLayout>();
    QVBoxLayout& made = *rows;
    whole.addLayout(rows.release());
    whole.addStretch(1);
    auto& page = child_of<ContentScroll>(*this, content, least_page_height);
    page.setObjectName(objectName() + QStringLiteral("(%1)").arg(count()));
    page.setAccessibleName(to_qt(caption));
    addTab(&page, literal(caption));
    return made;
}

void DialogPages::align_labels(int most) {
    int widest = 0;
    for (const FittedLabel* label : labels_)
        widest = std::max(widest, label->sizeHint().width());
    for (FittedLabel* label : labels_)
        label->setFixedWidth(std::min(widest, most));
    // Layouts of what was never shown keep the size hints of their first moment, when they were empty.
    for (int i = 0; i < count(); ++i) {
        if (auto* const page = dynamic_cast<ContentScroll*>(widget(i)))
            page->widget()->layout()->activate();
        widget(i)->updateGeometry();
    }
    updateGeometry();
}

bool DialogPages::turned_by(const QKeyEvent& key) {
    const int step = pages_to_turn(key);
    if (step == 0 || count() < 2)
        return false;
    setCurrentIndex((currentIndex() + step + count()) % count());
    // A page without anything to type into would hold the focus without showing it.
    if (currentWidget()->hasFocus())
        tabBar()->setFocus(Qt::TabFocusReason);
    return true;
}

void DialogPages::keyPressEvent(QKeyEvent* event) { event->setAccepted(turned_by(*event)); }

} // namespace kestrune
