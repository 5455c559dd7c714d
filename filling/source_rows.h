#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// What of a page's source matters to the labels of its fields, in the order of the source.
struct SourceToken {
    enum class Kind : std::uint8_t {
        text,
        field, // the user types into it
        list,  // a drop-down list
        check, // a check box or an option button
        line,  // a line ends here
        gap,   // a cell of a nested table begins
    };
    Kind kind = Kind::text;
    std::string_view text; // as it stands in the source
};

inline constexpr std::size_t no_index = static_cast<std::size_t>(-1);

struct SourceCell {
    std::size_t first = 0; // token
    std::size_t end = 0;   // one past its last token
    std::size_t column = 0;
    std::size_t span = 1;   // columns
    std::size_t fields = 0; // fields and lists, those of nested tables included
    std::size_t checks = 0;
};

struct SourceRow {
    std::size_t table = no_index;
    std::size_t place = 0; // among the rows of its table
    // The row and its cell that the table lies in; no_index for a table that lies in none.
    std::size_t outer_row = no_index;
    std::size_t outer_cell = no_index;
    std::vector<SourceCell> cells;
};

struct SourceField {
    std::string name; // in lower case
    std::size_t token = 0;
    std::size_t row = no_index; // innermost row, no_index for none
    std::size_t cell = no_index;
    std::size_t form = no_index; // the form tag before it, 0-based; no_index for none
};

// The rows and fields of a page's source.
struct SourceRows {
    explicit SourceRows(std::string_view source);

    std::vector<SourceToken> tokens;
    std::vector<SourceRow> rows;
    std::vector<std::vector<std::size_t>> tables; // each the numbers of its rows
    std::vector<SourceField> fields;              // those with a name
};

} // namespace kestrune
