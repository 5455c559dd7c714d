#include "tools/matching/form_data.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>

namespace kestrune::matching {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, std::string_view by) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto at = text.find(by);
        parts.push_back(trimmed(text.substr(0, at)));
        if (at == std::string_view::npos)
            return parts;
        text.remove_prefix(at + by.size());
    }
}

std::optional<std::size_t> number(std::string_view text) {
    std::size_t value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || value == 0)
        return {};
    return value;
}

class Parser {
public:
    Parser(std::string_view name, const std::filesystem::path& file) : file_(file) {
        page_.name = name;
        page_.folder = file.parent_path();
    }

    PageData parse(std::string_view text) {
        for (const std::string_view line : split(text, "\n")) {
            ++line_;
            if (line.empty() || line.starts_with('#'))
                continue;
            if (line.find('|') == std::string_view::npos)
                read_key(line);
            else
                form().fields.push_back(field(line));
        }
        check_whole();
        return std::move(page_);
    }

private:
    [[noreturn]] void fail(const std::string& message) const { throw FormDataError(file_, line_, message); }

    FormData& form() {
        if (page_.forms.empty())
            fail("\"form = NUMBER\" is missing before this line");
        return page_.forms.back();
    }

    void read_key(std::string_view line) {
        const auto equals = line.find('=');
        if (equals == std::string_view::npos)
            fail("\"key = value\" or a field is wanted here");
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string value{trimmed(line.substr(equals + 1))};
        if (key == "document") {
            document_ = value;
        } else if (key == "form") {
            const auto place = number(value);
            if (!place)
                fail("the form's number is wanted, not \"" + value + "\"");
            page_.forms.push_back({document_, *place, "", {}});
        } else if (key == "press") {
            if (std::ranges::any_of(page_.forms, [](const FormData& one) { return !one.press.empty(); }))
                fail("\"press\" stands in the file already");
            form().press = value;
        } else {
            fail("unknown key \"" + std::string(key) + "\"");
        }
    }

    [[nodiscard]] FieldData field(std::string_view line) {
        const auto columns = split(line, "|");
        if (columns.size() != 4)
            fail("\"NAME | LABEL | TABLE | PERSON\" is wanted");
        FieldData result;
        result.line = line_;
        result.name = columns[0];
        if (const auto mark = columns[0].rfind('#'); mark != std::string_view::npos) {
            const auto ordinal = number(columns[0].substr(mark + 1));
            if (!ordinal)
                fail("a number is wanted behind \"#\"");
            result.name = columns[0].substr(0, mark);
            result.ordinal = *ordinal;
        }
        for (const FieldData& other : form().fields) {
            if (other.name == result.name && other.ordinal == result.ordinal)
                fail("\"" + result.title() + "\" stands on line " + std::to_string(other.line) + " already");
        }
        result.label = columns[1];
        read_table(columns[2], result);
        for (const std::string_view one : split(columns[3], " or "))
            result.person.push_back(wanted(one));
        return result;
    }

    // "stay", "5 stay", "1 txtProgramName" or "list "Option"".
    void read_table(std::string_view text, FieldData& result) const {
        const auto blank = text.find(' ');
        const std::string_view first = text.substr(0, blank);
        const std::string_view rest = blank == std::string_view::npos ? "" : trimmed(text.substr(blank));
        if (first == "list") {
            result.table = wanted(rest);
            if (result.table.kind != Wanted::Kind::text)
                fail("the text of an option is wanted after \"list\"");
        } else if (const auto row = number(first)) {
            result.row = static_cast<int>(*row);
            result.table = wanted(rest);
            if (result.table.kind != Wanted::Kind::box && result.table.kind != Wanted::Kind::stay)
                fail("a box of the profile or \"stay\" is wanted after the row");
        } else if (text != "stay") {
            fail("\"stay\", \"ROW BOX\" or \"list OPTION\" is wanted, not \"" + std::string(text) + "\"");
        }
    }

    [[nodiscard]] Wanted wanted(std::string_view text) const {
        if (text == "stay")
            return {};
        if (text == "checked")
            return {Wanted::Kind::checked, ""};
        if (text.starts_with("txt"))
            return {Wanted::Kind::box, std::string(text)};
        if (text.size() > 2 && text.starts_with('"') && text.ends_with('"'))
            return {Wanted::Kind::text, std::string(text.substr(1, text.size() - 2))};
        fail("a box, a text in quotes, \"checked\" or \"stay\" is wanted, not \"" + std::string(text) + "\"");
    }

    void check_whole() {
        const auto filled =
            std::ranges::find_if(page_.forms, [](const FormData& one) { return !one.press.empty(); });
        if (filled == page_.forms.end())
            fail("\"press\" is missing");
        const bool known = std::ranges::any_of(
            filled->fields, [&](const FieldData& one) { return one.name == filled->press; });
        if (!known)
            fail("\"press\" names no field of its form");
    }

    const std::filesystem::path& file_;
    std::size_t line_ = 0;
    std::string document_ = "/index.html";
    PageData page_;
};

std::string read_whole(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw FormDataError(file, 0, "cannot be read");
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

FormDataError::FormDataError(const std::filesystem::path& file, std::size_t line, std::string_view message)
    : std::runtime_error(file.string() + ":" + std::to_string(line) + ": " + std::string(message)) {}

std::string FieldData::title() const { return ordinal == 1 ? name : name + "#" + std::to_string(ordinal); }

const FormData& PageData::filled() const {
    return *std::ranges::find_if(forms, [](const FormData& form) { return !form.press.empty(); });
}

PageData parse_form_data(std::string_view name, std::string_view text, const std::filesystem::path& file) {
    return Parser(name, file).parse(text);
}

std::vector<PageData> load_form_data(const std::filesystem::path& folder) {
    std::vector<PageData> pages;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const auto file = entry.path() / form_data_file_name;
        if (std::filesystem::exists(file))
            pages.push_back(parse_form_data(entry.path().filename().string(), read_whole(file), file));
    }
    std::ranges::sort(pages, {}, &PageData::name);
    return pages;
}

} // namespace kestrune::matching
