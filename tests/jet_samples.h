#pragma once

#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace kestrune {

// Access databases that are shared between checkouts and not part of this one, each with its contents as a
// text beside it. Where they are absent, tests that need them are skipped and said to be.
inline std::string jet_sample(const std::string& name) {
    const std::filesystem::path source = KESTRUNE_SOURCE_DIR;
    for (const char* const up : {"../shared/data/jet", "../../shared/data/jet"}) {
        const auto path = source / up / name;
        if (std::filesystem::exists(path))
            return path.string();
    }
    return {};
}

// Within a test: ends it when the samples are not there.
#define KESTRUNE_NEED_JET_SAMPLES()                                                                          \
    if (jet_sample("sites-2000.mdb").empty())                                                                \
    GTEST_SKIP() << "no Access samples beside this checkout: not run"

// The contents of a sample: column names with their types, then the rows; nothing for Null.
struct JetContents {
    std::vector<std::string> columns;
    std::vector<std::string> types;
    std::vector<std::vector<std::optional<std::string>>> rows;
};

inline std::optional<std::string> unescaped(const std::string& field) {
    if (field == "\\N")
        return std::nullopt;
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\' || i + 1 == field.size()) {
            text += field[i];
            continue;
        }
        const char c = field[++i];
        text += c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    return text;
}

inline std::vector<std::string> fields_of(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t from = 0;
    for (auto tab = line.find('\t'); tab != std::string::npos; tab = line.find('\t', from)) {
        fields.push_back(line.substr(from, tab - from));
        from = tab + 1;
    }
    fields.push_back(line.substr(from));
    return fields;
}

inline JetContents jet_contents(const std::string& name) {
    JetContents contents;
    std::ifstream file(jet_sample(name));
    std::string line;
    std::getline(file, line);
    for (const std::string& head : fields_of(line)) {
        const auto colon = head.rfind(':');
        contents.columns.push_back(head.substr(0, colon));
        contents.types.push_back(head.substr(colon + 1));
    }
    while (std::getline(file, line)) {
        std::vector<std::optional<std::string>> row;
        for (const std::string& field : fields_of(line))
            row.push_back(unescaped(field));
        contents.rows.push_back(std::move(row));
    }
    return contents;
}

} // namespace kestrune
