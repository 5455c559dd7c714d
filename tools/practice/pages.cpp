#include "tools/practice/pages.h"

#include "tools/practice/site.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestrune::practice {
namespace {

struct FileKind {
    std::string_view extension;
    std::string_view type;
    bool text;
};

constexpr std::array<FileKind, 13> kinds{{
    {".html", "text/html; charset=utf-8", true},
    {".htm", "text/html; charset=utf-8", true},
    {".php", "text/html; charset=utf-8", true},
    {".asp", "text/html; charset=utf-8", true},
    {".css", "text/css; charset=utf-8", true},
    {".js", "text/javascript; charset=utf-8", true},
    {".txt", "text/plain; charset=utf-8", true},
    {".xml", "text/xml; charset=utf-8", true},
    {".svg", "image/svg+xml", true},
    {".png", "image/png", false},
    {".gif", "image/gif", false},
    {".jpg", "image/jpeg", false},
    {".ico", "image/x-icon", false},
}};

const FileKind* kind_of(const std::filesystem::path& file) {
    const std::string extension = file.extension().string();
    const auto* found =
        std::ranges::find_if(kinds, [&](const FileKind& kind) { return kind.extension == extension; });
    return found == kinds.end() ? nullptr : found;
}

struct Placeholder {
    std::size_t begin = 0; // of "{{"
    std::size_t end = 0;   // after "}}"
    std::string_view word;
    std::string_view argument;
};

std::optional<Placeholder> next_placeholder(std::string_view text, std::size_t from) {
    const auto begin = text.find("{{", from);
    if (begin == std::string_view::npos)
        return {};
    const auto end = text.find("}}", begin);
    if (end == std::string_view::npos)
        return {};
    const std::string_view inside = text.substr(begin + 2, end - begin - 2);
    const auto colon = inside.find(':');
    const bool plain = colon == std::string_view::npos;
    return Placeholder{begin, end + 2, inside.substr(0, colon), plain ? "" : inside.substr(colon + 1)};
}

std::optional<int> count_of(std::string_view argument) {
    int count = 0;
    const char* end = argument.data() + argument.size();
    const auto parsed = std::from_chars(argument.data(), end, count);
    if (argument.empty() || parsed.ec != std::errc() || parsed.ptr != end || count < 0)
        return {};
    return count;
}

// A directory's listing: texts of one to four words, none of which starts with a word that submits anything.
std::string links(int count) {
    constexpr std::array<std::string_view, 7> things{
        "Calendar", "Paint Box", "Mail Sorter", "Chess Clock", "Notepad", "Invoice Maker", "Star Map"};
    std::string result;
    for (int i = 1; i <= count; ++i) {
        const std::string number = std::to_string(i);
        result += "<li><a href=\"/entry/" + number + ".html\">";
        result += things.at(static_cast<std::size_t>(i) % things.size());
        result += " " + number + "</a></li>\n";
    }
    return result;
}

} // namespace

bool is_text(const std::filesystem::path& file) {
    const FileKind* kind = kind_of(file);
    return kind != nullptr && kind->text;
}

std::string content_type(const std::filesystem::path& file) {
    const FileKind* kind = kind_of(file);
    return kind == nullptr ? "application/octet-stream" : std::string(kind->type);
}

std::string read_whole(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::optional<std::filesystem::path> page_file(const std::filesystem::path& folder, std::string_view path) {
    const auto control = [](unsigned char byte) { return byte < 0x20; };
    if (!path.starts_with('/') || std::ranges::any_of(path, control))
        return {};
    std::error_code error;
    const auto root = std::filesystem::weakly_canonical(folder, error);
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    auto file = std::filesystem::weakly_canonical(root / path, error);
    if (error || std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first != root.end())
        return {};
    if (std::filesystem::is_directory(file, error))
        file /= "index.html";
    if (!std::filesystem::is_regular_file(file, error) || file == root / site_file_name)
        return {};
    return file;
}

std::string fill_in(std::string_view text, const std::function<std::string(std::string_view)>& origin) {
    std::string result;
    std::size_t at = 0;
    while (const auto found = next_placeholder(text, at)) {
        result += text.substr(at, found->begin - at);
        if (found->word == "links")
            result += links(count_of(found->argument).value_or(0));
        else
            result += origin(found->argument);
        at = found->end;
    }
    result += text.substr(at);
    return result;
}

std::optional<BadPlaceholder> find_bad_placeholder(std::string_view text,
                                                   const std::vector<std::string>& names) {
    std::size_t at = 0;
    while (const auto found = next_placeholder(text, at)) {
        const std::string shown{text.substr(found->begin, found->end - found->begin)};
        if (found->word == "site") {
            if (std::ranges::find(names, found->argument) == names.end())
                return BadPlaceholder{found->begin, shown + " names no site"};
        } else if (found->word == "links") {
            if (!count_of(found->argument))
                return BadPlaceholder{found->begin, shown + " wants a count"};
        } else if (found->word != "origin" || !found->argument.empty()) {
            return BadPlaceholder{found->begin, shown + " is no placeholder"};
        }
        at = found->end;
    }
    return {};
}

} // namespace kestrune::practice
