#pragma once

#include "platform/user_interface.h"

#include <QDialog>
#include <QVBoxLayout>

namespace kestrune {

// A message box. All its texts are plain text. A title other than the program's own stands in the box as
// well: title bars cut, and the title of a question may be the address that it is about. It may also be a
// page's link, so it is one line of bounded length there, and nothing that a page could write a question
// with.
class QtMessageBox final : public QDialog {
public:
    QtMessageBox(std::string_view text, Buttons buttons, std::string_view title);

    // Shows the box until it is answered. When the program ends meanwhile the answer is the one that does
    // nothing.
    Answer ask();

    void reject() override;

private:
    void add_texts(QVBoxLayout& column, bool with_title);
    void add_buttons(QVBoxLayout& column);

    Buttons buttons_;
    Answer answer_;
};

} // namespace kestrune
