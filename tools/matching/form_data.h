#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::matching {

// Data beside a practice form that cannot be used. what() reads "FILE:LINE: what is wrong".
class FormDataError : public std::runtime_error {
public:
    FormDataError(const std::filesystem::path& file, std::size_t line, std::string_view message);
};

// What is to stand in a field.
struct Wanted {
    enum class Kind : std::uint8_t {
        stay,    // what stood there before
        box,     // the profile's text; `text` is the box's name
        text,    // this text: what is typed, or the text of the option selected
        checked, // a check box or an option button is set
    };
    Kind kind = Kind::stay;
    std::string text;
    friend bool operator==(const Wanted&, const Wanted&) = default;
};

struct FieldData {
    std::string name;
    std::size_t ordinal = 1;    // among the form's fields of exactly this name, from 1
    std::string label;          // as a person reads it
    int row = 0;                // of the label table, from 1; 0 where none decides and for lists
    Wanted table;               // what the table's rules give it
    std::vector<Wanted> person; // any of these is what a person would want there
    std::size_t line = 0;       // of the file

    [[nodiscard]] std::string title() const; // "name", or "name#2"
};

struct FormData {
    std::string document;   // path of the document that holds it, or its whole address with placeholders
    std::size_t number = 1; // among the document's forms, from 1
    std::string press;      // name of the field on which the menu is opened; "" when another form is filled
    std::vector<FieldData> fields;
};

// What the file fields.txt of one practice form says; practice/README.md tells its format.
struct PageData {
    std::string name; // of the folder
    std::filesystem::path folder;
    std::vector<FormData> forms;

    [[nodiscard]] const FormData& filled() const; // the one with a `press`
};

inline constexpr std::string_view form_data_file_name = "fields.txt";

// Reads the text of a fields.txt; `file` names it in errors. Throws FormDataError.
PageData parse_form_data(std::string_view name, std::string_view text, const std::filesystem::path& file);

// Those of every folder of `folder` that holds a fields.txt, in the order of their names. Throws
// FormDataError.
std::vector<PageData> load_form_data(const std::filesystem::path& folder);

} // namespace kestrune::matching
