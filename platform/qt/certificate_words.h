#pragma once

#include <QString>
#include <QWebEngineCertificateError>

namespace kestrune {

// What is wrong with a site's certificate, in words for somebody who does not know what one is. `details` are
// the engine's own words.
QString certificate_words(QWebEngineCertificateError::Type type, const QString& host, const QString& details);

} // namespace kestrune
