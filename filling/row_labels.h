#pragma once

#include "filling/source_rows.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrune {

// Whether there is anything to read in the text: a letter or a digit of any script.
[[nodiscard]] bool has_words(std::string_view text);
// Whether the text is nothing but units in which a field is counted, such as "KB" or "(bytes)".
[[nodiscard]] bool is_unit(std::string_view text);

// Reads the labels of fields in table rows, by the rules that label_table.h states. Each row is read once.
class RowLabels {
public:
    // rows outlives this object.
    explicit RowLabels(const SourceRows& rows) : rows_(rows), read_(rows.rows.size()) {}

    // The label that its rows give the field; "" when they say nothing.
    [[nodiscard]] std::string label_of(const SourceField& field);

private:
    using Labels = std::unordered_map<std::size_t, std::string>; // by the field's token

    struct Line {
        std::vector<std::string> texts{{}}; // before the first control, between two, behind the last
        std::vector<std::size_t> controls;  // tokens
    };

    const Labels& row_labels(std::size_t row);
    [[nodiscard]] Labels read_row(std::size_t row) const;
    [[nodiscard]] std::string text_of(const SourceCell& cell) const;
    [[nodiscard]] std::vector<std::string> texts_of(const SourceRow& row) const;
    [[nodiscard]] std::vector<std::string> texts_beside(const SourceRow& row,
                                                        const std::vector<std::string>& texts) const;
    [[nodiscard]] std::vector<std::string> texts_above_or_below(const SourceRow& row) const;
    [[nodiscard]] bool labels_stand_below(const SourceRow& row) const;
    [[nodiscard]] std::vector<Line> lines_of(const SourceCell& cell) const;
    void read_cell(const SourceCell& cell, const std::string& beside, Labels& labels) const;
    bool read_line(const Line& line, const std::string& above, Labels& labels) const;
    [[nodiscard]] std::string own_text(const Line& line, std::size_t control, bool labels_behind) const;
    [[nodiscard]] SourceToken::Kind kind(std::size_t token) const { return rows_.tokens[token].kind; }

    const SourceRows& rows_;
    std::vector<std::optional<Labels>> read_;
};

} // namespace kestrune
