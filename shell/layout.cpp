#include "shell/browser_window.h"

#include <algorithm>

namespace kestrune {
namespace {

// The gap that each button of the column keeps from the one above it and from the record lists.
constexpr int column_gap = 100;

int not_negative(int twips) { return std::max(twips, 0); }

} // namespace

void BrowserWindow::Form_Resize() {
    const int W = form.Width;
    const int H = form.Height;
    const int inner_width = W - WindowForm::frame_width;
    const int inner_height = H - WindowForm::frame_height;
    if (form.Minimised.get() || inner_width <= 0 || inner_height <= 0)
        return;

    const int S = W - lblUrl.Width - 520;
    txtUrl.Width = not_negative(S / 2);
    txtDesc.Width = not_negative(S / 2);
    txtDesc.Left = txtUrl.Left + txtUrl.Width;

    wbMyBrowser.Width = not_negative(W - 400);
    wbMyBrowser.Height = not_negative(H - Frame1.Height - SSTab1.Height - SSTab1.TabHeight - 1700);

    SSTab1.Top = wbMyBrowser.Top + wbMyBrowser.Height + 200;
    SSTab1.Width = not_negative(W - cmdEdit.Width - 500);
    for (ListView* list : {&lvwPermanent, &ListView1, &lvwPAD, &lvwNonPad})
        list->Width = not_negative(SSTab1.Width - 250);

    int top = SSTab1.Top;
    for (Button* button : {&cmdEdit, &cmdDelete, &cmdSave, &cmdGoto, &cmdReset}) {
        button->Top = top;
        button->Left = SSTab1.Left + SSTab1.Width + column_gap;
        top += button->Height + column_gap;
    }

    // The status bar keeps to the window's lower edge.
    StatusBar1.Top = inner_height - StatusBar1.Height;
    StatusBar1.Width = inner_width;
    StatusBar1.set_width(1, W - 4200);
    StatusBar1.set_width(2, 2100);
    StatusBar1.set_width(3, 2100);
}

} // namespace kestrune
