#include "tools/library/site_import.h"

#include "platform/code_page.h"
#include "platform/database_value.h"
#include "platform/site_address.h"
#include "platform/statement.h"
#include "tools/csv.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>

namespace kestrune {
namespace {

constexpr std::string_view byte_order_mark{"\xef\xbb\xbf"};

// One line of the list by column; an empty field counts as not given.
class SiteLine {
public:
    SiteLine(const std::vector<std::string>& columns, std::vector<std::string> fields)
        : columns_(columns), fields_(std::move(fields)) {}

    [[nodiscard]] bool is_blank() const { return fields_.size() == 1 && fields_[0].empty(); }
    [[nodiscard]] bool fits() const { return fields_.size() == columns_.size(); }
    [[nodiscard]] std::string get(std::string_view column) const {
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (same_column(columns_[i], column))
                return fields_[i];
        }
        return {};
    }
    // Why it cannot be taken; empty when it can.
    [[nodiscard]] std::string problem() const;
    [[nodiscard]] LibraryValues filled() const {
        LibraryValues values;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (!columns_[i].empty() && !fields_[i].empty())
                values.emplace_back(columns_[i], fields_[i]);
        }
        return values;
    }

private:
    const std::vector<std::string>& columns_; // the library's names; empty for one that is passed over
    std::vector<std::string> fields_;
};

bool is_whole_number(std::string_view text) {
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size();
}

std::string SiteLine::problem() const {
    if (!fits())
        return std::to_string(fields_.size()) + " fields where the first line has " +
               std::to_string(columns_.size());
    if (std::any_of(fields_.begin(), fields_.end(),
                    [](const std::string& field) { return field.find('\0') != std::string::npos; }))
        return "a zero byte";
    if (get("url").empty())
        return "a site without an address";
    if (std::string problem = site_address_problem(get("url")); !problem.empty())
        return problem.append(": ").append(get("url"));
    if (get("description").empty())
        return "a site without a description";
    const std::string status = get("status");
    if (!status.empty() && status != "N" && status != "Y" && status != "P")
        return std::string("unknown status (not N, Y or P): ").append(status);
    const std::string category = get("softtype");
    if (!category.empty() &&
        std::find(category_labels.begin(), category_labels.end(), category) == category_labels.end())
        return std::string("unknown category: ").append(category);
    for (const char* const column : {"referral", "linkfound"}) {
        if (const std::string number = get(column); !number.empty() && !is_whole_number(number))
            return std::string("not a whole number: ").append(number);
    }
    return {};
}

// The library's columns that the fields of a line go to.
std::vector<std::string> read_header(const LibraryFile& library, CsvReader& reader, ImportReport& report) {
    const auto names = reader.next();
    if (!names)
        throw LibraryError("the list is empty");
    std::vector<std::string> columns;
    for (const std::string& name : *names) {
        const auto column = library.find_column(name);
        const bool taken = column && !same_column(name, "padkey");
        if (!column)
            report.ignored_columns.push_back(name);
        columns.push_back(taken ? library.columns()[*column] : std::string());
        if (taken && std::count(columns.begin(), columns.end(), columns.back()) > 1)
            throw LibraryError("the first line names the column " + name + " twice");
    }
    for (const char* const needed : {"url", "description"}) {
        if (std::none_of(columns.begin(), columns.end(),
                         [needed](const std::string& column) { return same_column(column, needed); }))
            throw LibraryError(std::string("the first line does not name the column ") + needed);
    }
    return columns;
}

// Sites by what tells them apart; the first of several with one address.
std::unordered_map<std::string, std::int64_t> known_sites(const LibraryFile& library) {
    std::unordered_map<std::string, std::int64_t> known;
    const std::size_t url = library.column("url");
    library.for_each([&](const LibraryRow& row) {
        if (row.values[url])
            known.emplace(site_address_key(*row.values[url]), row.id);
    });
    return known;
}

void add_defaults(LibraryValues& values) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 5> defaults{
        {{"status", "N"}, {"pad", "NO"}, {"note", ""}, {"referral", "0"}, {"linkfound", "0"}}};
    for (const auto& [column, value] : defaults) {
        if (std::none_of(values.begin(), values.end(),
                         [&](const auto& given) { return same_column(given.first, column); }))
            values.emplace_back(column, value);
    }
}

class Import {
public:
    Import(LibraryFile& library, const ImportOptions& options, ImportReport& report)
        : options_(options), report_(report), known_(known_sites(library)) {
        if (!options.dry_run)
            changes_.emplace(library);
    }

    void take(const SiteLine& line, std::size_t number) {
        LibraryValues values = line.filled();
        const auto [known, is_new] = known_.emplace(site_address_key(line.get("url")), in_this_list);
        if (is_new) {
            add_defaults(values);
            if (changes_)
                changes_->insert(values);
            ++report_.added;
            return;
        }
        std::string duplicate = in_line(number, line.get("url"));
        duplicate += known->second == in_this_list ? " (also in an earlier line)" : "";
        report_.duplicates.push_back(std::move(duplicate));
        if (options_.duplicates == Duplicates::Skip || known->second == in_this_list)
            return;
        // The library's own spelling of the address is what the program marks it by.
        std::erase_if(values, [](const auto& value) { return same_column(value.first, "url"); });
        if (changes_)
            changes_->update(known->second, values);
        ++report_.updated;
    }
    void commit() {
        if (changes_)
            changes_->commit();
    }

private:
    static constexpr std::int64_t in_this_list = std::numeric_limits<std::int64_t>::min();

    const ImportOptions& options_;
    ImportReport& report_;
    std::unordered_map<std::string, std::int64_t> known_;
    std::optional<LibraryChanges> changes_;
};

} // namespace

ImportReport import_sites(LibraryFile& library, std::string_view csv, const ImportOptions& options) {
    if (!is_utf8(csv))
        throw LibraryError("the list is not UTF-8");
    if (csv.starts_with(byte_order_mark))
        csv.remove_prefix(byte_order_mark.size());
    ImportReport report;
    try {
        CsvReader reader{csv};
        const std::vector<std::string> columns = read_header(library, reader, report);
        Import importing{library, options, report};
        while (auto fields = reader.next()) {
            const SiteLine line{columns, std::move(*fields)};
            if (line.is_blank())
                continue;
            if (const std::string problem = line.problem(); !problem.empty())
                report.refused.push_back(in_line(reader.line(), problem));
            else
                importing.take(line, reader.line());
        }
        importing.commit();
    } catch (const CsvError& error) {
        throw LibraryError(error.what());
    }
    return report;
}

} // namespace kestrune
