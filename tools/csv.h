#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Text that is no comma-separated values; says in which line.
class CsvError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads comma-separated values record by record. A field that holds a comma, a quotation mark or a line end
// is quoted, with quotation marks doubled; lines end in LF or CR LF. The text outlives the reader.
class CsvReader {
public:
    explicit CsvReader(std::string_view text) : rest_(text) {}

    // The line in which the record read last begins, from 1.
    [[nodiscard]] std::size_t line() const { return line_; }

    // The fields of the next record, at least one; nothing at the end. Throws CsvError.
    std::optional<std::vector<std::string>> next();

private:
    bool take(char wanted);
    std::string plain();
    std::string quoted();

    std::string_view rest_;
    std::size_t line_ = 1;
    std::size_t next_line_ = 1;
};

// "line 7: " and what is wrong there.
std::string in_line(std::size_t line, std::string_view what);

// Appends one record, with a CR LF at its end; quotes the fields that need it.
void append_csv(std::string& text, const std::vector<std::string>& fields);

} // namespace kestrune
