#pragma once

#include "platform/disk/disk_files.h"
#include "platform/page.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/user_interface.h"
#include "shell/program.h"
#include "tools/matching/judgement.h"
#include "tools/practice/practice_server.h"
#include "tools/tour/driver.h"
#include "tools/tour/watched_interface.h"

#include <filesystem>
#include <map>
#include <string>

namespace kestrune {
class BrowserWindow;
class QtBrowser;
} // namespace kestrune

namespace kestrune::matching {

// Fills the practice forms in the program's real window: the right-click menu is asked for on a field, and
// "Multi-input" chosen in it with the mouse.
class FormFiller {
public:
    // The server runs with the practice forms. `program_folder` exists; the program's files are made there,
    // the profile as a copy of `profile`. Throws DriveError when the window does not come up.
    FormFiller(UserInterface& ui, practice::PracticeServer& server,
               const std::filesystem::path& program_folder, const std::filesystem::path& profile);

    // Opens the page, chooses "Multi-input" once and compares every field of its forms with the data. Throws
    // DriveError when the form cannot be filled, std::runtime_error when the data speaks of other fields.
    PageResult fill(const PageData& page);

    // As the program has read it from its file.
    [[nodiscard]] const ProfileTexts& profile() const { return profile_; }

private:
    [[nodiscard]] std::string address(const PageData& page, const FormData& form) const;
    [[nodiscard]] PageDocument image();
    [[nodiscard]] std::map<std::string, std::string> decided_by() const;
    void open(const PageData& page);
    void choose_multi_input(const PageData& page);
    void put_focus(const ElementRef& element);

    practice::PracticeServer& server_;
    drive::Driver driver_;
    drive::WatchedInterface ui_;
    DiskFiles files_;
    SqliteDatabase database_;
    Program program_;
    BrowserWindow* window_ = nullptr;
    QtBrowser* browser_ = nullptr;
    ProfileTexts profile_;
    DocumentId page_; // the top document that is showing
};

} // namespace kestrune::matching
