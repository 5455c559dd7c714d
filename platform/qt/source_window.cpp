#include "platform/qt/source_window.h"

#include "platform/qt/caption_widgets.h"
#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace kestrune {
namespace {

constexpr int widest_note = 900; // pixels

struct ShownSource {
    QString text;
    bool broken = false; // a line of it
    bool cut = false;
};

ShownSource shown_source(const QString& source) {
    ShownSource shown;
    const qsizetype all = std::min(source.size(), SourceWindow::longest_source);
    shown.text.reserve(all + all / SourceWindow::longest_line);
    qsizetype at = 0;
    for (int lines = 0; at < all && lines < SourceWindow::most_lines; ++lines) {
        const QStringView rest =
            QStringView(source).mid(at, std::min(all - at, SourceWindow::longest_line + 1));
        const qsizetype end = rest.indexOf(u'\n');
        const bool breaks = end < 0 && rest.size() > SourceWindow::longest_line;
        qsizetype length = end >= 0 ? end + 1 : std::min(rest.size(), SourceWindow::longest_line);
        if (breaks && rest[length - 1].isHighSurrogate())
            --length; // not within a letter
        shown.text += rest.left(length);
        at += length;
        if (breaks) {
            shown.text += u'\n';
            shown.broken = true;
        }
    }
    shown.cut = at < source.size();
    return shown;
}

QString note_on(const ShownSource& shown) {
    QStringList notes;
    if (shown.broken)
        notes
            << QStringLiteral("Lines of more than %1 characters are broken.").arg(SourceWindow::longest_line);
    if (shown.cut)
        notes << QStringLiteral("Only the beginning of the source is shown.");
    return notes.join(u' ');
}

} // namespace

SourceWindow::SourceWindow(const QString& title, const QString& source) {
    setObjectName(QStringLiteral("PageSource"));
    setWindowTitle(title_text(from_qt(title)));
    auto& column = child_of<QVBoxLayout>(*this);
    column.setContentsMargins(0, 0, 0, 0);
    column.setSpacing(0);

    const ShownSource shown = shown_source(source);
    if (const QString note = note_on(shown); !note.isEmpty()) {
        auto& label = child_of<WrappedLabel>(*this);
        label.setObjectName(QStringLiteral("SourceNote"));
        label.set_preferred_width(widest_note);
        label.setText(note);
        auto row = std::make_unique<QHBoxLayout>();
        row->setContentsMargins(8, 6, 8, 6);
        row->addWidget(&label);
        column.addLayout(row.release());
    }
    auto& text = child_of<QPlainTextEdit>(*this);
    text.setObjectName(QStringLiteral("SourceText"));
    text.setReadOnly(true);
    text.setLineWrapMode(QPlainTextEdit::NoWrap);
    text.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text.setAccessibleName(QStringLiteral("Source of the page"));
    text.setPlainText(shown.text);
    column.addWidget(&text, 1);
    text.setFocus();
}

} // namespace kestrune
