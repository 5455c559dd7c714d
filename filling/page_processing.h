#pragma once

#include "filling/link_discovery.h"
#include "filling/live_page.h"
#include "filling/page_state.h"
#include "platform/control.h"
#include "platform/list_view.h"
#include "platform/menu.h"
#include "platform/user_interface.h"

#include <string_view>

namespace kestrune {

// What page processing needs of its window.
struct PageProcessing {
    PageState& state;
    Browser& browser;
    UserInterface& ui;
    StatusBar& StatusBar1;
    Timer& Timer1;
    const TextBox& txtUrl;
    const ListView& lvwPermanent;
    const MenuItem& mnuPromptFill;
    const MenuItem& mnuManualClick;
    const MenuItem& mnuAutoClick;
};

// What the image of a completed document must hold for the page processing that would follow now.
PageParts wanted_parts(const PageProcessing& window);

// A document has completed: notes its form tags, during playback offers to replay a recorded form, and
// searches for the submission link while that search is armed. An image that lacks what is needed is taken
// anew.
void OnDocumentComplete(const PageProcessing& window, PageDocument image);

// Hands the frames of the page in order, then the page's own document, to what the mode stands for: "LINK"
// the link search (while it is armed), "CHECK" the form reader, "WRITE" the form replay, anything else the
// form replay reading back into recordPostdata. "WRITE" ends at the first document in which a form was
// filled; when there is none, the user is told once that nothing could be pressed. Frames of strangers take
// part in the link search only (see shares_records).
void ProcessDocument(LivePage& page, std::string_view mode, std::string_view recordAction,
                     std::string& recordPostdata, const PageProcessing& window);

// Appends the document's form tags to the form table; one marker entry for a document that has frames.
void CollectFormTags(const PageDocument& document, std::string_view url, FormTable& table);

} // namespace kestrune
