#pragma once

#include "platform/disk/disk_files.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/user_interface.h"
#include "shell/program.h"
#include "tools/practice/practice_server.h"
#include "tools/tour/driver.h"
#include "tools/tour/watched_interface.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {
class BrowserWindow;
class QtBrowser;
} // namespace kestrune

namespace kestrune::tour {

struct Picture {
    std::string file; // in the output folder
    std::string caption;
};

// One site opened once.
struct Visit {
    const practice::Site* site = nullptr;
    std::size_t number = 1; // 1 for the first time this site comes
    std::vector<std::string> problems;
    std::vector<std::string> deeds; // what happened, in words
    std::vector<Picture> pictures;

    [[nodiscard]] std::string mark() const {
        const auto& marks = site->expected.marks;
        return marks.at(std::min(number, marks.size()) - 1);
    }
};

// Plays the practice sites through a real window, the way a user does, and compares with what their files
// say.
class Tour {
public:
    // The server is running; library and session are made in `program_folder`, pictures go to `output`. Both
    // exist.
    Tour(UserInterface& ui, practice::PracticeServer& server, const std::filesystem::path& program_folder,
         std::filesystem::path output);
    ~Tour();
    Tour(const Tour&) = delete;
    Tour& operator=(const Tour&) = delete;
    Tour(Tour&&) = delete;
    Tour& operator=(Tour&&) = delete;

    // How long a site may take to do what it is to do.
    void set_patience(std::chrono::milliseconds time) { driver_.set_patience(time); }

    // Called when a visit is over: its outcome is marked and the next site is opening.
    std::function<void(const Visit&)> visited;

    // Every site that is not left out, in the order of the queue, those with PAD first. Throws DriveError
    // when the window itself cannot be driven on.
    const std::vector<Visit>& play();

private:
    using Sites = std::vector<const practice::Site*>;

    // The queue (tour.cpp)
    void make_library();
    void select_categories();
    void play_list(bool with_pad);
    [[nodiscard]] Sites queue(bool with_pad) const;
    void open_next(const practice::Site& site, std::size_t number, std::size_t left, bool with_pad);
    void finish(bool with_pad);
    // Presses "Submit"; the visit shown, if any, is marked.
    void press_submit();

    // One visit (visit.cpp)
    void let_happen(Visit& visit);
    [[nodiscard]] bool has_settled(const Visit& visit) const;
    void check_visit(Visit& visit);
    void check_requests(Visit& visit);
    void check_status_texts(Visit& visit);
    void check_marked(Visit& visit);
    void check_list_entry(Visit& visit, const std::string& status);
    void take_picture(Visit& visit, std::string_view what, const std::string& caption);
    void wait_until_painted();

    // Dialogs (dialogs.cpp)
    void answer(QDialog& dialog);
    void answer_question(QDialog& dialog, Visit& visit);
    void hold_answer(const Visit& visit);
    void mark_outcome(QDialog& dialog);

    [[nodiscard]] Visit* current() { return visits_.empty() ? nullptr : &visits_.back(); }
    [[nodiscard]] std::string end_address(const practice::Site& site) const;

    practice::PracticeServer& server_;
    std::filesystem::path output_;
    std::vector<std::pair<const practice::Site*, int>> keys_; // padkey of each site
    drive::Driver driver_;
    drive::WatchedInterface ui_;
    DiskFiles files_;
    SqliteDatabase database_;
    std::string library_;
    Program program_;
    BrowserWindow* window_ = nullptr;
    QtBrowser* browser_ = nullptr;

    std::vector<Visit> visits_;
    std::size_t questions_asked_ = 0; // of the current visit
    bool load_ended_ = false;         // the engine has given up on or ended a load since the site was opened
    bool marking_ = false;            // "Submit" is pressed; the outcome is asked next
    bool already_marked_ = false;     // the outcome asked about is in the library
    bool nothing_left_ = false;       // the window said that no site was found
    std::vector<std::string> statuses_; // texts of status panel 1 since "Submit" was pressed
};

} // namespace kestrune::tour
