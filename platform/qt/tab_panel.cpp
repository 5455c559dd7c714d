#include "platform/qt/tab_panel.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>

#include <algorithm>

namespace kestrune {

TabPanel::TabPanel(QWidget* parent) : QWidget(parent) {
    strip_.setDrawBase(false);
    strip_.setUsesScrollButtons(true);
    connect(&strip_, &QTabBar::currentChanged, this, [this](int tab) {
        if (chosen)
            chosen(tab);
    });
}

void TabPanel::add_tab(const QString& caption) {
    const QSignalBlocker quiet(strip_);
    strip_.addTab(caption);
}

void TabPanel::set_strip_height(int pixels) {
    if (pixels == strip_height_)
        return;
    strip_height_ = pixels;
    strip_.set_tab_height(pixels);
    place_strip();
    update();
}

void TabPanel::set_current(int tab) {
    const QSignalBlocker quiet(strip_);
    strip_.setCurrentIndex(tab);
}

void TabPanel::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    QStyleOptionTabWidgetFrame frame;
    frame.initFrom(this);
    frame.rect = rect().adjusted(0, std::max(0, strip_height_ - 1), 0, 0);
    frame.lineWidth = 1;
    frame.shape = QTabBar::RoundedNorth;
    frame.tabBarSize = strip_.size();
    frame.tabBarRect = strip_.geometry();
    frame.selectedTabRect = strip_.tabRect(strip_.currentIndex());
    painter.drawPrimitive(QStyle::PE_FrameTabWidget, frame);
}

void TabPanel::resizeEvent(QResizeEvent* /*event*/) { place_strip(); }

void TabPanel::place_strip() { strip_.setGeometry(0, 0, width(), strip_height_); }

void TabPanel::Strip::set_tab_height(int pixels) {
    tab_height_ = pixels;
    // A tab bar asks for its tabs' sizes anew when its font or style changes, or its icon size.
    setIconSize({pixels, pixels});
}

QSize TabPanel::Strip::tabSizeHint(int index) const {
    return {QTabBar::tabSizeHint(index).width(), tab_height_};
}

StatusPanels::StatusPanels(QWidget* parent) : QWidget(parent) {
    for (Panel& panel : panels_) {
        panel.label = &child_of<FittedLabel>(*this, 1.0);
        panel.label->setContentsMargins(6, 0, 6, 0);
        panel.label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
}

void StatusPanels::set_panel(int panel, const QString& text, int width) {
    Panel& changed = panels_.at(static_cast<std::size_t>(panel));
    changed.label->set_caption(text);
    if (changed.width != width) {
        changed.width = width;
        place_panels();
    }
}

void StatusPanels::set_names(const QString& name) {
    int number = 0;
    for (const Panel& panel : panels_)
        panel.label->setObjectName(name + QStringLiteral(".Panel") + QString::number(++number));
}

void StatusPanels::place_panels() {
    int left = 0;
    for (const Panel& panel : panels_) {
        const int width = std::clamp(panel.width, 0, std::max(0, this->width() - left));
        panel.label->setGeometry(left, 1, width, std::max(0, height() - 1));
        left += width;
    }
    update();
}

void StatusPanels::resizeEvent(QResizeEvent* /*event*/) { place_panels(); }

void StatusPanels::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, 0, width(), 0);
    for (const Panel& panel : panels_) {
        const int right = panel.label->geometry().right();
        if (right < width() - 1)
            painter.drawLine(right, 4, right, height() - 4);
    }
}

} // namespace kestrune
