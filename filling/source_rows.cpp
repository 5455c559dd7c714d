#include "filling/source_rows.h"

#include "filling/page_source.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace kestrune {
namespace {

constexpr std::array<std::string_view, 35> line_tags{
    "br",     "p",   "div",    "li",      "ul",         "ol",      "dl",      "dt",     "dd",
    "h1",     "h2",  "h3",     "h4",      "h5",         "h6",      "hr",      "form",   "fieldset",
    "legend", "pre", "center", "address", "blockquote", "section", "article", "main",   "header",
    "footer", "nav", "aside",  "table",   "tr",         "caption", "figure",  "details"};
constexpr std::array<std::string_view, 7> not_typed{"hidden", "submit", "button", "image",
                                                    "reset",  "color",  "range"};

constexpr std::size_t widest_span = 1000;

bool is_line_tag(std::string_view name) {
    return std::find(line_tags.begin(), line_tags.end(), name) != line_tags.end();
}

std::size_t span_of(std::string_view attributes) {
    const std::string written = tag_attribute(attributes, "colspan");
    std::size_t span = 1;
    std::from_chars(written.data(), written.data() + written.size(), span);
    return std::clamp<std::size_t>(span, 1, widest_span);
}

// Follows the tables that are open while the source is walked.
class Builder {
public:
    explicit Builder(SourceRows& rows) : rows_(rows) {}

    void take(const SourcePiece& piece) {
        if (piece.kind == SourcePiece::Kind::text) {
            add(SourceToken::Kind::text, piece.text);
            return;
        }
        const bool opens = piece.kind == SourcePiece::Kind::tag;
        if (is_line_tag(piece.name))
            add(SourceToken::Kind::line);
        if (piece.name == "table")
            opens ? open_table() : close_table();
        else if (piece.name == "tr")
            opens ? open_row() : close_row();
        else if (piece.name == "td" || piece.name == "th")
            opens ? open_cell(piece.text) : close_cell();
        else if (opens)
            take_element(piece);
    }

    void finish() {
        while (!open_.empty())
            close_table();
    }

private:
    struct OpenTable {
        std::size_t table = no_index;
        std::size_t row = no_index;
        bool cell = false; // the last cell of the row is open
    };

    void add(SourceToken::Kind kind, std::string_view text = {}) { rows_.tokens.push_back({kind, text}); }

    void open_table() {
        rows_.tables.emplace_back();
        open_.push_back({rows_.tables.size() - 1, no_index, false});
    }

    void close_table() {
        if (open_.empty())
            return;
        close_row();
        open_.pop_back();
    }

    void open_row() {
        if (open_.empty())
            open_table();
        close_row();
        OpenTable& table = open_.back();
        SourceRow row;
        row.table = table.table;
        row.place = rows_.tables[table.table].size();
        if (open_.size() > 1 && open_[open_.size() - 2].cell) {
            row.outer_row = open_[open_.size() - 2].row;
            row.outer_cell = rows_.rows[row.outer_row].cells.size() - 1;
        }
        rows_.rows.push_back(std::move(row));
        table.row = rows_.rows.size() - 1;
        rows_.tables[table.table].push_back(table.row);
    }

    void close_row() {
        if (open_.empty())
            return;
        close_cell();
        open_.back().row = no_index;
    }

    void open_cell(std::string_view attributes) {
        if (open_.empty() || open_.back().row == no_index)
            open_row();
        close_cell();
        // Within the cell of an outer table the cells of an inner one are words of one line.
        add(SourceToken::Kind::gap);
        SourceRow& row = rows_.rows[open_.back().row];
        SourceCell cell;
        cell.first = cell.end = rows_.tokens.size();
        cell.span = span_of(attributes);
        // Until the cell closes these hold what came before it.
        cell.fields = fields_;
        cell.checks = checks_;
        if (!row.cells.empty())
            cell.column = row.cells.back().column + row.cells.back().span;
        row.cells.push_back(cell);
        open_.back().cell = true;
        open_cells_.push_back(open_.back().row);
    }

    void close_cell() {
        if (open_.empty() || !open_.back().cell)
            return;
        SourceCell& cell = rows_.rows[open_.back().row].cells.back();
        cell.end = rows_.tokens.size();
        cell.fields = fields_ - cell.fields;
        cell.checks = checks_ - cell.checks;
        open_.back().cell = false;
        open_cells_.pop_back();
    }

    void take_element(const SourcePiece& piece) {
        if (piece.name == "form") {
            form_ = form_ == no_index ? 0 : form_ + 1;
        } else if (piece.name == "select") {
            add_field(SourceToken::Kind::list, piece);
        } else if (piece.name == "textarea") {
            add_field(SourceToken::Kind::field, piece);
        } else if (piece.name == "input") {
            const std::string type = lower_case(tag_attribute(piece.text, "type"));
            if (type == "checkbox" || type == "radio")
                add_check();
            else if (std::find(not_typed.begin(), not_typed.end(), type) == not_typed.end())
                add_field(SourceToken::Kind::field, piece);
        }
    }

    void add_check() {
        add(SourceToken::Kind::check);
        ++checks_;
    }

    void add_field(SourceToken::Kind kind, const SourcePiece& piece) {
        add(kind);
        ++fields_;
        SourceField field;
        field.name = lower_case(tag_attribute(piece.text, "name"));
        field.token = rows_.tokens.size() - 1;
        field.form = form_;
        if (!open_cells_.empty()) {
            field.row = open_cells_.back();
            field.cell = rows_.rows[field.row].cells.size() - 1;
        }
        if (!field.name.empty())
            rows_.fields.push_back(std::move(field));
    }

    SourceRows& rows_;
    std::vector<OpenTable> open_;
    std::vector<std::size_t> open_cells_; // rows whose last cell is open, the innermost last
    std::size_t form_ = no_index;
    std::size_t fields_ = 0;
    std::size_t checks_ = 0;
};

} // namespace

SourceRows::SourceRows(std::string_view source) {
    PageSource reader{source};
    Builder builder{*this};
    for (SourcePiece piece; reader.next(piece);)
        builder.take(piece);
    builder.finish();
}

} // namespace kestrune
