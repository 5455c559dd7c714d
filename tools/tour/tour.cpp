#include "tools/tour/tour.h"

#include "platform/qt/qt_browser.h"
#include "platform/sqlite/site_schema.h"
#include "shell/browser_window.h"

#include <QWebEngineView>

#include <algorithm>
#include <array>
#include <set>

namespace kestrune::tour {
namespace {

using practice::Site;

// Short, because the tour has one page whose straggler never ends; long enough for every picture that does.
constexpr std::chrono::milliseconds straggler_time{1500};

struct Category {
    std::string_view softtype;
    std::string_view menu_item;
};
constexpr std::array<Category, 6> categories{{{"1=general", "mnuSelectGeneral"},
                                              {"2=game", "mnuSelectGame"},
                                              {"3=developer", "mnuSelectDeveloper"},
                                              {"4=business", "mnuSelectBusiness"},
                                              {"5=freeware", "mnuSelectFreeware"},
                                              {"9=special", "mnuSelectSpecial"}}};

QtBrowser& engine_behind(Browser& browser) {
    auto* const engine = dynamic_cast<QtBrowser*>(&browser);
    if (engine == nullptr)
        throw drive::DriveError("the window's browser is not the real one");
    return *engine;
}

} // namespace

Tour::Tour(UserInterface& ui, practice::PracticeServer& server, const std::filesystem::path& program_folder,
           std::filesystem::path output)
    : server_(server), output_(std::move(output)), ui_(ui,
                                                       [this](Browser& made) {
                                                           browser_ = &engine_behind(made);
                                                           browser_->set_straggler_time(straggler_time);
                                                       }),
      library_((program_folder / std::string(site_library_name)).string()),
      program_(ui_, files_, database_, program_folder.string()) {
    make_library();
    server_.log().set_listener([](const practice::Request& /*request*/) { drive::wake(); });
    driver_.answer_with([this](QDialog& dialog) { answer(dialog); });
}

Tour::~Tour() { server_.log().set_listener(nullptr); }

void Tour::make_library() {
    std::vector<SiteRow> rows;
    for (const Site& site : server_.sites()) {
        if (!site.left_out.empty() || !site.recording.steps.empty())
            continue;
        SiteRow row;
        row.padkey = static_cast<std::int32_t>(rows.size()) + 1;
        row.url = server_.home(site.name);
        row.description = site.description;
        row.softtype = site.softtype;
        row.pad = site.pad;
        row.referral = site.referral;
        keys_.emplace_back(&site, row.padkey);
        rows.push_back(std::move(row));
    }
    create_site_library(library_, rows);
}

const std::vector<Visit>& Tour::play() {
    window_ = &program_.start();
    StatusBar& bar = window_->StatusBar1;
    bar.Changed = [this, shown = bar.Changed] {
        shown();
        const std::string text = driver_.status(1);
        if (statuses_.empty() || statuses_.back() != text)
            statuses_.push_back(text);
    };
    QObject::connect(&browser_->view(), &QWebEngineView::loadFinished, &driver_,
                     [this] { load_ended_ = true; });
    driver_.wait("the window to stand", [this] { return !window_->busy() && load_ended_; });
    select_categories();
    play_list(true);
    driver_.choose("mnuNoPAD");
    play_list(false);
    return visits_;
}

void Tour::select_categories() {
    std::set<std::string, std::less<>> used;
    for (const auto& [site, key] : keys_)
        used.insert(site->softtype);
    for (const Category& category : categories) {
        // The first one is selected at the start.
        if (category.softtype != "1=general" && used.contains(category.softtype))
            driver_.choose(category.menu_item);
    }
}

Tour::Sites Tour::queue(bool with_pad) const {
    Sites sites;
    for (const auto& [site, key] : keys_) {
        if ((site->pad == "PAD") == with_pad)
            sites.push_back(site);
    }
    std::ranges::sort(sites, std::greater<>(), &Site::referral);
    return sites;
}

void Tour::play_list(bool with_pad) {
    const Sites sites = queue(with_pad);
    std::size_t left = sites.size();
    for (const Site* site : sites) {
        for (std::size_t number = 1; number <= site->expected.marks.size(); ++number)
            open_next(*site, number, left, with_pad);
        --left;
    }
    finish(with_pad);
}

void Tour::open_next(const Site& site, std::size_t number, std::size_t left, bool with_pad) {
    press_submit();
    Visit& visit = visits_.emplace_back(Visit{&site, number, {}, {}, {}});
    questions_asked_ = 0;
    const auto wanted = [&](std::string_view what, const std::string& shown, const std::string& expected) {
        if (shown != expected)
            visit.problems.push_back(std::string(what) + " shows \"" + shown + "\", not \"" + expected +
                                     "\"");
    };
    if (nothing_left_)
        visit.problems.emplace_back("the window said that there is no site left");
    wanted("the address row", driver_.text("txtUrl"), server_.home(site.name));
    wanted("the description row", driver_.text("txtDesc"), site.description);
    wanted("status panel 3", driver_.status(3),
           std::to_string(left) + (with_pad ? " PAD Sites left" : " Non-PAD Sites left"));
    let_happen(visit);
}

void Tour::finish(bool with_pad) {
    press_submit();
    if (visits_.empty())
        return;
    Visit& last = visits_.back();
    if (!nothing_left_)
        last.problems.emplace_back("the window did not say that no site is left");
    const std::string none = with_pad ? "0 PAD Sites left" : "0 Non-PAD Sites left";
    if (driver_.status(3) != none)
        last.problems.push_back("status panel 3 shows \"" + driver_.status(3) + "\" at the end");
    already_marked_ = true;
}

void Tour::press_submit() {
    Visit* const before = current();
    statuses_.clear();
    ui_.forget_reports();
    server_.log().clear();
    load_ended_ = false;
    nothing_left_ = false;
    marking_ = before != nullptr;
    driver_.press("cmdPlayback");
    if (std::exchange(marking_, false))
        before->problems.emplace_back("its outcome was not asked for");
    if (before != nullptr && !already_marked_) {
        check_marked(*before);
        if (visited)
            visited(*before);
    }
    already_marked_ = false;
}

} // namespace kestrune::tour
