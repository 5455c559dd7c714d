#pragma once

#include <QPointer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QWebEnginePage;

namespace kestrune {

// Finds text in the page: a line below it with a box to type into, opened by Ctrl+F. Enter and F3 go to the
// next place, with Shift to the one before; Esc closes it.
class FindBar final : public QWidget {
public:
    // The page outlives the bar, or takes its own end as the bar's.
    FindBar(QWebEnginePage& page, QWidget* parent);

    // Shows the bar, with what is selected in the page as the text to find.
    void open();
    void find(bool backwards);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void close_bar();
    void show_count(int active, int count);

    QPointer<QWebEnginePage> page_;
    QLineEdit* text_; // this and the following are children
    QLabel* count_;
};

} // namespace kestrune
