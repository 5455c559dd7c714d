#include "filling/row_labels.h"

#include "filling/page_source.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

// Bytes. What is longer is no label but the content of a page.
constexpr std::size_t longest_label = 200;
constexpr std::size_t most_outer_rows = 10;
constexpr std::size_t most_fields_around = 3;
constexpr std::size_t most_empty_rows = 3;

constexpr std::array<std::string_view, 20> units{"kb",        "mb",        "gb",     "kbyte",   "kbytes",
                                                 "kilobyte",  "kilobytes", "mbyte",  "mbytes",  "megabyte",
                                                 "megabytes", "gbyte",     "gbytes", "byte",    "bytes",
                                                 "k",         "usd",       "dollar", "dollars", "eur"};

bool is_word_byte(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           static_cast<unsigned char>(byte) >= 0x80;
}

std::string joined(const std::string& left, const std::string& right) {
    if (left.empty() || right.empty())
        return left + right;
    return left.back() == ' ' || right.front() == ' ' ? left + right : left + ' ' + right;
}

std::string trimmed(std::string text) {
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string label_sized(std::string text) {
    if (text.size() > longest_label)
        text.clear();
    return text;
}

bool holds_field(const SourceCell& cell) { return cell.fields > 0; }
bool holds_control(const SourceCell& cell) { return cell.fields > 0 || cell.checks > 0; }

bool is_single(std::size_t fields, std::size_t checks) { return fields == 1 && checks == 0; }

const SourceCell* cell_at(const SourceRow& row, std::size_t column) {
    for (const SourceCell& cell : row.cells) {
        if (column >= cell.column && column < cell.column + cell.span)
            return &cell;
    }
    return nullptr;
}

bool any_control(const SourceRow& row) {
    return std::any_of(row.cells.begin(), row.cells.end(), holds_control);
}

bool any_words(const std::vector<std::string>& texts) {
    return std::any_of(texts.begin(), texts.end(), [](const std::string& text) { return has_words(text); });
}

} // namespace

bool has_words(std::string_view text) { return std::any_of(text.begin(), text.end(), is_word_byte); }

bool is_unit(std::string_view text) {
    bool any = false;
    for (std::size_t at = 0; at < text.size();) {
        if (!is_word_byte(text[at])) {
            ++at;
            continue;
        }
        const std::size_t start = at;
        while (at < text.size() && is_word_byte(text[at]))
            ++at;
        const std::string word = lower_case(text.substr(start, at - start));
        if (std::find(units.begin(), units.end(), word) == units.end())
            return false;
        any = true;
    }
    return any;
}

std::string RowLabels::label_of(const SourceField& field) {
    std::string unit;
    std::size_t row = field.row;
    for (std::size_t depth = 0; row != no_index && depth <= most_outer_rows; ++depth) {
        const Labels& labels = row_labels(row);
        const auto found = labels.find(field.token);
        if (found != labels.end() && has_words(found->second)) {
            if (!is_unit(found->second))
                return found->second;
            unit = found->second;
        }
        const SourceRow& inner = rows_.rows[row];
        if (inner.outer_row == no_index ||
            rows_.rows[inner.outer_row].cells[inner.outer_cell].fields > most_fields_around)
            break;
        row = inner.outer_row;
    }
    return unit;
}

const RowLabels::Labels& RowLabels::row_labels(std::size_t row) {
    auto& labels = read_[row];
    if (!labels)
        labels = read_row(row);
    return *labels;
}

RowLabels::Labels RowLabels::read_row(std::size_t number) const {
    Labels labels;
    const SourceRow& row = rows_.rows[number];
    const std::vector<std::string> texts = texts_of(row);
    const bool has_text = any_words(texts);
    const std::vector<std::string> beside = has_text ? texts_beside(row, texts) : texts_above_or_below(row);
    std::size_t fields = 0;
    std::size_t checks = 0;
    std::string whole;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        fields += row.cells[i].fields;
        checks += row.cells[i].checks;
        whole = joined(whole, texts[i]);
    }
    const bool whole_row = has_text && is_single(fields, checks) && whole.size() <= longest_label;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const SourceCell& cell = row.cells[i];
        if (!holds_field(cell))
            continue;
        if (!whole_row) {
            read_cell(cell, label_sized(beside[i]), labels);
            continue;
        }
        for (std::size_t token = cell.first; token < cell.end; ++token) {
            if (kind(token) == SourceToken::Kind::field || kind(token) == SourceToken::Kind::list)
                labels[token] = trimmed(whole);
        }
    }
    return labels;
}

