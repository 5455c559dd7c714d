#include "platform/qt/qt_message_box.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

constexpr int widest_text = 460;         // pixels
constexpr qsizetype longest_text = 4000; // characters; far more than the program itself has to say

struct Choice {
    std::string_view caption; // the button's object name, too
    Answer answer;
};

std::vector<Choice> choices(Buttons buttons) {
    switch (buttons) {
    case Buttons::YesNo:
        return {{"Yes", Answer::Yes}, {"No", Answer::No}};
    case Buttons::OkCancel:
        return {{"OK", Answer::Ok}, {"Cancel", Answer::Cancel}};
    case Buttons::Ok:
        break;
    }
    return {{"OK", Answer::Ok}};
}

Qt::WindowFlags frame_for(Buttons buttons) {
    const Qt::WindowFlags plain = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    return buttons == Buttons::YesNo ? plain : plain | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
}

} // namespace

QtMessageBox::QtMessageBox(std::string_view text, Buttons buttons, std::string_view title)
    : QDialog(nullptr, frame_for(buttons)), buttons_(buttons), answer_(choices(buttons).back().answer) {
    setObjectName(QStringLiteral("MessageBox"));
    setWindowTitle(title_text(title));
    setAccessibleName(plain_line(title, longest_title));
    setAccessibleDescription(plain_text(text, longest_text));
    auto& column = child_of<QVBoxLayout>(*this);
    column.setContentsMargins(18, 18, 18, 14);
    column.setSpacing(16);
    add_texts(column, title != UserInterface::default_title);
    add_buttons(column);
    column.setSizeConstraint(QLayout::SetFixedSize);
}

void QtMessageBox::add_texts(QVBoxLayout& column, bool with_title) {
    auto& scroll = child_of<QScrollArea>(*this);
    scroll.setFrameShape(QFrame::NoFrame);
    scroll.setWidgetResizable(true);
    scroll.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll.setFocusPolicy(Qt::NoFocus);
    auto& content = child_of<QWidget>(*this);
    scroll.setWidget(&content);

    auto& row = child_of<QHBoxLayout>(content);
    row.setContentsMargins(0, 0, 0, 0);
    row.setSpacing(16);
    auto& icon = child_of<QLabel>(content);
    const auto kind =
        buttons_ == Buttons::Ok ? QStyle::SP_MessageBoxInformation : QStyle::SP_MessageBoxQuestion;
    icon.setPixmap(style()->standardIcon(kind, nullptr, this).pixmap(32, 32));
    row.addWidget(&icon, 0, Qt::AlignTop);

    auto column_of_texts = std::make_unique<QVBoxLayout>();
    QVBoxLayout& texts = *column_of_texts;
    row.addLayout(column_of_texts.release(), 1);
    texts.setSpacing(8);
    int width = 0;
    int height = 0;
    const auto add = [&](const QString& shown, const char* name, bool bold) {
        auto& label = child_of<WrappedLabel>(content);
        label.setObjectName(QString::fromLatin1(name));
        QFont letters = label.font();
        letters.setBold(bold);
        label.setFont(letters);
        label.setText(shown);
        label.set_preferred_width(widest_text);
        texts.addWidget(&label);
        width = std::max(width, label.sizeHint().width());
        return &label;
    };
    std::vector<WrappedLabel*> labels;
    if (with_title && !accessibleName().isEmpty())
        labels.push_back(add(accessibleName(), "Title", true));
    labels.push_back(add(accessibleDescription(), "Text", false));
    for (const WrappedLabel* label : labels)
        height += label->heightForWidth(width) + texts.spacing();
    texts.addStretch(1);

    const int most = QGuiApplication::primaryScreen()->availableSize().height() * 6 / 10;
    const int bar = height > most ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0;
    scroll.setFixedSize(width + row.spacing() + 32 + bar, std::clamp(height, 32, most));
    column.addWidget(&scroll);
}

void QtMessageBox::add_buttons(QVBoxLayout& column) {
    auto row = std::make_unique<QHBoxLayout>();
    row->addStretch(1);
    bool first = true;
    for (const Choice& choice : choices(buttons_)) {
        auto& button = child_of<CaptionButton>(*this);
        button.set_caption(choice.caption);
        button.setObjectName(to_qt(choice.caption));
        button.setMinimumSize(88, 30);
        connect(&button, &QPushButton::clicked, this, [this, answer = choice.answer] {
            answer_ = answer;
            done(Accepted);
        });
        row->addWidget(&button);
        if (std::exchange(first, false)) {
            button.setDefault(true);
            button.setFocus();
        }
    }
    column.addLayout(row.release());
}

Answer QtMessageBox::ask() {
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    exec();
    return answer_;
}

// Esc and the close box come here. What is no answer to a Yes/No question leaves it open.
void QtMessageBox::reject() {
    if (buttons_ != Buttons::YesNo)
        QDialog::reject();
}

} // namespace kestrune
