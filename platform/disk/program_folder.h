#pragma once

#include <string>

namespace kestrune {

// Where a copy of the program keeps what belongs to its user.
struct ProgramFolders {
    // Holds the library, the session folder and the backups.
    std::string folder;
    // The library that came with an installed copy, for all users of the machine; empty when there is none,
    // and for a copy that runs from a folder of its own.
    std::string shared_library;
};

// The folder of the executable when a library lies in it, so that a copy of the program can be carried
// around. A program that was installed has a library in share/kestrune beside the folder of the executable;
// what belongs to the user then lies in kestrune in the user's data folder. Without either it is the folder
// of the executable if it can be written to, else the user's. data_home is empty when the user has no such
// folder.
ProgramFolders find_program_folders(const std::string& executable_folder, const std::string& data_home);
// The same for the running program and its user.
ProgramFolders find_program_folders();

// The user's data folder; empty when it cannot be told.
std::string user_data_folder();

// Copies the shared library into the user's folder, which it creates, unless a library is there. Afterwards
// the user's library goes its own way. False when there is none and none could be made.
bool seed_library(const ProgramFolders& folders);

// The folder of the running program's user, for programs that only look.
[[nodiscard]] std::string program_folder();

} // namespace kestrune
