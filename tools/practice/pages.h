#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::practice {

// Whether placeholders are filled in in this file: HTML, style sheets, scripts, SVG and plain text.
bool is_text(const std::filesystem::path& file);

// Content-Type by the file's name. Text is UTF-8.
std::string content_type(const std::filesystem::path& file);

// The bytes of the file. Throws std::runtime_error when it cannot be read.
std::string read_whole(const std::filesystem::path& file);

// The file that stands at `path` (decoded, without query) in the folder, index.html for a folder. Nothing
// when there is none, when it is the site's description, or when the path leads out of the folder.
std::optional<std::filesystem::path> page_file(const std::filesystem::path& folder, std::string_view path);

// Fills in "{{origin}}" (the page's own site), "{{site:NAME}}" and "{{links:COUNT}}" (a list of that many
// links none of which is a submission link). `origin` gives the origin of the named site, "" names the page's
// own.
std::string fill_in(std::string_view text, const std::function<std::string(std::string_view)>& origin);

struct BadPlaceholder {
    std::size_t at = 0; // byte position
    std::string message;
};

// The first "{{...}}" that fill_in would not understand; `names` are the sites there are.
std::optional<BadPlaceholder> find_bad_placeholder(std::string_view text,
                                                   const std::vector<std::string>& names);

} // namespace kestrune::practice
