#pragma once

#include "platform/disk/disk_files.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/user_interface.h"
#include "shell/program.h"
#include "tools/practice/practice_server.h"
#include "tools/soak/process_memory.h"
#include "tools/tour/driver.h"
#include "tools/tour/watched_interface.h"

#include <QPointer>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class QDialog;
class QWebEngineView;

namespace kestrune::soak {

// What is alive at a moment.
struct Alive {
    std::size_t windows = 0; // of the program
    std::size_t pages = 0;   // of the engine
    std::size_t profiles = 0;
    std::size_t widgets = 0;
    Usage memory;
};

// What happened up to a moment.
struct Counts {
    std::size_t visits = 0;
    std::size_t questions = 0; // of every kind, answered
    std::size_t pop_ups = 0;   // opened, and gone again
    std::size_t crashes = 0;   // page processes killed, and gone on after
    std::vector<std::string> problems;
};

// Plays site after site through the real window, for hours if need be: sites that open windows, talk in
// dialogs, never end or lose their process among them.
class Soak {
public:
    // The server serves practice/soak; library and session are made in `program_folder`, which exists.
    Soak(UserInterface& ui, practice::PracticeServer& server, const std::filesystem::path& program_folder,
         std::size_t visits);
    ~Soak();
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;
    Soak(Soak&&) = delete;
    Soak& operator=(Soak&&) = delete;

    // Called after each visit.
    std::function<void(const Counts&)> visited;

    // A visit that does not come to its end is a problem of the result. Throws DriveError when the window
    // cannot be driven on.
    const Counts& play();
    [[nodiscard]] Alive alive() const;

private:
    struct Kind;
    static const std::vector<Kind>& kinds();

    void make_library(std::size_t visits);
    void keep_record();
    void visit(const Kind& kind);
    void await_end(const Kind& kind);
    void note(Browser& made);
    void answer_page();
    void close_pop_up();
    void kill_page();
    void answer(QDialog& dialog);
    [[nodiscard]] QWebEngineView& view() const;
    [[nodiscard]] std::string address(const Kind& kind, const std::string& path) const;

    practice::PracticeServer& server_;
    drive::Driver driver_;
    // Of the pages and profiles made so far, those that have not ended.
    std::vector<QPointer<QObject>> pages_;
    std::vector<QPointer<QObject>> profiles_;
    drive::WatchedInterface ui_;
    DiskFiles files_;
    SqliteDatabase database_;
    std::string folder_;
    Program program_;
    BrowserWindow* window_ = nullptr;
    std::size_t wanted_ = 0;
    std::size_t questions_of_visit_ = 0;
    Counts counts_;
};

} // namespace kestrune::soak
