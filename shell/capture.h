#pragma once

#include "filling/page_processing.h"
#include "platform/browser.h"
#include "platform/menu.h"
#include "platform/tab_control.h"
#include "sessions/record_list.h"

#include <functional>
#include <string>
#include <string_view>

namespace kestrune {

// What the capture needs of its window.
struct Capture {
    PageProcessing page;
    RecordCounters& counters;
    const MenuItem& mnuAutoRecord;
    ListView& ListView1;
    TabControl& SSTab1;
    std::function<void()> cmdEdit_Click;
};

// Whether a navigation's address and a form's action as written mean the same: equal in any letter case, or
// with equal, non-empty last parts, in which case counts.
[[nodiscard]] bool ActionMatchesExact(std::string_view address, std::string_view action);
// The same with each last part cut before its "?". The last part is taken first: a "/" in the query starts
// it.
[[nodiscard]] bool ActionMatchesLoose(std::string_view address, std::string_view action);

// A navigation is about to start. While recording is on and a site's replay is still pending, one that
// submits a form of the form table is made a temporary record, and the table is emptied: a page gives one
// record at most. The navigation itself is left alone.
void CaptureSubmission(const Capture& window, NavigateEvent event);

// Adds a record of the submission to the temporary list, with what the form's fields hold by now, and asks
// whether to open it in the editor. `submitted` is the document that holds the form.
void CreateTemporaryRecord(const Capture& window, PageDocument submitted, const std::string& page_url,
                           const std::string& action, const std::string& frame, std::string postdata,
                           const std::string& headers);

} // namespace kestrune
