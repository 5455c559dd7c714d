#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace kestrune {

// Where the tool runs.
struct ToolSurroundings {
    std::ostream& out;
    std::ostream& err;
    std::string program_folder;
    std::string date;                // today, as a reader writes it
    std::function<bool()> cancelled; // asked between two steps of long work
    bool show_progress = false;      // on err, on a line that is written over
};

enum class ToolExit : int { Done = 0, LookAtIt = 1, WrongUsage = 2, NotDone = 3 };

// Does what the arguments (those after the program's name) ask for. Never throws.
ToolExit run_library_tool(const std::vector<std::string>& arguments, const ToolSurroundings& here);

} // namespace kestrune
