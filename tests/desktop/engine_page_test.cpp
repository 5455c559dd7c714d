#include "platform/qt/engine_page.h"
#include "platform/qt/engine_profile.h"
#include "tests/desktop/site_server.h"
#include "tests/desktop/wait_until.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrune {
namespace {

// Writes down what a page reports.
class Reports final : public EnginePageEvents {
public:
    void navigation_asked(const AskedNavigation& /*asked*/) override { told.emplace_back("asked"); }
    void navigation_requested(const QUrl& /*url*/, bool /*redirect*/, bool /*top_level*/) override {
        told.emplace_back("requested");
    }
    QWebEnginePage* window_wanted() override {
        told.emplace_back("window");
        return nullptr;
    }
    void heard(PageNotice notice) override {
        told.emplace_back(notice.kind == PageNotice::Kind::complete ? "complete" : "heard");
    }
    void process_ended() override { told.emplace_back("process"); }

    std::vector<std::string> told;
};

TEST(EnginePage, SilencedPageReportsNothingMoreToWhomeverMayBeGone) {
    SiteServer server;
    server.page("/page",
                "<iframe src=/inner></iframe><script>onload = () => { open('/window'); fetch('/seen') }"
                "</script>");
    server.page("/inner", "inner");
    EngineProfile profile;
    Reports reports;
    EnginePage page(profile.engine(), reports);
    page.setUrl(QUrl(QString::fromStdString(server.url("/page"))));
    EXPECT_TRUE(wait_until([&] { return server.count_of("/seen") == 1; }));
    for (const char* report : {"asked", "requested", "window", "heard"})
        EXPECT_NE(std::find(reports.told.begin(), reports.told.end(), report), reports.told.end()) << report;
    page.fall_silent();
    reports.told.clear();
    page.setUrl(QUrl(QString::fromStdString(server.url("/page?again"))));
    EXPECT_TRUE(wait_until([&] { return server.count_of("/seen") == 2; }));
    page.renderProcessTerminated(QWebEnginePage::NormalTerminationStatus, 0);
    EXPECT_EQ(reports.told, std::vector<std::string>{});
}

} // namespace
} // namespace kestrune
