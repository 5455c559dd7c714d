#include "tests/desktop/engine_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class EngineImage : public EngineTest {
protected:
    EngineImage() { server_.page("/end-of-test", "the end"); }

    PageDocument open_page(std::string html) {
        server_.page("/page", std::move(html));
        return open(server_.url("/page"));
    }

    std::vector<std::string> types_of(const PageForm& form) const {
        std::vector<std::string> types;
        for (const PageElement& element : form.elements)
            types.push_back(element.type);
        return types;
    }
};

TEST_F(EngineImage, form_tags_are_found_in_the_raw_text) {
    const PageDocument page =
        open_page("<FORM Action='/A' method=post></FORM><script>var s = '<form action=/script>';</script>"
                  "<!-- <form id=c> --><form></form><textarea><form action=/area></textarea>");
    EXPECT_THAT(page.form_tags,
                ElementsAre("<form action=\"/A\" method=\"post\">", "<form action=/script>", "<form id=c>"));
}

TEST_F(EngineImage, a_form_tag_without_an_end_ends_the_search) {
    const PageDocument page = open_page("<form action=/a></form><script>/* <form action=/b */</script>");
    ASSERT_THAT(page.form_tags, SizeIs(2));
    EXPECT_EQ(page.form_tags[1], "<form action=/b */</script>")
        << "the next sign that closes anything closes it";
    const PageDocument other = open_page("<form action=/a></form><script>x = '<form action=/b'");
    ASSERT_THAT(other.form_tags, SizeIs(2));
}

TEST_F(EngineImage, link_texts_are_what_is_seen) {
    const PageDocument page = open_page(
        "<style>.up { text-transform: uppercase }</style>"
        "<a href=/1 class=up>submit software</a><a href=/2>two\n   lines</a><a href=/3>above<br>below</a>"
        "<a href=/4><img src=/none alt=picture></a><a name=no-link>anchor</a>"
        "<map name=m><area href=/5></map><a href=/6>shown<span style='display:none'>hidden</span></a>");
    EXPECT_THAT(link_texts(page),
                ElementsAre("SUBMIT SOFTWARE", "two lines", "above\nbelow", "", "", "shown"));
}

TEST_F(EngineImage, parts_that_are_not_wanted_are_left_out) {
    probe_.parts = {};
    const PageDocument page = open_page("<a href=/x>x</a><form action=/y><input name=z></form>");
    EXPECT_THAT(page.links, IsEmpty());
    EXPECT_THAT(page.forms, IsEmpty());
    EXPECT_THAT(page.inputs, IsEmpty());
    EXPECT_THAT(page.form_tags, SizeIs(1));
    EXPECT_EQ(page.parts, PageParts{});
    EXPECT_THAT(browser_->take_image(page.id, {true, false})->links, SizeIs(1));
    EXPECT_THAT(browser_->take_image(page.id, {false, true})->links, IsEmpty());
    EXPECT_THAT(browser_->take_image(page.id, {false, true})->inputs, SizeIs(1));
}

TEST_F(EngineImage, forms_show_their_elements_as_the_engine_reports_them) {
    const PageDocument page = open_page(
        "<form id=f action='cgi/add.cgi?x=1'><input name=plain value=v><input type=email><input "
        "type=url><input "
        "type=tel><input type=number><input type=search><input type=date><input type=password value=p><input "
        "type=hidden><textarea name=t>one\ntwo</textarea><select name=s><option value=1>first<option value=2 "
        "selected> second  choice </select><select multiple></select><input type=radio name=r value=on "
        "checked><input type=checkbox><input type=file><button>b</button><input type=submit><input "
        "type=image "
        "src=i.png></form>");
    ASSERT_THAT(page.forms, SizeIs(1));
    const PageForm& form = page.forms[0];
    EXPECT_EQ(form.id, "f");
    EXPECT_EQ(form.action, "cgi/add.cgi?x=1");
    EXPECT_THAT(types_of(form), ElementsAre("text", "text", "text", "text", "text", "text", "text",
                                            "password", "hidden", "textarea", "select-one", "select-multiple",
                                            "radio", "checkbox", "file", "submit", "submit"));
    EXPECT_EQ(form.elements[0].name, "plain");
    EXPECT_EQ(form.elements[0].value, "v");
    EXPECT_EQ(form.elements[9].value, "one\r\ntwo");
    ASSERT_THAT(form.elements[10].options, SizeIs(2));
    EXPECT_EQ(form.elements[10].options[1].text, "second choice");
    EXPECT_EQ(form.elements[10].options[1].value, "2");
    EXPECT_TRUE(form.elements[10].options[1].selected);
    EXPECT_FALSE(form.elements[10].options[0].selected);
    EXPECT_TRUE(form.elements[12].checked);
    EXPECT_FALSE(form.elements[13].checked);
    ASSERT_THAT(page.inputs, SizeIs(14));
    EXPECT_EQ(page.inputs[13].type, "image");
    EXPECT_EQ(page.inputs[13].src, "i.png");
    EXPECT_EQ(page.inputs[0].ref.element, form.elements[0].ref.element);
}

