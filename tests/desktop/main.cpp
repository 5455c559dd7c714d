#include "platform/qt/qt_desktop.h"

#include <gmock/gmock.h>

#include <QByteArray>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", QByteArray("offscreen"));
    testing::InitGoogleMock(&argc, argv);
    const kestrune::QtDesktop desktop(argc, argv);
    return RUN_ALL_TESTS();
}
