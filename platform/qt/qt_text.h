#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace kestrune {

// UTF-8 to Qt and back. Bytes that are no UTF-8 become U+FFFD.
QString to_qt(std::string_view text);
std::string from_qt(const QString& text);

// Spelled so that widgets which read "&" as the mark of a shortcut letter show it as a character.
QString literal(std::string_view text);

// One line for a title bar: line ends and control characters become blanks, and the marks that Qt replaces in
// titles stand as written.
QString title_text(std::string_view text);

// Tool tips guess whether their text is HTML; this is shown as the plain text it is, cut when very long.
QString plain_tooltip(const QString& text);

} // namespace kestrune
