#include "platform/qt/downloads.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/dialog_user.h"
#include "tests/temporary_folder.h"

#include <QFileDialog>
#include <QProgressBar>
#include <QWebEngineView>

#include <filesystem>

namespace kestrune {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Files that nobody has agreed to.
class DownloadOffers : public ComfortsTest {
protected:
    DownloadOffers() {
        // One whose downloads can be looked at.
        browser_.reset();
        profile_ = std::make_shared<EngineProfile>(fs::path(folder_.path()));
        browser_ = std::make_unique<QtBrowser>(place_, probe_, profile_);
        offer("/endless", std::string(64 << 10, 'x'), true);
        offer("/large", large_, false);
        offer("/small", small_, false);
    }

    ~DownloadOffers() override {
        // Before their folder.
        browser_.reset();
        profile_.reset();
    }
    DownloadOffers(const DownloadOffers&) = delete;
    DownloadOffers& operator=(const DownloadOffers&) = delete;
    DownloadOffers(DownloadOffers&&) = delete;
    DownloadOffers& operator=(DownloadOffers&&) = delete;

    void offer(const std::string& path, const std::string& body, bool endless, bool held = false) {
        SiteServer::Answer answer{body, 200, "application/zip", {{"Content-Disposition", "attachment"}}};
        answer.endless = endless;
        answer.held = held;
        server_.answer(path, answer);
    }
    static std::string frames(const std::string& path, int count) {
        std::string html;
        for (int i = 0; i < count; ++i)
            html += "<iframe src='" + path + "?" + std::to_string(i) + "'></iframe>";
        return html;
    }
    int shown(const char* name) {
        int count = 0;
        for (PageBar* const found : place_.findChildren<PageBar*>(QString::fromLatin1(name)))
            count += found->isHidden() ? 0 : 1;
        return count;
    }
    [[nodiscard]] bool wait_for_offers(int count) {
        return wait_until([&] { return shown("Download") == count; });
    }
    // Bytes of each download that is not where the user wants it.
    [[nodiscard]] std::map<std::string, std::uintmax_t> on_disk() const {
        std::map<std::string, std::uintmax_t> bytes;
        std::error_code ignored;
        const fs::path downloads = fs::path(folder_.path()) / "site data" / "downloads";
        for (const auto& entry : fs::recursive_directory_iterator(downloads, ignored)) {
            if (entry.is_regular_file(ignored))
                bytes[fs::relative(entry.path(), downloads).begin()->string()] += entry.file_size(ignored);
        }
        return bytes;
    }
    [[nodiscard]] std::uintmax_t all_on_disk() const {
        std::uintmax_t sum = 0;
        for (const auto& [name, bytes] : on_disk())
            sum += bytes;
        return sum;
    }
    // The user saves what is offered last.
    void save_last() {
        dialogs_.expect("SaveFileDialog", [this](QDialog& dialog) {
            auto& chooser = dynamic_cast<QFileDialog&>(dialog);
            chooser.setDirectory(QString::fromStdString(saved_.path()));
            chooser.selectFile(QStringLiteral("saved.zip"));
            QMetaObject::invokeMethod(&chooser, "accept");
        });
        BarUser::press(*place_.findChildren<PageBar*>(QStringLiteral("Download")).last(), "Save...");
    }
    [[nodiscard]] std::uintmax_t saved_bytes() const {
        return fs::file_size(fs::path(saved_.path()) / "saved.zip");
    }

