#include "platform/qt/page_overlay.h"

#include "platform/qt/child_of.h"

#include <QEvent>
#include <QLabel>
#include <QWebEnginePage>

#include <algorithm>

namespace kestrune {
namespace {

constexpr int line_height = 3; // pixels
constexpr int moment = 1500;   // milliseconds
constexpr qsizetype longest_address = 4000;

} // namespace

PageOverlay::PageOverlay(QWidget& place, QWebEnginePage& page)
    : place_(place), words_(&child_of<QLabel>(place)), line_(&child_of<QWidget>(place)) {
    words_->setObjectName(QStringLiteral("PageWords"));
    words_->setTextFormat(Qt::PlainText);
    words_->setAutoFillBackground(true);
    words_->setMargin(3);
    line_->setObjectName(QStringLiteral("LoadProgress"));
    line_->setAutoFillBackground(true);
    line_->setBackgroundRole(QPalette::Highlight);
    for (QWidget* part : {static_cast<QWidget*>(words_), line_}) {
        part->setAttribute(Qt::WA_TransparentForMouseEvents);
        part->hide();
    }
    moment_.setSingleShot(true);
    connect(&moment_, &QTimer::timeout, this, [this] { show_address(address_); });
    connect(&page, &QWebEnginePage::linkHovered, this, [this](const QString& address) {
        address_ = address.left(longest_address);
        moment_.stop();
        show_address(address_);
    });
    connect(&page, &QWebEnginePage::loadStarted, this, [this] {
        // The engine does not take back the address of a link whose page goes.
        address_.clear();
        if (!moment_.isActive())
            show_address(address_);
        show_progress(5);
    });
    connect(&page, &QWebEnginePage::loadProgress, this, [this](int percent) { show_progress(percent); });
    connect(&page, &QWebEnginePage::loadFinished, this, [this] { show_progress(100); });
    place.installEventFilter(this);
}

void PageOverlay::tell(const QString& words) {
    words_->setText(words);
    words_->show();
    moment_.start(moment);
    place_parts();
}

void PageOverlay::show_address(const QString& address) {
    words_->setToolTip({});
    words_->setVisible(!address.isEmpty());
    words_->setText(words_->fontMetrics().elidedText(address, Qt::ElideMiddle, place_.width() - 20));
    words_->setAccessibleName(address);
    place_parts();
}

void PageOverlay::show_progress(int percent) {
    percent_ = percent;
    line_->setVisible(percent < 100);
    place_parts();
}

void PageOverlay::place_parts() {
    words_->adjustSize();
    words_->move(0, place_.height() - words_->height());
    line_->setGeometry(0, 0, std::max(1, place_.width() * percent_ / 100), line_height);
    for (QWidget* part : {static_cast<QWidget*>(words_), line_}) {
        if (!part->isHidden())
            part->raise();
    }
}

bool PageOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &place_ && event->type() == QEvent::Resize)
        place_parts();
    return false;
}

} // namespace kestrune
