#pragma once

#include <QTabBar>
#include <QWidget>

#include <array>
#include <functional>

namespace kestrune {

class FittedLabel;

// A strip of tabs over a framed area. What lies in the area belongs to whoever puts it there.
class TabPanel final : public QWidget {
public:
    explicit TabPanel(QWidget* parent);

    void add_tab(const QString& caption);
    void set_strip_height(int pixels);
    void set_current(int tab);
    // The user brought a tab to the front.
    std::function<void(int tab)> chosen;

    [[nodiscard]] QTabBar& strip() { return strip_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Strip final : public QTabBar {
    public:
        using QTabBar::QTabBar;
        void set_tab_height(int pixels);

    protected:
        [[nodiscard]] QSize tabSizeHint(int index) const override;

    private:
        int tab_height_ = 0;
    };

    void place_strip();

    int strip_height_ = 0;
    Strip strip_{this};
};

// The three panels of a status bar.
class StatusPanels final : public QWidget {
    Q_OBJECT

public:
    explicit StatusPanels(QWidget* parent);

    // panel from 0 to 2; width in pixels. What does not fit into the bar is cut off at its right end.
    void set_panel(int panel, const QString& text, int width);
    void set_names(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place_panels();

    struct Panel {
        FittedLabel* label = nullptr; // a child
        int width = 0;
    };
    std::array<Panel, 3> panels_;
};

} // namespace kestrune
