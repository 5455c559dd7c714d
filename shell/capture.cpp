#include "shell/capture.h"

#include "filling/form_tags.h"
#include "platform/code_page.h"
#include "platform/text.h"

#include <cstddef>
#include <optional>
#include <utility>

namespace kestrune {
namespace {

// What of a navigation is compared with the forms, and what was sent there.
struct Submission {
    std::string address;
    std::string data;
    bool is_post = false;
};

// Nothing for a navigation that sends nothing.
std::optional<Submission> submission_of(const NavigateEvent& event) {
    if (!event.postdata.empty())
        return Submission{event.url, text_of_bytes(event.postdata), true};
    const std::size_t query = event.url.find('?');
    if (query == std::string::npos)
        return std::nullopt;
    return Submission{event.url.substr(0, query), event.url.substr(query + 1), false};
}

using Comparison = bool (*)(std::string_view address, std::string_view action);

// Index of the first entry of the form table that the submission is of. Of a page made of frames the forms
// are not known, so that whatever it posts is taken.
std::optional<std::size_t> find_form(const FormTable& table, const Submission& submission,
                                     Comparison matches) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(table.lngFormCount); ++i) {
        const std::string& action = table.astrFormAction[i];
        if (action.empty())
            continue;
        if (matches(submission.address, action) || (submission.is_post && action == FormTable::frame_marker))
            return i;
    }
    return std::nullopt;
}

std::string_view before_query(std::string_view text) { return text.substr(0, text.find('?')); }

} // namespace

bool ActionMatchesExact(std::string_view address, std::string_view action) {
    return ActionsMatch(address, action);
}

bool ActionMatchesLoose(std::string_view address, std::string_view action) {
    if (equal_ignoring_case(address, action))
        return true;
    const std::string_view last = before_query(LastPart(address));
    return !last.empty() && last == before_query(LastPart(action));
}

void CaptureSubmission(const Capture& window, NavigateEvent event) {
    PageState& state = window.page.state;
    if (!state.bAutoFillFlag || !window.mnuAutoRecord.Checked.get())
        return;
    auto submission = submission_of(event);
    if (!submission)
        return;
    auto form = find_form(state, *submission, ActionMatchesExact);
    if (!form)
        form = find_form(state, *submission, ActionMatchesLoose);
    if (!form)
        return;
    const std::string page_url = state.astrFormPageUrl[*form];
    CreateTemporaryRecord(window, std::move(event.submitted), page_url, submission->address, event.frame_name,
                          std::move(submission->data), event.headers);
    state.lngFormCount = 0;
}

void CreateTemporaryRecord(const Capture& window, PageDocument submitted, const std::string& page_url,
                           const std::string& action, const std::string& frame, std::string postdata,
                           const std::string& headers) {
    LivePage page{window.page.browser, std::move(submitted)};
    ProcessDocument(page, "READ", action, postdata, window.page);

    const std::string number = std::to_string(++window.counters.temporary_records);
    const std::string key = "K" + number;
    window.ListView1.add(ItemOf(key, {.Type = std::string(type_form),
                                      .Session = "Session" + number,
                                      .Url = page_url,
                                      .Action = action,
                                      .Postdata = std::move(postdata),
                                      .Header = headers,
                                      .Frame = frame}));
    const Answer answer = window.page.ui.MessageBox(
        "A temporary record is created, do you want to view/edit it now?", Buttons::YesNo);
    if (answer != Answer::Yes)
        return;
    window.SSTab1.set_tab(1);
    window.ListView1.select(key);
    window.cmdEdit_Click();
}

} // namespace kestrune
