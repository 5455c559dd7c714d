#include "tests/desktop/engine_fixture.h"

#include <QWebEnginePage>
#include <QWebEngineScriptCollection>
#include <QWebEngineView>

#include <csignal>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

// When a document counts as completed although its load never ends by itself.
class EngineCompletion : public EngineTest {
protected:
    EngineCompletion() {
        server_.page("/end-of-test", "the end");
        server_.page("/two", "<a href=/x>two</a>");
        server_.never("/silence");
        server_.page("/picture", "<a href=/x>seen</a><img src=/silence>");
    }
};

TEST_F(EngineCompletion, a_page_whose_picture_never_comes_completes_after_the_straggler_time) {
    browser_->set_straggler_time(std::chrono::milliseconds(200));
    const PageDocument page = open(server_.url("/picture"));
    EXPECT_THAT(link_texts(page), ElementsAre("seen"));
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete " + server_.url("/picture")), 1);
}

// The engine now and then loses a page's scripts on the way to another site.
TEST_F(EngineCompletion, a_document_that_the_engine_gave_no_script_completes_all_the_same) {
    browser_->view().page()->scripts().clear();
    const PageDocument page = open(server_.url("/two"));
    EXPECT_THAT(link_texts(page), ElementsAre("two"));
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete " + server_.url("/two")), 1);
}

TEST_F(EngineCompletion, a_document_without_script_that_calls_its_elements_as_the_script_completes_too) {
    const std::string frame = server_.url("/two", "127.0.0.2");
    for (const std::string& element :
         {std::string("<p id=kestrune>"), std::string("<form id=kestrune><input name=document></form>"),
          "<iframe name=kestrune src='" + frame + "'></iframe>"}) {
        browser_ = std::make_unique<QtBrowser>(place_, probe_, profile_);
        browser_->view().page()->scripts().clear();
        server_.page("/named", "<a href=/x>named</a>" + element);
        EXPECT_THAT(link_texts(open(server_.url("/named"))), ElementsAre("named")) << element;
        probe_.forget();
    }
}

TEST_F(EngineCompletion, a_document_without_script_whose_picture_never_comes_completes_all_the_same) {
    browser_->set_straggler_time(std::chrono::milliseconds(200));
    browser_->view().page()->scripts().clear();
    const PageDocument page = open(server_.url("/picture"));
    EXPECT_THAT(link_texts(page), ElementsAre("seen"));
}

TEST_F(EngineCompletion, before_the_straggler_time_is_over_nothing_completes) {
    browser_->set_straggler_time(std::chrono::minutes(10));
    browser_->Navigate(server_.url("/picture"));
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/silence") == 1; }));
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete " + server_.url("/picture")), 0);
}

TEST_F(EngineCompletion, a_frame_that_never_comes_stands_empty_and_the_rest_completes) {
    browser_->set_straggler_time(std::chrono::milliseconds(200));
    server_.page("/top", "<iframe src=/silence></iframe><iframe src='" +
                             server_.url("/silence", "127.0.0.2") + "'></iframe><iframe src=/two></iframe>");
    const PageDocument page = open(server_.url("/top"));
    ASSERT_THAT(page.frames, SizeIs(3));
    EXPECT_TRUE(page.frames[0].id.empty());
    EXPECT_TRUE(page.frames[1].id.empty());
    EXPECT_THAT(link_texts(page.frames[2]), ElementsAre("two"));
    EXPECT_EQ(probe_.count("complete about:blank"), 0);
}

TEST_F(EngineCompletion, a_frame_with_a_straggler_completes_too) {
    browser_->set_straggler_time(std::chrono::milliseconds(200));
    server_.page("/top", "<iframe src='" + server_.url("/picture", "127.0.0.2") + "'></iframe>");
    open(server_.url("/top"));
    EXPECT_TRUE(wait_for("complete " + server_.url("/picture", "127.0.0.2")));
}

TEST_F(EngineCompletion, stopping_completes_the_document_that_stands_and_its_frames) {
    browser_->set_straggler_time(std::chrono::minutes(10));
    server_.page("/top", "<a href=/x>top</a><img src=/silence><iframe src='" +
                             server_.url("/picture", "127.0.0.2") + "'></iframe>");
    browser_->Navigate(server_.url("/top"));
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/silence") == 2; }));
    browser_->Stop();
    EXPECT_TRUE(wait_for("complete " + server_.url("/top")));
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + server_.url("/top"),
                                           "frame navigates " + server_.url("/picture", "127.0.0.2"),
                                           "complete " + server_.url("/picture", "127.0.0.2"),
                                           "complete " + server_.url("/top")));
    EXPECT_THAT(probe_.last().frames, SizeIs(1));
}

