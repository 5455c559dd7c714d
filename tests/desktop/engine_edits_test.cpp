#include "tests/desktop/engine_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

class EngineEdits : public EngineTest {
protected:
    EngineEdits() {
        server_.page("/end-of-test", "the end");
        server_.page("/b", "b");
    }

    PageDocument open_page(std::string html) {
        server_.page("/page", std::move(html));
        return open(server_.url("/page"));
    }

    static const PageElement& named(const PageDocument& page, std::string_view name) {
        static const PageElement none;
        for (const PageForm& form : page.forms) {
            for (const PageElement& element : form.elements) {
                if (element.name == name)
                    return element;
            }
        }
        ADD_FAILURE() << "no element " << name;
        return none;
    }

    static PageEdit value(const PageElement& element, std::string text) {
        return {PageEdit::Kind::value, element.ref, std::move(text)};
    }

    // Shows each event that the form hears in the title attribute of its last input.
    static constexpr const char* listening =
        "<script>for (const type of ['click', 'input', 'change']) document.addEventListener(type, e => "
        "document.querySelector('[name=log]').value += type + ':' + (e.target.name || e.target.tagName) + "
        "';')</script>";
};

TEST_F(EngineEdits, values_are_written_and_the_page_hears_of_them) {
    const PageDocument page = open_page(
        std::string("<form><input name=a><textarea name=t></textarea><input name=log></form>") + listening);
    browser_->apply({value(named(page, "a"), "one"), value(named(page, "t"), "two\r\nlines")});
    const PageDocument after = image_of(page);
    EXPECT_EQ(named(after, "a").value, "one");
    EXPECT_EQ(named(after, "t").value, "two\r\nlines");
    EXPECT_EQ(named(after, "log").value, "input:a;change:a;input:t;change:t;");
}

TEST_F(EngineEdits, buttons_are_checked_and_the_page_hears_of_it) {
    const PageDocument page =
        open_page(std::string("<form><input type=radio name=r value=1 checked><input type=radio "
                              "name=r value=2><input type=checkbox name=c><input type=checkbox "
                              "name=d checked><input type=checkbox name=off disabled><input "
                              "name=log></form>") +
                  listening);
    const std::vector<PageElement>& elements = page.forms.at(0).elements;
    std::vector<PageEdit> edits;
    for (std::size_t i = 1; i < 5; ++i)
        edits.push_back({PageEdit::Kind::check, elements.at(i).ref});
    browser_->apply(edits);
    const PageDocument after = image_of(page);
    EXPECT_FALSE(after.forms[0].elements[0].checked);
    for (std::size_t i = 1; i < 5; ++i)
        EXPECT_TRUE(after.forms[0].elements[i].checked) << i;
    EXPECT_EQ(named(after, "log").value,
              "click:r;input:r;change:r;click:c;input:c;change:c;input:off;change:off;");
}

TEST_F(EngineEdits, a_check_box_whose_page_undoes_the_click_is_checked_all_the_same) {
    const PageDocument page = open_page("<form><input type=checkbox name=c onclick='return false'></form>");
    browser_->apply({{PageEdit::Kind::check, named(page, "c").ref}});
    EXPECT_TRUE(named(image_of(page), "c").checked);
}

TEST_F(EngineEdits, options_are_selected_and_the_page_hears_of_it) {
    const PageDocument page = open_page(
        std::string("<form><select name=s><option>1<option>2</select><select multiple name=m><option>1"
                    "<option>2<option>3</select><input name=log></form>") +
        listening);
    browser_->apply({{PageEdit::Kind::select, named(page, "s").options.at(1).ref},
                     {PageEdit::Kind::select, named(page, "m").options.at(0).ref},
                     {PageEdit::Kind::select, named(page, "m").options.at(2).ref}});
    const PageDocument after = image_of(page);
    EXPECT_TRUE(named(after, "s").options[1].selected);
    EXPECT_FALSE(named(after, "s").options[0].selected);
    EXPECT_TRUE(named(after, "m").options[0].selected);
    EXPECT_FALSE(named(after, "m").options[1].selected);
    EXPECT_TRUE(named(after, "m").options[2].selected);
    EXPECT_EQ(named(after, "log").value, "input:s;change:s;input:m;change:m;input:m;change:m;");
}

TEST_F(EngineEdits, a_script_that_watches_the_property_notices_the_write) {
    // As script frameworks do: the element's own property hides the engine's, and tells a write by their code
    // from one by the user.
    const PageDocument page = open_page(
        "<form><input name=a><input name=log></form><script>const a = document.querySelector('[name=a]');"
        "const native = Object.getOwnPropertyDescriptor(HTMLInputElement.prototype, 'value'); let known = '';"
        "Object.defineProperty(a, 'value', { get() { return native.get.call(a) }, set(v) { known = v; "
        "native.set.call(a, v) } });"
        "a.addEventListener('input', () => { if (native.get.call(a) !== known) "
        "document.querySelector('[name=log]')"
        ".value = 'by the user' })</script>");
    browser_->apply({value(named(page, "a"), "x")});
    EXPECT_EQ(named(image_of(page), "log").value, "by the user");
}

