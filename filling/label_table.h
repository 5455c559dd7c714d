#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrune {

// The labels of a form's fields as the rows of tables give them, read from the source of the page.
//
// A field's row is the innermost table row around its tag. What of the row's text belongs to it:
//
//  1. A field that is the only one in its row has the text of all the row's cells. Where that is more than a
//     label can be (a row that lays out the page), or where the row has several fields, the field has the
//     text of its own cells: the cell it stands in, and the cells without fields between that one and the
//     cell of the field before. If the first cell that is not empty holds a field and no text, and the last
//     one holds text alone, the labels stand behind their fields, and it is the cells up to the next one.
//  2. Where several fields share a cell, the cell's lines are read (a line ends at a break, a block, a row of
//     a nested table). On a line a field has the text between the field before and itself; the last one also
//     has the text behind it, and so has each if the line begins with a field and ends with text. A unit
//     (KB, MB, bytes ...) belongs to the field before it. The text behind a check box or an option button is
//     its own and no field's.
//  3. A field that has no text by 2, or a unit alone, has what stands before the line's fields: the nearest
//     line of text above it in the cell, or else the cells that rule 1 gives the cell. That goes to one
//     field, and to the lists before it. Where the cell begins with a field and ends with a line of text, the
//     line below counts instead.
//  4. In a row without any text the fields have the text of the cell above in the same column, if the row
//     above has no fields; if the table's first row holds a field without a text, the cell below.
//  5. A field that has no text so far, or a unit alone, takes what the row around its table gives it, if
//  there
//     are no more than three fields in that row's cell.
//
// Text is what can be read: no tags, no options of lists, no scripts. Check boxes and option buttons count as
// several fields for rule 1; hidden fields and push buttons are no fields at all.
class LabelTable {
public:
    struct Entry {
        std::string name; // of the field, in lower case
        std::string text; // "" where the row says nothing
        bool in_row = false;
    };

    // form: 0-based place of the form being filled among the source's forms. Of several fields of one name
    // the first one behind that form's tag counts, or else the first in the source.
    LabelTable(std::string_view source, std::size_t form, const std::vector<std::string>& field_names);

    // The first entry of that name in any letter case; null when the name does not occur as a field's in the
    // source.
    [[nodiscard]] const Entry* LookupLabel(std::string_view fieldName) const;

private:
    std::unordered_map<std::string, Entry> entries_;
};

} // namespace kestrune
