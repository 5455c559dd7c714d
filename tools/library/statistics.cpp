#include "tools/library/statistics.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace kestrune {
namespace {

constexpr std::array<std::string_view, 3> statuses{"N", "Y", "P"};

std::string padded(std::string text, std::size_t width, bool right) {
    if (text.size() < width)
        text.insert(right ? 0 : text.size(), width - text.size(), ' ');
    return text;
}

std::int64_t of(const std::map<std::string, std::int64_t>& counts, std::string_view status) {
    const auto found = counts.find(std::string(status));
    return found == counts.end() ? 0 : found->second;
}

std::string line(const std::string& name, const std::vector<std::string>& cells) {
    constexpr std::size_t name_width = 16;
    constexpr std::size_t cell_width = 16;
    std::string text = padded(name, name_width, false);
    for (const std::string& cell : cells)
        text += padded(cell, cell_width, true);
    return text += '\n';
}

std::vector<std::string> cells(const std::map<std::string, std::int64_t>& counts) {
    std::vector<std::string> cells;
    std::int64_t all = 0;
    std::int64_t known = 0;
    for (const auto& [status, count] : counts)
        all += count;
    for (const std::string_view status : statuses) {
        cells.push_back(std::to_string(of(counts, status)));
        known += of(counts, status);
    }
    cells.push_back(std::to_string(all - known));
    cells.push_back(std::to_string(all));
    return cells;
}

} // namespace

std::int64_t LibraryStatistics::of_status(const std::string& status) const {
    std::int64_t sum = 0;
    for (const auto& [category, counts] : by_category)
        sum += of(counts, status);
    return sum;
}

LibraryStatistics library_statistics(const LibraryFile& library) {
    LibraryStatistics statistics;
    const std::size_t status = library.column("status");
    const std::size_t softtype = library.column("softtype");
    const std::size_t pad = library.column("pad");
    library.for_each([&](const LibraryRow& row) {
        ++statistics.sites;
        if (row.values[pad] == "PAD")
            ++statistics.with_pad;
        ++statistics.by_category[row.values[softtype].value_or("")][row.values[status].value_or("")];
    });
    return statistics;
}

std::string statistics_text(const LibraryStatistics& statistics) {
    std::string text = std::to_string(statistics.sites) + " sites, " + std::to_string(statistics.with_pad) +
                       " of them with PAD support\n\n";
    text += line("", {"not submitted", "submitted", "failed", "other", "all"});
    std::map<std::string, std::int64_t> sums;
    for (const auto& [category, counts] : statistics.by_category) {
        text += line(category.empty() ? "no category" : category, cells(counts));
        for (const auto& [status, count] : counts)
            sums[status] += count;
    }
    return text += line("all", cells(sums));
}

std::string status_words(const std::string& status) {
    if (status == "N")
        return "not yet submitted";
    if (status == "Y")
        return "submitted";
    if (status == "P")
        return "failed";
    return status;
}

} // namespace kestrune
