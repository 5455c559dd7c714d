#include "platform/qt/start_notices.h"

#include "platform/qt/engine_age.h"
#include "platform/qt/site_data.h"

#include <QDate>
#include <QtWebEngineCore/qtwebenginecoreglobal.h>

namespace kestrune {

std::vector<std::pair<QString, QString>> start_notices(SiteData* data) {
    std::vector<std::pair<QString, QString>> notices;
    if (const QString sandbox = sandbox_words(); !sandbox.isEmpty())
        notices.emplace_back(QStringLiteral("Pages are not kept apart from your system"), sandbox);
    const QString note = QStringLiteral("engine told");
    const QString version = QString::fromLatin1(qWebEngineChromiumSecurityPatchVersion());
    if (data == nullptr || data->note(note) == version)
        return notices;
    data->set_note(note, version);
    notices.emplace_back(QStringLiteral("The browser engine"),
                         engine_age_words(version, QDate::currentDate()));
    return notices;
}

} // namespace kestrune
