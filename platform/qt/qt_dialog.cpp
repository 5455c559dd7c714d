#include "platform/qt/qt_dialog.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/twips.h"

#include <QGroupBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

constexpr int widest_label = 240; // pixels
constexpr int narrowest_field = 380;
constexpr int widest_note = 480;

QSize room_on_screen() { return QGuiApplication::primaryScreen()->availableSize() * 9 / 10; }

QString without_colon(std::string_view label) {
    QString name = to_qt(label).trimmed();
    if (name.endsWith(u':'))
        name.chop(1);
    return name;
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
    place(content + QSize(0, scrolled_height_));
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
    QFormLayout* rows = nullptr;
    const std::string* group = nullptr;
    for (const Form::Row& row : form_.Rows) {
        if (group == nullptr || *group != row.Group) {
            QWidget* part = nullptr;
            if (row.Group.empty()) {
                part = &child_of<QWidget>(content);
            } else {
                auto& box = child_of<QGroupBox>(content);
                box.setTitle(literal(row.Group));
                part = &box;
            }
            rows = &form_layout(*part);
            if (row.Group.empty())
                rows->setContentsMargins(0, 0, 0, 0);
            parts.addWidget(part);
        }
        group = &row.Group;
        add_row(*rows, row);
    }

    const QSize wanted = content.sizeHint();
    if (wanted.height() <= room_on_screen().height() - 120) {
        column.addWidget(&content, 1);
        return;
    }
    parts.addStretch(1);
    auto& scroll = child_of<QScrollArea>(*this);
    scroll.setFrameShape(QFrame::NoFrame);
    scroll.setWidgetResizable(true);
    scroll.setFocusPolicy(Qt::NoFocus);
    scroll.setWidget(&content);
    scroll.setMinimumWidth(wanted.width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 4);
    column.addWidget(&scroll, 1);
    scrolled_height_ = std::max(0, wanted.height() - scroll.sizeHint().height());
}

void QtDialog::add_row(QFormLayout& rows, const Form::Row& row) {
    if (row.Field == nullptr)
        return;
    QWidget& field = controls_.add(*row.Field, *rows.parentWidget());
    if (auto* const note = dynamic_cast<WrappedLabel*>(&field))
        note->set_preferred_width(widest_note);
    else if (dynamic_cast<OptionGroup*>(row.Field) == nullptr)
        field.setMinimumWidth(narrowest_field);
    if (row.Label.empty()) {
        // A note may take the whole width; what the user fills in lines up with the other fields.
        if (dynamic_cast<WrappedLabel*>(&field) != nullptr)
            rows.addRow(&field);
        else
            rows.setWidget(rows.rowCount(), QFormLayout::FieldRole, &field);
        return;
    }
    if (field.accessibleName().isEmpty())
        field.setAccessibleName(without_colon(row.Label));
    auto& label = child_of<FittedLabel>(*rows.parentWidget(), 1.0);
    label.setText(to_qt(row.Label));
    label.setObjectName(field.objectName() + QStringLiteral(".Label"));
    label.setMinimumWidth(std::min(label.fontMetrics().horizontalAdvance(label.text()) + 2, widest_label));
    label.setMaximumWidth(widest_label);
    label.setBuddy(&field);
    if (dynamic_cast<QLineEdit*>(&field) != nullptr)
        label.setMinimumHeight(field.sizeHint().height());
    else // beside the first of several lines
        label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    if (dynamic_cast<WrappedLabel*>(&field) == nullptr)
        label.setContentsMargins(0, 3, 0, 3);
    rows.addRow(&label, &field);
}

void QtDialog::add_buttons(QVBoxLayout& column) {
    auto row = std::make_unique<QHBoxLayout>();
    row->addStretch(1);
    for (Button* button : form_.Buttons) {
        QWidget& made = controls_.add(*button, *this);
        made.setMinimumSize(std::max(88, made.sizeHint().width() + 12), 30);
        row->addWidget(&made);
        if (button == form_.Default) {
            if (auto* const default_button = dynamic_cast<QPushButton*>(&made))
                default_button->setDefault(true);
        }
    }
    column.addLayout(row.release());
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

// Esc and the close box.
void QtDialog::reject() {
    if (form_.Cancel != nullptr)
        form_.Cancel->press();
}

} // namespace kestrune
