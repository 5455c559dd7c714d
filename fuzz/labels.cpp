#include "fuzz/targets.h"

#include "filling/label_table.h"
#include "filling/page_source.h"
#include "filling/row_labels.h"
#include "filling/source_rows.h"
#include "platform/code_page.h"

namespace kestrune::fuzz {
namespace {

// Twice the length of a label, which is what a heading and a unit joined may have, and the blank between.
constexpr std::size_t longest_joined_label = 401;

void check_pieces(const std::string& source) {
    PageSource reader{source};
    const char* behind = source.data();
    for (SourcePiece piece; reader.next(piece);) {
        require(piece.text.data() >= behind, "pieces come in the order of the source");
        behind = piece.text.data() + piece.text.size();
        require(behind <= source.data() + source.size(), "pieces lie in the source");
        if (piece.kind != SourcePiece::Kind::text)
            static_cast<void>(tag_attribute(piece.text, "name"));
    }
}

void check_shown_text(const std::string& source) {
    std::string shown;
    append_shown_text(shown, source);
    require(shown.empty() || shown.front() != ' ', "shown text does not begin with a blank");
    require(shown.find("  ") == std::string::npos, "shown text has no two blanks in a row");
    require(shown.size() <= source.size(), "shown text is no longer than its source");
    static_cast<void>(has_words(shown));
    static_cast<void>(is_unit(shown));
}

void check_rows(const std::string& source, const SourceRows& rows) {
    require(rows.tokens.size() <= source.size(), "there are no more tokens than signs of the source");
    for (const SourceRow& row : rows.rows) {
        require(row.table < rows.tables.size() && row.place < rows.tables[row.table].size(),
                "every row has its place in a table");
        if (row.outer_row != no_index)
            require(row.outer_row < rows.rows.size() &&
                        row.outer_cell < rows.rows[row.outer_row].cells.size(),
                    "a nested table lies in a cell");
        std::size_t end = 0;
        for (const SourceCell& cell : row.cells) {
            require(cell.first >= end && cell.end >= cell.first && cell.end <= rows.tokens.size(),
                    "the cells of a row follow each other");
            end = cell.end;
            require(cell.fields + cell.checks <= cell.end - cell.first, "what a cell counts lies in it");
        }
    }
    for (const SourceField& field : rows.fields) {
        require(field.token < rows.tokens.size() && (field.row == no_index) == (field.cell == no_index),
                "every field has its token, and a cell if it has a row");
        if (field.row != no_index) {
            const SourceCell& cell = rows.rows[field.row].cells.at(field.cell);
            require(field.token >= cell.first && field.token < cell.end, "a field lies in its cell");
        }
    }
}

} // namespace

void read_labels(std::string_view input) {
    const std::string source = text_of_bytes(input);
    check_pieces(source);
    check_shown_text(source);
    const SourceRows rows{source};
    check_rows(source, rows);
    std::vector<std::string> names;
    for (const SourceField& field : rows.fields)
        names.push_back(field.name);
    const LabelTable table{source, source.size() % 3, names};
    for (const SourceField& field : rows.fields) {
        const LabelTable::Entry* const entry = table.LookupLabel(field.name);
        require(entry != nullptr, "a field with a tag in the source has an entry");
        require(entry->in_row || entry->text.empty(), "a field outside every row has no label of a row");
        require(entry->text.size() <= longest_joined_label, "a label is no page");
        require(entry->text.empty() || (entry->text.front() != ' ' && entry->text.back() != ' '),
                "a label is trimmed");
    }
}

} // namespace kestrune::fuzz
