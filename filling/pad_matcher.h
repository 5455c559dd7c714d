#pragma once

#include "filling/live_page.h"
#include "library/product_profile.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Whether one of the pattern's alternatives, parted by "|", matches the text (MatchAll).
[[nodiscard]] bool MatchAny(std::string_view text, std::string_view pattern);
// Whether every word of the alternative, parted by "&", occurs somewhere in the text, in any letter case, be
// it as part of another word. An alternative without any word matches nothing: an empty profile text must
// not choose the first option of a list.
[[nodiscard]] bool MatchAll(std::string_view text, std::string_view alternative);

// What decides on a field that the user types into: the first row whose pattern matches its label.
struct PatternRow {
    std::string_view pattern;
    TextBox FrmPreference::*box = nullptr; // null: the field is left as it is
};
[[nodiscard]] const std::vector<PatternRow>& PatternTable();

// Selects the first option whose text matches the pattern; false when there is none.
bool SelectOptionByPattern(LivePage& page, PageElement& list, std::string_view pattern);

// What was decided for one field, for the user who wonders.
struct FieldReport {
    std::string name;
    std::string type;
    std::string label;
    std::string label_from; // "row", or as PageElement::label_from; "" without a label
    std::string pattern;    // that matched, "" for none
    std::string value;      // written, or the text of the option selected
    bool written = false;
    bool locked = false; // the page lets nobody write there, and so it was left
};
using FillReport = std::vector<FieldReport>;

// Fills the form that holds the active element of the page's own document from the profile: each field by its
// label, lists of categories and licence types by the option that fits. A profile text that is empty leaves
// its field as it is, and so does a page that has locked it: what the site knows of the author is not to be
// overwritten. The image must hold labels. Nothing is filled when no form holds the active element.
FillReport FillAllFields(LivePage& page, const FrmPreference& profile);

} // namespace kestrune
