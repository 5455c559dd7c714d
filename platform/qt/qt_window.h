#pragma once

#include "platform/qt/control_widgets.h"
#include "platform/window_form.h"

#include <QElapsedTimer>
#include <QMenuBar>
#include <QPoint>
#include <QWidget>

#include <memory>
#include <optional>

namespace kestrune {

// The real window of a WindowForm: menu bar above, the inner area with the controls below.
class QtWindow final : public QWidget {
public:
    // Hidden at first. The form outlives the window, or the call of `release`.
    explicit QtWindow(WindowForm& form);
    ~QtWindow() override;
    QtWindow(const QtWindow&) = delete;
    QtWindow& operator=(const QtWindow&) = delete;
    QtWindow(QtWindow&&) = delete;
    QtWindow& operator=(QtWindow&&) = delete;

    // Where the web page goes: the part of the browser's place that no status bar covers.
    [[nodiscard]] QWidget& page_area() { return *page_area_; }
    // To be called once the page's widget lies in the page area: the Tab key finds it then.
    void order_tabs();

    // The window's real menu of this item; null when the item is of another window, or this one is hidden.
    [[nodiscard]] QMenu* shown_menu(const MenuItem& item) const;

    // Hides the window and lets go of the form for good.
    void release();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void make_controls();
    void make_timers();
    void make_shortcuts();
    [[nodiscard]] QWidget* page_focus();
    void keep_page_together();
    void show_form();
    void follow_size();
    void follow_place();
    void place_parts();
    void place_page();
    void report_size();
    [[nodiscard]] bool shifted() const;
    void move_back();

    WindowForm* form_; // null once released
    ControlWidgets controls_{ControlWidgets::Placing::by_control};
    QMenuBar* menu_bar_; // this and the following are descendants of the window
    QWidget* inner_;
    QWidget* page_area_;
    QWidget* status_bar_ = nullptr;
    bool reporting_ = false; // the form is being told of the real geometry
    bool minimised_ = false;
    // Where the window belongs, once somebody has put it there. A window manager places a window anew that
    // comes back, and frames it only when it is on show, which shifts it.
    std::optional<QPoint> corner_;
    QElapsedTimer shown_;
    int moved_back_ = 0;
};

} // namespace kestrune
