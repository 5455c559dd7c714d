#include "platform/qt/find_bar.h"

#include "platform/qt/child_of.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWebEngineFindTextResult>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

constexpr int longest_selection = 200;

QPushButton& add_button(QHBoxLayout& row, QWidget& parent, const QString& caption) {
    auto& button = child_of<QPushButton>(parent);
    button.setText(caption);
    button.setObjectName(caption);
    button.setAutoDefault(false);
    row.addWidget(&button);
    return button;
}

} // namespace

FindBar::FindBar(QWebEnginePage& page, QWidget* parent)
    : QWidget(parent), page_(&page), text_(&child_of<QLineEdit>(*this)), count_(&child_of<QLabel>(*this)) {
    setObjectName(QStringLiteral("FindBar"));
    setAutoFillBackground(true);
    auto& row = child_of<QHBoxLayout>(*this);
    row.setContentsMargins(8, 4, 8, 4);
    auto& caption = child_of<QLabel>(*this);
    caption.setText(QStringLiteral("Find:"));
    row.addWidget(&caption);
    text_->setObjectName(QStringLiteral("FindText"));
    text_->setAccessibleName(QStringLiteral("Find in page"));
    row.addWidget(text_, 1);
    count_->setObjectName(QStringLiteral("FindCount"));
    count_->setTextFormat(Qt::PlainText);
    row.addWidget(count_);
    connect(&add_button(row, *this, QStringLiteral("Previous")), &QPushButton::clicked, this,
            [this] { find(true); });
    connect(&add_button(row, *this, QStringLiteral("Next")), &QPushButton::clicked, this,
            [this] { find(false); });
    connect(&add_button(row, *this, QStringLiteral("Close")), &QPushButton::clicked, this,
            [this] { close_bar(); });
    connect(text_, &QLineEdit::textChanged, this, [this] { find(false); });
    connect(&page, &QWebEnginePage::findTextFinished, this, [this](const QWebEngineFindTextResult& result) {
        show_count(result.activeMatch(), result.numberOfMatches());
    });
    connect(&page, &QWebEnginePage::loadStarted, count_, &QLabel::clear);
    hide();
}

void FindBar::open() {
    const QString selected = page_ ? page_->selectedText().trimmed() : QString();
    show();
    if (!selected.isEmpty() && selected.size() <= longest_selection && !selected.contains(u'\n'))
        text_->setText(selected);
    text_->setFocus();
    text_->selectAll();
    find(false);
}

void FindBar::find(bool backwards) {
    if (!page_)
        return;
    if (text_->text().isEmpty())
        count_->clear();
    page_->findText(text_->text(), backwards ? QWebEnginePage::FindBackward : QWebEnginePage::FindFlags());
}

void FindBar::show_count(int active, int count) {
    if (text_->text().isEmpty())
        count_->clear();
    else if (count == 0)
        count_->setText(QStringLiteral("not found"));
    else
        count_->setText(QStringLiteral("%1 of %2").arg(active).arg(count));
}

void FindBar::close_bar() {
    // Left to itself the focus goes on as by the Tab key, and the page scrolls to its first link.
    if (auto* const view = page_ ? QWebEngineView::forPage(page_) : nullptr)
        view->setFocus();
    hide();
    if (page_)
        page_->findText({});
}

bool FindBar::event(QEvent* event) {
    // Here Esc closes the bar; elsewhere in the window it stops a load.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close_bar();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        find(event->modifiers().testFlag(Qt::ShiftModifier));
    else
        QWidget::keyPressEvent(event);
}

} // namespace kestrune
