#include "platform/qt/downloads.h"
#include "platform/qt/file_name.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/dialog_user.h"
#include "tests/temporary_folder.h"

#include <QFileDialog>
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

class DownloadsTest : public ComfortsTest {
protected:
    DownloadsTest() {
        server_.page("/page", "<a href=/get>get</a>");
        offer("attachment; filename=tool.zip");
    }

    void offer(const std::string& disposition, bool held = false) {
        server_.answer("/get",
                       {content_, 200, "application/zip", {{"Content-Disposition", disposition}}, held});
    }
    // The link is clicked and the file dialog answered with a name in the folder.
    void save_as(const std::string& name) {
        dialogs_.expect("SaveFileDialog", [this, name](QDialog& dialog) {
            auto& chooser = dynamic_cast<QFileDialog&>(dialog);
            suggested_ = fs::path(chooser.selectedFiles().first().toStdString()).filename();
            chooser.setDirectory(QString::fromStdString(folder_.path()));
            chooser.selectFile(QString::fromStdString(name));
            QMetaObject::invokeMethod(&chooser, "accept");
        });
        click_link(open(server_.url("/page")));
        if (PageBar* const offered = wait_for_bar("Download"))
            BarUser::press(*offered, "Save...");
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
    EXPECT_TRUE(wait_until([&] { return profile_->downloads().size() == 0; }));
}

TEST_F(DownloadsTest, a_file_that_is_not_wanted_leaves_nothing) {
    click_link(open(server_.url("/page")));
    PageBar* const offered = wait_for_bar("Download");
    ASSERT_NE(offered, nullptr);
    EXPECT_THAT(BarUser::text(*offered), HasSubstr("tool.zip"));
    BarUser::press(*offered, "Do not save");
    EXPECT_TRUE(wait_until([&] { return profile_->downloads().size() == 0; }));
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
    BarUser::press(*progress, "Cancel");
    EXPECT_TRUE(wait_until([&] { return profile_->downloads().size() == 0; }));
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
}

TEST_F(DownloadsTest, a_file_that_cannot_be_written_says_so) {
    save_as("mine.zip");
    ASSERT_NE(wait_for_bar("DownloadEnd"), nullptr);
    fs::create_directory(fs::path(folder_.path()) / "taken.zip");
    EXPECT_FALSE(move_into_place(QString::fromStdString(folder_.path() + "/mine.zip"),
                                 QString::fromStdString(folder_.path() + "/taken.zip"))
                     .isEmpty());
    EXPECT_EQ(content_of("mine.zip"), content_);
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

TEST(CleanFileName, keeps_no_path_no_hidden_name_and_nothing_that_lies) {
    const auto clean = [](const char* name) {
        return clean_file_name(QString::fromUtf8(name)).toStdString();
    };
    EXPECT_EQ(clean("../../evil.txt"), "evil.txt");
    EXPECT_EQ(clean("c:\\windows\\system.ini"), "system.ini");
    EXPECT_EQ(clean(".bashrc"), "bashrc");
    EXPECT_EQ(clean("..."), "download");
    EXPECT_EQ(clean(""), "download");
    EXPECT_EQ(clean("pic\xE2\x80\xAEgpj.exe"), "picgpj.exe");
    EXPECT_EQ(clean("a\nb\x07.txt"), "ab.txt");
    EXPECT_EQ(clean("a:b*c?.txt. "), "a_b_c_.txt");
    EXPECT_EQ(clean("CON.txt"), "_CON.txt");
    EXPECT_EQ(clean("lpt1"), "_lpt1");
    EXPECT_EQ(clean("\xC3\x9C"
                    "ber.tar.gz"),
              "\xC3\x9C"
              "ber.tar.gz");
    const std::string cut = clean((std::string(500, 'x') + ".zip").c_str());
    EXPECT_EQ(cut, std::string(196, 'x') + ".zip");
}

} // namespace
} // namespace kestrune
