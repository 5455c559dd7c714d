#include "tests/desktop/engine_fixture.h"

namespace kestrune {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class EngineNavigation : public EngineTest {
protected:
    EngineNavigation() {
        server_.page("/end-of-test", "the end");
        server_.page("/a", "<title>a</title><a id=here href=#x>jump</a><a id=there href=/b>to b</a>");
        server_.page("/b", "<title>b</title><p>b");
    }

    std::string a() const { return server_.url("/a"); }
    std::string b() const { return server_.url("/b"); }
};

TEST_F(EngineNavigation, an_opened_page_is_announced_and_then_completes) {
    open(a());
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + a(), "complete " + a()));
    EXPECT_EQ(browser_->LocationURL(), a());
    EXPECT_TRUE(probe_.navigations[0].postdata.empty());
}

TEST_F(EngineNavigation, before_the_first_page_the_address_is_the_blank_page) {
    EXPECT_EQ(browser_->LocationURL(), "about:blank");
}

TEST_F(EngineNavigation, the_blank_page_is_announced_and_completes_like_any_other) {
    open("about:blank");
    let_everything_happen();
    const std::string end = server_.url("/end-of-test");
    EXPECT_THAT(probe_.road(), ElementsAre("navigate about:blank", "complete about:blank", "navigate " + end,
                                           "complete " + end));
}

TEST_F(EngineNavigation, an_address_without_a_scheme_is_meant_as_http) {
    const std::string typed = "127.0.0.1:" + std::to_string(server_.port()) + "/a";
    browser_->Navigate(typed);
    EXPECT_TRUE(wait_for("complete " + a()));
    EXPECT_EQ(probe_.told[0].substr(0, 8), "command ");
    browser_->Navigate("localhost:" + std::to_string(server_.port()) + "/a");
    EXPECT_TRUE(wait_for("complete " + server_.url("/a", "localhost")));
}

TEST_F(EngineNavigation, text_that_is_no_address_loads_nothing) {
    open(a());
    probe_.forget();
    for (const char* nonsense :
         {"", "   ", "http://", "https:///", "two words", "javascript:document.write(1)", "data:text/html,x",
          "mailto:a@b.c", "chrome://version", "about:version"})
        browser_->Navigate(nonsense);
    let_everything_happen();
    const std::string end = server_.url("/end-of-test");
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + end, "complete " + end));
}

TEST_F(EngineNavigation, a_servers_redirect_is_not_announced_again) {
    server_.redirect("/moved", "/moved-on");
    server_.redirect("/moved-on", "/b");
    browser_->Navigate(server_.url("/moved"));
    EXPECT_TRUE(wait_for("complete " + b()));
    let_everything_happen();
    const std::string end = server_.url("/end-of-test");
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + server_.url("/moved"), "complete " + b(),
                                           "navigate " + end, "complete " + end));
}

class PagesThatMoveOn : public EngineNavigation, public ::testing::WithParamInterface<const char*> {};

TEST_P(PagesThatMoveOn, are_announced_although_no_user_did_it) {
    server_.page("/moves", GetParam());
    server_.redirect("/moved", "/b");
    browser_->Navigate(server_.url("/moves"));
    EXPECT_TRUE(wait_for("complete " + b()));
    let_everything_happen();
    EXPECT_EQ(probe_.count("navigate " + server_.url("/moved")), 1);
    EXPECT_EQ(probe_.count("navigate " + b()), 0) << "the server's redirect after it";
    const std::vector<std::string> road = probe_.road();
    EXPECT_LT(std::find(road.begin(), road.end(), "navigate " + server_.url("/moved")),
              std::find(road.begin(), road.end(), "complete " + b()));
}

INSTANTIATE_TEST_SUITE_P(every_way, PagesThatMoveOn,
                         ::testing::Values("<meta http-equiv=refresh content='0;url=/moved'>m",
                                           "<script>location.href = '/moved'</script>",
                                           "<body onload=\"location.replace('/moved')\">",
                                           "<script>setTimeout(() => { location = '/moved' }, 30)</script>"));

TEST_F(EngineNavigation, frames_are_announced_as_frames) {
    server_.redirect("/moved", "/b");
    server_.page("/script", "<script>location.href = '/late'</script>");
    server_.page("/late", "late");
    server_.page("/frames", "<iframe src=/moved></iframe><iframe src=/script></iframe>");
    open(server_.url("/frames"));
    EXPECT_TRUE(wait_for("complete " + server_.url("/late")));
    let_everything_happen();
    EXPECT_EQ(probe_.count("frame navigates " + server_.url("/moved")), 1);
    EXPECT_EQ(probe_.count("frame navigates " + b()), 0);
    EXPECT_EQ(probe_.count("frame navigates " + server_.url("/late")), 1);
}

