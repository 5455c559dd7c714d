#include "platform/qt/page_bar.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/shown_words.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <utility>

namespace kestrune {
namespace {

constexpr int widest_text = 900; // pixels
constexpr int longest_text = 1500;

// As high as its text, and scrolled where there is less room.
class TextArea final : public QScrollArea {
public:
    TextArea(WrappedLabel& text, QWidget* parent) : QScrollArea(parent), text_(text) {
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setWidgetResizable(true);
        auto holder = std::make_unique<QWidget>(); // a label forgets that its height hangs on its width
        auto& column = child_of<QVBoxLayout>(*holder);
        column.setContentsMargins(0, 0, 0, 0);
        column.addWidget(&text);
        setWidget(holder.release());
        widget()->setAutoFillBackground(false);
        viewport()->setAutoFillBackground(false);
        // As high as the width there is makes it, not as the width that looks best would.
        QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        text.setSizePolicy(policy);
        setSizePolicy(policy);
    }

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override { return text_.heightForWidth(width); }
    [[nodiscard]] QSize sizeHint() const override { return text_.sizeHint(); }
    [[nodiscard]] QSize minimumSizeHint() const override { return text_.minimumSizeHint(); }

private:
    WrappedLabel& text_;
};

bool presses(const QEvent& event) {
    if (event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick)
        return true;
    if (event.type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key == Qt::Key_Space || key == Qt::Key_Select || key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

PageBar::PageBar(const QString& name, QWidget* parent)
    : QFrame(parent), heading_(&child_of<WrappedLabel>(*this)), text_area_(nullptr),
      text_(&child_of<WrappedLabel>(*this)), rows_(&child_of<QVBoxLayout>(*this)),
      button_row_(&child_of<QWidget>(*this)) {
    setObjectName(name);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    rows_->setContentsMargins(12, 8, 12, 8);
    rows_->setSpacing(6);
    QFont bold = font();
    bold.setBold(true);
    heading_->setFont(bold);
    heading_->setObjectName(QStringLiteral("Heading"));
    text_->setObjectName(QStringLiteral("Text"));
    for (WrappedLabel* label : {heading_, text_}) {
        label->setForegroundRole(QPalette::ToolTipText);
        label->set_preferred_width(widest_text);
    }
    text_area_ = &child_of<TextArea>(*this, *text_);
    for (QWidget* part : {static_cast<QWidget*>(heading_), static_cast<QWidget*>(text_area_)}) {
        part->hide();
        rows_->addWidget(part);
    }
    auto& row = child_of<QHBoxLayout>(*button_row_);
    row.setContentsMargins(0, 0, 0, 0);
    row.addStretch(1);
    rows_->addWidget(button_row_);
    button_row_->installEventFilter(this);
}

void PageBar::set_heading(const QString& heading) {
    heading_->setText(shown_words(heading, longest_text));
    heading_->setVisible(!heading.isEmpty());
    setAccessibleName(heading_->text());
}

void PageBar::set_text(const QString& text) {
    text_->setText(shown_words(text, longest_text));
    text_area_->setVisible(!text.isEmpty());
    text_area_->updateGeometry();
    setAccessibleDescription(text_->text());
}

QLineEdit& PageBar::add_field(const QString& label, const QString& name) {
    auto line = std::make_unique<QHBoxLayout>();
    auto& field = child_of<QLineEdit>(*this);
    field.setObjectName(name);
    if (!label.isEmpty()) {
        auto& caption = child_of<QLabel>(*this);
        caption.setTextFormat(Qt::PlainText);
        caption.setText(label);
        caption.setForegroundRole(QPalette::ToolTipText);
        field.setAccessibleName(label);
        line->addWidget(&caption);
        captions_.push_back(&caption);
        line_up_captions();
    }
    line->addWidget(&field, 1);
    rows_->insertLayout(rows_->indexOf(button_row_), line.release());
    field.show(); // the bar is seen already
    fields_.push_back(&field);
    put_in_order(field);
    return field;
}

// The fields begin in one column, whatever stands before them.
void PageBar::line_up_captions() {
    int widest = 0;
    for (const QLabel* caption : captions_)
        widest = std::max(widest, caption->sizeHint().width());
    for (QLabel* caption : captions_)
        caption->setMinimumWidth(widest);
}

QCheckBox& PageBar::add_check(const QString& caption, const QString& name) {
    auto& box = child_of<QCheckBox>(*this);
    box.setText(caption);
    box.setObjectName(name);
    rows_->insertWidget(rows_->indexOf(button_row_), &box);
    box.show();
    box.installEventFilter(this);
    put_in_order(box);
    return box;
}

QProgressBar& PageBar::add_progress() {
    auto& bar = child_of<QProgressBar>(*this);
    bar.setObjectName(QStringLiteral("Progress"));
    rows_->insertWidget(rows_->indexOf(button_row_), &bar);
    bar.show();
    return bar;
}

QPushButton& PageBar::add_button(const QString& caption, std::function<void()> pressed) {
    auto& button = child_of<QPushButton>(*button_row_);
    button.setText(caption);
    button.setObjectName(caption);
    button.setMinimumSize(button.sizeHint().width() + 12, 26);
    button.setAutoDefault(false);
    button_row_->layout()->addWidget(&button);
    // A copy: the bar, and with it this connection, may go while the call runs.
    connect(&button, &QPushButton::clicked, this, [this, call = std::move(pressed)] {
        if (!takes_presses())
            return;
        const auto kept = call;
        kept();
    });
    button.show();
    button.installEventFilter(this);
    buttons_.push_back(&button);
    put_in_order(button);
    return button;
}

QPushButton& PageBar::add_answer(const QString& caption, std::function<void()> then) {
    return add_button(caption, [this, then = std::move(then)] {
        take_away();
        if (then)
            then();
    });
}

void PageBar::put_in_order(QWidget& part) {
    setTabOrder(&last_in_tab_order(), &part);
    last_in_order_ = &part;
}

void PageBar::take_focus() {
    if (!fields_.empty())
        fields_.front()->setFocus();
    else if (!buttons_.empty())
        buttons_.front()->setFocus();
}

void PageBar::take_away() {
    // Left to itself the focus goes on as by the Tab key, to wherever that leads.
    if (give_keys_back_ && isAncestorOf(window()->focusWidget()))
        give_keys_back_();
    hide();
    deleteLater();
}

bool PageBar::takes_presses() const { return clock_() - moved_ >= settling_time; }

int PageBar::least_height(int width) const {
    const int whole = rows_->totalHeightForWidth(width);
    if (text_area_->isHidden())
        return whole;
    const QMargins around = rows_->contentsMargins();
    const int text = text_->heightForWidth(width - around.left() - around.right() - 2 * frameWidth());
    return whole - std::max(0, text - 2 * text_->fontMetrics().lineSpacing());
}

bool PageBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move)
        moved();
    // A button must not even look pressed.
    return (presses(*event) && !takes_presses()) || QFrame::eventFilter(watched, event);
}

bool PageBar::event(QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Show)
        moved();
    // In a bar Esc is the bar's own: the window has that key for stopping a load.
    if (event->type() == QEvent::ShortcutOverride && !buttons_.empty() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

void PageBar::keyPressEvent(QKeyEvent* event) {
    // A key that is held down was pressed for something else.
    if (buttons_.empty() || event->isAutoRepeat()) {
        QFrame::keyPressEvent(event);
        return;
    }
    QScrollBar& scroll = *text_area_->verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Escape:
        buttons_.back()->click();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        auto* const focused = qobject_cast<QPushButton*>(focusWidget());
        (focused != nullptr && isAncestorOf(focused) ? focused : buttons_.front())->click();
        break;
    }
    case Qt::Key_PageDown:
        scroll.triggerAction(QAbstractSlider::SliderPageStepAdd);
        break;
    case Qt::Key_PageUp:
        scroll.triggerAction(QAbstractSlider::SliderPageStepSub);
        break;
    default:
        QFrame::keyPressEvent(event);
    }
}

} // namespace kestrune
