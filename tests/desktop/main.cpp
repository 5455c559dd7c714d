#include "platform/qt/qt_desktop.h"
#include "tests/desktop/visit.h"

#include <gmock/gmock.h>

#include <QByteArray>

#include <string>
#include <vector>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", QByteArray("offscreen"));
    testing::InitGoogleMock(&argc, argv);
    kestrune::QtDesktop desktop(argc, argv);
    // What a test starts as another run of the program: --visit FOLDER URL [forget]
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() >= 4 && arguments[1] == "--visit")
        return kestrune::visit(desktop, arguments[2], arguments[3], arguments.size() > 4);
    return RUN_ALL_TESTS();
}
