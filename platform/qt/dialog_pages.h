#pragma once

#include <QScrollArea>
#include <QTabWidget>

#include <string_view>
#include <vector>

class QKeyEvent;
class QVBoxLayout;

namespace kestrune {

class FittedLabel;

// Content that asks for all the room it needs and scrolls up and down in less. What gets the keyboard focus
// comes into view.
class ContentScroll final : public QScrollArea {
public:
    // Takes the content over, which has its layout. `least_height` in pixels.
    ContentScroll(QWidget& content, int least_height, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    int least_height_;
};

// Pages of a dialog, one of them in front. Ctrl+Tab and Ctrl+Page Down turn to the next one, with Shift or
// Page Up to the one before, round and round.
class DialogPages final : public QTabWidget {
public:
    explicit DialogPages(QWidget* parent);

    // A page at the end; its content goes into the layout from top to bottom.
    QVBoxLayout& add_page(std::string_view caption);

    // Labels that stand in one column on all pages, so that nothing jumps when a page is turned.
    void add_label(FittedLabel& label) { labels_.push_back(&label); }
    // To be called once all rows are there; `most` in pixels.
    void align_labels(int most);

    // Whether the key is one of the above; the page is turned then.
    bool turned_by(const QKeyEvent& key);

    // How much lower than its size hint this can be, in pixels.
    [[nodiscard]] int spare_height() const { return sizeHint().height() - minimumSizeHint().height(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::vector<FittedLabel*> labels_; // owned by the pages
};

} // namespace kestrune
