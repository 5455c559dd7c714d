#include "platform/qt/qt_dialog.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/dialog_pages.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/twips.h"

#include <QGroupBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScreen>
#include <QShortcut>
#include <QTabBar>

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

constexpr int widest_label = 240; // pixels
constexpr int narrowest_field = 380;
constexpr int widest_note = 480;
constexpr int least_scrolled_height = 120;
constexpr int around_rows = 120; // height that buttons and margins take at most

QSize room_on_screen() { return QGuiApplication::primaryScreen()->availableSize() * 9 / 10; }

QString without_colon(std::string_view label) {
    QString name = to_qt(label).trimmed();
    if (name.endsWith(u':'))
        name.chop(1);
    return name;
}

// Whether the box would do something with an undo right now.
bool can_undo(const QObject& box) {
    if (const auto* const line = qobject_cast<const QLineEdit*>(&box))
        return line->isUndoAvailable();
    const auto* const area = qobject_cast<const QPlainTextEdit*>(&box);
    return area != nullptr && area->document()->isUndoAvailable();
}

QFormLayout& form_layout(QWidget& owner) {
    auto& rows = child_of<QFormLayout>(owner);
    rows.setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    rows.setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    rows.setHorizontalSpacing(12);
    rows.setVerticalSpacing(8);
    return rows;
}

} // namespace

QtDialog::QtDialog(Form& form)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           (form.Cancel != nullptr ? Qt::WindowCloseButtonHint : Qt::WindowType{})),
      form_(form) {
    setObjectName(to_qt(form.Name));
    setSizeGripEnabled(true);
    auto& column = child_of<QVBoxLayout>(*this);
    column.setContentsMargins(14, 14, 14, 12);
    column.setSpacing(14);
    add_rows(column);
    add_buttons(column);
    QSize content = column.sizeHint();
    if (column.hasHeightForWidth())
        content.setHeight(column.totalHeightForWidth(content.width()));
    place(content);
    focus_first();
    controls_.bindings().observe(form, [this] {
        setWindowTitle(title_text(form_.Caption.get()));
        setAccessibleName(to_qt(form_.Caption.get()));
        if (isVisible() && !form_.Visible.get())
            done(Accepted);
    });
}

void QtDialog::add_rows(QVBoxLayout& column) {
    auto& content = child_of<QWidget>(*this);
    auto& parts = child_of<QVBoxLayout>(content);
    parts.setContentsMargins(0, 0, 0, 0);
    QVBoxLayout* place = &parts;
    DialogPages* pages = nullptr;
    QFormLayout* rows = nullptr;
    const Form::Row* before = nullptr;
    for (const Form::Row& row : form_.Rows) {
        const bool turned = row.Page != (before == nullptr ? std::string() : before->Page);
        if (turned && row.Page.empty()) {
            pages = nullptr;
            place = &parts;
        } else if (turned) {
            if (pages == nullptr)
                pages = &add_pages(parts);
            place = &pages->add_page(row.Page);
        }
        if (turned || before == nullptr || before->Group != row.Group)
            rows = &add_group(*place, row.Group);
        before = &row;
        add_row(*rows, row, pages);
    }
    align_labels();
    add_content(column, content);
}

DialogPages& QtDialog::add_pages(QVBoxLayout& parts) {
    auto& pages = child_of<DialogPages>(*parts.parentWidget());
    pages.setObjectName(objectName() + QStringLiteral(".Pages") +
                        (pages_.empty() ? QString() : QString::number(pages_.size() + 1)));
    pages.tabBar()->setObjectName(pages.objectName() + QStringLiteral(".Strip"));
    pages_.push_back(&pages);
    parts.addWidget(&pages, 1);
    return pages;
}

QFormLayout& QtDialog::add_group(QVBoxLayout& parts, const std::string& group) {
    if (group.empty()) {
        auto& part = child_of<QWidget>(*parts.parentWidget());
        QFormLayout& rows = form_layout(part);
        rows.setContentsMargins(0, 0, 0, 0);
        parts.addWidget(&part);
        return rows;
    }
    auto& box = child_of<QGroupBox>(*parts.parentWidget());
    box.setTitle(literal(group));
    parts.addWidget(&box);
    return form_layout(box);
}

