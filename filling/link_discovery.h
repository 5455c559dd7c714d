#pragma once

#include "filling/live_page.h"
#include "filling/page_state.h"
#include "platform/control.h"
#include "platform/menu.h"
#include "platform/user_interface.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// The words of a link's text. Outside a word any character above " " and not above "z" starts one (a "-"
// does, a no-break space does not); inside a word only " " and "-" end it, line breaks do not.
std::vector<std::string> SplitWords(std::string_view text);

// Whether the words are those of a link to where software is submitted (class "submit") or to an author's
// area (any other class). Deliberately narrow: a verb must be followed by nothing, or by an object at the
// very end; more than four words never qualify.
bool IsSubmitLink(const std::vector<std::string>& words, std::string_view linkClass);

// What the search needs of its window.
struct LinkSearch {
    PageState& state;
    const MenuItem& mnuPromptFill;
    const TextBox& txtUrl;
    StatusBar& StatusBar1;
    UserInterface& ui;
};

// Picks the document in which to search out of the live page; asked again after each question.
using PickDocument = std::function<PageDocument*()>;

// Walks the document's links and clicks the first that qualifies, when the prompt switch is on only after the
// user agreed to it; the search is then disarmed. A link that is gone when the user has agreed is not clicked
// and the search stays armed for what the page has become.
void FindSubmitLink(LivePage& page, const PickDocument& pick, LinkSearch& search);

} // namespace kestrune
