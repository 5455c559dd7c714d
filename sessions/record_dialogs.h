#pragma once

#include "platform/control.h"
#include "platform/form.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace kestrune {

// Whether a form field of this name, still encoded, holds a password as far as the name tells.
[[nodiscard]] bool IsPasswordName(std::string_view name);

// Edits one recorded form: its name, its addresses and, row by row on three pages, the values of its posted
// data. Values of password fields are masked until the user wants to see them.
class FrmEdit : public Form {
public:
    static constexpr std::size_t pair_count = 60;
    static constexpr std::size_t pairs_per_page = 20;

    FrmEdit();

    // index below pair_count.
    [[nodiscard]] Label& lblName(std::size_t index) { return pairs_.at(index).name; }
    [[nodiscard]] TextBox& txtValue(std::size_t index) { return pairs_.at(index).value; }

    // Gives a row a field's name, as it is recorded, and its decoded value.
    void show_pair(std::size_t index, const std::string& name, std::string value);
    // A row without a field.
    void show_blank(std::size_t index);

    TextBox txtSession{"txtSession"};
    TextBox txtUrl{"txtUrl"};
    TextBox txtAction{"txtAction"};
    Button cmdShowPasswords{"cmdShowPasswords", "Show Passwords"};
    Button cmdOK{"cmdOK", "OK"};
    Button cmdPermanentOK{"cmdPermanentOK", "Save as Permanent"};
    Button cmdCancel{"cmdCancel", "Cancel"};
    bool bSaveFlag = false;      // OK or "Save as Permanent" was pressed
    bool bSavePermanent = false; // the latter

private:
    struct Pair {
        explicit Pair(std::size_t index);
        Label name;
        TextBox value;
        bool password = false;
    };

    void cmdShowPasswords_Click();

    std::deque<Pair> pairs_; // controls do not move
    bool passwords_shown_ = false;
};

// Name and addresses of a bookmark. `bSaveFlag` tells whether the user confirmed them.
class FrmBookmark : public Form {
public:
    FrmBookmark();

    TextBox txtName{"txtName"};
    TextBox txtDestination{"txtDestination"};
    TextBox txtOriginating{"txtOriginating"};
    Button cmdOK{"cmdOK", "OK"};
    Button cmdCancel{"cmdCancel", "Cancel"};
    bool bSaveFlag = false;
};

} // namespace kestrune
