#include "sessions/record_dialogs.h"

#include "platform/text.h"
#include "sessions/post_data.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune {
namespace {

constexpr int edit_width = 10500;
constexpr int edit_height = 12000;
constexpr int bookmark_width = 9000;
constexpr int bookmark_height = 2700;

std::string numbered(std::string_view name, std::size_t index) {
    return std::string(name) + "(" + std::to_string(index) + ")";
}

} // namespace

bool IsPasswordName(std::string_view name) {
    constexpr std::array<std::string_view, 4> words{"pass", "pwd", "kennwort", "contrase"};
    const std::string plain = lower_case(UrlDecode(name));
    return std::any_of(words.begin(), words.end(),
                       [&plain](std::string_view word) { return plain.find(word) != std::string::npos; });
}

FrmEdit::Pair::Pair(std::size_t index)
    : name(numbered("lblName", index), "Blank"), value(numbered("txtValue", index)) {}

FrmEdit::FrmEdit() : Form("frmEdit", "") {
    Width = edit_width;
    Height = edit_height;
    Rows = {{"Record Name:", &txtSession}, {"Destination Address:", &txtUrl}, {"Form Action:", &txtAction}};
    for (std::size_t i = 0; i < pair_count; ++i) {
        Pair& pair = pairs_.emplace_back(i);
        Rows.push_back({.Label = {},
                        .Field = &pair.value,
                        .Group = {},
                        .Page = "Page " + std::to_string(i / pairs_per_page + 1),
                        .Title = &pair.name});
        show_blank(i);
    }
    Buttons = {&cmdShowPasswords, &cmdOK, &cmdPermanentOK, &cmdCancel};
    Default = &cmdOK;
    Cancel = &cmdCancel;
    FirstFocus = &txtSession;
    cmdShowPasswords.Enabled = false;
    cmdShowPasswords.Click = [this] { cmdShowPasswords_Click(); };
    cmdOK.Click = [this] {
        bSaveFlag = true;
        Hide();
    };
    cmdPermanentOK.Click = [this] {
        bSaveFlag = true;
        bSavePermanent = true;
        Hide();
    };
    cmdCancel.Click = [this] { Hide(); };
}

void FrmEdit::show_pair(std::size_t index, const std::string& name, std::string value) {
    Pair& pair = pairs_.at(index);
    pair.password = IsPasswordName(name);
    pair.name.Caption = name;
    pair.name.Enabled = true;
    pair.value.Masked = pair.password && !passwords_shown_;
    pair.value.Text = std::move(value);
    pair.value.Enabled = true;
    if (pair.password)
        cmdShowPasswords.Enabled = true;
}

void FrmEdit::show_blank(std::size_t index) {
    Pair& pair = pairs_.at(index);
    pair.password = false;
    pair.name.Caption = "Blank";
    pair.name.Enabled = false;
    pair.value.Text = "";
    pair.value.Masked = false;
    pair.value.Enabled = false;
}

void FrmEdit::cmdShowPasswords_Click() {
    passwords_shown_ = !passwords_shown_;
    cmdShowPasswords.Caption = passwords_shown_ ? "Hide Passwords" : "Show Passwords";
    for (Pair& pair : pairs_)
        pair.value.Masked = pair.password && !passwords_shown_;
}

FrmBookmark::FrmBookmark() : Form("frmBookmark", "Edit Bookmark") {
    Width = bookmark_width;
    Height = bookmark_height;
    Rows = {{"Bookmark name:", &txtName},
            {"Destination Address:", &txtDestination},
            {"Originating Address:", &txtOriginating}};
    Buttons = {&cmdOK, &cmdCancel};
    Default = &cmdOK;
    Cancel = &cmdCancel;
    FirstFocus = &txtName;
    cmdOK.Click = [this] {
        bSaveFlag = true;
        Hide();
    };
    cmdCancel.Click = [this] { Hide(); };
}

} // namespace kestrune
