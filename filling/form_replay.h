#pragma once

#include "filling/auto_click.h"
#include "filling/live_page.h"
#include "filling/page_state.h"
#include "platform/page.h"
#include "sessions/post_data.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrune {

// The pairs of a record, to be looked up by the names that a page gives its elements. Names compare decoded
// and without regard to letter case.
class RecordedValues {
public:
    explicit RecordedValues(PostFields fields);

    [[nodiscard]] const PostFields& fields() const { return fields_; }
    // Positions in `fields` of the pairs of this name, in their order.
    [[nodiscard]] const std::vector<std::size_t>& pairs_named(std::string_view name) const;

    // Decoded value of the first pair of this name; nothing without one.
    [[nodiscard]] std::optional<std::string> FindPostValue(std::string_view name) const;
    // Decoded values of every pair of this name, in pair order.
    [[nodiscard]] std::vector<std::string> FindPostValues(std::string_view name) const;

private:
    PostFields fields_;
    std::unordered_map<std::string, std::vector<std::size_t>> by_name_;
};

// What a replay needs of its window.
struct FormReplay {
    PageState& state;
    ButtonPress button;
};

// The form replay on one document of the page. In mode "WRITE" it puts the recorded values into the form that
// the record is of and presses its button; true when a form received a value. In any other mode the form is
// read back into recordPostdata (see ReadForms) and false is returned.
bool FillForms(LivePage& page, PageDocument& document, std::string_view mode, std::string_view recordAction,
               std::string& recordPostdata, const FormReplay& window);

// Looks up the form that the record is of and takes over, into the recorded pairs of the same names, what its
// elements hold by now: of the k-th element of a name into the k-th pair. Of a list with one choice that is
// the text of the option, because that is what a replay looks for. What has not changed stays as it was
// posted, byte for byte.
void ReadForms(const PageDocument& document, std::string_view recordAction, std::string& recordPostdata,
               StatusBar& status);

} // namespace kestrune
