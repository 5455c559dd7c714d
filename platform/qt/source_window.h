#pragma once

#include <QString>
#include <QWidget>

namespace kestrune {

// A page's source in a window of its own, as plain text. Lines as long as no editor can show are broken, and
// a source without end is cut; the window says so.
class SourceWindow final : public QWidget {
public:
    static constexpr qsizetype longest_line = 2000; // characters
    static constexpr int most_lines = 100000;
    static constexpr qsizetype longest_source = 8 << 20; // characters

    SourceWindow(const QString& title, const QString& source);
};

} // namespace kestrune
