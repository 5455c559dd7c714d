#include "tools/library/site_export.h"

#include "tools/csv.h"

#include <vector>

namespace kestrune {

std::string export_sites(const LibraryFile& library) {
    std::string csv;
    append_csv(csv, library.columns());
    std::vector<std::string> fields;
    library.for_each([&](const LibraryRow& row) {
        fields.clear();
        for (const auto& value : row.values)
            fields.push_back(value.value_or(""));
        append_csv(csv, fields);
    });
    return csv;
}

} // namespace kestrune
