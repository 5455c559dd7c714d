#pragma once

#include "platform/qt/qt_browser.h"
#include "tests/desktop/bar_user.h"
#include "tests/desktop/fill_fixture.h"
#include "tests/desktop/painted.h"
#include "tools/practice/practice_server.h"
#include "tools/tour/hand.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>

namespace kestrune {

inline constexpr const char* practice_folder = KESTRUNE_SOURCE_DIR "/practice/";

// Played after every hostile site. Its values are told from those of the hostile site.
inline constexpr const char* honest_site = "recorded";
inline constexpr const char* honest_value = "honestvalue";
// In the boxes of the product profile, and in the record of the hostile site's page.
inline constexpr const char* profile_secret = "profilesecret";
inline constexpr const char* record_secret = "recordsecret";

inline constexpr const char* fill_question = "Do you want to auto fill-in this form";
inline constexpr const char* record_question =
    "A temporary record is created, do you want to view/edit it now?";

// The site, the hosts that hostile sites use, and the honest one.
inline std::vector<practice::Site> sites_to_serve(const std::string& played) {
    std::vector<practice::Site> sites = practice::load_sites(std::string(practice_folder) + "hostile");
    std::erase_if(sites, [&played](const practice::Site& site) {
        return site.name != played && !site.hostile.does.empty();
    });
    for (practice::Site& site : practice::load_sites(std::string(practice_folder) + "soak")) {
        if (site.name == honest_site)
            sites.push_back(std::move(site));
    }
    return sites;
}

inline std::string bytes_of_file(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Everything of the request that can carry a value.
inline std::string text_of(const practice::Request& request) {
    std::string text = request.method + " " + request.target + "\n";
    for (const auto& [name, value] : request.headers)
        text += name + ": " + value + "\n";
    return text + "\n" + request.body;
}

// Counts the menus that come up over pages, the browser's own among them.
class MenuCounter final : public QObject {
public:
    MenuCounter() { qApp->installEventFilter(this); }
    [[nodiscard]] int count() const { return count_; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* const menu = qobject_cast<QMenu*>(watched);
        if (event->type() == QEvent::Show && menu != nullptr &&
            (menu->objectName() == QLatin1String("mnuRightClickMenu") ||
             menu->objectName() == QLatin1String("BrowserMenu")))
            ++count_;
        return false;
    }

private:
    int count_ = 0;
};

// One hostile site in the whole program: it is opened with "Submit", does its worst, and is left with
// "Submit" for an honest one. What is special about it stands in its site.txt.
class HostileSite : public FillProgramTest, public ::testing::WithParamInterface<std::string> {
protected:
    HostileSite() : practice_(sites_to_serve(GetParam())), site_(practice_.site(GetParam())) {
        practice_.log().set_listener([](const practice::Request& /*request*/) { drive::wake(); });
    }
    ~HostileSite() override { practice_.log().set_listener(nullptr); }

    void SetUp() override {
        user().set_patience(std::chrono::seconds(20));
        const practice::Hostile& hostile = site_.hostile;
        const auto or_else = [](const std::string& given, const char* otherwise) {
            return given.empty() ? std::string(otherwise) : given;
        };
        keep_record(address(or_else(hostile.record_page, site_.home.c_str())),
                    address(or_else(hostile.record_action, "/take")),
                    std::string("name=") + record_secret + "name&mail=" + record_secret + "mail");
        keep_record(honest("/submit.html"), honest("/thanks.html"),
                    std::string("title=") + honest_value + "&version=2&description=" + honest_value);
        add_site(1, practice_.home(site_.name), "A site that means harm");
        add_site(2, honest("/submit.html"), "The next site");
        start();
        for (const ProfileField& field : ProfileFields())
            (window().frmPreference().*field.box).Text =
                profile_secret + (window().frmPreference().*field.box).Name;
        browser().set_straggler_time(std::chrono::milliseconds(300));
        if (hostile.deadline > std::chrono::milliseconds(0)) {
            browser().set_page_deadline(hostile.deadline);
            browser().set_hang_time(hostile.deadline / 2);
        }
        if (hostile.auto_record) {
            user().choose("mnuAutoHide"); // the lists stay in view
            user().press("cmdRecord");
        }
        for (const practice::BarUse& bar : hostile.bars) {
            if (!bar.button.empty())
                bar_user_.expect_press(bar.name, bar.button);
        }
        user().answer_with([this](QDialog& dialog) { answer(dialog); });
        before_ = files();
    }

    void TearDown() override {
        FillProgramTest::TearDown();
        if (!HasFailure())
            return;
        for (const practice::Request& request : practice_.log().all())
            std::cout << request.site << ": " << request.method << " " << request.target.substr(0, 300) << " "
                      << request.body.substr(0, 300) << "\n";
    }

    [[nodiscard]] QtBrowser& browser() { return dynamic_cast<QtBrowser&>(window().browser()); }
    [[nodiscard]] std::string address(const std::string& path_or_address) const {
        return practice_.address(site_.name, path_or_address);
    }
    [[nodiscard]] std::string honest(const std::string& path) const {
        return practice_.origin(honest_site) + path;
    }
    void keep_record(std::string page, std::string action, std::string postdata) {
        program().record_files().prepare();
        program().record_files().write({.Type = std::string(type_form),
                                        .Session = "A record",
                                        .Url = std::move(page),
                                        .Action = std::move(action),
                                        .Postdata = std::move(postdata),
                                        .Header = "",
                                        .Frame = ""});
    }

    // The site's turn.
    void play() {
        user().press("cmdPlayback");
        if (!site_.expected.release.empty() && records_expected() > 0) {
            // The page goes on once the program has looked at it.
            wait("the page", [this] { return browser_shows_the_page() && !window().busy(); });
            practice_.release(site_.name, site_.expected.release);
        }
        wait("the questions that the file names",
             [this] { return asked_ == site_.expected.questions.size(); });
        if (!site_.recording.steps.empty() || site_.hostile.menu)
            use_page();
        wait("what the file says that the page brings about", [this] { return brought_about(); });
    }
    void use_page() {
        wait("the page", [this] { return browser_shows_the_page() && !window().busy(); });
        ASSERT_TRUE(wait_until_painted(view()));
        for (const practice::HandStep& step : site_.recording.steps) {
            view().setFocus();
            tour::do_deeds(*view().focusProxy(), step.deeds);
        }
        if (!site_.hostile.menu)
            return;
        const practice::MenuUse& use = *site_.hostile.menu;
        use_menu(QPoint(use.x, use.y), [&](QMenu& menu) {
            await_answer_time();
            click_entry(menu, use.entry);
        });
        wait("the entry to do its work", [this] { return !window().busy(); });
    }
    // Pages may give themselves another address while they load.
    [[nodiscard]] bool browser_shows_the_page() {
        return window().strCurDocUrl.starts_with(practice_.origin(site_.name));
    }
    [[nodiscard]] bool brought_about() {
        const auto asked_for = [this](const std::string& path) { return was_asked(path); };
        return std::ranges::all_of(site_.expected.asked_for, asked_for) &&
               std::ranges::all_of(site_.hostile.values_at, asked_for) &&
               again_.size() == site_.hostile.again.size() &&
               std::ranges::all_of(site_.hostile.bars,
                                   [this](const practice::BarUse& bar) {
                                       return std::ranges::count(bar_user_.seen(), bar.name) > 0;
                                   }) &&
               window().ListView1.size() == records_expected();
    }
    [[nodiscard]] std::size_t records_expected() const {
        return static_cast<std::size_t>(std::ranges::count(
            site_.expected.questions, std::string(record_question), &practice::Question::text));
    }

    // Whether this has been asked for; an address of another site names that one.
    [[nodiscard]] bool was_asked(const std::string& path_or_address) const {
        const std::string wanted = address(path_or_address);
        return std::ranges::any_of(practice_.log().all(), [&](const practice::Request& one) {
            return place_of_request(one) == wanted;
        });
    }
    [[nodiscard]] std::string place_of_request(const practice::Request& request) const {
        return practice_.origin(request.site) + request.path;
    }
    void answer(QDialog& dialog) {
        if (dialog.objectName() == QLatin1String("frmNote")) {
            user().press(dialog, "optSubmit(1)");
            user().press(dialog, "cmdSave");
            return;
        }
        const practice::Question asked{"", dialog.windowTitle().toStdString(),
                                       drive::Driver::text(dialog, "Text")};
        if (leaving_ && asked.text == fill_question) {
            user().answer(dialog, "OK");
            return;
        }
        const auto is_asked = [&](const practice::Question& one) {
            return practice_.filled_in(site_.name, one.title) == asked.title &&
                   practice_.filled_in(site_.name, one.text) == asked.text;
        };
        const auto& wanted = site_.expected.questions;
        const auto& again = site_.hostile.again;
        const auto repeated = std::ranges::find_if(again, is_asked);
        if (asked_ < wanted.size() && is_asked(wanted[asked_])) {
            if (asked_ == 0)
                await_answer_time();
            user().answer(dialog, wanted[asked_++].answer);
        } else if (repeated != again.end()) {
            again_.insert(repeated - again.begin());
            user().answer(dialog, repeated->answer);
        } else {
            throw drive::DriveError("asked \"" + asked.title + "\": " + asked.text);
        }
    }
    // While the first question, or the menu, is open.
    void await_answer_time() {
        if (!site_.expected.release.empty())
            practice_.release(site_.name, site_.expected.release);
        if (!site_.expected.answer_after.empty())
            drive::wait_for("the page to be elsewhere", [this] {
                return view().url().toString().toStdString() == address(site_.expected.answer_after) &&
                       !view().page()->isLoading();
            });
        if (!site_.hostile.answer_at.empty())
            drive::wait_for("the page to do something meanwhile",
                            [this] { return was_asked(site_.hostile.answer_at); });
    }

    // What the page was given last has its effect, as far as it has any: a user does not go on within the
    // same millisecond. A page that does not answer has none.
    void settle() {
        const auto passed = std::make_shared<bool>(false);
        const auto look = [this, passed](const char* code) {
            view().page()->runJavaScript(QString::fromLatin1(code), QWebEngineScript::UserWorld,
                                         [passed](const QVariant& value) { *passed = value.toBool(); });
        };
        look("self.passed = false; setTimeout(() => { self.passed = true }, 50); false");
        wait_until(
            [&] {
                if (!*passed)
                    look("self.passed !== false"); // a page that has come since has passed too
                return *passed;
            },
            std::chrono::milliseconds(1500));
        wait_until([this] { return !view().page()->isLoading() && !window().busy(); },
                   std::chrono::milliseconds(1500));
    }

    // The user goes on: the program must be as good as before.
    void play_the_honest_site() {
        EXPECT_EQ(user().window().windowTitle().toStdString(), "Kestrune V1.0 (First Window)");
        EXPECT_EQ(program().windows().size(), 1U);
        leaving_ = true;
        user().press("cmdPlayback");
        wait("the next site's form to be filled and sent",
             [this] { return window().strCurDocUrl == honest("/thanks.html") && !window().busy(); });
        const auto sent = practice_.log().wait_for(honest_site, "/thanks.html", std::chrono::milliseconds(0));
        ASSERT_TRUE(sent);
        EXPECT_EQ(sent->body,
                  std::string("title=") + honest_value + "&version=2&description=" + honest_value);
        EXPECT_EQ(status_in_library(practice_.home(site_.name)), "P");
        EXPECT_EQ(status_in_library(honest("/submit.html")), "N");
    }

    void check_menus() const { EXPECT_EQ(menu_counter_.count(), site_.hostile.menu ? 1 : 0); }

    void check_requests() const {
        std::set<std::string> allowed;
        for (const std::string& place : site_.hostile.values_at)
            allowed.insert(address(place));
        for (const practice::Request& request : practice_.log().all()) {
            const std::string text = text_of(request);
            const bool secret = text.find(profile_secret) != std::string::npos ||
                                text.find(record_secret) != std::string::npos;
            EXPECT_TRUE(!secret || allowed.contains(place_of_request(request)))
                << "a value reached " << request.site << ": " << text;
            EXPECT_TRUE(text.find(honest_value) == std::string::npos || request.site == honest_site)
                << "a value of the next site reached " << request.site << ": " << text;
        }
        for (const std::string& place : site_.hostile.values_at) {
            EXPECT_TRUE(std::ranges::any_of(practice_.log().all(),
                                            [&](const practice::Request& one) {
                                                const std::string text = text_of(one);
                                                return place_of_request(one) == address(place) &&
                                                       (text.find(profile_secret) != std::string::npos ||
                                                        text.find(record_secret) != std::string::npos);
                                            }))
                << "no value reached " << place;
        }
        for (const std::string& place : site_.expected.not_asked_for)
            EXPECT_FALSE(was_asked(place)) << place;
    }

    // Every file of the program's folder with its bytes, those of the library alone left out: it is written.
    [[nodiscard]] std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder())) {
            const std::string name = std::filesystem::relative(entry.path(), folder()).string();
            if (entry.is_regular_file() && !name.starts_with("SubmitList.mdb"))
                found[name] = bytes_of_file(entry.path());
        }
        return found;
    }
    void check_files() {
        auto now = files();
        for (const std::string& name : recorded_files_)
            EXPECT_EQ(now.erase(name), 1U) << name;
        EXPECT_EQ(now, before_);
        EXPECT_TRUE(library_is_as_it_was());
        // The names by which hostile sites try to get out of the folder hold this word.
        for (const std::filesystem::path& outside :
             {std::filesystem::path(folder()).parent_path(), std::filesystem::current_path()}) {
            for (const auto& entry : std::filesystem::directory_iterator(outside))
                EXPECT_EQ(entry.path().filename().string().find("breakout"), std::string::npos)
                    << entry.path();
        }
    }
    [[nodiscard]] bool library_is_as_it_was() {
        std::size_t rows = 0;
        SqliteDatabase database;
        const auto table =
            database.open(folder() + "/" + std::string(site_library_name),
                          "select * from tblSubmitList where url = " + SqlQuote(practice_.home(site_.name)));
        for (; !table->at_end(); table->move_next()) {
            ++rows;
            if (table->text("description") != "A site that means harm")
                return false;
        }
        return rows == 1;
    }

    // What Auto Record made is kept by "Save", loaded again by the program, and the same as before.
    void keep_and_load_the_record() {
        user().press("cmdRecord");
        window().SSTab1.set_tab(1);
        while (window().ListView1.size() > 0) {
            const RecordSession made = RecordOf(window().ListView1, window().ListView1.item(0));
            check_record_is_what_was_sent(made);
            window().ListView1.select(window().ListView1.item(0).Key);
            user().press("cmdSave");
            recorded_files_.insert("session/" + UrlToFileName(made.Url) + ".xml");
            window().CallLoadPermanentRecord();
            wait("the records to be loaded again", [&] { return window().lvwPermanent.size() == 3; });
            const ListItem* const kept = window().lvwPermanent.find(UrlToRecordKey(made.Url));
            ASSERT_NE(kept, nullptr);
            const RecordSession loaded = RecordOf(window().lvwPermanent, *kept);
            EXPECT_EQ(loaded.Type, made.Type);
            EXPECT_EQ(loaded.Session, made.Session);
            EXPECT_EQ(loaded.Url, made.Url);
            EXPECT_EQ(loaded.Action, made.Action);
            EXPECT_EQ(loaded.Postdata, made.Postdata);
            EXPECT_EQ(loaded.Header, made.Header);
            EXPECT_EQ(loaded.Frame, made.Frame);
        }
    }
    void check_record_is_what_was_sent(const RecordSession& made) const {
        EXPECT_TRUE(std::ranges::any_of(practice_.log().all(),
                                        [&](const practice::Request& one) {
                                            return practice_.origin(one.site) + one.target == made.Action &&
                                                   one.body == made.Postdata;
                                        }))
            << made.Action << " " << made.Postdata;
    }

    BarUser bar_user_;
    MenuCounter menu_counter_;
    practice::PracticeServer practice_;
    const practice::Site& site_;
    std::map<std::string, std::string> before_;
    std::size_t asked_ = 0;          // of the questions in order
    std::set<std::ptrdiff_t> again_; // of the repeated ones, those that came
    std::set<std::string> recorded_files_;
    bool leaving_ = false;
};

} // namespace kestrune
