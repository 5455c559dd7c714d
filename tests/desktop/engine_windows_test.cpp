#include "tests/desktop/engine_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;

class EngineWindows : public EngineTest {
protected:
    EngineWindows() {
        server_.page("/end-of-test", "the end");
        server_.page("/wanted", "<a href=/x>wanted</a>");
        server_.page(
            "/opener",
            "<a href=/wanted target=_blank>go</a><input type=checkbox onclick=\"window.open('/wanted')\">"
            "<form action=/wanted method=post target=_blank><button>go</button></form>");
        probe_.on_new_window = [this]() -> Browser* { return open_window(); };
    }

    Browser* open_window() {
        popup_place_ = std::make_unique<QWidget>();
        popup_place_->show();
        popup_ = std::make_unique<QtBrowser>(*popup_place_, popup_probe_, profile_);
        popup_->Navigate("about:blank");
        return popup_.get();
    }

    std::unique_ptr<QWidget> popup_place_;
    BrowserProbe popup_probe_;
    std::unique_ptr<QtBrowser> popup_;
};

class WaysToOpen : public EngineWindows, public ::testing::WithParamInterface<int> {
protected:
    static ElementRef way(const PageDocument& page, int which) {
        if (which == 0)
            return page.links.at(0).ref;
        return which == 1 ? page.inputs.at(0).ref : page.forms.at(0).elements.at(0).ref;
    }
};

TEST_P(WaysToOpen, what_was_asked_for_loads_in_the_window_that_was_given) {
    const PageDocument page = open(server_.url("/opener"));
    browser_->apply({{PageEdit::Kind::click, way(page, GetParam())}});
    ASSERT_TRUE(wait_until([&] { return popup_probe_.count("complete " + server_.url("/wanted")) == 1; }));
    EXPECT_EQ(probe_.count("new window"), 1);
    EXPECT_EQ(popup_probe_.count("navigate " + server_.url("/wanted")), 1);
    EXPECT_THAT(link_texts(popup_probe_.last()), ElementsAre("wanted"));
    EXPECT_TRUE(popup_->take_image(popup_probe_.last().id, everything).has_value());
    EXPECT_EQ(popup_->LocationURL(), server_.url("/wanted"));
    EXPECT_EQ(probe_.count("navigate " + server_.url("/wanted")), 0);
    EXPECT_TRUE(browser_->take_image(page.id, everything).has_value());
}

TEST_P(WaysToOpen, a_refused_window_loads_nothing) {
    probe_.on_new_window = nullptr;
    const PageDocument page = open(server_.url("/opener"));
    browser_->apply({{PageEdit::Kind::click, way(page, GetParam())}});
    EXPECT_TRUE(wait_until([&] { return probe_.count("new window") == 1; }));
    let_everything_happen();
    EXPECT_EQ(server_.count_of("/wanted"), 0);
    EXPECT_EQ(probe_.completed.size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(link_script_and_form, WaysToOpen, ::testing::Values(0, 1, 2));

TEST_F(EngineWindows, going_on_in_a_popup_makes_its_first_page_one_to_go_back_to) {
    server_.page("/next", "next");
    const PageDocument page = open(server_.url("/opener"));
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    ASSERT_TRUE(wait_until([&] { return popup_probe_.count("complete " + server_.url("/wanted")) == 1; }));
    EXPECT_FALSE(popup_probe_.back);
    popup_->Navigate(server_.url("/next"));
    ASSERT_TRUE(wait_until([&] { return popup_probe_.count("complete " + server_.url("/next")) == 1; }));
    EXPECT_TRUE(popup_probe_.back);
}

TEST_F(EngineWindows, a_browser_of_another_profile_is_refused) {
    const auto other = std::make_shared<EngineProfile>();
    probe_.on_new_window = [&]() -> Browser* {
        popup_place_ = std::make_unique<QWidget>();
        popup_ = std::make_unique<QtBrowser>(*popup_place_, popup_probe_, other);
        return popup_.get();
    };
    const PageDocument page = open(server_.url("/opener"));
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    EXPECT_TRUE(wait_until([&] { return probe_.count("new window") == 1; }));
    let_everything_happen();
    EXPECT_EQ(server_.count_of("/wanted"), 0);
    popup_.reset();
}

TEST_F(EngineWindows, a_second_request_while_a_question_is_open_is_refused) {
    server_.page("/two", "<script>onload = () => { open('/wanted'); open('/wanted') }</script>");
    probe_.on_new_window = [this]() -> Browser* {
        probe_.on_new_window = [this]() -> Browser* { return open_window(); };
        EXPECT_FALSE(
            wait_until([&] { return probe_.count("new window") > 1; }, std::chrono::milliseconds(300)));
        return nullptr;
    };
    open(server_.url("/two"));
    EXPECT_TRUE(wait_until([&] { return probe_.count("new window") == 2; }));
}

TEST_F(EngineWindows, a_closed_popup_leaves_its_opener_working) {
    const PageDocument page = open(server_.url("/opener"));
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    ASSERT_TRUE(wait_until([&] { return popup_probe_.count("complete " + server_.url("/wanted")) == 1; }));
    popup_.reset();
    popup_place_.reset();
    EXPECT_TRUE(browser_->take_image(page.id, everything).has_value());
}

TEST_F(EngineWindows, a_browser_whose_place_is_gone_ends_in_peace) {
    open_window();
    ASSERT_TRUE(wait_until([&] { return popup_probe_.count("complete about:blank") == 1; }));
    popup_place_.reset();
    popup_.reset();
    open(server_.url("/opener"));
}

} // namespace
} // namespace kestrune