void QtDialog::add_content(QVBoxLayout& column, QWidget& content) {
    int height = content.sizeHint().height();
    for (const DialogPages* pages : pages_)
        height -= pages->spare_height();
    if (height <= room_on_screen().height() - around_rows) {
        column.addWidget(&content, 1);
        return;
    }
    if (auto* const parts = dynamic_cast<QVBoxLayout*>(content.layout()))
        parts->addStretch(1);
    column.addWidget(&child_of<ContentScroll>(*this, content, least_scrolled_height), 1);
}

void QtDialog::add_row(QFormLayout& rows, const Form::Row& row, DialogPages* pages) {
    if (row.Field == nullptr)
        return;
    QWidget& field = controls_.add(*row.Field, *rows.parentWidget());
    auto* const note = dynamic_cast<WrappedLabel*>(&field);
    if (note != nullptr)
        note->set_preferred_width(widest_note);
    else if (dynamic_cast<OptionGroup*>(row.Field) == nullptr)
        field.setMinimumWidth(narrowest_field);
    if (row.Label.empty() && row.Title == nullptr) {
        // A note may take the whole width; what the user fills in lines up with the other fields.
        if (note != nullptr)
            rows.addRow(&field);
        else
            rows.setWidget(rows.rowCount(), QFormLayout::FieldRole, &field);
        return;
    }
    FittedLabel& label = add_label(*rows.parentWidget(), row, field);
    if (note == nullptr)
        label.setContentsMargins(0, 3, 0, 3);
    if (dynamic_cast<QLineEdit*>(&field) != nullptr && row.Hint == nullptr)
        label.setMinimumHeight(field.sizeHint().height());
    else // beside the first of several lines
        label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    if (pages != nullptr)
        pages->add_label(label);
    else
        labels_.push_back(&label);
    label.setMaximumWidth(widest_label);
    rows.addRow(&label, &with_hint(row, field));
}

QWidget& QtDialog::with_hint(const Form::Row& row, QWidget& field) {
    if (row.Hint == nullptr)
        return field;
    auto& both = child_of<QWidget>(*field.parentWidget());
    auto& column = child_of<QVBoxLayout>(both);
    column.setContentsMargins(0, 0, 0, 0);
    column.setSpacing(2);
    column.addWidget(&field);
    auto& hint = child_of<WrappedLabel>(both);
    hint.setObjectName(to_qt(row.Hint->Name));
    hint.set_preferred_width(narrowest_field);
    QFont small = hint.font();
    small.setPixelSize(std::max(10, QFontInfo(small).pixelSize() * 5 / 6));
    hint.setFont(small);
    column.addWidget(&hint);
    controls_.bindings().observe(*row.Hint, [text = row.Hint, &hint, &field] {
        hint.setText(to_qt(text->Caption.get()));
        field.setAccessibleDescription(hint.text());
    });
    return both;
}

FittedLabel& QtDialog::add_label(QWidget& parent, const Form::Row& row, QWidget& field) {
    if (row.Title != nullptr) {
        return controls_.add_title(*row.Title, parent, field, [this] {
            if (isVisible())
                align_labels();
        });
    }
    if (field.accessibleName().isEmpty())
        field.setAccessibleName(without_colon(row.Label));
    auto& label = child_of<FittedLabel>(parent, 1.0);
    label.setObjectName(field.objectName() + QStringLiteral(".Label"));
    label.setBuddy(&field);
    label.set_caption(to_qt(row.Label));
    return label;
}

void QtDialog::align_labels() {
    int widest = 0;
    for (const FittedLabel* label : labels_)
        widest = std::max(widest, label->sizeHint().width());
    for (FittedLabel* label : labels_)
        label->setMinimumWidth(std::min(widest, widest_label));
    for (DialogPages* pages : pages_)
        pages->align_labels(widest_label);
}

