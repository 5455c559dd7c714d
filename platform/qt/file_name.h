#pragma once

#include <QString>

namespace kestrune {

// A name that a stranger gives a file, fit for a folder of the user's: no path, no hidden file, no characters
// that lie about its ending or that another system refuses, and no longer than file systems take.
QString clean_file_name(const QString& name);

// Brings a complete file to its place; the name there never leads to a part of it. "" on success, otherwise
// what went wrong, in the system's words.
QString move_into_place(const QString& from, const QString& to);

} // namespace kestrune
