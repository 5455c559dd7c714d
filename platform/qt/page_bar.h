#pragma once

#include "platform/qt/clock.h"

#include <QFrame>
#include <QPointer>
#include <QString>

#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace kestrune {

class WrappedLabel;

// A message or question in the place of the page, above it. What a page has to say is shown there and nowhere
// else: it can neither pass for a question of the program nor keep the program from being used. All texts are
// plain, whoever wrote them.
class PageBar final : public QFrame {
public:
    // A page chooses when a bar comes, and can lure a double click or a run of typing to where its button
    // will stand. So for as long as it takes a user to see what stands there now, its buttons take no press.
    static constexpr std::chrono::milliseconds settling_time{500};

    // `name` is the object name.
    PageBar(const QString& name, QWidget* parent);

    // Who speaks; in bold. Not for words of a page's own.
    void set_heading(const QString& heading);
    void set_text(const QString& text);
    // An input box with its label in front of it.
    QLineEdit& add_field(const QString& label, const QString& name);
    QCheckBox& add_check(const QString& caption, const QString& name);
    QProgressBar& add_progress();
    // The caption is its object name. The first one takes Enter, the last one Esc.
    QPushButton& add_button(const QString& caption, std::function<void()> pressed);
    // A button that takes the bar away before it calls.
    QPushButton& add_answer(const QString& caption, std::function<void()> then = {});

    // Puts the keyboard into the first field, or on the first button.
    void take_focus();
    void take_away();

    // False while the bar has just been shown or moved: presses by mouse, key or program do nothing then.
    [[nodiscard]] bool takes_presses() const;
    void moved() { moved_ = clock_(); }
    void set_clock(Clock clock) { clock_ = std::move(clock); }

    // Called when the bar goes while it has the keyboard.
    void set_give_keys_back(std::function<void()> give) { give_keys_back_ = std::move(give); }

    // In pixels, with all but two lines of the text to be scrolled to.
    [[nodiscard]] int least_height(int width) const;
    // The keyboard walks through the bar right after this widget, or the one it has put last itself.
    void follow_in_tab_order(QWidget& before) { last_in_order_ = &before; }
    [[nodiscard]] QWidget& last_in_tab_order() { return last_in_order_ ? *last_in_order_ : *this; }

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void line_up_captions();
    void put_in_order(QWidget& part);

    WrappedLabel* heading_; // this and the following are descendants
    QScrollArea* text_area_;
    WrappedLabel* text_;
    QVBoxLayout* rows_;
    QWidget* button_row_;
    std::vector<QLabel*> captions_; // of the fields
    std::vector<QLineEdit*> fields_;
    std::vector<QPushButton*> buttons_;
    QPointer<QWidget> last_in_order_;
    std::function<void()> give_keys_back_;
    Clock clock_ = std::chrono::steady_clock::now;
    std::chrono::steady_clock::time_point moved_ = clock_();
};

} // namespace kestrune
