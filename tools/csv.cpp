#include "tools/csv.h"

#include <algorithm>

namespace kestrune {

std::string in_line(std::size_t line, std::string_view what) {
    return std::string("line ").append(std::to_string(line)).append(": ").append(what);
}

std::optional<std::vector<std::string>> CsvReader::next() {
    line_ = next_line_;
    if (rest_.empty())
        return std::nullopt;
    std::vector<std::string> fields;
    do {
        fields.push_back(rest_.starts_with('"') ? quoted() : plain());
    } while (take(','));
    if (!rest_.empty() && !take('\n') && !(take('\r') && take('\n')))
        throw CsvError(in_line(line_, "text after a quoted field"));
    ++next_line_;
    return fields;
}

bool CsvReader::take(char wanted) {
    if (!rest_.starts_with(wanted))
        return false;
    rest_.remove_prefix(1);
    return true;
}

std::string CsvReader::plain() {
    const auto end = std::min(rest_.find_first_of(",\r\n"), rest_.size());
    std::string field{rest_.substr(0, end)};
    rest_.remove_prefix(end);
    return field;
}

std::string CsvReader::quoted() {
    std::string field;
    take('"');
    for (;;) {
        const auto end = rest_.find('"');
        if (end == std::string_view::npos)
            throw CsvError(in_line(line_, "a quotation mark that is not closed"));
        field += rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        if (!take('"'))
            break;
        field += '"';
    }
    next_line_ += static_cast<std::size_t>(std::count(field.begin(), field.end(), '\n'));
    return field;
}

void append_csv(std::string& text, const std::vector<std::string>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            text += ',';
        const std::string& field = fields[i];
        // A record of one empty field would read as no record at all.
        const bool alone = field.empty() && fields.size() == 1;
        if (!alone && field.find_first_of(",\"\r\n") == std::string::npos) {
            text += field;
            continue;
        }
        text += '"';
        for (const char c : field)
            text.append(c == '"' ? 2 : 1, c);
        text += '"';
    }
    text += "\r\n";
}

} // namespace kestrune