    const std::string large_ = std::string(std::size_t{48} << 20, 'l');
    const std::string small_ = std::string(std::size_t{3} << 20, 's');
    TemporaryFolder folder_;
    TemporaryFolder saved_;
    testing_desktop::DialogUser dialogs_;
};

TEST_F(DownloadOffers, files_without_end_do_not_come_in_until_a_place_is_chosen) {
    const PageDocument page = open_page(frames("/endless", 2) + "<a href=/large>large</a>");
    ASSERT_TRUE(wait_for_offers(2));
    click_link(page);
    ASSERT_TRUE(wait_for_offers(3));
    save_last();
    ASSERT_NE(wait_for_bar("DownloadEnd"), nullptr) << "in the time that it took the others had theirs";
    EXPECT_EQ(saved_bytes(), large_.size());
    EXPECT_LT(all_on_disk(), std::uintmax_t{4} << 20);
}

TEST_F(DownloadOffers, a_small_file_comes_in_while_the_user_is_asked_and_a_large_one_after) {
    const PageDocument page = open_page("<a href=/large>large</a><a href=/small>small</a>");
    click_link(page, 0);
    ASSERT_TRUE(wait_for_offers(1));
    click_link(page, 1);
    ASSERT_TRUE(wait_for_offers(2));
    EXPECT_TRUE(wait_until([&] { return on_disk()["2"] == small_.size(); }));
    EXPECT_LT(on_disk()["1"], std::uintmax_t{4} << 20);
}

TEST_F(DownloadOffers, a_file_that_was_held_shows_its_progress_when_it_goes_on) {
    offer("/held", large_, false, true);
    const PageDocument page = open_page("<a href=/held>held</a>");
    click_link(page);
    ASSERT_TRUE(wait_for_offers(1));
    save_last();
    PageBar* const progress = wait_for_bar("DownloadProgress");
    ASSERT_NE(progress, nullptr);
    EXPECT_TRUE(wait_until([&] {
        PageBar* const now = bar("DownloadProgress");
        return now != nullptr && now->findChild<QProgressBar*>()->value() > 900;
    }));
    server_.release();
    ASSERT_NE(wait_for_bar("DownloadEnd"), nullptr);
    EXPECT_EQ(saved_bytes(), large_.size());
}

TEST_F(DownloadOffers, small_files_come_in_only_as_far_as_they_are_few) {
    const PageDocument page = open_page("<a href=/small?1>1</a><a href=/small?2>2</a><a href=/small?3>3</a>");
    for (std::size_t i = 0; i < 3; ++i) {
        click_link(page, i);
        ASSERT_TRUE(wait_for_offers(static_cast<int>(i) + 1));
    }
    EXPECT_TRUE(wait_until([&] { return all_on_disk() >= 2 * small_.size(); }));
    save_last();
    ASSERT_NE(wait_for_bar("DownloadEnd"), nullptr);
    EXPECT_EQ(saved_bytes(), small_.size()) << "it was held, and goes on";
    EXPECT_LE(all_on_disk(), 2 * small_.size());
}

TEST_F(DownloadOffers, a_page_may_offer_three_and_the_user_is_told_of_the_others) {
    open_page(frames("/endless", 20));
    EXPECT_TRUE(wait_until([&] {
        PageBar* const told = bar("DownloadsRefused");
        return told != nullptr && BarUser::text(*told, "Heading") == "17 more files were refused.";
    }));
    EXPECT_EQ(shown("Download"), 3);
    EXPECT_EQ(shown("DownloadsRefused"), 1);
    EXPECT_GE(browser_->view().height(), place_.height() / 2);
    EXPECT_THAT(BarUser::text(*bar("DownloadsRefused")), HasSubstr("3 offers of this page wait"));
}

TEST_F(DownloadOffers, the_offers_of_one_page_leave_room_for_those_of_another) {
    open_page(frames("/endless", 5));
    ASSERT_TRUE(wait_for_offers(3));
    QWidget other_place;
    other_place.show();
    BrowserProbe other_probe;
    QtBrowser other(other_place, other_probe, profile_);
    other.Navigate(server_.url("/small"));
    EXPECT_TRUE(wait_until([&] { return BarUser::shown(other_place, "Download") != nullptr; }));
}

TEST_F(DownloadOffers, an_answer_makes_room_for_the_next_offer) {
    const PageDocument page = open_page(frames("/endless", 3) + "<a href=/small>small</a>");
    ASSERT_TRUE(wait_for_offers(3));
    BarUser::press(*bar("Download"), "Do not save");
    EXPECT_TRUE(wait_until([&] { return profile_->downloads().size() == 2; }));
    click_link(page);
    EXPECT_TRUE(wait_for_offers(3));
    EXPECT_EQ(bar("DownloadsRefused"), nullptr);
}

TEST_F(DownloadOffers, going_to_another_host_takes_back_what_was_not_answered) {
    open_page(frames("/endless", 4) + "<a href=/x>x</a>");
    ASSERT_TRUE(wait_until([&] { return shown("Download") == 3 && bar("DownloadsRefused") != nullptr; }));
    open(server_.url("/end-of-test"));
    EXPECT_EQ(shown("Download"), 3) << "the same host";
    server_.page("/elsewhere", "<a href=/x>elsewhere</a>");
    open(server_.url("/elsewhere", "127.0.0.9"));
    EXPECT_EQ(shown("Download"), 0);
    EXPECT_EQ(bar("DownloadsRefused"), nullptr);
    EXPECT_TRUE(wait_until([&] { return profile_->downloads().size() == 0 && on_disk().empty(); }));
}

TEST_F(DownloadOffers, going_elsewhere_leaves_alone_what_the_user_wants) {
    const PageDocument page = open_page("<a href=/endless>endless</a>");
    click_link(page);
    ASSERT_TRUE(wait_for_offers(1));
    save_last();
    ASSERT_NE(wait_for_bar("DownloadProgress"), nullptr);
    server_.page("/elsewhere", "<a href=/x>elsewhere</a>");
    open(server_.url("/elsewhere", "127.0.0.9"));
    EXPECT_EQ(shown("DownloadProgress"), 1);
    EXPECT_EQ(profile_->downloads().size(), 1U);
}

} // namespace
} // namespace kestrune
