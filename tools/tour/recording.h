#pragma once

#include "platform/disk/disk_files.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/user_interface.h"
#include "shell/program.h"
#include "tools/practice/practice_server.h"
#include "tools/tour/driver.h"
#include "tools/tour/watched_interface.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace kestrune {
class BrowserWindow;
class QtBrowser;
} // namespace kestrune

namespace kestrune::tour {

// One site that was submitted by hand and played back.
struct Replayed {
    const practice::Site* site = nullptr;
    std::vector<practice::Request> by_hand;
    std::vector<practice::Request> replayed;
    std::vector<std::string> problems;

    // Whether the server received something, and the same both times.
    [[nodiscard]] bool same() const;
};

// Whether two submissions are the same to the server: method, target, body, type and referrer, byte for byte;
// the boundary that the engine makes up anew for each multipart body is left out of the comparison.
bool same_request(const practice::Request& a, const practice::Request& b);

// Submits the forms of the practice sites by mouse and keyboard while the program records, keeps the records,
// plays the sites back, and notes what the server received each time.
class RecordingTour {
public:
    // The server is running; library and session are made in `program_folder`, which exists.
    RecordingTour(UserInterface& ui, practice::PracticeServer& server,
                  const std::filesystem::path& program_folder);
    ~RecordingTour();
    RecordingTour(const RecordingTour&) = delete;
    RecordingTour& operator=(const RecordingTour&) = delete;
    RecordingTour(RecordingTour&&) = delete;
    RecordingTour& operator=(RecordingTour&&) = delete;

    void set_patience(std::chrono::milliseconds time) { driver_.set_patience(time); }

    std::function<void(const Replayed&)> visited; // called when a site is done

    // Every site with steps, in the order of their names.
    const std::vector<Replayed>& play();

private:
    void record(Replayed& visit);
    void keep(std::size_t records);
    void replay(Replayed& visit);
    void open(const practice::Site& site);
    void do_by_hand(const practice::HandStep& step);
    void answer(QDialog& dialog);
    void wait_until_painted();
    [[nodiscard]] std::vector<practice::Request> submissions() const;

    practice::PracticeServer& server_;
    drive::Driver driver_;
    drive::WatchedInterface ui_;
    DiskFiles files_;
    SqliteDatabase database_;
    Program program_;
    BrowserWindow* window_ = nullptr;
    QtBrowser* browser_ = nullptr;
    std::vector<Replayed> visits_;
};

// The table of what was replayed the same and what was not, in Markdown.
std::string fidelity_table(const std::vector<Replayed>& visits);

} // namespace kestrune::tour