TEST_F(EngineImage, a_field_that_nobody_can_type_into_is_locked) {
    server_.page("/", "<form><input name=a><input name=b readonly><textarea name=c disabled></textarea>"
                      "<fieldset disabled><select name=d><option>x</select></fieldset></form>");
    const PageForm form = image_of(open(server_.url("/"))).forms.at(0);
    for (const PageElement& element : form.elements) {
        if (!element.name.empty()) {
            EXPECT_EQ(element.locked, element.name != "a") << element.name;
        }
    }
    EXPECT_EQ(form.elements.size(), 5U);
}

TEST_F(EngineImage, an_input_named_action_hides_the_forms_action) {
    const PageDocument page =
        open_page("<form action=/real><input name=action value=shadow></form><form><input name=x></form>");
    EXPECT_EQ(page.forms[0].action, "[object]");
    EXPECT_EQ(page.forms[0].action_input, "shadow");
    EXPECT_EQ(page.forms[1].action, "");
}

TEST_F(EngineImage, controls_named_like_properties_change_nothing) {
    const PageDocument page = open_page(
        "<img name=forms><img name=links><img name=documentElement><img name=readyState><img name=URL>"
        "<form name=getElementsByTagName action=/a><input name=elements><input name=id><input "
        "name=getAttribute>"
        "<input name=length><input name=localName><input name=isConnected></form><a href=/x>x</a>"
        "<form name=location></form><iframe name=kestrune></iframe><iframe name=qt></iframe>");
    EXPECT_EQ(page.url, server_.url("/page"));
    EXPECT_THAT(link_texts(page), ElementsAre("x"));
    ASSERT_THAT(page.forms, SizeIs(2));
    EXPECT_EQ(page.forms[0].action, "/a");
    EXPECT_EQ(page.forms[0].id, "");
    EXPECT_THAT(page.forms[0].elements, SizeIs(6));
}

TEST_F(EngineImage, an_element_keeps_its_number_from_image_to_image) {
    const PageDocument page = open_page("<a href=/x>x</a><form><select><option>o</select></form>");
    for (int i = 0; i < 20; ++i) {
        const PageDocument later = image_of(page);
        EXPECT_EQ(later.links[0].ref.element, page.links[0].ref.element);
        EXPECT_EQ(later.forms[0].elements[0].options[0].ref.element,
                  page.forms[0].elements[0].options[0].ref.element);
    }
    EXPECT_NE(page.links[0].ref.element, page.forms[0].ref.element);
}

TEST_F(EngineImage, open_shadow_roots_stand_where_they_are_seen) {
    const PageDocument page = open_page(
        "<a href=/1>before</a><div id=host></div><a href=/3>after</a><script>"
        "const root = document.getElementById('host').attachShadow({mode: 'open'});"
        "root.innerHTML = '<a href=/2>within</a><form action=/shadow><input name=deep></form>';</script>");
    EXPECT_THAT(link_texts(page), ElementsAre("before", "within", "after"));
    ASSERT_THAT(page.forms, SizeIs(1));
    EXPECT_EQ(page.forms[0].action, "/shadow");
    ASSERT_THAT(page.inputs, SizeIs(1));
    browser_->apply({{PageEdit::Kind::value, page.inputs[0].ref, "written"}});
    EXPECT_EQ(image_of(page).inputs[0].value, "written");
}