std::string RowLabels::text_of(const SourceCell& cell) const {
    std::string text;
    for (std::size_t token = cell.first; token < cell.end; ++token) {
        if (kind(token) == SourceToken::Kind::text)
            append_shown_text(text, rows_.tokens[token].text);
        else
            append_shown_text(text, " ");
    }
    return trimmed(std::move(text));
}

std::vector<std::string> RowLabels::texts_of(const SourceRow& row) const {
    std::vector<std::string> texts;
    texts.reserve(row.cells.size());
    for (const SourceCell& cell : row.cells)
        texts.push_back(text_of(cell));
    return texts;
}

// For each cell that holds a field the text of the cells without controls that belong to it.
std::vector<std::string> RowLabels::texts_beside(const SourceRow& row,
                                                 const std::vector<std::string>& texts) const {
    const auto& cells = row.cells;
    std::vector<std::string> beside(cells.size());
    const auto is_empty = [&](std::size_t i) { return !holds_control(cells[i]) && !has_words(texts[i]); };
    std::size_t first = 0;
    while (first < cells.size() && is_empty(first))
        ++first;
    std::size_t last = cells.size();
    while (last > first && is_empty(last - 1))
        --last;
    if (first == last)
        return beside;
    const bool behind =
        holds_field(cells[first]) && !has_words(texts[first]) && !holds_control(cells[last - 1]);
    std::string waiting;
    std::size_t field_cell = no_index;
    for (std::size_t i = first; i < last; ++i) {
        if (holds_control(cells[i])) {
            if (!behind)
                beside[i] = std::move(waiting);
            waiting.clear();
            field_cell = i;
        } else if (behind) {
            beside[field_cell] = joined(beside[field_cell], texts[i]);
        } else {
            waiting = joined(waiting, texts[i]);
        }
    }
    if (!behind && field_cell != no_index)
        beside[field_cell] = joined(beside[field_cell], waiting);
    return beside;
}

bool RowLabels::labels_stand_below(const SourceRow& row) const {
    for (const std::size_t number : rows_.tables[row.table]) {
        const SourceRow& candidate = rows_.rows[number];
        if (any_words(texts_of(candidate)))
            return false;
        if (any_control(candidate))
            return true;
    }
    return false;
}

std::vector<std::string> RowLabels::texts_above_or_below(const SourceRow& row) const {
    std::vector<std::string> found(row.cells.size());
    const auto& table = rows_.tables[row.table];
    const bool below = labels_stand_below(row);
    const SourceRow* neighbour = nullptr;
    std::vector<std::string> texts;
    std::size_t place = row.place;
    for (std::size_t step = 0; step <= most_empty_rows && neighbour == nullptr; ++step) {
        if (below ? place + 1 >= table.size() : place == 0)
            return found;
        place = below ? place + 1 : place - 1;
        const SourceRow& candidate = rows_.rows[table[place]];
        if (any_control(candidate))
            return found;
        texts = texts_of(candidate);
        if (any_words(texts))
            neighbour = &candidate;
    }
    if (neighbour == nullptr)
        return found;
    const auto with_words = [](const std::string& text) { return has_words(text); };
    const bool one_each = std::count_if(row.cells.begin(), row.cells.end(), holds_field) == 1 &&
                          std::count_if(texts.begin(), texts.end(), with_words) == 1;
    const SourceCell* taken = nullptr;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        if (!holds_field(row.cells[i]))
            continue;
        if (one_each) {
            found[i] = *std::find_if(texts.begin(), texts.end(), with_words);
            continue;
        }
        // A heading over several cells is read with the first of them.
        const SourceCell* const cell = cell_at(*neighbour, row.cells[i].column);
        if (cell != nullptr && cell != taken)
            found[i] = texts[static_cast<std::size_t>(cell - neighbour->cells.data())];
        taken = cell;
    }
    return found;
}

