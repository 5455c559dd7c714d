#include "filling/label_table.h"

#include "filling/row_labels.h"
#include "filling/source_rows.h"
#include "platform/text.h"

#include <utility>

namespace kestrune {

LabelTable::LabelTable(std::string_view source, std::size_t form,
                       const std::vector<std::string>& field_names) {
    const SourceRows rows{source};
    std::unordered_map<std::string_view, const SourceField*> tags;
    for (const SourceField& field : rows.fields) {
        const SourceField*& tag = tags.try_emplace(field.name, nullptr).first->second;
        if (tag == nullptr || (tag->form != form && field.form == form))
            tag = &field;
    }
    RowLabels labels{rows};
    for (const std::string& field_name : field_names) {
        std::string name = lower_case(field_name);
        const auto tag = tags.find(name);
        if (tag == tags.end() || entries_.contains(name))
            continue;
        const bool in_row = tag->second->row != no_index;
        std::string text = in_row ? labels.label_of(*tag->second) : std::string();
        Entry entry{name, std::move(text), in_row};
        entries_.emplace(std::move(name), std::move(entry));
    }
}

const LabelTable::Entry* LabelTable::LookupLabel(std::string_view fieldName) const {
    const auto found = entries_.find(lower_case(fieldName));
    return found == entries_.end() ? nullptr : &found->second;
}

} // namespace kestrune
