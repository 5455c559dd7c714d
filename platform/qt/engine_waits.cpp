#include "platform/qt/engine_waits.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEventLoop>

namespace kestrune {

bool EngineWaits::program_busy() const {
    return for_page_ > 0 || QApplication::activeModalWidget() != nullptr ||
           QApplication::activePopupWidget() != nullptr;
}

bool EngineWaits::wait_for_questions() {
    const auto question = [] {
        return QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr;
    };
    const Open standing_still(*this);
    while (question()) {
        QEventLoop loop;
        bool answered = false;
        QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &loop,
                         [&] {
                             answered = !question();
                             if (answered)
                                 loop.quit();
                         });
        loop.exec();
        if (!answered)
            return false;
    }
    return true;
}

} // namespace kestrune
