#include "tools/tour/recording.h"

#include "platform/qt/qt_browser.h"
#include "platform/sqlite/site_schema.h"
#include "shell/browser_window.h"
#include "tools/tour/hand.h"
#include "tools/tour/painted.h"

#include <QWebEnginePage>
#include <QWebEngineView>

#include <algorithm>
#include <array>
#include <sstream>

namespace kestrune::tour {
namespace {

using practice::HandStep;
using practice::Request;
using practice::Site;

constexpr std::string_view record_question =
    "A temporary record is created, do you want to view/edit it now?";
constexpr std::string_view fill_question = "Do you want to auto fill-in this form";
constexpr std::string_view submission_path = "/take";

// The text without the boundary that its Content-Type names.
std::string without_boundary(std::string text, const std::string& content_type) {
    const auto at = content_type.find("boundary=");
    if (at == std::string::npos)
        return text;
    const std::string boundary = content_type.substr(at + 9);
    for (auto found = text.find(boundary); found != std::string::npos; found = text.find(boundary))
        text.erase(found, boundary.size());
    return text;
}

} // namespace

bool same_request(const Request& a, const Request& b) {
    const std::string a_type = a.header("Content-Type");
    const std::string b_type = b.header("Content-Type");
    return a.site == b.site && a.method == b.method && a.target == b.target &&
           without_boundary(a_type, a_type) == without_boundary(b_type, b_type) &&
           a.header("Referer") == b.header("Referer") &&
           without_boundary(a.body, a_type) == without_boundary(b.body, b_type);
}

bool Replayed::same() const {
    if (by_hand.empty())
        return false;
    return std::ranges::equal(by_hand, replayed, same_request);
}

RecordingTour::RecordingTour(UserInterface& ui, practice::PracticeServer& server,
                             const std::filesystem::path& program_folder)
    : server_(server), ui_(ui, [this](Browser& made) { browser_ = dynamic_cast<QtBrowser*>(&made); }),
      program_(ui_, files_, database_, program_folder.string()) {
    create_site_library((program_folder / std::string(site_library_name)).string(), {});
    server_.log().set_listener([](const Request& /*request*/) { drive::wake(); });
    driver_.answer_with([this](QDialog& dialog) { answer(dialog); });
}

RecordingTour::~RecordingTour() { server_.log().set_listener(nullptr); }

const std::vector<Replayed>& RecordingTour::play() {
    window_ = &program_.start();
    driver_.wait("the blank page",
                 [this] { return !window_->busy() && window_->strCurDocUrl == "about:blank"; });
    driver_.choose("mnuAutoHide"); // the lists stay in view
    driver_.choose("mnuPromptFill");
    for (const Site& site : server_.sites()) {
        if (site.recording.steps.empty())
            continue;
        Replayed& visit = visits_.emplace_back(Replayed{&site, {}, {}, {}});
        try {
            record(visit);
            replay(visit);
        } catch (const drive::DriveError& error) {
            visit.problems.emplace_back(error.what());
        }
        if (window_->mnuAutoRecord.Checked.get())
            driver_.press("cmdRecord");
        if (visit.problems.empty() && visit.same() != site.recording.differs.empty())
            visit.problems.emplace_back(visit.same()
                                            ? "the requests are the same though its file says why not"
                                            : "the requests differ");
        if (visited)
            visited(visit);
    }
    return visits_;
}

void RecordingTour::open(const Site& site) {
    server_.log().clear();
    ui_.forget_reports();
    window_->OpenSiteForPlayback(server_.home(site.name), site.description);
}

void RecordingTour::record(Replayed& visit) {
    const std::vector<HandStep>& steps = visit.site->recording.steps;
    driver_.press("cmdRecord");
    open(*visit.site);
    const std::size_t before = window_->ListView1.size();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const std::string page = server_.address(visit.site->name, steps[i].page);
        driver_.wait("the form at " + page, [&] {
            return ui_.completed(page) && window_->strCurDocUrl == page && !window_->busy();
        });
        if (const std::string& title = visit.site->recording.answer_at_title; !title.empty())
            driver_.wait("the title " + title,
                         [&] { return browser_->view().title().toStdString() == title; });
        wait_until_painted();
        do_by_hand(steps[i]);
        driver_.wait("the submission by hand of " + page, [&] { return submissions().size() == i + 1; });
        driver_.wait("the record of " + page,
                     [&] { return window_->ListView1.size() == before + i + 1 && !window_->busy(); });
    }
    visit.by_hand = submissions();
    driver_.press("cmdRecord");
    keep(steps.size());
}

