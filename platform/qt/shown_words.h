#pragma once

#include <QString>
#include <QUrl>

namespace kestrune {

// Words of a page, fit to be shown: without control characters and marks that turn the direction of writing
// round, cut after `most` characters.
QString shown_words(const QString& words, int most);

// The address's host as a user can tell it from others, with its port.
QString shown_host(const QUrl& url);

} // namespace kestrune
