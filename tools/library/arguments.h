#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// What was asked of the library tool.
struct LibraryArguments {
    std::string command;
    std::optional<std::string> operand; // the file that the command reads or writes
    std::string folder;                 // the library's; empty for the program's own
    bool dry_run = false;
    bool update = false;
    bool help = false;
};

// A way of calling the tool that makes no sense; says why.
struct WrongUsage {
    std::string why;
};

// `arguments` are those after the program's name.
std::optional<WrongUsage> read_arguments(const std::vector<std::string>& arguments, LibraryArguments& read);

std::string_view library_tool_help();

} // namespace kestrune
