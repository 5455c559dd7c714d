#pragma once

#include <QWidget>

class QLineEdit;

namespace kestrune {

// A widget that holds other controls; assistive technology sees those of its children that are not hidden
// from it.
class ControlContainer : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;
};

// Takes a widget in a ControlContainer out of the accessible tree.
void hide_from_assistance(QWidget& widget);

// Shows the text as dots, or as it is. Nothing of a masked text reaches assistive technology, neither asked
// for nor in the news of its changes.
void set_masked(QLineEdit& box, bool masked);

// Teaches the toolkit the above, and the role of a status bar. To be called once, before the first widget.
void install_accessibility();

} // namespace kestrune
