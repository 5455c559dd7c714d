#include "platform/memory/memory_browser.h"
#include "platform/qt/engine_profile.h"
#include "platform/qt/qt_browser.h"
#include "tests/desktop/browser_probe.h"
#include "tests/desktop/site_server.h"
#include "tests/desktop/wait_until.h"

#include <QWidget>

#include <gmock/gmock.h>

#include <map>
#include <memory>

// What every browser owes its window, on the one that tests write pages for and on the real engine.

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// A page of the tests: links that lead to a path, one form, frames.
struct TestPage {
    std::vector<std::pair<std::string, std::string>> links; // text, path
    std::vector<PageElement> elements;
    std::string action = {};
    std::vector<std::string> frames = {}; // paths
};

class BrowserWorld {
public:
    BrowserWorld() = default;
    virtual ~BrowserWorld() = default;
    BrowserWorld(const BrowserWorld&) = delete;
    BrowserWorld& operator=(const BrowserWorld&) = delete;
    BrowserWorld(BrowserWorld&&) = delete;
    BrowserWorld& operator=(BrowserWorld&&) = delete;

    virtual Browser& browser() = 0;
    virtual void page(const std::string& path, const TestPage& page) = 0;
    [[nodiscard]] virtual std::string url(const std::string& path) const = 0;
    // Lets navigations arrive until the condition holds.
    [[nodiscard]] virtual bool until(const std::function<bool()>& holds) = 0;

    BrowserProbe probe;
};

class MemoryWorld : public BrowserWorld {
public:
    MemoryWorld() {
        browser_.on_click = [this](const PageLink& link) {
            browser_.page_navigates(targets_.at(link.innertext));
        };
    }
    Browser& browser() override { return browser_; }
    void page(const std::string& path, const TestPage& page) override {
        browser_.pages[url(path)] = document(path, page);
    }
    [[nodiscard]] std::string url(const std::string& path) const override { return "http://site" + path; }
    [[nodiscard]] bool until(const std::function<bool()>& holds) override {
        while (!holds()) {
            if (!browser_.arrive())
                return false;
        }
        return true;
    }

private:
    PageDocument document(const std::string& path, const TestPage& page) {
        PageDocument made;
        if (!page.elements.empty())
            made = page_of_forms(url(path), {form_of(page.action, page.elements)});
        made.url = url(path);
        made.form_tags.clear();
        for (const PageForm& form : made.forms)
            made.form_tags.push_back("<form action=\"" + form.action + "\">");
        for (const auto& [text, target] : page.links) {
            made.links.push_back(link(text));
            targets_[text] = url(target);
        }
        for (const std::string& frame : page.frames)
            made.frames.push_back(browser_.pages.at(url(frame)));
        return made;
    }

    WindowForm form_{"frmBrowser"};
    MemoryBrowser browser_{form_, probe};
    std::map<std::string, std::string> targets_;
};

class EngineWorld : public BrowserWorld {
public:
    EngineWorld() { place_.show(); }
    Browser& browser() override { return browser_; }
    void page(const std::string& path, const TestPage& page) override { server_.page(path, html(page)); }
    [[nodiscard]] std::string url(const std::string& path) const override { return server_.url(path); }
    [[nodiscard]] bool until(const std::function<bool()>& holds) override { return wait_until(holds); }

private:
    static std::string html(const TestPage& page) {
        std::string html = "<!doctype html>";
        for (const auto& [text, target] : page.links)
            html += "<a href='" + target + "'>" + text + "</a> ";
        for (const std::string& frame : page.frames)
            html += "<iframe src='" + frame + "'></iframe>";
        if (page.elements.empty())
            return html;
        html += "<form action=\"" + page.action + "\">";
        for (const PageElement& element : page.elements)
            html += html_of(element);
        return html + "</form>";
    }

    static std::string html_of(const PageElement& element) {
        const std::string name = " name='" + element.name + "'";
        if (element.type == "textarea")
            return "<textarea" + name + ">" + element.value + "</textarea>";
        if (element.type.substr(0, 6) != "select")
            return "<input type='" + element.type + "'" + name + " value='" + element.value + "'>";
        std::string html = "<select" + name + (element.type == "select-multiple" ? " multiple>" : ">");
        for (const PageOption& option : element.options)
            html += "<option value='" + option.value + "'>" + option.text + "</option>";
        return html + "</select>";
    }

    SiteServer server_;
    QWidget place_;
    QtBrowser browser_{place_, probe, std::make_shared<EngineProfile>()};
};

