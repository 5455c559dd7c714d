#include "tools/library/submission_report.h"

#include "platform/site_address.h"
#include "platform/text.h"
#include "tools/library/statistics.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

constexpr std::string_view style =
    "body{font:11pt/1.4 sans-serif;margin:2em;color:#222}h1{font-size:1.4em}table{border-collapse:collapse;"
    "width:100%}th,td{border-bottom:1px solid #ccc;padding:.3em .6em;text-align:left;vertical-align:top}"
    "td{overflow-wrap:anywhere}td.note{white-space:pre-wrap}tr{break-inside:avoid}thead{display:table-header-"
    "group}a{color:#124a8c}"
    "@media print{body{margin:0}a{color:inherit;text-decoration:none}}";

struct Line {
    std::string description;
    std::string url;
    std::string status;
    std::string category;
    std::string note;
};

std::string escaped(std::string_view text) {
    std::string html;
    for (const char c : text) {
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        default:
            html += c;
        }
    }
    return html;
}

std::string site_cell(const Line& line) {
    const std::string url = escaped(line.url);
    const std::string name = escaped(line.description.empty() ? line.url : line.description);
    // A library may come from anywhere; nothing but a web address becomes a link.
    if (!site_address_problem(line.url).empty())
        return name + "<br><small>" + url + "</small>";
    return "<a href=\"" + url + "\">" + name + "</a><br><small>" + url + "</small>";
}

std::vector<Line> submissions(const LibraryFile& library) {
    std::vector<Line> lines;
    const auto text = [&library](const LibraryRow& row, const char* column) {
        return row.values[library.column(column)].value_or("");
    };
    library.for_each([&](const LibraryRow& row) {
        const std::string status = text(row, "status");
        if (status == "Y" || status == "P")
            lines.push_back({text(row, "description"), text(row, "url"), status, text(row, "softtype"),
                             text(row, "note")});
    });
    std::stable_sort(lines.begin(), lines.end(), [](const Line& left, const Line& right) {
        if (left.status != right.status)
            return left.status == "Y";
        return lower_case(left.description) < lower_case(right.description);
    });
    return lines;
}

} // namespace

std::string submission_report(const LibraryFile& library, std::string_view date) {
    const LibraryStatistics statistics = library_statistics(library);
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<title>Submissions</title>\n<style>";
    html.append(style)
        .append("</style>\n</head>\n<body>\n<h1>Submissions, ")
        .append(escaped(date))
        .append("</h1>\n<p>");
    html += std::to_string(statistics.sites) + " sites: " + std::to_string(statistics.of_status("Y")) +
            " submitted, " + std::to_string(statistics.of_status("P")) + " failed, " +
            std::to_string(statistics.of_status("N")) + " not yet submitted.</p>\n";
    html += "<table>\n<thead><tr><th>Site</th><th>Status</th><th>Category</th><th>Note</th></tr></"
            "thead>\n<tbody>\n";
    for (const Line& line : submissions(library)) {
        html += "<tr><td>" + site_cell(line) + "</td><td>" + status_words(line.status) + "</td><td>" +
                escaped(line.category) + "</td><td class=\"note\">" + escaped(line.note) + "</td></tr>\n";
    }
    return html += "</tbody>\n</table>\n</body>\n</html>\n";
}

} // namespace kestrune
