#pragma once

#include "platform/disk/program_folder.h"
#include "platform/jet/jet_conversion.h"

#include <functional>
#include <string>

namespace kestrune {

// What happens to the databases before the program opens them: an installed copy's user gets a library, files
// made with Access are converted, and the sites that a later version brings are added. Nothing of it is shown
// when it fails; the program then runs on what is there.
class LibraryStart {
public:
    // To be made before the program has threads: Access files are converted by copies of the process.
    explicit LibraryStart(ProgramFolders folders = find_program_folders());
    LibraryStart(ProgramFolders folders, const CreateTable& create);

    [[nodiscard]] const std::string& folder() const { return folders_.folder; }
    // False when `finish` will return at once, as it nearly always does.
    [[nodiscard]] bool converting() const { return conversions_.running(); }
    // Waits for the conversions. progress is called about ten times a second while they run, with the rows of
    // all files; when it returns false they are given up, the databases are as they were, and nothing else is
    // done. Returns false then.
    bool finish(const std::function<bool(JetProgress)>& progress = {});

private:
    void add_new_sites();

    ProgramFolders folders_;
    JetConversions conversions_;
};

} // namespace kestrune
