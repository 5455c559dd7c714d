#include "platform/qt/accessibility.h"
#include "platform/qt/child_of.h"
#include "platform/qt/control_widgets.h"
#include "platform/qt/qt_text.h"

#include <QButtonGroup>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTextDocument>
#include <QVBoxLayout>

#include <limits>

namespace kestrune {
namespace {

constexpr int shown_lines = 5;

QString with_plain_line_ends(std::string_view text) {
    return to_qt(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

// Not toPlainText: that turns no-break spaces into blanks.
QString text_of(const QPlainTextEdit& area) {
    return area.document()
        ->toRawText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

// A text area's lines end as forms post them and as the program's files hold them.
std::string with_posted_line_ends(QString text) {
    return from_qt(text.replace(u'\n', QStringLiteral("\r\n")));
}

// A text that cannot be edited looks like part of the window, so that nobody tries.
void show_locked(QWidget& box, bool locked) {
    QPalette colours;
    if (locked)
        colours.setColor(QPalette::Base, colours.color(QPalette::Window));
    box.setPalette(colours);
}

// A text area that asks for a few lines' height.
class TextArea final : public QPlainTextEdit {
public:
    using QPlainTextEdit::QPlainTextEdit;
    [[nodiscard]] QSize sizeHint() const override {
        return {QPlainTextEdit::sizeHint().width(), fontMetrics().lineSpacing() * shown_lines + 12};
    }
};

} // namespace

QWidget& ControlWidgets::make_text_box(TextBox& box, QWidget& parent) {
    return box.MultiLine ? make_text_area(box, parent) : make_text_line(box, parent);
}

QWidget& ControlWidgets::make_text_line(TextBox& box, QWidget& parent) {
    auto& made = child_of<QLineEdit>(parent);
    made.setMaxLength(std::numeric_limits<int>::max());
    tie(box, made, [&box, &made] {
        // Before the text, which is announced as it comes in.
        set_masked(made, box.Masked.get());
        const QString text = to_qt(box.Text.get());
        if (made.text() != text) {
            made.setText(text);
            made.setCursorPosition(0);
        }
        made.setReadOnly(box.Locked.get());
        show_locked(made, box.Locked.get());
    });
    QObject::connect(&made, &QLineEdit::textEdited, bindings_.context(),
                     [&box](const QString& text) { box.Text = from_qt(text); });
    return made;
}

QWidget& ControlWidgets::make_text_area(TextBox& box, QWidget& parent) {
    auto& made = child_of<TextArea>(parent);
    made.setTabChangesFocus(true);
    tie(box, made, [&box, &made] {
        const QString text = with_plain_line_ends(box.Text.get());
        if (text_of(made) != text) {
            const QSignalBlocker by_code(made);
            made.setPlainText(text);
        }
        made.setReadOnly(box.Locked.get());
        show_locked(made, box.Locked.get());
    });
    QObject::connect(&made, &QPlainTextEdit::textChanged, bindings_.context(), [&box, &made] {
        // Formatting is announced as a change of the text, too.
        if (text_of(made) != with_plain_line_ends(box.Text.get()))
            box.Text = with_posted_line_ends(text_of(made));
    });
    return made;
}

QWidget& ControlWidgets::make_options(OptionGroup& group, QWidget& parent) {
    auto& made = child_of<QWidget>(parent);
    auto& column = child_of<QVBoxLayout>(made);
    column.setContentsMargins(0, 0, 0, 0);
    column.setSpacing(2);
    auto& options = child_of<QButtonGroup>(made);
    for (std::size_t i = 0; i < group.Captions.size(); ++i) {
        auto& option = child_of<QRadioButton>(made);
        option.setText(literal(group.Captions[i]));
        option.setAccessibleName(to_qt(group.Captions[i]));
        option.setObjectName(to_qt(group.Name) + QStringLiteral("(%1)").arg(i));
        options.addButton(&option, static_cast<int>(i));
        column.addWidget(&option);
    }
    tie(group, made, [&group, &options] {
        // An exclusive group cannot be brought back to having nothing selected.
        options.setExclusive(false);
        for (QAbstractButton* option : options.buttons())
            option->setChecked(options.id(option) == group.Selected.get());
        options.setExclusive(true);
    });
    QObject::connect(&options, &QButtonGroup::idToggled, bindings_.context(),
                     [&group, &options](int id, bool on) {
                         if (on && options.exclusive())
                             group.Selected = id;
                     });
    return made;
}

} // namespace kestrune