TEST_F(EngineCompletion, stopping_what_has_brought_no_document_completes_nothing) {
    const PageDocument page = open(server_.url("/two"));
    browser_->Navigate(server_.url("/silence"));
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/silence") == 1; }));
    browser_->Stop();
    EXPECT_TRUE(browser_->take_image(page.id, everything).has_value());
    EXPECT_EQ(browser_->LocationURL(), server_.url("/two"));
    let_everything_happen();
    EXPECT_EQ(probe_.completed.size(), 2U);
}

TEST_F(EngineCompletion, stopping_a_completed_page_completes_nothing_again) {
    open(server_.url("/two"));
    browser_->Stop();
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete " + server_.url("/two")), 1);
}

TEST_F(EngineCompletion, a_page_left_before_it_completed_completes_nothing) {
    browser_->set_straggler_time(std::chrono::milliseconds(400));
    browser_->Navigate(server_.url("/picture"));
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/silence") == 1; }));
    open(server_.url("/two", "127.0.0.2"));
    browser_->set_straggler_time(std::chrono::milliseconds(500));
    server_.page("/later", "<img src=/silence>");
    open(server_.url("/later"));
    EXPECT_EQ(probe_.count("complete " + server_.url("/picture")), 0);
}

TEST_F(EngineCompletion, what_a_page_adds_as_it_loads_is_in_the_image) {
    server_.page("/adds",
                 "<script>onload = () => { document.body.innerHTML += '<a href=/x>added</a>' }</script>x");
    EXPECT_THAT(link_texts(open(server_.url("/adds"))), ElementsAre("added"));
}

TEST_F(EngineCompletion, a_page_that_writes_itself_anew_completes_once_with_what_it_wrote) {
    server_.page("/writes",
                 "<script>onload = () => { document.open(); document.write('<a href=/x>written</a><iframe "
                 "src=/two></iframe>'); document.close(); }</script>old");
    open(server_.url("/writes"));
    EXPECT_TRUE(wait_for("complete " + server_.url("/two")));
    const PageDocument page = probe_.completed.front();
    const PageDocument now = image_of(page);
    EXPECT_THAT(link_texts(now), ElementsAre("written"));
    ASSERT_THAT(now.frames, SizeIs(1));
    EXPECT_THAT(link_texts(now.frames[0]), ElementsAre("two"));
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete " + server_.url("/writes")), 1);
}

TEST_F(EngineCompletion, a_page_that_writes_itself_anew_before_its_load_event_completes) {
    server_.page("/writes",
                 "<script>setTimeout(() => { document.open(); document.write('<a href=/x>written</a>');"
                 "document.close(); }, 50)</script><img src=/silence>");
    EXPECT_THAT(link_texts(open(server_.url("/writes"))), ElementsAre("written"));
}

TEST_F(EngineCompletion, a_forged_load_event_completes_nothing) {
    browser_->set_straggler_time(std::chrono::minutes(10));
    server_.page(
        "/forges",
        "<script>dispatchEvent(new Event('load')); document.dispatchEvent(new "
        "Event('DOMContentLoaded')); dispatchEvent(new Event('pagehide'))</script><img src=/silence>");
    browser_->Navigate(server_.url("/forges"));
    EXPECT_TRUE(wait_until([&] { return server_.count_of("/silence") == 1; }));
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete " + server_.url("/forges")), 0);
}

TEST_F(EngineCompletion, a_page_in_a_window_that_is_not_shown_completes) {
    place_.hide();
    open(server_.url("/two"));
}

TEST_F(EngineCompletion, an_event_that_closes_the_window_ends_everything_in_peace) {
    server_.page("/top", "<iframe src=/two></iframe><iframe src=/picture></iframe>");
    probe_.on_complete = [&](const PageDocument&) { browser_.reset(); };
    browser_->Navigate(server_.url("/top"));
    EXPECT_TRUE(wait_until([&] { return browser_ == nullptr; }));
    EXPECT_EQ(probe_.completed.size(), 1U);
}

TEST_F(EngineCompletion, events_wait_for_a_handler_that_asks_the_page) {
    server_.page("/top", "<iframe src=/two></iframe><a href=/x>top</a>");
    probe_.on_complete = [&](const PageDocument& document) {
        const PageDocument copy = document;
        EXPECT_EQ(image_of(copy).id, copy.id);
    };
    open(server_.url("/top"));
    EXPECT_EQ(probe_.completed.size(), 2U);
}

TEST_F(EngineCompletion, a_page_process_that_dies_is_survived) {
    const PageDocument page = open(server_.url("/two"));
    const qint64 process = browser_->view().page()->renderProcessPid();
    ASSERT_GT(process, 1);
    bool asked = false;
    probe_.on_complete = [&](const PageDocument&) { asked = true; };
    ASSERT_EQ(kill(static_cast<pid_t>(process), SIGKILL), 0);
    EXPECT_FALSE(browser_->take_image(page.id, everything).has_value());
    EXPECT_FALSE(asked);
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    open(server_.url("/end-of-test"));
}

} // namespace
} // namespace kestrune
