#include "platform/qt/engine_profile.h"
#include "platform/qt/site_data.h"
#include "tests/desktop/site_server.h"
#include "tests/desktop/wait_until.h"
#include "tests/temporary_folder.h"

#include <QCoreApplication>
#include <QProcess>
#include <QWebEnginePage>
#include <QWebEngineProfile>

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace kestrune {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class SiteDataTest : public ::testing::Test {
protected:
    SiteDataTest() {
        server_.answer_by("/area", [](const SiteServer::Request& request) -> SiteServer::Answer {
            const bool known = request.headers.contains("Cookie");
            return {"<script>fetch('/told?' + localStorage.kept); localStorage.kept = 'yes'</script>", 200,
                    "text/html",
                    known ? std::map<std::string, std::string>{}
                          : std::map<std::string, std::string>{{"Set-Cookie", "signed=in"}}};
        });
        server_.page("/told", "");
    }

    // The program is started, opens the page and is ended.
    void visit(bool forget = false) {
        QStringList arguments{"--visit", QString::fromStdString(folder_.path()),
                              QString::fromStdString(server_.url("/area"))};
        if (forget)
            arguments << "forget";
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QCoreApplication::applicationFilePath(), arguments);
        const bool ended = wait_until([&] { return process.state() == QProcess::NotRunning; });
        EXPECT_TRUE(ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0);
    }
    // Cookies sent with each request of the page, "-" for none, and what the page's own store held.
    [[nodiscard]] std::string cookies() const {
        std::string all;
        for (const SiteServer::Request& request : server_.requests()) {
            if (request.target.starts_with("/area"))
                all += (request.headers.contains("Cookie") ? request.headers.at("Cookie") : "-") + ";";
        }
        return all;
    }
    [[nodiscard]] std::string stores() const {
        std::string all;
        for (const SiteServer::Request& request : server_.requests()) {
            if (request.target.starts_with("/told"))
                all += request.target.substr(6) + ";";
        }
        return all;
    }
    [[nodiscard]] fs::path folder() const { return folder_.path(); }

    TemporaryFolder folder_;
    SiteServer server_;
};

TEST_F(SiteDataTest, what_a_site_has_stored_survives_a_restart_of_the_program) {
    visit();
    visit();
    EXPECT_EQ(cookies(), "-;signed=in;") << "though the cookie had no date";
    EXPECT_EQ(stores(), "undefined;yes;");
    EXPECT_TRUE(fs::is_directory(folder() / "site data"));
}

TEST_F(SiteDataTest, forgetting_takes_cookies_at_once_and_the_rest_with_the_next_start) {
    visit();
    visit(true);
    EXPECT_EQ(cookies(), "-;signed=in;-;");
    visit();
    EXPECT_EQ(cookies(), "-;signed=in;-;signed=in;") << "what came after the forgetting stays";
    EXPECT_THAT(stores(), testing::EndsWith(";undefined;"));
    visit();
    EXPECT_THAT(stores(), testing::EndsWith(";undefined;yes;")) << "it is forgotten once";
}

TEST_F(SiteDataTest, the_cache_goes_with_the_start_after_the_forgetting) {
    {
        SiteData data(folder());
        std::ofstream(folder() / "site data" / "cache" / "kept") << "a page";
    }
    {
        SiteData data(folder());
        EXPECT_TRUE(fs::exists(folder() / "site data" / "cache" / "kept"));
        data.forget_at_next_start();
    }
    const SiteData data(folder());
    EXPECT_TRUE(fs::is_empty(folder() / "site data" / "cache"));
}

TEST_F(SiteDataTest, cookies_whose_deletion_was_never_written_down_go_with_the_rest) {
    const fs::path storage = folder() / "site data" / "storage";
    {
        SiteData data(folder());
        for (const char* name : {"Cookies", "Cookies-journal"})
            std::ofstream(storage / name) << "signed in";
        fs::last_write_time(storage / "Cookies", fs::file_time_type::clock::now() - std::chrono::minutes(1));
        fs::last_write_time(storage / "Cookies-journal",
                            fs::file_time_type::clock::now() + std::chrono::minutes(1));
        data.forget_at_next_start();
    }
    const SiteData data(folder());
    EXPECT_FALSE(fs::exists(storage / "Cookies"));
    EXPECT_TRUE(fs::exists(storage / "Cookies-journal")) << "newer than the wish";
    EXPECT_FALSE(fs::exists(folder() / "site data" / "forget"));
}

TEST_F(SiteDataTest, a_second_program_at_the_same_time_keeps_nothing_and_disturbs_nothing) {
    auto first = std::make_unique<EngineProfile>(folder());
    const EngineProfile second(folder());
    EXPECT_FALSE(first->engine().isOffTheRecord());
    EXPECT_TRUE(second.engine().isOffTheRecord());
    first.reset();
    EXPECT_FALSE(EngineProfile(folder()).engine().isOffTheRecord());
}

TEST_F(SiteDataTest, the_folder_is_the_users_alone_and_the_cache_has_a_limit) {
    const EngineProfile profile(folder());
    EXPECT_EQ(fs::status(folder() / "site data").permissions(), fs::perms::owner_all);
    EXPECT_EQ(profile.engine().httpCacheMaximumSize(), 256 * 1024 * 1024);
    EXPECT_EQ(profile.engine().httpCacheType(), QWebEngineProfile::DiskHttpCache);
    EXPECT_EQ(profile.engine().cachePath().toStdString(), folder() / "site data" / "cache");
    for (const char* part : {"storage", "cache", "downloads"})
        EXPECT_EQ(fs::status(folder() / "site data" / part).permissions(), fs::perms::owner_all) << part;
}

TEST_F(SiteDataTest, forgetting_takes_the_links_that_were_visited) {
    EngineProfile profile(folder());
    const auto page = std::make_unique<QWebEnginePage>(&profile.engine());
    const QUrl url(QString::fromStdString(server_.url("/area")));
    page->setUrl(url);
    ASSERT_TRUE(wait_until([&] { return profile.engine().visitedLinksContainsUrl(url); }));
    profile.forget_sites();
    EXPECT_FALSE(profile.engine().visitedLinksContainsUrl(url));
}

TEST_F(SiteDataTest, a_folder_that_cannot_be_made_only_keeps_nothing) {
    std::ofstream(folder() / "site data") << "a file in its place";
    EXPECT_TRUE(EngineProfile(folder()).engine().isOffTheRecord());
}

TEST_F(SiteDataTest, parts_of_downloads_of_a_killed_program_are_gone_at_the_next_start) {
    fs::create_directories(folder() / "site data" / "downloads" / "1");
    std::ofstream(folder() / "site data" / "downloads" / "1" / "content") << "part";
    const SiteData data(folder());
    EXPECT_TRUE(data.taken());
    EXPECT_TRUE(fs::is_empty(folder() / "site data" / "downloads"));
}

} // namespace
} // namespace kestrune
