#include "tools/tour/report.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace kestrune::tour {
namespace {

constexpr auto head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Kestrune: the tour</title>
<style>
body { font: 15px/1.5 system-ui, sans-serif; margin: 2rem auto; max-width: 1200px; color: #222; }
h1 { font-size: 1.6rem; }
section { border-top: 1px solid #ddd; padding: 1rem 0; }
h2 { font-size: 1.1rem; margin: 0; }
.ok { color: #1a7f37; } .bad { color: #b3261e; }
.pictures { display: flex; flex-wrap: wrap; gap: 1rem; margin-top: .5rem; }
figure { margin: 0; } img { width: 370px; border: 1px solid #ccc; }
figcaption { font-size: .85rem; color: #666; }
</style>
</head>
<body>
)";

std::string escaped(std::string_view text) {
    std::string result;
    for (const char letter : text) {
        if (letter == '<')
            result += "&lt;";
        else if (letter == '&')
            result += "&amp;";
        else if (letter == '"')
            result += "&quot;";
        else
            result += letter;
    }
    return result;
}

std::string joined(const std::vector<std::string>& parts, std::string_view between) {
    std::string result;
    for (const std::string& part : parts) {
        if (!result.empty())
            result += between;
        result += part;
    }
    return result;
}

std::string title(const Visit& visit) {
    return visit.site->description +
           (visit.number > 1 ? " (visit " + std::to_string(visit.number) + ")" : "");
}

void write_visit(std::ostream& out, const Visit& visit) {
    const bool fine = visit.problems.empty();
    out << "<section>\n<h2><span class=\"" << (fine ? "ok\">&#10003;" : "bad\">&#10007;") << "</span> "
        << escaped(title(visit)) << "</h2>\n<p>" << escaped(joined(visit.deeds, "; ")) << "</p>\n";
    for (const std::string& problem : visit.problems)
        out << "<p class=\"bad\">" << escaped(problem) << "</p>\n";
    out << "<div class=\"pictures\">\n";
    for (const Picture& picture : visit.pictures)
        out << "<figure><a href=\"" << escaped(picture.file) << "\"><img loading=\"lazy\" alt=\"\" src=\""
            << escaped(picture.file) << "\"></a><figcaption>" << escaped(picture.caption)
            << "</figcaption></figure>\n";
    out << "</div>\n</section>\n";
}

} // namespace

std::string summary_line(const Visit& visit) {
    std::string line =
        (visit.problems.empty() ? "ok      " : "FAILED  ") + title(visit) + ": " + joined(visit.deeds, "; ");
    for (const std::string& problem : visit.problems)
        line += "\n        " + problem;
    return line;
}

void write_index(const std::filesystem::path& folder, const std::vector<Visit>& visits,
                 const std::vector<practice::Site>& sites) {
    std::ofstream out(folder / "index.html", std::ios::binary | std::ios::trunc);
    const auto failed =
        std::ranges::count_if(visits, [](const Visit& visit) { return !visit.problems.empty(); });
    out << head << "<h1>The practice sites, played through the real window</h1>\n<p>" << visits.size()
        << " visits, " << failed << " of them not as they should be.</p>\n";
    for (const Visit& visit : visits)
        write_visit(out, visit);
    for (const practice::Site& site : sites) {
        if (!site.left_out.empty())
            out << "<section><h2>" << escaped(site.description)
                << "</h2><p>Left out: " << escaped(site.left_out) << ".</p></section>\n";
    }
    out << "</body>\n</html>\n";
    if (!out.flush())
        throw std::runtime_error("cannot write index.html in " + folder.string());
}

} // namespace kestrune::tour
