#include "platform/qt/page_bar.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWebEngineView>

#include <utility>

namespace kestrune {
namespace {

constexpr int widest_text = 900; // pixels
constexpr int most_lines = 12;
constexpr int longest_text = 1500;

bool turns_direction(QChar letter) {
    const char16_t code = letter.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

} // namespace

QString shown_words(const QString& words, int most) {
    QString shown = words.left(most);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (QChar& letter : shown) {
        if ((letter.category() == QChar::Other_Control && letter != u'\n') || turns_direction(letter))
            letter = u' ';
    }
    qsizetype end = -1;
    for (int lines = 0; lines < most_lines && (end = shown.indexOf(u'\n', end + 1)) >= 0;)
        ++lines;
    const bool cut = words.size() > most || end >= 0;
    if (end >= 0)
        shown.truncate(end);
    return cut ? shown + QChar(0x2026) : shown;
}

PageBar::PageBar(const QString& name, QWidget* parent)
    : QFrame(parent), heading_(&child_of<WrappedLabel>(*this)), text_(&child_of<WrappedLabel>(*this)),
      rows_(&child_of<QVBoxLayout>(*this)), button_row_(&child_of<QWidget>(*this)) {
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
        label->hide();
        rows_->addWidget(label);
    }
    auto& row = child_of<QHBoxLayout>(*button_row_);
    row.setContentsMargins(0, 0, 0, 0);
    row.addStretch(1);
    rows_->addWidget(button_row_);
}

void PageBar::set_heading(const QString& heading) {
    heading_->setText(shown_words(heading, longest_text));
    heading_->setVisible(!heading.isEmpty());
    setAccessibleName(heading_->text());
}

void PageBar::set_text(const QString& text) {
    text_->setText(shown_words(text, longest_text));
    text_->setVisible(!text.isEmpty());
    text_->updateGeometry();
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
    }
    line->addWidget(&field, 1);
    rows_->insertLayout(rows_->indexOf(button_row_), line.release());
    field.show(); // the bar is seen already
    fields_.push_back(&field);
    return field;
}

QCheckBox& PageBar::add_check(const QString& caption, const QString& name) {
    auto& box = child_of<QCheckBox>(*this);
    box.setText(caption);
    box.setObjectName(name);
    rows_->insertWidget(rows_->indexOf(button_row_), &box);
    box.show();
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
    button.setMinimumHeight(26);
    button.setAutoDefault(false);
    button_row_->layout()->addWidget(&button);
    // A copy: the bar, and with it this connection, may go while the call runs.
    connect(&button, &QPushButton::clicked, this, [call = std::move(pressed)] {
        const auto kept = call;
        kept();
    });
    button.show();
    buttons_.push_back(&button);
    return button;
}

void PageBar::take_focus() {
    if (!fields_.empty())
        fields_.front()->setFocus();
    else if (!buttons_.empty())
        buttons_.front()->setFocus();
}

bool PageBar::event(QEvent* event) {
    // In a bar Esc is the bar's own: the window has that key for stopping a load.
    if (event->type() == QEvent::ShortcutOverride && !buttons_.empty() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

void PageBar::keyPressEvent(QKeyEvent* event) {
    if (buttons_.empty()) {
        QFrame::keyPressEvent(event);
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        buttons_.back()->click();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        auto* const focused = qobject_cast<QPushButton*>(focusWidget());
        (focused != nullptr && isAncestorOf(focused) ? focused : buttons_.front())->click();
    } else {
        QFrame::keyPressEvent(event);
    }
}

PageBars::PageBars(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("PageBars"));
    auto& column = child_of<QVBoxLayout>(*this);
    column.setContentsMargins(0, 0, 0, 0);
    column.setSpacing(0);
}

PageBar& PageBars::add(const QString& name) {
    auto& bar = child_of<PageBar>(*this, name);
    layout()->addWidget(&bar);
    bar.show();
    return bar;
}

void PageBars::remove(const QPointer<PageBar>& bar) {
    if (!bar)
        return;
    // Left to itself the focus goes on as by the Tab key, to wherever that leads.
    if (bar->isAncestorOf(bar->window()->focusWidget())) {
        if (auto* const view = bar->parentWidget()->parentWidget()->findChild<QWebEngineView*>())
            view->setFocus();
    }
    bar->hide();
    bar->deleteLater();
}

} // namespace kestrune