void QtDialog::add_buttons(QVBoxLayout& column) {
    auto row = std::make_unique<QHBoxLayout>();
    row->addStretch(1);
    for (Button* button : form_.Buttons) {
        QWidget& made = controls_.add(*button, *this);
        made.setMinimumSize(std::max(88, made.sizeHint().width() + 12), 30);
        row->addWidget(&made);
        add_shortcut(*button);
        if (button == form_.Default) {
            if (auto* const default_button = dynamic_cast<QPushButton*>(&made))
                default_button->setDefault(true);
        }
    }
    column.addLayout(row.release());
}

void QtDialog::add_shortcut(Button& button) {
    if (button.Shortcut.empty())
        return;
    auto& key = child_of<QShortcut>(*this);
    key.setKey(QKeySequence(to_qt(button.Shortcut), QKeySequence::PortableText));
    connect(&key, &QShortcut::activated, controls_.bindings().context(), [&button] { button.press(); });
    if (shortcuts_.empty()) {
        for (QWidget* box : findChildren<QWidget*>())
            box->installEventFilter(this);
    }
    shortcuts_.push_back(key.key());
}

// Text boxes claim the key of "undo" also when they have nothing to undo.
bool QtDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride)
        return QDialog::eventFilter(watched, event);
    const auto& key = *static_cast<QKeyEvent*>(event);
    const bool undo = key.matches(QKeySequence::Undo) && !can_undo(*watched);
    const bool ours = std::find(shortcuts_.begin(), shortcuts_.end(), QKeySequence(key.keyCombination())) !=
                      shortcuts_.end();
    if (!undo || !ours)
        return QDialog::eventFilter(watched, event);
    event->ignore();
    return true;
}

void QtDialog::place(QSize content) {
    const bool anywhere = form_.Left.get() == 0 && form_.Top.get() == 0;
    const QPoint centre(form_.Left.get() + form_.Width.get() / 2, form_.Top.get() + form_.Height.get() / 2);
    const QSize asked(to_pixels(form_.Width.get()), to_pixels(form_.Height.get()));
    const QSize size = content.expandedTo(asked).boundedTo(room_on_screen());
    resize(size);
    form_.Width = to_twips(size.width());
    form_.Height = to_twips(size.height());
    if (anywhere)
        return;
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QPoint corner(to_pixels(centre.x()) - size.width() / 2, to_pixels(centre.y()) - size.height() / 2);
    const QPoint seen(
        std::clamp(corner.x(), screen.left(), std::max(screen.left(), screen.right() - size.width())),
        std::clamp(corner.y(), screen.top(), std::max(screen.top(), screen.bottom() - size.height())));
    form_.Left = to_twips(seen.x());
    form_.Top = to_twips(seen.y());
    move(seen);
}

void QtDialog::focus_first() {
    QWidget* const first = controls_.widget(form_.FirstFocus);
    if (first == nullptr)
        return;
    if (dynamic_cast<OptionGroup*>(form_.FirstFocus) != nullptr) {
        const auto options = first->findChildren<QRadioButton*>();
        const auto chosen =
            std::find_if(options.begin(), options.end(), [](auto* one) { return one->isChecked(); });
        if (!options.isEmpty())
            (chosen == options.end() ? options.first() : *chosen)->setFocus();
        return;
    }
    first->setFocus();
    if (auto* const line = dynamic_cast<QLineEdit*>(first))
        line->selectAll();
    else if (auto* const area = dynamic_cast<QPlainTextEdit*>(first))
        area->selectAll();
}

void QtDialog::show_modal() {
    form_.Visible = true;
    exec();
    controls_.release();
    form_.Hide();
}

// From wherever no page took the key.
void QtDialog::keyPressEvent(QKeyEvent* event) {
    if (!pages_.empty() && pages_.front()->turned_by(*event))
        return;
    QDialog::keyPressEvent(event);
}

// Esc and the close box.
void QtDialog::reject() {
    if (form_.Cancel != nullptr)
        form_.Cancel->press();
}

} // namespace kestrune
