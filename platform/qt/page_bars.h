#pragma once

#include "platform/qt/page_bar.h"
#include "platform/qt/typing_watch.h"

#include <QPointer>
#include <QScrollArea>

namespace kestrune {

// The bars of one page, the oldest on top. They take no room while there is none, and never more than half of
// the place that they share with the page; then they are scrolled.
class PageBars final : public QScrollArea {
public:
    explicit PageBars(QWidget* place);

    PageBar& add(const QString& name);
    // A bar that stands until it is read.
    PageBar& tell(const QString& name, const QString& heading, const QString& text);
    // Takes the bar away; nothing happens when it is gone already.
    static void remove(const QPointer<PageBar>& bar);

    // Scrolls to the bar.
    void reveal(PageBar& bar);
    // Puts the keyboard into the bar after the one that has it; false after the last one.
    bool focus_next();
    // The user is typing in the window, but not in a bar.
    [[nodiscard]] bool user_types() const { return typing_.typing(); }
    // Of the bars to come, and of `user_types`.
    void set_clock(const Clock& clock);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] std::vector<PageBar*> shown() const;
    void fit();

    QWidget* column_; // a descendant
    Clock clock_ = std::chrono::steady_clock::now;
    TypingWatch typing_;
};

} // namespace kestrune