template <typename World>
class BrowserContract : public ::testing::Test {
protected:
    BrowserContract() {
        world_.page("/a", {{{"to b", "/b"}}, {}});
        world_.page("/b", {{{"to a", "/a"}, {"to c", "/c"}}, {}});
        world_.page("/c", {});
        world_.page("/form",
                    {{},
                     {element("text", "a", "was"), element("textarea", "t"), element("checkbox", "c", "1"),
                      element("radio", "r", "1"), element("radio", "r", "2"),
                      list_of("select-one", "s", {{"one", "1"}, {"two", "2"}}),
                      list_of("select-multiple", "m", {{"one", "1"}, {"two", "2"}, {"three", "3"}})},
                     "/send"});
        world_.page("/frames", {{{"outer", "/c"}}, {}, "", {"/a", "/b"}});
    }

    Browser& browser() { return world_.browser(); }
    BrowserProbe& probe() { return world_.probe; }
    std::string url(const std::string& path) { return world_.url(path); }

    PageDocument open(const std::string& path) {
        const std::string address = path.starts_with("about:") ? path : url(path);
        const std::size_t before = probe().completed.size();
        browser().Navigate(address);
        const bool came =
            world_.until([&] { return probe().completed.size() > before && probe().last().url == address; });
        EXPECT_TRUE(came) << address;
        return came ? probe().last() : PageDocument{};
    }

    PageDocument now(const PageDocument& document) {
        return browser().take_image(document.id, {true, true}).value_or(PageDocument{});
    }

    World world_;
};

using Worlds = ::testing::Types<MemoryWorld, EngineWorld>;
TYPED_TEST_SUITE(BrowserContract, Worlds);

TYPED_TEST(BrowserContract, a_navigation_is_announced_before_its_document_completes) {
    this->open("/a");
    EXPECT_THAT(this->probe().road(),
                ElementsAre("navigate " + this->url("/a"), "complete " + this->url("/a")));
    EXPECT_EQ(this->browser().LocationURL(), this->url("/a"));
    EXPECT_TRUE(this->probe().navigations[0].top_level);
    EXPECT_TRUE(this->probe().navigations[0].submitted.id.empty());
}

TYPED_TEST(BrowserContract, the_address_is_blank_before_the_first_page) {
    EXPECT_EQ(this->browser().LocationURL(), "about:blank");
}

TYPED_TEST(BrowserContract, an_address_without_a_scheme_is_meant_as_http) {
    this->browser().Navigate(this->url("/a").substr(7));
    EXPECT_TRUE(this->world_.until([&] { return this->probe().count("complete " + this->url("/a")) == 1; }));
}

TYPED_TEST(BrowserContract, text_that_is_no_address_loads_nothing) {
    this->browser().Navigate("");
    this->browser().Navigate("two words");
    this->open("/c");
    EXPECT_THAT(this->probe().navigations, SizeIs(1));
}

TYPED_TEST(BrowserContract, frames_complete_before_their_document_and_stand_in_it) {
    const PageDocument page = this->open("/frames");
    ASSERT_THAT(this->probe().completed, SizeIs(3));
    ASSERT_THAT(page.frames, SizeIs(2));
    EXPECT_EQ(page.frames[0].url, this->url("/a"));
    ASSERT_THAT(page.frames[1].links, SizeIs(2));
    EXPECT_EQ(page.frames[1].links[1].innertext, "to c");
    EXPECT_NE(page.frames[0].id, page.id);
    EXPECT_EQ(this->now(page.frames[1]).id, page.frames[1].id);
}

TYPED_TEST(BrowserContract, an_image_holds_the_parts_that_are_wanted) {
    this->probe().parts = {.links = true, .forms = false};
    const PageDocument page = this->open("/form");
    EXPECT_THAT(page.forms, IsEmpty());
    EXPECT_THAT(page.inputs, IsEmpty());
    EXPECT_EQ(page.parts, this->probe().parts);
    EXPECT_THAT(page.form_tags, ElementsAre("<form action=\"/send\">"));
    const PageDocument both = this->now(page);
    ASSERT_THAT(both.forms, SizeIs(1));
    EXPECT_THAT(both.forms[0].elements, SizeIs(7));
    EXPECT_THAT(both.inputs, SizeIs(4));
    EXPECT_EQ(both.inputs[1].ref.element, both.forms[0].elements[2].ref.element);
}

TYPED_TEST(BrowserContract, an_element_keeps_its_number) {
    const PageDocument page = this->open("/b");
    const PageDocument later = this->now(page);
    EXPECT_EQ(later.links.at(1).ref.element, page.links.at(1).ref.element);
    EXPECT_NE(page.links[0].ref.element, page.links[1].ref.element);
    EXPECT_NE(page.links[0].ref.element, 0U);
}

