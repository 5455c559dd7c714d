#include "platform/qt/file_name.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kestrune {
namespace {

constexpr qsizetype longest_name = 200; // bytes; leaves room for what a system adds
constexpr qsizetype longest_ending = 20;
constexpr qint64 copied_at_once = 1 << 20;

bool is_reserved(const QString& stem) {
    static const QStringList reserved{QStringLiteral("con"), QStringLiteral("prn"), QStringLiteral("aux"),
                                      QStringLiteral("nul")};
    const QString low = stem.toLower();
    const bool port =
        low.size() == 4 && (low.startsWith(u"com") || low.startsWith(u"lpt")) && low[3].isDigit();
    return port || reserved.contains(low);
}

QString shortened(const QString& name) {
    const QString ending = QFileInfo(name).suffix();
    QString stem = name;
    QString kept;
    if (!ending.isEmpty() && ending.size() <= longest_ending) {
        kept = u'.' + ending;
        stem.chop(kept.size());
    }
    while (stem.toUtf8().size() + kept.toUtf8().size() > longest_name)
        stem.chop(stem.back().isLowSurrogate() ? 2 : 1);
    return stem + kept;
}

QString copied(const QString& from, const QString& to) {
    QFile source(from);
    QSaveFile target(to);
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    // A buffer would learn of a full disk without knowing the reason.
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return target.errorString();
    while (!source.atEnd()) {
        const QByteArray part = source.read(copied_at_once);
        if (part.isEmpty())
            return source.errorString();
        // Of what does not fit a disk, a first part is taken without an error.
        for (qsizetype done = 0; done < part.size();) {
            const qint64 taken = target.write(part.constData() + done, part.size() - done);
            if (taken <= 0)
                return target.errorString();
            done += taken;
        }
    }
    return target.commit() ? QString() : target.errorString();
}

} // namespace

QString clean_file_name(const QString& name) {
    QString clean;
    for (const QChar letter : name.mid(std::max(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\')) + 1)) {
        const QChar::Category kind = letter.category();
        if (kind == QChar::Other_Control || kind == QChar::Other_Format || kind == QChar::Separator_Line ||
            kind == QChar::Separator_Paragraph)
            continue;
        clean += QStringLiteral(":*?\"<>|").contains(letter) ? QChar(u'_') : letter;
    }
    clean = clean.trimmed();
    while (clean.startsWith(u'.') || clean.startsWith(u'~') || clean.startsWith(u' '))
        clean.remove(0, 1);
    while (clean.endsWith(u'.') || clean.endsWith(u' '))
        clean.chop(1);
    if (is_reserved(clean.section(u'.', 0, 0)))
        clean.prepend(u'_');
    clean = shortened(clean);
    return clean.isEmpty() ? QStringLiteral("download") : clean;
}

QString move_into_place(const QString& from, const QString& to) {
    std::error_code failed;
    std::filesystem::rename(from.toStdU16String(), to.toStdU16String(), failed);
    if (!failed)
        return {};
    if (failed != std::errc::cross_device_link)
        return QString::fromStdString(failed.message());
    const QString error = copied(from, to);
    if (error.isEmpty())
        QFile::remove(from);
    return error;
}

} // namespace kestrune