TEST_F(EngineImage, a_page_that_forbids_everything_is_seen_like_any_other) {
    server_.answer("/strict",
                   {"<a href=/x>x</a><form action=/y><input name=z></form>",
                    200,
                    "text/html",
                    {{"Content-Security-Policy", "default-src 'none'; form-action 'none'; sandbox"}}});
    const PageDocument page = open(server_.url("/strict"));
    EXPECT_THAT(link_texts(page), ElementsAre("x"));
    EXPECT_THAT(page.forms, SizeIs(1));
    browser_->apply({{PageEdit::Kind::value, page.inputs.at(0).ref, "v"}});
    EXPECT_EQ(image_of(page).inputs.at(0).value, "v");
}

TEST_F(EngineImage, a_page_that_spoils_its_own_world_does_not_spoil_ours) {
    const PageDocument page = open_page(
        "<a href=/x>x</a><form action=/y><input name=z value=1></form><iframe "
        "src=about:blank></iframe><script>"
        "JSON.stringify = () => 'spoilt'; JSON.parse = null; Array.from = () => []; Array.prototype.push = "
        "null;"
        "Array.prototype[Symbol.iterator] = null; Promise.prototype.then = null; window.postMessage = null;"
        "MessageChannel = null; MessagePort.prototype.postMessage = null; Map.prototype.get = null;"
        "HTMLFormElement.prototype.action = 0; Object.defineProperty(HTMLElement.prototype, 'innerText', "
        "{value: 'no'});"
        "Object.defineProperty(Document.prototype, 'links', {get() { return [] }}); setTimeout = null; "
        "WeakMap = null;"
        "Object.prototype.event = 'spoilt'; Function.prototype.call = null; "
        "EventTarget.prototype.addEventListener = null;"
        "</script>");
    EXPECT_THAT(link_texts(page), ElementsAre("x"));
    EXPECT_THAT(image_of(page).frames, SizeIs(1));
    browser_->apply({{PageEdit::Kind::value, page.inputs.at(0).ref, "2"}});
    EXPECT_EQ(image_of(page).inputs.at(0).value, "2");
}

TEST_F(EngineImage, text_of_any_script_arrives_whole) {
    const PageDocument page =
        open_page("<a href=/x>\xE6\xBC\xA2\xE5\xAD\x97 \xF0\x9F\x98\x80 \xE2\x80\xA8 &quot;&lt;'\\</a>"
                  "<form action=\"a'&quot;\\\xC3\xA9\"></form>"
                  "<a id=broken href=/y></a><script>broken.textContent = 'a\\ud800b'</script>");
    ASSERT_THAT(page.links, SizeIs(2));
    EXPECT_NE(page.links[0].innertext.find("\xE6\xBC\xA2\xE5\xAD\x97 \xF0\x9F\x98\x80"), std::string::npos);
    EXPECT_EQ(page.forms[0].action, "a'\"\\\xC3\xA9");
    EXPECT_EQ(page.links[1].innertext, "a?b") << "half a character";
}

TEST_F(EngineImage, a_large_page_comes_whole) {
    std::string html;
    for (int i = 0; i < 10000; ++i)
        html += "<p>some text to fill the page with <a href=/x>link " + std::to_string(i) + "</a>" +
                std::string(400, 'x');
    const PageDocument page = open_page(html);
    ASSERT_THAT(page.links, SizeIs(10000));
    EXPECT_EQ(page.links[9999].innertext, "link 9999");
}

TEST_F(EngineImage, a_document_that_was_left_has_no_image) {
    const PageDocument page = open_page("<a href=/x>x</a>");
    open(server_.url("/end-of-test", "127.0.0.2"));
    EXPECT_FALSE(browser_->take_image(page.id, everything).has_value());
    EXPECT_FALSE(browser_->take_image("", everything).has_value());
    EXPECT_FALSE(browser_->take_image("no'such\"document\\", everything).has_value());
}

TEST_F(EngineImage, a_page_that_hangs_gives_no_image_and_costs_a_bounded_time) {
    const PageDocument page =
        open_page("<script>onload = () => setTimeout(() => { for (;;); }, 100)</script>");
    browser_->set_answer_time(std::chrono::milliseconds(300));
    EXPECT_TRUE(wait_until([&] { return !browser_->take_image(page.id, everything).has_value(); }));
    server_.page("/other", "other");
    open(server_.url("/other", "127.0.0.2"));
}

} // namespace
} // namespace kestrune
