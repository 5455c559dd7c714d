#pragma once

#include "tests/desktop/bar_user.h"
#include "tests/desktop/engine_fixture.h"

namespace kestrune {

// A browser whose user sees its bars.
class ComfortsTest : public EngineTest {
protected:
    ComfortsTest() { server_.page("/end-of-test", "the end"); }

    PageDocument open_page(std::string html) {
        server_.page("/page", std::move(html));
        return open(server_.url("/page"));
    }
    // What page code computes, read from the first input of the page.
    std::string said(const PageDocument& page) { return image_of(page).inputs.at(0).value; }
    void click_link(const PageDocument& page, std::size_t which = 0) {
        browser_->apply({{PageEdit::Kind::click, page.links.at(which).ref}});
    }
    PageBar* bar(const char* name) { return BarUser::shown(place_, name); }
    PageBar* wait_for_bar(const char* name) {
        EXPECT_TRUE(wait_until([&] { return bar(name) != nullptr; })) << name;
        return bar(name);
    }

    BarUser user_;
};

} // namespace kestrune
