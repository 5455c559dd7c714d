#pragma once

#include "filling/live_page.h"
#include "platform/control.h"
#include "platform/menu.h"
#include "platform/page.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// What pressing a form's button needs of its window.
struct ButtonPress {
    const MenuItem& mnuAutoClick;
    StatusBar& StatusBar1;
};

// When the auto-click switch is on: presses the form's first submit button, or, when it has none, the first
// image button of the document that stands behind a text box with one of the recorded names (still encoded;
// letter case does not matter). The user is told when there is neither. A button that would send the form to
// an address of its own, on a site that is neither the page's nor the one that the record was sent to, is
// left to the user too: the form was chosen by its action. `document` holds the form.
void AutoClick(LivePage& page, const PageDocument& document, const PageForm& form,
               const std::vector<std::string>& fieldNames, std::string_view recordAction,
               const ButtonPress& window);

// Tells the user, when the auto-click switch is on, that nothing could be pressed.
void ReportNoAutoClick(const ButtonPress& window);

} // namespace kestrune
