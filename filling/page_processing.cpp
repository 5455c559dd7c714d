#include "filling/page_processing.h"

#include "filling/document_origin.h"
#include "filling/form_replay.h"
#include "filling/form_tags.h"
#include "platform/text.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace kestrune {
namespace {

constexpr std::string_view form_type = "Form";

// The record of an entry of the permanent list, as far as a replay needs it.
struct Recorded {
    std::string name;
    std::string action;
    std::string postdata;
};

bool in_playback(const PageProcessing& window) { return window.state.gstrCurMode == playback_mode; }

bool may_fill(const PageProcessing& window) {
    return in_playback(window) && (window.mnuManualClick.Checked.get() || window.mnuAutoClick.Checked.get());
}

// The record behind the entry when it is one for this address.
std::optional<Recorded> record_for(const ListView& list, const ListItem& item, std::string_view url) {
    if (list.sub_item(item, "Type") != form_type || !equal_ignoring_case(list.sub_item(item, "Url"), url))
        return std::nullopt;
    return Recorded{item.Text, std::string(list.sub_item(item, "Action")),
                    std::string(list.sub_item(item, "Postdata"))};
}

// Replays the first record for this address that may be replayed and that the user agrees to. False when
// there is none.
bool replay_record(const PageProcessing& window, LivePage& page, const std::string& url) {
    for (std::size_t i = 0; i < window.lvwPermanent.size(); ++i) {
        auto record = record_for(window.lvwPermanent, window.lvwPermanent.item(i), url);
        if (!record || equal_ignoring_case(url, window.state.strLastUrl))
            continue;
        if (window.mnuPromptFill.Checked.get()) {
            const Answer answer = window.ui.MessageBox("Do you want to auto fill-in this form",
                                                       Buttons::OkCancel, "Session=" + record->name);
            page.retake();
            if (answer != Answer::Ok)
                continue;
        }
        page.need({.links = false, .forms = true});
        ProcessDocument(page, "WRITE", record->action, record->postdata, window);
        window.state.strLastUrl = url;
        return true;
    }
    return false;
}

FormReplay form_replay(const PageProcessing& window) {
    return {window.state, {window.mnuAutoClick, window.StatusBar1}};
}

// Applies the mode to one document. True when it was the replay and the replay filled a form.
bool apply_mode(LivePage& page, const PickDocument& pick, std::string_view mode,
                std::string_view recordAction, std::string& recordPostdata, const PageProcessing& window) {
    if (mode == "LINK") {
        LinkSearch search{window.state, window.mnuPromptFill, window.txtUrl, window.StatusBar1, window.ui};
        if (window.state.bFindLinkFlag)
            FindSubmitLink(page, pick, search);
        return false;
    }
    PageDocument& document = *pick();
    if (mode != "CHECK")
        return FillForms(page, document, mode, recordAction, recordPostdata, form_replay(window));
    ReadForms(document, recordAction, recordPostdata, window.StatusBar1);
    return false;
}

} // namespace

PageParts wanted_parts(const PageProcessing& window) {
    return {.links = window.state.bFindLinkFlag, .forms = may_fill(window) && window.lvwPermanent.size() > 0};
}

void OnDocumentComplete(const PageProcessing& window, PageDocument image) {
    const std::string url = image.url;
    window.Timer1.Enabled = false;
    window.StatusBar1.set_text(1, "");
    CollectFormTags(image, url, window.state);
    window.state.strCurDocUrl = url;
    LivePage page{window.browser, std::move(image)};
    if (may_fill(window) && replay_record(window, page, url))
        return;
    window.state.strLastUrl = url;
    if (!window.state.bFindLinkFlag)
        return;
    page.need({.links = true, .forms = false});
    std::string no_record;
    ProcessDocument(page, "LINK", no_record, no_record, window);
}

void ProcessDocument(LivePage& page, std::string_view mode, std::string_view recordAction,
                     std::string& recordPostdata, const PageProcessing& window) {
    // The number of frames is that of the moment: a question may have given the page time to change.
    for (std::size_t i = 0; page.frame(i) != nullptr; ++i) {
        const auto frame = [&page, i] { return page.frame(i); };
        if (mode != "LINK" && !shares_records(*frame(), *page.document(), recordAction))
            continue;
        if (apply_mode(page, frame, mode, recordAction, recordPostdata, window))
            return;
    }
    if (page.document() == nullptr)
        return;
    const auto document = [&page] { return page.document(); };
    const bool filled = apply_mode(page, document, mode, recordAction, recordPostdata, window);
    if (mode == "WRITE" && !filled)
        ReportNoAutoClick(form_replay(window).button);
}

void CollectFormTags(const PageDocument& document, std::string_view url, FormTable& table) {
    if (!document.frames.empty()) {
        table.append(url, FormTable::frame_marker);
        return;
    }
    for (const std::string& tag : document.form_tags)
        table.append(url, GetTagAction(tag));
}

} // namespace kestrune
