#include "platform/qt/stand_above.h"

#include <QDialog>
#include <QWindow>

namespace kestrune {

void stand_above(QDialog& dialog, const QWidget& widget) {
    dialog.winId();
    dialog.windowHandle()->setTransientParent(widget.window()->windowHandle());
}

} // namespace kestrune
