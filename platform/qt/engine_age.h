#pragma once

#include <QDate>
#include <QString>

#include <optional>

namespace kestrune {

// When a version of Chromium, such as "108.0.5359.94", was published: to within a few weeks, from its first
// number. Nothing for text that is no version and for those from before 2021.
std::optional<QDate> chromium_date(const QString& version);

// What the user should know about security fixes up to this version, and do about it, as of this day. One
// short paragraph; never empty.
QString engine_age_words(const QString& version, QDate today);

// Ways in which the sandbox has been switched off from outside; "" when it is on.
QString sandbox_words(const QByteArray& disabling_variable, const QByteArray& flags,
                      const QStringList& arguments);
// The same for the running program.
QString sandbox_words();

} // namespace kestrune
