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

// What a page may write and nobody should be shown: control characters, line ends among them, and the marks
// that turn the direction of writing round.
bool is_no_letter(QChar letter);

// Words that may come from a page, fit to stand among the program's own: at most `most` characters, with
// blanks for what is no letter. `plain_line` is one line, whatever it holds; `plain_text` keeps its line
// ends.
QString plain_line(std::string_view text, qsizetype most);
QString plain_text(std::string_view text, qsizetype most);

// The longest title that is shown, in characters. A page's link or address may be a title, and a toolkit that
// lays out a word of a hundred thousand letters is busy for a minute.
inline constexpr qsizetype longest_title = 200;

// As plain_line, for a title bar: the marks that Qt replaces in titles stand as written.
QString title_text(std::string_view text);

// Tool tips guess whether their text is HTML; this is shown as the plain text it is, cut when very long.
QString plain_tooltip(const QString& text);

} // namespace kestrune
