#include "tools/site_csv.h"

#include "platform/statement.h"
#include "tools/csv.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace kestrune {
namespace {

const std::vector<std::string> header{"description", "url", "softtype", "pad", "sure", "evidence"};

[[noreturn]] void fail(std::size_t line, const std::string& what) { throw SiteCsvError(in_line(line, what)); }

bool is_one_of(std::string_view text, std::initializer_list<std::string_view> allowed) {
    return std::find(allowed.begin(), allowed.end(), text) != allowed.end();
}

void check(const std::vector<std::string>& fields, std::size_t line) {
    if (fields.size() != header.size())
        fail(line,
             std::to_string(fields.size()) + " fields where there are " + std::to_string(header.size()));
    if (fields[0].empty())
        fail(line, "a site without a description");
    if (!fields[1].starts_with("http://") && !fields[1].starts_with("https://"))
        fail(line, "no web address: " + fields[1]);
    // Such a site could be played back and never be marked.
    if (fields[1].find('\'') != std::string::npos)
        fail(line, "an address that holds an apostrophe");
    if (std::find(category_labels.begin(), category_labels.end(), fields[2]) == category_labels.end())
        fail(line, "no category: " + fields[2]);
    if (!is_one_of(fields[3], {"PAD", "NO"}))
        fail(line, "neither PAD nor NO: " + fields[3]);
    if (!is_one_of(fields[4], {"high", "medium", "low"}))
        fail(line, "not high, medium or low: " + fields[4]);
}

std::vector<SiteRow> read_sites(std::string_view text) {
    CsvReader reader{text};
    if (reader.next() != header)
        fail(1, "the columns are not those of a list of sites");
    std::vector<SiteRow> sites;
    while (const auto fields = reader.next()) {
        check(*fields, reader.line());
        if (fields->at(4) == "low")
            continue;
        SiteRow site;
        site.padkey = static_cast<std::int32_t>(sites.size()) + 1;
        site.description = fields->at(0);
        site.url = fields->at(1);
        site.softtype = fields->at(2);
        site.pad = fields->at(3);
        sites.push_back(std::move(site));
    }
    return sites;
}

} // namespace

std::vector<SiteRow> read_site_csv(std::string_view text) {
    try {
        return read_sites(text);
    } catch (const CsvError& error) {
        throw SiteCsvError(error.what());
    }
}

} // namespace kestrune