TEST_F(EngineNavigation, a_jump_within_the_page_is_no_navigation) {
    const PageDocument page = open(a());
    browser_->apply({{PageEdit::Kind::click, page.links[0].ref}});
    EXPECT_TRUE(wait_until([&] { return browser_->LocationURL() == a() + "#x"; }));
    let_everything_happen();
    EXPECT_THAT(probe_.road(), Not(Contains("navigate " + a() + "#x")));
    EXPECT_EQ(probe_.count("complete " + a()), 1);
}

TEST_F(EngineNavigation, a_click_on_a_link_follows_it) {
    const PageDocument page = open(a());
    browser_->apply({{PageEdit::Kind::click, page.links[1].ref}});
    EXPECT_TRUE(wait_for("complete " + b()));
    EXPECT_THAT(probe_.road(),
                ElementsAre("navigate " + a(), "complete " + a(), "navigate " + b(), "complete " + b()));
}

TEST_F(EngineNavigation, going_back_is_offered_from_the_second_page_on) {
    open("about:blank");
    open(a());
    EXPECT_EQ(probe_.count("command 2 off"), 1);
    EXPECT_EQ(probe_.count("command 2 on"), 0)
        << "the blank page that a window starts with is no page to go back to";
    open(b());
    EXPECT_TRUE(wait_for("command 2 on"));
    probe_.forget();
    browser_->GoBack();
    EXPECT_TRUE(wait_for("complete " + a()));
    EXPECT_TRUE(wait_for("command 2 off"));
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + a(), "complete " + a()));
    probe_.forget();
    browser_->GoBack();
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete about:blank"), 0);
}

TEST_F(EngineNavigation, going_back_to_a_page_reached_by_a_redirect_is_announced) {
    server_.redirect("/moved", "/b");
    server_.page("/moves", "<script>location.href = '/moved'</script>");
    browser_->Navigate(server_.url("/moves"));
    EXPECT_TRUE(wait_for("complete " + b()));
    open(a());
    probe_.forget();
    browser_->GoBack();
    EXPECT_TRUE(wait_for("complete " + b()));
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + b(), "complete " + b()));
}

TEST_F(EngineNavigation, a_reload_brings_a_new_document) {
    const PageDocument before = open(a());
    browser_->Reload();
    EXPECT_TRUE(wait_for("complete " + a(), 2));
    EXPECT_NE(probe_.last().id, before.id);
    EXPECT_EQ(probe_.count("navigate " + a()), 2);
    EXPECT_FALSE(browser_->take_image(before.id, everything).has_value());
}

TEST_F(EngineNavigation, what_brings_no_document_completes_nothing_and_keeps_the_page) {
    server_.answer("/nothing", {"", 204});
    server_.answer("/file", {"x", 200, "application/octet-stream", {{"Content-Disposition", "attachment"}}});
    const PageDocument page = open(a());
    for (const char* path : {"/nothing", "/file"}) {
        browser_->Navigate(server_.url(path));
        EXPECT_TRUE(wait_for("navigate " + server_.url(path)));
        EXPECT_TRUE(wait_until([&] { return server_.count_of(path) == 1; }));
        EXPECT_TRUE(browser_->take_image(page.id, everything).has_value());
        EXPECT_EQ(browser_->LocationURL(), a());
    }
    let_everything_happen();
    EXPECT_EQ(probe_.completed.size(), 2U);
}

TEST_F(EngineNavigation, an_unreachable_host_completes_nothing) {
    open(a());
    probe_.forget();
    browser_->Navigate("http://127.0.0.1:1/");
    EXPECT_TRUE(wait_for("navigate http://127.0.0.1:1/"));
    EXPECT_TRUE(wait_until([&] { return browser_->LocationURL() == "http://127.0.0.1:1/"; }));
    let_everything_happen();
    EXPECT_EQ(probe_.completed.size(), 1U);
}

TEST_F(EngineNavigation, a_page_that_the_server_says_is_missing_completes) {
    server_.answer("/gone", {"<form action=/x>not here</form>", 404});
    EXPECT_THAT(open(server_.url("/gone")).form_tags, ElementsAre("<form action=\"/x\">"));
}

} // namespace
} // namespace kestrune
