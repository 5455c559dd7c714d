#include "tools/practice/pages.h"
#include "tools/practice/site.h"

#include <algorithm>

namespace kestrune::practice {
namespace {

// A page that names an unknown site would fail in the browser, far from its cause.
void check_placeholders(const std::filesystem::path& file, const std::string& text,
                        const std::vector<std::string>& names) {
    if (const auto bad = find_bad_placeholder(text, names)) {
        const auto before = std::string_view(text).substr(0, bad->at);
        throw SiteFileError(file, static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1,
                            bad->message);
    }
}

void check_pages(const Site& site, const std::vector<std::string>& names) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(site.folder)) {
        if (entry.is_regular_file() && is_text(entry.path()))
            check_placeholders(entry.path(), read_whole(entry.path()), names);
    }
    for (const auto& [path, behaviour] : site.behaviours) {
        if (behaviour.hang == Behaviour::Hang::body && !page_file(site.folder, path))
            throw SiteFileError(site.folder / site_file_name, 1,
                                "there is no file to send half of at " + path);
    }
}

} // namespace

Behaviour Site::behaviour(std::string_view path) const {
    Behaviour result;
    if (const auto own = behaviours.find(path); own != behaviours.end())
        result = own->second;
    const auto every = behaviours.find("*");
    if (every == behaviours.end())
        return result;
    const Behaviour& rest = every->second;
    result.headers.insert(result.headers.end(), rest.headers.begin(), rest.headers.end());
    if (result.redirect.empty())
        result.redirect = rest.redirect;
    if (result.delay.count() == 0)
        result.delay = rest.delay;
    if (result.hang == Behaviour::Hang::never)
        result.hang = rest.hang;
    if (result.code == 0)
        result.code = rest.code;
    if (result.type.empty())
        result.type = rest.type;
    return result;
}

std::vector<Site> load_sites(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> folders;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_directory() && std::filesystem::exists(entry.path() / site_file_name))
            folders.push_back(entry.path());
    }
    std::ranges::sort(folders);

    std::vector<std::string> names;
    for (const auto& place : folders)
        names.push_back(place.filename().string());
    std::vector<Site> sites;
    for (const auto& place : folders) {
        const std::string text = read_whole(place / site_file_name);
        Site site = parse_site(place.filename().string(), text, place / site_file_name);
        site.folder = place;
        check_pages(site, names);
        sites.push_back(std::move(site));
    }
    return sites;
}

} // namespace kestrune::practice
