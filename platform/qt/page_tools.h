#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

class QWebEngineView;

namespace kestrune {

class FindBar;
class PageBar;
class PageBars;
class PageOverlay;

// What a user does with the page on show: find, zoom, print to a file, look at its source. By keys, and from
// the browser's own context menu; the window's menus stay as they are.
class PageTools : public QObject {
public:
    static constexpr double least_zoom = 0.25;
    static constexpr double most_zoom = 5.0;

    // The place outlives the tools.
    PageTools(QWidget& place, QWebEngineView& view, PageBars& bars);
    ~PageTools() override;
    PageTools(const PageTools&) = delete;
    PageTools& operator=(const PageTools&) = delete;
    PageTools(PageTools&&) = delete;
    PageTools& operator=(PageTools&&) = delete;

    void find();
    void zoom(int steps); // 0 goes back to the size the page was made for
    // The page is left: what it asked for is taken away.
    void leaving();
    // Asks for a file and prints into it.
    void print();
    // The source as it stands now, in a window of its own.
    void show_source();

    // The browser's own context menu for where the user asked for it last; `place` in the view.
    void show_menu(QPoint place);

private:
    void add_key(const char* keys, std::function<void()> act);
    void write_pdf(const QString& path, const QByteArray& pdf);
    void tell(const QString& heading, const QString& text);

    QWidget& place_;
    QWebEngineView& view_;
    PageBars& bars_;
    FindBar* find_bar_;    // child of the place
    PageOverlay* overlay_; // child of this
    QPointer<QWidget> source_;
    QPointer<PageBar> print_bar_; // a page may ask again and again
};

} // namespace kestrune
