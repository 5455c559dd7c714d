#pragma once

class QDialog;
class QWidget;

namespace kestrune {

// Keeps a dialog above the window of a widget, which may end before it.
void stand_above(QDialog& dialog, const QWidget& widget);

} // namespace kestrune
