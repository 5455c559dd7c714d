#include "platform/qt/downloads.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/dialog_user.h"
#include "tests/temporary_folder.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressBar>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace kestrune {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class DownloadsTest : public ComfortsTest {
protected:
    DownloadsTest() {
        // A program that keeps something, so that its folder can be looked into.
        browser_.reset();
        profile_ = std::make_shared<EngineProfile>(program_.path());
        browser_ = std::make_unique<QtBrowser>(place_, probe_, profile_);
        server_.page("/page", "<a href=/get>get</a>");
        offer("attachment; filename=tool.zip");
    }

    void offer(const std::string& disposition, bool held = false) {
        server_.answer("/get",
                       {content_, 200, "application/zip", {{"Content-Disposition", disposition}}, held});
    }
    // The file dialog will be answered with a path, from the folder.
    void choose_place(const std::string& name) {
        dialogs_.expect("SaveFileDialog", [this, name](QDialog& dialog) {
            auto& chooser = dynamic_cast<QFileDialog&>(dialog);
            suggested_ = fs::path(chooser.selectedFiles().first().toStdString()).filename();
            const QFileInfo target(QString::fromStdString(folder_.file(name)));
            chooser.setDirectory(target.path());
            chooser.selectFile(target.fileName());
            QMetaObject::invokeMethod(&chooser, "accept");
        });
    }
    // The link is clicked and the file dialog answered.
    void save_as(const std::string& name) {
        choose_place(name);
        click_link(open(server_.url("/page")));
        if (PageBar* const offered = wait_for_bar("Download"))
            BarUser::press(*offered, "Save...");
    }
    // Once no download is left, no part of one is in the program's own folder. The engine may take a moment
    // more for its own, and an empty folder may be left until the next start.
    void expect_no_parts() {
        EXPECT_TRUE(wait_until([&] { return profile_->downloads().size() == 0; }));
        EXPECT_TRUE(wait_until([&] {
            const fs::recursive_directory_iterator all{parts()};
            return std::none_of(begin(all), end(all),
                                [](const auto& entry) { return entry.is_regular_file(); });
        }));
    }
    [[nodiscard]] fs::path parts() const { return program_.file("site data/downloads"); }
    [[nodiscard]] std::vector<PageBar*> offers() {
        std::vector<PageBar*> shown;
        for (PageBar* offer : place_.findChildren<PageBar*>("Download")) {
            if (!offer->isHidden())
                shown.push_back(offer);
        }
        return shown;
    }
    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.path()))
            names.push_back(entry.path().filename());
        return names;
    }
    [[nodiscard]] std::string content_of(const std::string& name) const {
        std::ifstream file(fs::path(folder_.path()) / name, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    const std::string content_ = std::string(300000, 'z') + "end";
    std::string suggested_;
    TemporaryFolder folder_;
    TemporaryFolder program_;
    testing_desktop::DialogUser dialogs_;
};

TEST_F(DownloadsTest, a_file_is_offered_and_saved_where_the_user_says) {
    save_as("mine.zip");
    PageBar* const end = wait_for_bar("DownloadEnd");
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(BarUser::text(*end, "Heading"), "mine.zip is saved.");
    EXPECT_EQ(suggested_, "tool.zip");
    EXPECT_THAT(files(), ElementsAre("mine.zip"));
    EXPECT_EQ(content_of("mine.zip"), content_);
    BarUser::press(*end, "OK");
    expect_no_parts();
}

TEST_F(DownloadsTest, a_file_that_is_not_wanted_leaves_nothing) {
    click_link(open(server_.url("/page")));
    PageBar* const offered = wait_for_bar("Download");
    ASSERT_NE(offered, nullptr);
    EXPECT_THAT(BarUser::text(*offered), HasSubstr("tool.zip"));
    EXPECT_FALSE(fs::is_empty(parts())) << "it comes in already";
    BarUser::press(*offered, "Do not save");
    expect_no_parts();
    EXPECT_EQ(bar("Download"), nullptr);
    EXPECT_EQ(server_.count_of("/get"), 1);
}

TEST_F(DownloadsTest, a_file_under_way_shows_its_progress_and_never_stands_under_its_name) {
    offer("attachment; filename=tool.zip", true);
    save_as("mine.zip");
    PageBar* const progress = wait_for_bar("DownloadProgress");
    ASSERT_NE(progress, nullptr);
    EXPECT_TRUE(wait_until([&] { return progress->findChild<QProgressBar*>()->value() > 900; }));
    EXPECT_THAT(files(), IsEmpty());
    server_.release();
    EXPECT_NE(wait_for_bar("DownloadEnd"), nullptr);
    EXPECT_EQ(content_of("mine.zip"), content_);
}

TEST_F(DownloadsTest, a_cancelled_file_leaves_nothing) {
    offer("attachment; filename=tool.zip", true);
    save_as("mine.zip");
    PageBar* const progress = wait_for_bar("DownloadProgress");
    ASSERT_NE(progress, nullptr);
    EXPECT_FALSE(fs::is_empty(parts()));
    BarUser::press(*progress, "Cancel");
    expect_no_parts();
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_EQ(bar("DownloadProgress"), nullptr);
}

TEST_F(DownloadsTest, a_file_whose_connection_breaks_is_said_to_have_failed) {
    server_.answer(
        "/get",
        {content_, 200, "application/zip", {{"Content-Disposition", "attachment; filename=tool.zip"}}, true});
    save_as("mine.zip");
    ASSERT_NE(wait_for_bar("DownloadProgress"), nullptr);
    server_.answer("/get", {"gone", 404}); // the engine tries to go on where it was broken off
    server_.break_off();
    PageBar* const end = wait_for_bar("DownloadEnd");
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(BarUser::text(*end, "Heading"), "tool.zip could not be saved.");
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_EQ(server_.count_of("/get"), 2) << "it was tried again";
    EXPECT_THAT(user_.seen(), ElementsAre("Download", "DownloadProgress", "DownloadEnd"));
    for (const auto& part : fs::recursive_directory_iterator(parts()))
        EXPECT_TRUE(part.is_directory()) << part << " is left before the words are read";
    BarUser::press(*end, "OK");
    expect_no_parts();
}

TEST_F(DownloadsTest, a_file_whose_connection_breaks_once_goes_on_where_it_stood_and_is_saved) {
    offer("attachment; filename=tool.zip", true);
    save_as("mine.zip");
    PageBar* const progress = wait_for_bar("DownloadProgress");
    ASSERT_NE(progress, nullptr);
    ASSERT_TRUE(wait_until([&] { return progress->findChild<QProgressBar*>()->value() > 900; }));
    offer("attachment; filename=tool.zip");
    server_.break_off();
    PageBar* const end = wait_for_bar("DownloadEnd");
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(BarUser::text(*end, "Heading"), "mine.zip is saved.");
    EXPECT_EQ(content_of("mine.zip"), content_);
    EXPECT_THAT(user_.seen(), ElementsAre("Download", "DownloadProgress", "DownloadEnd"));
    BarUser::press(*end, "OK");
    expect_no_parts();
}

TEST_F(DownloadsTest, a_folder_that_is_gone_when_the_file_is_complete_is_said_and_leaves_nothing) {
    fs::create_directory(folder_.file("gone"));
    offer("attachment; filename=tool.zip", true);
    save_as("gone/mine.zip");
    ASSERT_NE(wait_for_bar("DownloadProgress"), nullptr);
    fs::remove(folder_.file("gone"));
    server_.release();
    PageBar* const end = wait_for_bar("DownloadEnd");
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(BarUser::text(*end, "Heading"), "mine.zip could not be saved.");
    EXPECT_THAT(BarUser::text(*end), HasSubstr("No such file or directory"));
    EXPECT_THAT(files(), IsEmpty());
    BarUser::press(*end, "OK");
    expect_no_parts();
}

TEST_F(DownloadsTest, a_file_dialog_that_is_cancelled_leaves_the_offer_standing) {
    click_link(open(server_.url("/page")));
    PageBar* const offered = wait_for_bar("Download");
    ASSERT_NE(offered, nullptr);
    EXPECT_TRUE(wait_until([&] { return BarUser::text(*offered) == "tool.zip, 292.97 KiB"; }))
        << BarUser::text(*offered);
    dialogs_.expect("SaveFileDialog", [](QDialog& dialog) { dialog.reject(); });
    BarUser::press(*offered, "Save...");
    EXPECT_TRUE(dialogs_.done());
    EXPECT_EQ(bar("Download"), offered);
    EXPECT_TRUE(wait_until([&] { return offered->takes_presses(); }));
    choose_place("mine.zip");
    BarUser::press(*offered, "Save...");
    EXPECT_NE(wait_for_bar("DownloadEnd"), nullptr);
    EXPECT_THAT(files(), ElementsAre("mine.zip"));
}

TEST_F(DownloadsTest, a_file_whose_name_is_taken_takes_its_place_when_the_user_agrees) {
    write_bytes(folder_.file("mine.zip"), "older");
    offer("attachment; filename=tool.zip", true);
    choose_place("mine.zip");
    dialogs_.expect(
        "", [](QDialog& dialog) { dynamic_cast<QMessageBox&>(dialog).button(QMessageBox::Yes)->click(); });
    click_link(open(server_.url("/page")));
    PageBar* const offered = wait_for_bar("Download");
    ASSERT_NE(offered, nullptr);
    BarUser::press(*offered, "Save...");
    EXPECT_TRUE(dialogs_.done()) << "it was asked about";
    ASSERT_NE(wait_for_bar("DownloadProgress"), nullptr);
    EXPECT_EQ(content_of("mine.zip"), "older") << "until the new one is complete";
    server_.release();
    ASSERT_NE(wait_for_bar("DownloadEnd"), nullptr);
    EXPECT_THAT(files(), ElementsAre("mine.zip"));
    EXPECT_EQ(content_of("mine.zip"), content_);
}

TEST_F(DownloadsTest, two_files_of_one_name_are_each_saved) {
    offer("attachment; filename=tool.zip", true);
    const PageDocument page = open(server_.url("/page"));
    click_link(page);
    ASSERT_NE(wait_for_bar("Download"), nullptr);
    server_.page("/page2", "<a href='/get?2'>get</a>");
    click_link(open(server_.url("/page2")));
    ASSERT_TRUE(wait_until([&] { return offers().size() == 2; }));
    server_.release();
    choose_place("first.zip");
    BarUser::press(*offers().at(0), "Save...");
    choose_place("second.zip");
    BarUser::press(*offers().at(0), "Save...");
    EXPECT_TRUE(wait_until([&] { return files().size() == 2; }));
    EXPECT_EQ(content_of("first.zip"), content_);
    EXPECT_EQ(content_of("second.zip"), content_);
}

TEST_F(DownloadsTest, two_files_for_one_place_are_both_there_in_the_end) {
    offer("attachment; filename=tool.zip", true);
    save_as("mine.zip");
    ASSERT_NE(wait_for_bar("DownloadProgress"), nullptr);
    save_as("mine.zip");
    ASSERT_TRUE(wait_until([&] { return offers().empty(); }));
    server_.release();
    EXPECT_TRUE(wait_until([&] { return files().size() == 2; }));
    EXPECT_THAT(files(), UnorderedElementsAre("mine.zip", "mine (2).zip"));
    EXPECT_EQ(content_of("mine (2).zip"), content_);
}

TEST_F(DownloadsTest, a_file_is_offered_while_the_program_asks_something_and_while_a_page_does) {
    const PageDocument page = open_page("<a href=/get>get</a><a href='javascript:confirm(1)'>ask</a>");
    QDialog own(&place_);
    own.setObjectName("own");
    own.setModal(true);
    dialogs_.expect("own", [&](QDialog& question) {
        click_link(page);
        EXPECT_NE(wait_for_bar("Download"), nullptr);
        EXPECT_TRUE(question.isVisible());
        question.accept();
    });
    own.exec();
    EXPECT_TRUE(dialogs_.done());
    user_.expect("PageConfirm", [&](PageBar& asked) {
        choose_place("mine.zip");
        BarUser::press(*bar("Download"), "Save...");
        BarUser::press(asked, "OK");
    });
    click_link(page, 1);
    EXPECT_NE(wait_for_bar("DownloadEnd"), nullptr);
    EXPECT_EQ(content_of("mine.zip"), content_);
    EXPECT_TRUE(user_.done());
}

TEST_F(DownloadsTest, a_profile_that_ends_takes_what_is_under_way_with_it) {
    offer("attachment; filename=tool.zip", true);
    save_as("mine.zip");
    ASSERT_NE(wait_for_bar("DownloadProgress"), nullptr);
    browser_.reset();
    profile_.reset();
    EXPECT_TRUE(fs::is_empty(parts()));
    EXPECT_THAT(files(), IsEmpty());
    server_.release();
}

TEST_F(DownloadsTest, a_download_moves_to_another_window_when_its_own_closes) {
    offer("attachment; filename=tool.zip", true);
    auto other_place = std::make_unique<QWidget>();
    other_place->show();
    BrowserProbe other_probe;
    auto other = std::make_unique<QtBrowser>(*other_place, other_probe, profile_);
    other->Navigate(server_.url("/page"));
    ASSERT_TRUE(wait_until([&] { return other_probe.count("complete " + server_.url("/page")) == 1; }));
    other->apply({{PageEdit::Kind::click, other_probe.last().links.at(0).ref}});
    ASSERT_TRUE(wait_until([&] { return BarUser::shown(*other_place, "Download") != nullptr; }));
    other.reset();
    other_place.reset();
    EXPECT_NE(wait_for_bar("Download"), nullptr);
    server_.release();
}

TEST_F(DownloadsTest, a_page_that_offers_files_without_end_is_cut_short) {
    open_page("<script>for (let i = 0; i < 60; ++i) { const a = document.createElement('a'); a.href = "
              "'data:x/y,' + i;"
              "a.download = 'f' + i; a.click() }</script>");
    wait_for_bar("Download");
    let_everything_happen();
    EXPECT_LE(profile_->downloads().size(), 20U);
}

} // namespace
} // namespace kestrune
