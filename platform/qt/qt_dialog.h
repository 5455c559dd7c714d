#pragma once

#include "platform/form.h"
#include "platform/qt/control_widgets.h"

#include <QDialog>
#include <QFormLayout>
#include <QKeySequence>
#include <QVBoxLayout>

#include <string>
#include <vector>

namespace kestrune {

class DialogPages;

// The real dialog of a Form: a row for each of its rows, its buttons below. What does not fit on the screen
// scrolls; where there are pages, their rows do.
class QtDialog final : public QDialog {
public:
    // Enlarges the form's Width and Height to fit the content, keeping the centre that was asked for.
    explicit QtDialog(Form& form);

    // Shows the dialog until the form is hidden.
    void show_modal();

    void reject() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void add_rows(QVBoxLayout& column);
    DialogPages& add_pages(QVBoxLayout& parts);
    QFormLayout& add_group(QVBoxLayout& parts, const std::string& group);
    // `pages` is null for a row that lies on none.
    void add_row(QFormLayout& rows, const Form::Row& row, DialogPages* pages);
    // The field with its hint below it, or the field alone.
    QWidget& with_hint(const Form::Row& row, QWidget& field);
    FittedLabel& add_label(QWidget& parent, const Form::Row& row, QWidget& field);
    void align_labels();
    // As wide as it needs, and as high as it may be on this screen.
    void add_content(QVBoxLayout& column, QWidget& content);
    void add_buttons(QVBoxLayout& column);
    void add_shortcut(Button& button);
    void place(QSize content);
    void focus_first();

    Form& form_;
    std::vector<DialogPages*> pages_;  // from top to bottom; children
    std::vector<FittedLabel*> labels_; // of rows that lie on no page
    std::vector<QKeySequence> shortcuts_;
    ControlWidgets controls_{ControlWidgets::Placing::by_layout};
};

} // namespace kestrune