TEST_F(EngineEdits, a_click_on_a_button_sends_the_form) {
    server_.page("/sent", "sent");
    const PageDocument page =
        open_page("<form method=post action=/sent><input name=a><button name=go value=1>Go</button>");
    browser_->apply({value(named(page, "a"), "x y"), {PageEdit::Kind::click, named(page, "go").ref}});
    EXPECT_TRUE(wait_for("complete " + server_.url("/sent")));
    const std::vector<SiteServer::Request> requests = server_.requests();
    const auto sent =
        std::find_if(requests.begin(), requests.end(), [](const auto& r) { return r.method == "POST"; });
    ASSERT_NE(sent, requests.end());
    EXPECT_EQ(sent->body, "a=x+y&go=1");
}

TEST_F(EngineEdits, a_script_address_is_run_by_a_click_on_its_link) {
    const PageDocument page = open_page("<a href=\"javascript:void(document.forms[0].a.value = 'run')\">x</a>"
                                        "<form><input name=a></form>");
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    EXPECT_TRUE(wait_until([&] { return named(image_of(page), "a").value == "run"; }));
    EXPECT_EQ(probe_.navigations.size(), 1U);
}

TEST_F(EngineEdits, edits_for_a_document_that_was_left_change_nothing) {
    const PageDocument before = open_page("<form><input name=a></form>");
    browser_->Reload();
    EXPECT_TRUE(wait_for("complete " + server_.url("/page"), 2));
    browser_->apply({value(named(before, "a"), "wrong place"), {PageEdit::Kind::click, before.forms[0].ref}});
    EXPECT_EQ(named(image_of(probe_.last()), "a").value, "");
}

TEST_F(EngineEdits, edits_for_elements_that_are_gone_or_never_were_are_dropped_and_the_rest_is_carried_out) {
    const PageDocument page =
        open_page("<form><input name=a><input name=b><input name=c></form><input type=checkbox "
                  "id=x onclick='document.querySelector(\"[name=a]\").remove()'>");
    ElementRef unknown = named(page, "a").ref;
    unknown.element = 4000000000U;
    ElementRef none = named(page, "a").ref;
    none.element = 0;
    const ElementRef nowhere{"", 1};
    browser_->apply({{PageEdit::Kind::click, page.inputs.at(3).ref},
                     value(named(page, "a"), "gone"),
                     {PageEdit::Kind::value, unknown, "x"},
                     {PageEdit::Kind::value, none, "x"},
                     {PageEdit::Kind::value, nowhere, "x"},
                     {PageEdit::Kind::select, named(page, "b").ref, "x"},
                     {PageEdit::Kind::value, page.forms[0].ref, "x"},
                     value(named(page, "c"), "written")});
    const PageDocument after = image_of(page);
    ASSERT_THAT(after.forms.at(0).elements, SizeIs(2));
    EXPECT_EQ(named(after, "b").value, "");
    EXPECT_EQ(named(after, "c").value, "written");
}

TEST_F(EngineEdits, a_file_box_takes_no_value_and_stops_nothing) {
    const PageDocument page = open_page("<form><input type=file name=f><input name=a></form>");
    browser_->apply({value(named(page, "f"), "/etc/passwd"), value(named(page, "a"), "x")});
    EXPECT_EQ(named(image_of(page), "f").value, "");
    EXPECT_EQ(named(image_of(page), "a").value, "x");
}

TEST_F(EngineEdits, an_element_that_was_moved_to_another_document_is_left_alone) {
    const PageDocument page =
        open_page("<form><input name=a></form><iframe srcdoc='<p>other'></iframe><input "
                  "type=checkbox id=x onclick='frames[0].document.body.append("
                  "document.querySelector(\"[name=a]\"))'>");
    browser_->apply({{PageEdit::Kind::click, page.inputs.at(1).ref}});
    browser_->apply({value(named(page, "a"), "wrong place")});
    const PageDocument after = image_of(page);
    ASSERT_THAT(after.frames.at(0).inputs, SizeIs(1));
    EXPECT_EQ(after.frames[0].inputs[0].value, "");
}

TEST_F(EngineEdits, what_a_value_spells_stays_text) {
    const std::string text =
        "'\"\\</script><script>alert(1)</script>\xE2\x80\xA8${x}`\xC3\xA9\xF0\x9F\x98\x80";
    const PageDocument page = open_page("<form><input name=a></form>");
    browser_->apply({value(named(page, "a"), text)});
    EXPECT_EQ(named(image_of(page), "a").value, text);
}

} // namespace
} // namespace kestrune
