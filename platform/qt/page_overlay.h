#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QWebEnginePage;

namespace kestrune {

// What lies over the page without taking room or the mouse: the progress of a load as a thin line along the
// upper edge, and in the lower left corner the address of the link under the mouse, or a short word.
class PageOverlay : public QObject {
public:
    PageOverlay(QWidget& place, QWebEnginePage& page);

    // Shows a few words for a moment.
    void tell(const QString& words);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show_address(const QString& address);
    void show_progress(int percent);
    void place_parts();

    QWidget& place_;
    QLabel* words_; // this and the following are children of the place
    QWidget* line_;
    QString address_;
    int percent_ = 0;
    QTimer moment_;
};

} // namespace kestrune
