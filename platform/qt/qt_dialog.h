#pragma once

#include "platform/form.h"
#include "platform/qt/control_widgets.h"

#include <QDialog>
#include <QFormLayout>
#include <QVBoxLayout>

namespace kestrune {

// The real dialog of a Form: a row for each of its rows, its buttons below.
class QtDialog final : public QDialog {
public:
    // Enlarges the form's Width and Height to fit the content, keeping the centre that was asked for.
    explicit QtDialog(Form& form);

    // Shows the dialog until the form is hidden.
    void show_modal();

    void reject() override;

private:
    void add_rows(QVBoxLayout& column);
    void add_row(QFormLayout& rows, const Form::Row& row);
    void add_buttons(QVBoxLayout& column);
    void place(QSize content);
    void focus_first();

    Form& form_;
    int scrolled_height_ = 0; // pixels that rows in a scroll area would like to have beyond what it asks for
    ControlWidgets controls_{ControlWidgets::Placing::by_layout};
};

} // namespace kestrune
