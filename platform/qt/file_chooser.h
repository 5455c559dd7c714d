#pragma once

#include <QStringList>
#include <QWebEnginePage>

class QWidget;

namespace kestrune {

// Lets the user choose files for a page's upload field; empty when nothing is chosen. `types` are what the
// field accepts, as the page writes them: ".zip", "image/png", "image/*".
QStringList choose_files(QWidget& above, QWebEnginePage::FileSelectionMode mode, const QStringList& types);

} // namespace kestrune
