#pragma once

#include "library/library_backup.h"
#include "library/product_profile.h"
#include "library/site_library.h"
#include "platform/database.h"
#include "platform/files.h"
#include "platform/user_interface.h"
#include "sessions/record_files.h"

#include <memory>
#include <string>
#include <vector>

namespace kestrune {

class BrowserWindow;

// The running program: what its windows share, and the windows themselves.
class Program {
public:
    // folder is the program's own: the library lies in it and the session folder below it. The services
    // outlive the program.
    Program(UserInterface& ui, Files& files, Database& database, std::string folder);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    Program(Program&&) = delete;
    Program& operator=(Program&&) = delete;

    // Loads the first window and shows it.
    BrowserWindow& start();
    // Makes a window, loads it and leaves it hidden; the windows below it are hidden, too. Throws, and leaves
    // everything as it was, when it cannot be loaded.
    BrowserWindow& new_window(BrowserWindow* opener);
    // The windows lie on each other in the order in which they were opened, and only the uppermost is seen:
    // also when one window has opened several, or one that is hidden opens another.
    void hide_all_but(const BrowserWindow& window);
    void show_uppermost();
    // A window has unloaded: it is destroyed once no handler of it is on the stack.
    void destroy_later(const BrowserWindow& window);
    // Every window goes, and the program with them.
    void end();

    [[nodiscard]] UserInterface& ui() const { return ui_; }
    [[nodiscard]] Files& files() const { return files_; }
    [[nodiscard]] SiteLibrary& library() { return library_; }
    [[nodiscard]] RecordFiles& record_files() { return record_files_; }
    // The product profile, one for all windows.
    [[nodiscard]] FrmPreference& frmPreference() { return frmPreference_; }
    [[nodiscard]] const std::string& folder() const { return folder_; }
    [[nodiscard]] const std::vector<std::unique_ptr<BrowserWindow>>& windows() const { return windows_; }

private:
    UserInterface& ui_;
    Files& files_;
    std::string folder_;
    LibraryBackup backup_;
    SiteLibrary library_;
    RecordFiles record_files_;
    FrmPreference frmPreference_;
    std::vector<std::unique_ptr<BrowserWindow>> windows_;
};

} // namespace kestrune