std::vector<RowLabels::Line> RowLabels::lines_of(const SourceCell& cell) const {
    std::vector<Line> lines(1);
    for (std::size_t token = cell.first; token < cell.end; ++token) {
        switch (kind(token)) {
        case SourceToken::Kind::text:
            append_shown_text(lines.back().texts.back(), rows_.tokens[token].text);
            break;
        case SourceToken::Kind::gap:
            append_shown_text(lines.back().texts.back(), " ");
            break;
        case SourceToken::Kind::line:
            lines.emplace_back();
            break;
        case SourceToken::Kind::field:
        case SourceToken::Kind::list:
        case SourceToken::Kind::check:
            lines.back().controls.push_back(token);
            lines.back().texts.emplace_back();
            break;
        }
    }
    std::erase_if(lines, [](const Line& line) { return line.controls.empty() && !has_words(line.texts[0]); });
    return lines;
}

void RowLabels::read_cell(const SourceCell& cell, const std::string& beside, Labels& labels) const {
    const std::vector<Line> lines = lines_of(cell);
    if (is_single(cell.fields, cell.checks)) {
        const std::string whole = joined(beside, text_of(cell));
        if (whole.size() <= longest_label) {
            for (const Line& line : lines) {
                if (!line.controls.empty())
                    labels[line.controls[0]] = trimmed(whole);
            }
            return;
        }
    }
    const bool below = !lines.empty() && !lines.front().controls.empty() && !any_words(lines.front().texts) &&
                       lines.back().controls.empty();
    std::string above = beside;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const Line& line = lines[i];
        if (line.controls.empty()) {
            const std::string text = trimmed(line.texts[0]);
            const bool remark = text.front() == '(' && !above.empty();
            above = label_sized(remark ? joined(above, text) : text);
            continue;
        }
        if (below)
            above = i + 1 < lines.size() && lines[i + 1].controls.empty()
                        ? label_sized(trimmed(lines[i + 1].texts[0]))
                        : std::string();
        if (read_line(line, above, labels))
            above.clear();
    }
}

std::string RowLabels::own_text(const Line& line, std::size_t control, bool labels_behind) const {
    const std::string& behind = line.texts[control + 1];
    if (labels_behind)
        return behind;
    std::string own;
    const bool first = control == 0;
    const bool follows_check = !first && kind(line.controls[control - 1]) == SourceToken::Kind::check;
    if (!follows_check && (first || !is_unit(line.texts[control])))
        own = line.texts[control];
    if (control + 1 == line.controls.size() || is_unit(behind))
        own = joined(own, behind);
    return own;
}

// True when what stands above the line is used up: by a field, or by check boxes whose heading it is.
bool RowLabels::read_line(const Line& line, const std::string& above, Labels& labels) const {
    const bool leading = has_words(line.texts.front());
    const std::string shared = leading ? line.texts.front() : above;
    const bool labels_behind =
        !leading && has_words(line.texts.back()) && kind(line.controls.back()) != SourceToken::Kind::check;
    bool used = false;
    for (std::size_t i = 0; i < line.controls.size(); ++i) {
        const std::size_t control = line.controls[i];
        if (kind(control) == SourceToken::Kind::check) {
            used = used || !leading;
            continue;
        }
        const std::string own = label_sized(trimmed(own_text(line, i, labels_behind)));
        std::string& label = labels[control];
        if (has_words(own) && !is_unit(own))
            label = own;
        else if (has_words(own))
            label = trimmed(joined(shared, own));
        else if (!used)
            label = trimmed(shared);
        used = used || kind(control) == SourceToken::Kind::field;
    }
    return used;
}

} // namespace kestrune
