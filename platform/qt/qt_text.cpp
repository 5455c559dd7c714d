#include "platform/qt/qt_text.h"

namespace kestrune {
namespace {

constexpr int longest_tooltip = 2000;

} // namespace

QString to_qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string from_qt(const QString& text) { return text.toStdString(); }

QString literal(std::string_view text) { return to_qt(text).replace(u'&', QStringLiteral("&&")); }

QString title_text(std::string_view text) {
    QString title = to_qt(text);
    for (QChar& letter : title) {
        if (letter.category() == QChar::Other_Control)
            letter = u' ';
    }
    return title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

QString plain_tooltip(const QString& text) {
    if (text.isEmpty())
        return {};
    return QStringLiteral("<span style='white-space:pre-wrap'>") +
           text.left(longest_tooltip).toHtmlEscaped() + QStringLiteral("</span>");
}

} // namespace kestrune