TYPED_TEST(BrowserContract, edits_change_the_page) {
    const PageDocument page = this->open("/form");
    const std::vector<PageElement>& elements = page.forms.at(0).elements;
    std::vector<PageEdit> edits;
    edits.push_back({PageEdit::Kind::value, elements[0].ref, "new"});
    edits.push_back({PageEdit::Kind::value, elements[1].ref, "one\r\ntwo"});
    edits.push_back({PageEdit::Kind::check, elements[2].ref});
    edits.push_back({PageEdit::Kind::check, elements[3].ref});
    edits.push_back({PageEdit::Kind::check, elements[4].ref});
    edits.push_back({PageEdit::Kind::select, elements[5].options.at(1).ref});
    edits.push_back({PageEdit::Kind::select, elements[6].options.at(0).ref});
    edits.push_back({PageEdit::Kind::select, elements[6].options.at(2).ref});
    this->browser().apply(edits);
    const PageDocument after = this->now(page);
    const std::vector<PageElement>& written = after.forms.at(0).elements;
    EXPECT_EQ(written[0].value, "new");
    EXPECT_EQ(written[1].value, "one\r\ntwo");
    EXPECT_TRUE(written[2].checked);
    EXPECT_FALSE(written[3].checked) << "one of a group";
    EXPECT_TRUE(written[4].checked);
    EXPECT_FALSE(written[5].options[0].selected);
    EXPECT_TRUE(written[5].options[1].selected);
    EXPECT_TRUE(written[6].options[0].selected);
    EXPECT_FALSE(written[6].options[1].selected);
    EXPECT_TRUE(written[6].options[2].selected);
}

TYPED_TEST(BrowserContract, edits_that_name_nothing_change_nothing) {
    const PageDocument page = this->open("/form");
    ElementRef unknown = page.forms.at(0).elements.at(0).ref;
    unknown.element = 100000;
    const ElementRef nowhere{"no document", 1};
    std::vector<PageEdit> edits;
    edits.push_back({PageEdit::Kind::value, unknown, "x"});
    edits.push_back({PageEdit::Kind::value, nowhere, "x"});
    this->browser().apply(edits);
    EXPECT_EQ(this->now(page).forms.at(0).elements.at(0).value, "was");
}

TYPED_TEST(BrowserContract, a_click_follows_a_link) {
    const PageDocument page = this->open("/b");
    this->browser().apply({{PageEdit::Kind::click, page.links.at(1).ref}});
    EXPECT_TRUE(this->world_.until([&] { return this->probe().count("complete " + this->url("/c")) == 1; }));
    EXPECT_THAT(this->probe().road(),
                ElementsAre("navigate " + this->url("/b"), "complete " + this->url("/b"),
                            "navigate " + this->url("/c"), "complete " + this->url("/c")));
}

TYPED_TEST(BrowserContract, a_document_that_was_left_gives_no_image_and_takes_no_edits) {
    const PageDocument page = this->open("/form");
    const PageDocument next = this->open("/b");
    EXPECT_FALSE(this->browser().take_image(page.id, {true, true}).has_value());
    this->browser().apply({{PageEdit::Kind::click, page.inputs.at(0).ref}});
    EXPECT_EQ(this->now(next).id, next.id);
    EXPECT_FALSE(this->browser().take_image("", {true, true}).has_value());
}

TYPED_TEST(BrowserContract, a_reload_brings_a_new_document) {
    const PageDocument page = this->open("/a");
    this->browser().Reload();
    EXPECT_TRUE(this->world_.until([&] { return this->probe().count("complete " + this->url("/a")) == 2; }));
    EXPECT_NE(this->probe().last().id, page.id);
    EXPECT_EQ(this->probe().count("navigate " + this->url("/a")), 2);
}

TYPED_TEST(BrowserContract, going_back_is_announced_once_and_at_each_change) {
    this->open("about:blank");
    this->browser().GoBack();
    this->open("/a");
    EXPECT_EQ(this->probe().count("command 2 off"), 1);
    this->browser().GoBack();
    this->open("/b");
    EXPECT_TRUE(this->world_.until([&] { return this->probe().count("command 2 on") == 1; }));
    this->open("/c");
    this->probe().forget();
    this->browser().GoBack();
    EXPECT_TRUE(this->world_.until([&] { return this->probe().count("complete " + this->url("/b")) == 1; }));
    EXPECT_THAT(this->probe().told,
                ElementsAre("navigate " + this->url("/b"), "complete " + this->url("/b")));
    this->browser().GoBack();
    EXPECT_TRUE(this->world_.until([&] {
        return this->probe().count("complete " + this->url("/a")) == 1 &&
               this->probe().count("command 2 off") == 1;
    }));
}

TYPED_TEST(BrowserContract, stopping_a_page_that_stands_changes_nothing) {
    const PageDocument page = this->open("/a");
    this->browser().Stop();
    EXPECT_EQ(this->now(page).id, page.id);
    this->open("/c");
    EXPECT_THAT(this->probe().completed, SizeIs(2));
}

} // namespace
} // namespace kestrune
