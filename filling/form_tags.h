#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// The action of a "<form ...>" tag as it is written: what follows "action=" up to the next blank, or up to
// the next ">" where there is no blank. One quote mark of either kind is taken off at each end. "" without
// "action=".
[[nodiscard]] std::string GetTagAction(std::string_view tag);

// The action of the first of a document's form tags, or, with an id, of the first that holds "id=" and
// directly after it that id, both in any letter case. "" when there is no such tag.
[[nodiscard]] std::string GetFormTagAction(const std::vector<std::string>& form_tags,
                                           std::string_view formId);

// What an address holds after its last "/". Of one that ends with "/" the part before that, the "/" included;
// an address without another "/" is its own last part.
[[nodiscard]] std::string_view LastPart(std::string_view address);

// Whether a recorded action and a page's mean the same: equal in any letter case, or with equal, non-empty
// last parts, in which case counts.
[[nodiscard]] bool ActionsMatch(std::string_view a, std::string_view b);
// The same, with what follows the last "/" of each address once its query is cut off; an address that ends
// there has no such part and matches only an equal one.
[[nodiscard]] bool ActionsMatchIgnoringQuery(std::string_view a, std::string_view b);

} // namespace kestrune