void RecordingTour::do_by_hand(const HandStep& step) {
    browser_->view().setFocus();
    do_deeds(*browser_->view().focusProxy(), step.deeds);
}

void RecordingTour::keep(std::size_t records) {
    window_->SSTab1.set_tab(1);
    for (std::size_t i = 0; i < records; ++i) {
        window_->ListView1.select(window_->ListView1.item(0).Key);
        driver_.press("cmdSave");
    }
}

void RecordingTour::replay(Replayed& visit) {
    const practice::Recording& recording = visit.site->recording;
    const std::size_t expected = recording.replayed.value_or(recording.steps.size());
    const bool asks = !recording.answer_at_title.empty();
    if (asks)
        driver_.choose("mnuPromptFill");
    open(*visit.site);
    const std::string home = server_.home(visit.site->name);
    try {
        driver_.wait("the page to be played back", [&] { return ui_.completed(home) && !window_->busy(); });
        driver_.wait("the submissions of the playback", [&] { return submissions().size() >= expected; });
        driver_.wait("the page to come to rest",
                     [&] { return !window_->busy() && !window_->Timer1.Enabled.get(); });
    } catch (const drive::DriveError& error) {
        visit.problems.emplace_back(error.what());
    }
    if (asks)
        driver_.choose("mnuPromptFill");
    visit.replayed = submissions();
}

void RecordingTour::answer(QDialog& dialog) {
    const std::string text = drive::Driver::text(dialog, "Text");
    if (text == record_question) {
        driver_.answer(dialog, "No");
        return;
    }
    const std::string& title = visits_.back().site->recording.answer_at_title;
    if (text != fill_question || title.empty())
        throw drive::DriveError("nobody expected the question: " + text);
    drive::wait_for("the title " + title, [&] { return browser_->view().title().toStdString() == title; });
    driver_.answer(dialog, "OK");
}

std::vector<Request> RecordingTour::submissions() const {
    std::vector<Request> found = server_.log().all();
    std::erase_if(found, [](const Request& one) {
        return !one.path.starts_with(submission_path) ||
               (one.method == "GET" && one.target.find('?') == std::string::npos);
    });
    return found;
}

// A page of frames has nothing to be read itself.
void RecordingTour::wait_until_painted() {
    drive::Painting painting(*browser_->view().page());
    driver_.wait("the page to be painted",
                 [&] { return painting.frames() >= drive::Painting::without_words; });
}

std::string fidelity_table(const std::vector<Replayed>& visits) {
    std::ostringstream out;
    const auto same = std::ranges::count_if(visits, [](const Replayed& visit) { return visit.same(); });
    out << "# Played back against sent by hand\n\n"
           "Each form was filled and submitted by mouse and keyboard while the program recorded, its record "
           "was "
           "kept, and\nthe site was played back. Compared is what the server received: method, address, "
           "body, "
           "`Content-Type` and `Referer`,\nbyte for byte; only the boundary of a multipart body is made up "
           "anew "
           "each time. Written by\n`kestrune-tour --fidelity docs/fidelity.md`.\n\n"
        << same << " of " << visits.size() << " sites sent the same both times.\n\n"
        << "| practice site | what it is | sent by hand | played back | the same | why not |\n"
           "|---|---|---|---|---|---|\n";
    for (const Replayed& visit : visits)
        out << "| " << visit.site->name << " | " << visit.site->description << " | " << visit.by_hand.size()
            << " | " << visit.replayed.size() << " | " << (visit.same() ? "yes" : "no") << " | "
            << (visit.same() ? "" : visit.site->recording.differs) << " |\n";
    return out.str();
}

} // namespace kestrune::tour
