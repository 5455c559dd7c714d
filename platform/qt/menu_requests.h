#pragma once

#include "platform/page.h"

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QKeyEvent;
class QMouseEvent;
class QWebEngineView;

namespace kestrune {

struct PageNotice;

// The user asks for a menu on the page: by the right mouse button, the Menu key or Shift+F10. Whoever shows
// menus is asked first, and the page hears of the click or key only when nobody wanted it. A child of the
// browser's place.
class MenuRequests final : public QObject {
    Q_OBJECT

public:
    // Shows the menu of a document, in which this field has the focus; true when something was chosen. Runs
    // from the event loop, and may destroy this object.
    using Show = std::function<bool(const ElementRef& field)>;

    // Watches the view's widgets; the view outlives this object.
    MenuRequests(QWebEngineView& view, Show show, QWidget* place);

    // The page side told which document it is (PageNotice::Kind::menu).
    void answered(const PageNotice& notice);

    // Where the menu that is being shown belongs on the screen; nothing while none is asked for.
    [[nodiscard]] std::optional<QPoint> menu_place() const;

    // A click or key has not found its way yet.
    [[nodiscard]] bool busy() const { return open_ != nullptr; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // A click or key that is held back.
    struct Request {
        QPointer<QWidget> widget;
        bool by_key = false;
        QPointF place; // in the widget
        QPoint on_screen;
        int key = 0;
        Qt::KeyboardModifiers modifiers;
    };

    bool press(QWidget& widget, const QMouseEvent& event);
    bool key(QWidget& widget, const QKeyEvent& event);
    void ask(Request request);
    void ask_page();
    void show_menu(const ElementRef& field);
    void finish(bool done);
    void hand_on(const Request& request);

    QWebEngineView& view_;
    Show show_;
    std::unique_ptr<Request> open_;
    std::unique_ptr<Request> next_; // the latest that came while one was open
    quint32 number_ = 0;            // of the question to the page
    bool asked_ = false;            // the page has not answered yet
    bool handing_on_ = false;
    bool held_button_ = false; // its release belongs to a press that was held back
    int held_key_ = 0;
};

} // namespace kestrune
