#include "platform/qt/own_pages.h"

#include <QFile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

#include <memory>

namespace kestrune {

void OwnPages::register_scheme() {
    QWebEngineUrlScheme own(scheme);
    own.setSyntax(QWebEngineUrlScheme::Syntax::Path);
    own.setFlags(QWebEngineUrlScheme::LocalScheme);
    QWebEngineUrlScheme::registerScheme(own);
}

void OwnPages::requestStarted(QWebEngineUrlRequestJob* request) {
    const QString name = request->requestUrl().path();
    auto page = std::make_unique<QFile>(QStringLiteral(":/kestrune/%1.html").arg(name));
    if (name.contains(u'/') || !page->open(QIODevice::ReadOnly)) {
        request->fail(QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }
    page->setParent(request);
    request->reply("text/html", page.release());
}

} // namespace kestrune
