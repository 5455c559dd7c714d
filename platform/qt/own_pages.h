#pragma once

#include <QWebEngineUrlSchemeHandler>

namespace kestrune {

// The program's own pages, under addresses such as "kestrune:website". Pages of the network can neither link
// to them nor load them.
class OwnPages : public QWebEngineUrlSchemeHandler {
public:
    static constexpr const char* scheme = "kestrune";

    // Makes the scheme known to the engine; once, before the application object is made.
    static void register_scheme();

    using QWebEngineUrlSchemeHandler::QWebEngineUrlSchemeHandler;
    void requestStarted(QWebEngineUrlRequestJob* request) override;
};

} // namespace kestrune
