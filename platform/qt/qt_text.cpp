#include "platform/qt/qt_text.h"

namespace kestrune {
namespace {

constexpr int longest_tooltip = 2000;
constexpr std::size_t longest_letter = 4; // bytes in UTF-8

bool ends_line(QChar letter) {
    return letter == u'\n' || letter == QChar::LineSeparator || letter == QChar::ParagraphSeparator;
}

QString plain(std::string_view text, qsizetype most, bool in_lines) {
    // No more of it than can be shown, and one to tell that there is more.
    QString shown = to_qt(text.substr(0, (static_cast<std::size_t>(most) + 1) * longest_letter));
    if (in_lines)
        shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (shown.size() > most) {
        shown.truncate(most - (shown[most - 1].isHighSurrogate() ? 1 : 0));
        shown += QChar(0x2026);
    }
    for (QChar& letter : shown) {
        if (ends_line(letter))
            letter = in_lines ? u'\n' : u' ';
        else if (is_no_letter(letter))
            letter = u' ';
    }
    return shown;
}

} // namespace

QString to_qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string from_qt(const QString& text) { return text.toStdString(); }

QString literal(std::string_view text) { return to_qt(text).replace(u'&', QStringLiteral("&&")); }

bool is_no_letter(QChar letter) {
    const char16_t code = letter.unicode();
    const bool turns_direction = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return turns_direction || letter.category() == QChar::Other_Control;
}

QString plain_line(std::string_view text, qsizetype most) { return plain(text, most, false); }

QString plain_text(std::string_view text, qsizetype most) { return plain(text, most, true); }

QString title_text(std::string_view text) {
    return plain_line(text, longest_title).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

QString plain_tooltip(const QString& text) {
    if (text.isEmpty())
        return {};
    return QStringLiteral("<span style='white-space:pre-wrap'>") +
           text.left(longest_tooltip).toHtmlEscaped() + QStringLiteral("</span>");
}

} // namespace kestrune
