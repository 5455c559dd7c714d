#include "platform/qt/file_chooser.h"

#include "platform/qt/stand_above.h"

#include <QFileDialog>
#include <QMimeDatabase>

#include <algorithm>

namespace kestrune {
namespace {

// A page may name as many types as it likes, and the dialog looks at each of its files for each of them.
constexpr qsizetype most_types = 50;
constexpr qsizetype longest_type = 100; // characters

// What the field accepts first, everything second: sites often forget a type.
QStringList filters_for(const QStringList& types) {
    const QMimeDatabase known;
    QStringList patterns;
    for (const QString& type : types.first(std::min(types.size(), most_types))) {
        if (type.size() > longest_type)
            continue;
        if (type.startsWith(u'.') && !type.contains(u' ') && !type.contains(u')'))
            patterns << QStringLiteral("*") + type;
        else
            patterns << known.mimeTypeForName(type).globPatterns();
    }
    QStringList filters;
    if (!patterns.isEmpty())
        filters << QStringLiteral("Accepted files (%1)").arg(patterns.join(u' '));
    return filters << QStringLiteral("All files (*)");
}

} // namespace

QStringList choose_files(QWidget& above, QWebEnginePage::FileSelectionMode mode, const QStringList& types) {
    QFileDialog dialog;
    stand_above(dialog, above);
    dialog.setObjectName(QStringLiteral("UploadFileDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    switch (mode) {
    case QWebEnginePage::FileSelectUploadFolder:
        dialog.setFileMode(QFileDialog::Directory);
        dialog.setWindowTitle(QStringLiteral("Send the files of a folder"));
        break;
    case QWebEnginePage::FileSelectOpenMultiple:
        dialog.setFileMode(QFileDialog::ExistingFiles);
        dialog.setWindowTitle(QStringLiteral("Send files"));
        break;
    default:
        dialog.setFileMode(QFileDialog::ExistingFile);
        dialog.setWindowTitle(QStringLiteral("Send a file"));
    }
    if (mode != QWebEnginePage::FileSelectUploadFolder)
        dialog.setNameFilters(filters_for(types));
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

} // namespace kestrune
