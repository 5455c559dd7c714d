#pragma once

#include <QFrame>
#include <QPointer>
#include <QString>

#include <functional>
#include <vector>

class QCheckBox;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

namespace kestrune {

class WrappedLabel;

// A message or question in the place of the page, above it. What a page has to say is shown there and nowhere
// else: it can neither pass for a question of the program nor keep the program from being used. All texts are
// plain, whoever wrote them.
class PageBar final : public QFrame {
public:
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

    // Puts the keyboard into the first field, or on the first button.
    void take_focus();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    WrappedLabel* heading_; // this and the following are descendants
    WrappedLabel* text_;
    QVBoxLayout* rows_;
    QWidget* button_row_;
    std::vector<QLineEdit*> fields_;
    std::vector<QPushButton*> buttons_;
};

// The bars of one page, the oldest on top. Takes no room while there is none.
class PageBars final : public QWidget {
public:
    explicit PageBars(QWidget* parent);

    PageBar& add(const QString& name);
    // Takes the bar away; nothing happens when it is gone already.
    static void remove(const QPointer<PageBar>& bar);
};

// Words of a page, fit to be shown: without control characters and marks that turn the direction of writing
// round, cut after `most` characters.
QString shown_words(const QString& words, int most);

} // namespace kestrune
