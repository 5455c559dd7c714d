#pragma once

#include <QStringList>
#include <QWebEnginePage>

class QDialog;
class QWidget;

namespace kestrune {

// Keeps a dialog above the window of a widget, which may end before it.
void stand_above(QDialog& dialog, const QWidget& widget);

// Lets the user choose files for a page's upload field; empty when nothing is chosen. `types` are what the
// field accepts, as the page writes them: ".zip", "image/png", "image/*".
QStringList choose_files(QWidget& above, QWebEnginePage::FileSelectionMode mode, const QStringList& types);

} // namespace kestrune
