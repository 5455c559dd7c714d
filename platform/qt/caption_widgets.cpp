#include "platform/qt/caption_widgets.h"

#include "platform/qt/qt_text.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QTextLayout>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace kestrune {
namespace {

constexpr int smallest_letters = 9; // pixels
constexpr int longest_line = 1000;  // letters; far more than fit side by side on a screen

// The font, made smaller until the wrapped text fits the area.
QFont fitting_font(const QFont& font, const QSize& area, int flags, const QString& text) {
    QFont fitted = font;
    for (int size = QFontInfo(font).pixelSize(); size > smallest_letters; --size) {
        fitted.setPixelSize(size);
        const QRect needed = QFontMetrics(fitted).boundingRect(QRect({}, area), flags, text);
        if (needed.width() <= area.width() && needed.height() <= area.height())
            break;
    }
    return fitted;
}

// Lays the text out in lines of the given width; the height used.
qreal lay_out(QTextLayout& layout, int width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(1, width));
        line.setPosition({0, height});
        height += line.height();
    }
    layout.endLayout();
    return height;
}

// The part of a widget that no sibling above it covers, as far as those cover its left or right end: buttons
// are designed to overlap a little, and the caption belongs where it can be seen.
QRect uncovered(const QWidget& widget) {
    QRect area = widget.geometry();
    bool above = false;
    for (const QObject* object : widget.parent() == nullptr ? QObjectList{} : widget.parent()->children()) {
        const auto* const sibling = qobject_cast<const QWidget*>(object);
        if (above && sibling != nullptr && !sibling->isHidden() && sibling->geometry().intersects(area)) {
            const QRect over = sibling->geometry();
            if (over.left() > area.center().x())
                area.setRight(over.left() - 1);
            else if (over.right() < area.center().x())
                area.setLeft(over.right() + 1);
        }
        above = above || object == &widget;
    }
    return area.translated(-widget.pos());
}

QString in_lines(const QString& text) {
    QString lines = text;
    return lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\n', QChar::LineSeparator);
}

} // namespace

CaptionButton::CaptionButton(QWidget* parent) : QPushButton(parent) { setAutoDefault(true); }

void CaptionButton::set_caption(std::string_view caption) {
    QString text = to_qt(caption);
    setAccessibleName(text);
    if (text == caption_)
        return;
    caption_ = std::move(text);
    setText(literal(caption));
    update();
}

void CaptionButton::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    painter.drawControl(QStyle::CE_PushButton, option);

    const QRect area = uncovered(*this).adjusted(3, 2, -3, -2);
    const int flags = Qt::AlignCenter | Qt::TextWordWrap;
    painter.setFont(fitting_font(font(), area.size(), flags, caption_));
    painter.drawItemText(area, flags, palette(), isEnabled(), caption_, QPalette::ButtonText);
}

FittedLabel::FittedLabel(double squeeze, QWidget* parent) : QLabel(parent), squeeze_(squeeze) {
    setTextFormat(Qt::PlainText);
    setMinimumWidth(1);
}

void FittedLabel::set_caption(const QString& caption) {
    caption_ = caption;
    if (buddy() == nullptr) {
        setText(caption);
    } else {
        // Beside a buddy the toolkit takes "&" for the mark of a shortcut and claims that key.
        setText(QString(caption).replace(u'&', QStringLiteral("&&")));
        setAccessibleName(caption);
    }
    updateGeometry();
}

QString FittedLabel::line() const {
    QString line = caption_.size() <= longest_line
                       ? caption_
                       : caption_.left(longest_line / 2) + QChar(0x2026) + caption_.right(longest_line / 2);
    std::replace_if(line.begin(), line.end(), is_no_letter, QChar(u' '));
    return line;
}

QString FittedLabel::shown(int width) const {
    return fontMetrics().elidedText(line(), Qt::ElideMiddle, static_cast<int>(std::floor(width / squeeze_)));
}

QSize FittedLabel::sizeHint() const {
    const QMargins around = contentsMargins();
    return {fontMetrics().horizontalAdvance(line()) + 2 + around.left() + around.right(),
            minimumSizeHint().height()};
}

QSize FittedLabel::minimumSizeHint() const {
    const QMargins around = contentsMargins();
    return {1, fontMetrics().height() + around.top() + around.bottom()};
}

bool FittedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        const bool cut = caption_.size() > longest_line || shown(contentsRect().width()) != line();
        QToolTip::showText(help->globalPos(), cut ? plain_tooltip(caption_) : QString(), this);
        return true;
    }
    return QLabel::event(event);
}

void FittedLabel::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    const QRect area = contentsRect();
    const QString line = shown(area.width());
    const int natural = fontMetrics().horizontalAdvance(line);
    const double scale = natural > area.width() ? static_cast<double>(area.width()) / natural : 1.0;
    painter.translate(area.topLeft());
    painter.scale(scale, 1.0);
    const QRect room(0, 0, static_cast<int>(std::ceil(area.width() / scale)), area.height());
    style()->drawItemText(&painter, room, static_cast<int>(alignment()) | Qt::TextSingleLine, palette(),
                          isEnabled(), line, foregroundRole());
}

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void WrappedLabel::set_preferred_width(int most) {
    most_ = most;
    updateGeometry();
}

int WrappedLabel::heightForWidth(int width) const {
    QTextLayout layout(in_lines(text()), font());
    return static_cast<int>(std::ceil(lay_out(layout, width)));
}

QSize WrappedLabel::sizeHint() const {
    int widest = 0;
    for (const QString& line : in_lines(text()).split(QChar::LineSeparator))
        widest = std::max(widest, fontMetrics().horizontalAdvance(line) + 1);
    const int width = std::min(widest, most_);
    return {width, heightForWidth(width)};
}

QSize WrappedLabel::minimumSizeHint() const {
    return {std::min(sizeHint().width(), 120), fontMetrics().lineSpacing()};
}

void WrappedLabel::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    QTextLayout layout(in_lines(text()), font());
    lay_out(layout, contentsRect().width());
    layout.draw(&painter, contentsRect().topLeft());
}

} // namespace kestrune
