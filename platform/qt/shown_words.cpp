#include "platform/qt/shown_words.h"

namespace kestrune {
namespace {

constexpr int most_lines = 12;

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

QString shown_host(const QUrl& url) {
    const QString host = url.host(QUrl::FullyEncoded);
    if (host.isEmpty())
        return QStringLiteral("The page");
    return url.port() < 0 ? host : host + u':' + QString::number(url.port());
}

} // namespace kestrune
