#include "tools/soak/soak.h"

#include "platform/qt/page_bar.h"
#include "platform/qt/qt_browser.h"
#include "platform/sqlite/site_schema.h"
#include "sessions/record_files.h"
#include "shell/browser_window.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineView>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <string_view>

namespace kestrune::soak {
namespace {

// Long enough for what a page loads from this machine, short enough not to wait for what never comes.
constexpr std::chrono::milliseconds straggler_time{300};

// Every third pop-up is blocked.
constexpr std::size_t blocked_pop_up = 3;

// Property of a page's bar whose button is about to be pressed.
constexpr const char* answered = "kestruneSoakAnswered";

QtBrowser& engine_behind(Browser& browser) {
    auto* const engine = dynamic_cast<QtBrowser*>(&browser);
    if (engine == nullptr)
        throw drive::DriveError("the window's browser is not the real one");
    return *engine;
}

QPushButton* button_of(const QDialog& dialog, const char* name) {
    return dialog.findChild<QPushButton*>(QString::fromLatin1(name));
}

} // namespace

struct Soak::Kind {
    enum class Event : std::uint8_t { nothing, pop_up, pop_up_closes, page_dies };
    std::string site;
    std::string end = "/submit.html"; // path of the page on which a visit ends
    std::size_t questions = 1;        // at least so many before it has ended
    Event event = Event::nothing;
};

const std::vector<Soak::Kind>& Soak::kinds() {
    using Event = Kind::Event;
    static const std::vector<Kind> all{
        {.site = "plain"},
        {.site = "frames"},
        {.site = "large"},
        {.site = "pop-up", .questions = 2, .event = Event::pop_up},
        {.site = "pop-up-closes", .questions = 2, .event = Event::pop_up_closes},
        {.site = "dialogs", .questions = 4},
        {.site = "process-dies", .event = Event::page_dies},
        {.site = "never-ends"},
        {.site = "redirects", .end = "/entry.html"},
        {.site = "recorded", .end = "/thanks.html", .questions = 2},
    };
    return all;
}

Soak::Soak(UserInterface& ui, practice::PracticeServer& server, const std::filesystem::path& program_folder,
           std::size_t visits)
    : server_(server), ui_(ui, [this](Browser& made) { note(made); }), folder_(program_folder.string()),
      program_(ui_, files_, database_, folder_), wanted_(visits) {
    make_library(visits);
    keep_record();
    driver_.answer_with([this](QDialog& dialog) { answer(dialog); });
}

Soak::~Soak() = default;

std::string Soak::address(const Kind& kind, const std::string& path) const {
    return server_.origin(kind.site) + path;
}

void Soak::make_library(std::size_t visits) {
    std::vector<SiteRow> rows;
    for (std::size_t i = 0; i < visits; ++i) {
        const Kind& kind = kinds().at(i % kinds().size());
        SiteRow row;
        row.padkey = static_cast<std::int32_t>(i) + 1;
        row.url = address(kind, "/?visit=" + std::to_string(i));
        row.description = server_.site(kind.site).description + " " + std::to_string(i);
        row.softtype = "1=general";
        row.pad = "PAD";
        row.referral = static_cast<std::int64_t>(visits - i);
        rows.push_back(std::move(row));
    }
    create_site_library(files_.path(folder_, site_library_name), rows);
}

void Soak::keep_record() {
    RecordFiles records(files_, folder_);
    records.prepare();
    const std::string form = server_.origin("recorded") + "/submit.html";
    records.write({.Type = std::string(type_form),
                   .Session = "Remembered Shelf",
                   .Url = form,
                   .Action = server_.origin("recorded") + "/thanks.html",
                   .Postdata = "title=Kite&version=2.1&description=Flies",
                   .Header = "",
                   .Frame = ""});
}

const Counts& Soak::play() {
    window_ = &program_.start();
    driver_.wait("the window to stand",
                 [this] { return !window_->busy() && window_->strCurDocUrl == "about:blank"; });
    for (std::size_t i = 0; i < wanted_; ++i) {
        visit(kinds().at(i % kinds().size()));
        if (visited)
            visited(counts_);
    }
    return counts_;
}

void Soak::note(Browser& made) {
    QtBrowser& engine = engine_behind(made);
    engine.set_straggler_time(straggler_time);
    pages_.emplace_back(engine.view().page());
    if (std::ranges::find(profiles_, engine.view().page()->profile()) == profiles_.end())
        profiles_.emplace_back(engine.view().page()->profile());
}

void Soak::visit(const Kind& kind) {
    ++counts_.visits;
    questions_of_visit_ = 0;
    const auto problem = [&](std::string_view what) {
        counts_.problems.push_back("visit " + std::to_string(counts_.visits) + ", " + kind.site + ": " +
                                   std::string(what));
    };
    try {
        server_.log().clear(); // what it keeps is not the program's
        driver_.press("cmdPlayback");
        await_end(kind);
        if (kind.event == Kind::Event::page_dies)
            kill_page();
    } catch (const drive::DriveError& error) {
        problem(std::string(error.what()) + "; it is at " + window_->strCurDocUrl + ", " + driver_.status(1) +
                ", " + std::to_string(questions_of_visit_) + " questions");
    }
    driver_.wait("the first window to be alone again", [this] { return program_.windows().size() == 1; });
    // A user's program comes back to its main loop between two visits, and deletes there what it has put off.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void Soak::await_end(const Kind& kind) {
    const std::string end = address(kind, kind.end);
    const bool blocked =
        kind.event != Kind::Event::nothing && (counts_.visits / kinds().size()) % blocked_pop_up == 0;
    const bool opens =
        !blocked && (kind.event == Kind::Event::pop_up || kind.event == Kind::Event::pop_up_closes);
    if (opens) {
        const std::size_t opened = counts_.pop_ups;
        driver_.wait("the pop-up", [&] { return program_.windows().size() > 1 || counts_.pop_ups > opened; });
        if (kind.event == Kind::Event::pop_up)
            close_pop_up();
        driver_.wait("the pop-up to be gone", [this] { return program_.windows().size() == 1; });
        ++counts_.pop_ups;
    }
    driver_.wait("the end at " + end, [&] {
        answer_page();
        return !window_->busy() && window_->strCurDocUrl == end && questions_of_visit_ >= kind.questions;
    });
}

// What a page asks stands in a bar above it, and the page waits for the answer.
void Soak::answer_page() {
    for (QFrame* const frame : driver_.window().findChildren<QFrame*>()) {
        auto* const bar = dynamic_cast<PageBar*>(frame);
        QPushButton* const button =
            bar == nullptr ? nullptr : bar->findChild<QPushButton*>(QStringLiteral("OK"));
        // A user too needs a moment before a bar takes a press.
        if (button == nullptr || !bar->isVisible() || !bar->takes_presses() ||
            bar->property(answered).toBool())
            continue;
        bar->setProperty(answered, true);
        ++counts_.questions;
        ++questions_of_visit_;
        // Looked for from within the page's own wait, which the answer ends.
        QTimer::singleShot(0, button, &QPushButton::click);
    }
}

void Soak::close_pop_up() {
    driver_.wait("the pop-up's page", [this] {
        const auto& windows = program_.windows();
        return windows.size() == 2 && !windows.back()->busy() &&
               windows.back()->strCurDocUrl.ends_with("/offer.html");
    });
    driver_.window().close();
}

void Soak::kill_page() {
    QWebEnginePage* const page = view().page();
    bool ended = false;
    const auto watch = std::make_unique<QObject>();
    QObject::connect(page, &QWebEnginePage::renderProcessTerminated, watch.get(), [&ended] { ended = true; });
    ::kill(static_cast<pid_t>(page->renderProcessPid()), SIGKILL);
    driver_.wait("the page's process to end", [&ended] { return ended; });
    ++counts_.crashes;
}

void Soak::answer(QDialog& dialog) {
    if (dialog.objectName() == QLatin1String("frmNote")) {
        driver_.press(dialog, "optSubmit(0)");
        driver_.press(dialog, "cmdSave");
        return;
    }
    ++counts_.questions;
    ++questions_of_visit_;
    const bool pop_up =
        dialog.objectName() == QLatin1String("MessageBox") &&
        drive::Driver::text(dialog, "Text").find("do you want to block it") != std::string::npos;
    if (pop_up) {
        driver_.answer(dialog, (counts_.visits / kinds().size()) % blocked_pop_up == 0 ? "Yes" : "No");
        return;
    }
    for (const char* name : {"Yes", "OK"}) {
        if (QPushButton* const button = button_of(dialog, name)) {
            button->click();
            return;
        }
    }
    throw drive::DriveError("nobody expected the dialog \"" + dialog.windowTitle().toStdString() + "\"");
}

QWebEngineView& Soak::view() const { return engine_behind(window_->browser()).view(); }

Alive Soak::alive() const {
    Alive now;
    now.windows = program_.windows().size();
    const auto alive = [](const std::vector<QPointer<QObject>>& all) {
        return static_cast<std::size_t>(
            std::ranges::count_if(all, [](const auto& object) { return !object.isNull(); }));
    };
    now.pages = alive(pages_);
    now.profiles = alive(profiles_);
    now.widgets = static_cast<std::size_t>(QApplication::allWidgets().size());
    now.memory = measure();
    return now;
}

} // namespace kestrune::soak
