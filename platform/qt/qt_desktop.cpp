#include "platform/qt/qt_desktop.h"

#include "platform/diagnostics.h"
#include "platform/qt/own_pages.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/qt_user_interface.h"

#include <QApplication>
#include <QIcon>
#include <QLoggingCategory>
#include <QStyleFactory>

// Outside the namespace: the macro declares a function of the resource compiler.
static void load_resources() { Q_INIT_RESOURCE(kestrune); }

namespace kestrune {
namespace {

// Silent unless switched on, for example with QT_LOGGING_RULES="kestrune.warning=true".
Q_LOGGING_CATEGORY(swallowed, "kestrune", QtCriticalMsg)

QIcon program_icon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/kestrune/icon-%1.png").arg(size), QSize(size, size));
    return icon;
}

} // namespace

struct QtDesktop::Parts {
    Parts(int& argument_count, char** arguments) : application(argument_count, arguments) {}
    QApplication application;
    std::unique_ptr<QtUserInterface> user_interface;
};

QtDesktop::QtDesktop(int& argument_count, char** arguments) {
    OwnPages::register_scheme();
    parts_ = std::make_unique<Parts>(argument_count, arguments);
    load_resources();
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QCoreApplication::setApplicationName(QStringLiteral("Kestrune"));
    QGuiApplication::setDesktopFileName(QStringLiteral("kestrune"));
    QGuiApplication::setWindowIcon(program_icon());
    // Windows hide behind their pop-ups; the program's own rules say when it ends.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    diagnostics::set_sink([](std::string_view what, std::string_view why) {
        qCWarning(swallowed).noquote() << to_qt(what) << ":" << to_qt(why);
    });
    parts_->user_interface = std::make_unique<QtUserInterface>();
}

QtDesktop::~QtDesktop() { diagnostics::set_sink(nullptr); }

UserInterface& QtDesktop::user_interface() { return *parts_->user_interface; }

void QtDesktop::keep_site_data_in(const std::string& folder) {
    parts_->user_interface->keep_site_data_in(folder);
}

int QtDesktop::run() { return QApplication::exec(); }

} // namespace kestrune
