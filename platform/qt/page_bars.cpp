#include "platform/qt/page_bars.h"

#include "platform/qt/child_of.h"

#include <QApplication>
#include <QEvent>
#include <QVBoxLayout>
#include <QWebEngineView>

#include <algorithm>

namespace kestrune {

PageBars::PageBars(QWidget* place)
    : QScrollArea(place), column_(&child_of<QWidget>(*this)), typing_(*place, *this) {
    setObjectName(QStringLiteral("PageBars"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    auto& column = child_of<QVBoxLayout>(*column_);
    column.setContentsMargins(0, 0, 0, 0);
    column.setSpacing(0);
    setWidget(column_);
    setFixedHeight(0);
    place->installEventFilter(this);
}

PageBar& PageBars::add(const QString& name) {
    const std::vector<PageBar*> before = shown();
    auto& bar = child_of<PageBar>(*column_, name);
    bar.set_clock(clock_);
    bar.moved();
    bar.set_give_keys_back([this] {
        if (auto* const view = parentWidget()->findChild<QWebEngineView*>())
            view->setFocus();
    });
    bar.follow_in_tab_order(before.empty() ? static_cast<QWidget&>(*this)
                                           : before.back()->last_in_tab_order());
    column_->layout()->addWidget(&bar);
    bar.show();
    return bar;
}

PageBar& PageBars::tell(const QString& name, const QString& heading, const QString& text) {
    PageBar& bar = add(name);
    bar.set_heading(heading);
    bar.set_text(text);
    bar.add_answer(QStringLiteral("OK"));
    return bar;
}

void PageBars::remove(const QPointer<PageBar>& bar) {
    if (bar)
        bar->take_away();
}

void PageBars::reveal(PageBar& bar) {
    // The bar may be so new that nobody has given it its place.
    column_->layout()->activate();
    fit();
    parentWidget()->layout()->activate();
    QEvent changed(QEvent::LayoutRequest);
    QScrollArea::event(&changed);
    ensureWidgetVisible(&bar, 0, 0);
}

bool PageBars::focus_next() {
    const QWidget* const now = QApplication::focusWidget();
    bool passed = now == nullptr || !isAncestorOf(now);
    for (PageBar* const bar : shown()) {
        if (passed) {
            reveal(*bar);
            bar->take_focus();
            return true;
        }
        passed = bar->isAncestorOf(now);
    }
    return false;
}

void PageBars::set_clock(const Clock& clock) {
    clock_ = clock;
    typing_.set_clock(clock);
}

std::vector<PageBar*> PageBars::shown() const {
    std::vector<PageBar*> bars;
    for (int i = 0; i < column_->layout()->count(); ++i) {
        auto* const bar = dynamic_cast<PageBar*>(column_->layout()->itemAt(i)->widget());
        if (bar != nullptr && !bar->isHidden())
            bars.push_back(bar);
    }
    return bars;
}

void PageBars::fit() {
    const int most = parentWidget()->height() / 2;
    int wanted = 0;
    for (PageBar* const bar : shown()) {
        bar->setMaximumHeight(std::max(most, bar->least_height(width())));
        wanted += std::min(bar->layout()->totalHeightForWidth(width()), bar->maximumHeight());
    }
    setFixedHeight(std::min(wanted, most));
}

bool PageBars::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        fit();
    if (watched == column_ && event->type() == QEvent::LayoutRequest)
        fit();
    if (watched == column_ && event->type() == QEvent::Move) {
        for (PageBar* const bar : shown())
            bar->moved();
    }
    return QScrollArea::eventFilter(watched, event);
}

void PageBars::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fit();
}

} // namespace kestrune
