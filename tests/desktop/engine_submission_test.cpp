#include "tests/desktop/painted.h"
#include "tests/desktop/submission_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(EngineSubmission, post_by_a_button_tells_the_bytes_that_the_server_received) {
    const PageDocument page = open_page(
        "<form action=/take method=post><input name='a b' value='x &=+%-_.~*!()'><input name=u "
        "value='\u00fc\u20ac\U0001F600'><textarea name=t>\none\ntwo\n</textarea><input type=checkbox name=c "
        "checked>"
        "<select name=s><option value=1>one<option value=2 selected>two</select><input name=off disabled>"
        "<input type=hidden name=_charset_><button name=go value=send>Send</button></form>");
    press(page, "send");
    const NavigateEvent event = event_of();
    expect_told_as_received(event);
    EXPECT_TRUE(event.top_level);
    EXPECT_EQ(event.frame_name, "");
    EXPECT_EQ(event.postdata.substr(event.postdata.rfind('&')), "&go=send");
    EXPECT_EQ(event.submitted.id, page.id);
    EXPECT_EQ(event.submitted.url, page.url);
    ASSERT_THAT(event.submitted.forms, SizeIs(1));
    EXPECT_EQ(event.submitted.forms[0].ref.element, page.forms[0].ref.element);
}

TEST_F(EngineSubmission, forms_are_told_as_they_stood_at_the_submission) {
    const PageDocument page =
        open_page("<form action=/take method=post><input name=a><button value=send></button></form>");
    browser_->apply({{PageEdit::Kind::value, page.inputs.at(0).ref, "typed"}});
    press(page, "send");
    EXPECT_THAT(values(event_of()), ElementsAre("typed", "send"));
}

TEST_F(EngineSubmission, get_tells_the_document_and_where_it_came_from_and_posts_nothing) {
    const PageDocument page = open_page(
        "<form action='/take?old=1'><input name=q value='\u00fc x'><button value=send></button></form>");
    press(page, "send");
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.url, server_.url("/take?q=%C3%BC+x"));
    EXPECT_EQ(received().target, "/take?q=%C3%BC+x");
    expect_told_as_received(event);
    EXPECT_EQ(event.submitted.id, page.id);
}

TEST_F(EngineSubmission, enter_submits_by_the_first_button) {
    open_page("<form action=/take method=post><input name=a value=1 autofocus><button name=first value=1>"
              "</button><button name=second value=2></button></form>words");
    browser_->view().setFocus();
    press_key(Qt::Key_Return);
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "a=1&first=1");
    expect_told_as_received(event);
}

TEST_F(EngineSubmission, enter_submits_a_form_without_a_button) {
    open_page("<form action=/take method=post><input name=a value=1 autofocus></form>words");
    browser_->view().setFocus();
    press_key(Qt::Key_Return);
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "a=1");
    expect_told_as_received(event);
}

TEST_F(EngineSubmission, an_image_button_tells_where_it_was_pressed) {
    open_page(
        "<form action=/take method=post><input type=image name=map width=100 height=100 "
        "style='position:fixed;left:0;top:0' src='data:image/gif;base64,R0lGODlhAQABAAAAACH5BAEKAAEALAAAAAAB"
        "AAEAAAICTAEAOw=='></form>words");
    ASSERT_TRUE(wait_until_painted(browser_->view()));
    QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(40, 30));
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "map.x=40&map.y=30");
    expect_told_as_received(event);
}

struct ByPageCode {
    const char* name;
    const char* script;
    const char* postdata;
};
class EngineSubmissionByPageCode : public EngineSubmission,
                                   public ::testing::WithParamInterface<ByPageCode> {};

TEST_P(EngineSubmissionByPageCode, tells_the_bytes_that_the_server_received) {
    const PageDocument page = open_page(
        std::string("<form action=/take method=post onsubmit='return asked()'><input name=a value=1>"
                    "<button name=b value=send></button></form>"
                    "<script>const f = document.forms[0], asked = () => typeof handle === 'undefined' "
                    "|| handle(); ") +
        GetParam().script + "</script>");
    press(page, "send");
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, GetParam().postdata);
    expect_told_as_received(event);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, EngineSubmissionByPageCode,
    ::testing::Values(
        ByPageCode{"submit_in_place_of_the_event", "handle = () => { f.submit(); return false }", "a=1"},
        ByPageCode{"submit_after_the_event", "handle = () => { setTimeout(() => f.submit()); return false }",
                   "a=1"},
        ByPageCode{"request_submit_with_a_button",
                   "let once = false; handle = () => { if (once) return true; once = true; setTimeout(() => "
                   "f.requestSubmit(f.elements.b)); return false }",
                   "a=1&b=send"},
        ByPageCode{"data_collected_before", "handle = () => { new FormData(f); return true }", "a=1&b=send"},
        ByPageCode{"data_collected_before_it_changes",
                   "handle = () => { new FormData(f); f.elements.a.value = 2; f.submit(); return false }",
                   "a=2"},
        ByPageCode{"address_given_for_the_moment",
                   "f.action = '/nowhere'; handle = () => { f.action = '/take'; f.submit(); "
                   "f.action = '/nowhere'; return false }",
                   "a=1"},
        ByPageCode{"data_added_at_the_end",
                   "addEventListener('formdata', e => e.formData.append('more', 'x'))", "a=1&b=send&more=x"},
        ByPageCode{"data_added_in_silence",
                   "f.addEventListener('formdata', e => { e.formData.set('a', 'x'); e.stopPropagation() })",
                   "a=x&b=send"},
        ByPageCode{"events_hidden_from_the_document",
                   "f.addEventListener('submit', e => e.stopImmediatePropagation())", "a=1&b=send"},
        ByPageCode{"listeners_removed_by_rewriting",
                   "document.open(); document.write('<form action=/take method=post><input name=a value=1>"
                   "<button name=b value=send></button></form>'); document.close()",
                   "a=1&b=send"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(EngineSubmission, a_page_that_submits_at_its_start_is_told_with_its_data) {
    server_.page("/page", "<form action=/take method=post><input name=a value=1></form><script>"
                          "document.forms[0].submit()</script>");
    browser_->Navigate(server_.url("/page"));
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "a=1");
    expect_told_as_received(event);
}

TEST_F(EngineSubmission, a_form_in_an_open_shadow_root_is_told) {
    open_page("<div></div><script>const root = document.querySelector('div').attachShadow({mode: 'open'});"
              "root.innerHTML = '<form action=/take method=post><input name=a value=1><button>send</button>"
              "</form>'; setTimeout(() => root.querySelector('button').click())</script>");
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "a=1");
    expect_told_as_received(event);
}

TEST_F(EngineSubmission, the_buttons_address_method_and_target_stand_before_the_forms) {
    server_.page("/inner", "inner");
    const PageDocument page = open_page(
        "<iframe name=box src=/inner></iframe><form action=/nowhere target=elsewhere><input name=a "
        "value=1><button name=b value=send formaction=/take formmethod=post formtarget=box></button></form>");
    press(page, "send");
    const NavigateEvent event = event_of();
    expect_told_as_received(event);
    EXPECT_EQ(event.postdata, "a=1&b=send");
    EXPECT_FALSE(event.top_level);
    EXPECT_EQ(event.frame_name, "box");
}

TEST_F(EngineSubmission, the_forms_and_the_bases_target_is_told_and_keywords_are_not) {
    server_.page("/inner", "inner");
    struct Row {
        const char* base;
        const char* form;
        const char* told;
        bool top_level;
    };
    for (const Row& row :
         {Row{"", "target=box", "box", false}, Row{"<base target=box>", "", "box", false},
          Row{"<base target=box>", "target=_self", "", true}, Row{"", "target=_top", "", true}}) {
        const PageDocument page =
            open_page(std::string(row.base) + "<iframe name=box src=/inner></iframe><form " + row.form +
                      " action=/take><input name=a><button value=send></button></form>");
        probe_.forget();
        press(page, "send");
        const NavigateEvent event = event_of();
        EXPECT_EQ(event.frame_name, row.told) << row.base << row.form;
        EXPECT_EQ(event.top_level, row.top_level) << row.base << row.form;
    }
}

TEST_F(EngineSubmission, a_frame_of_the_same_and_of_another_origin_tells_its_own_document) {
    for (const char* host : {"127.0.0.1", "127.0.0.2"}) {
        const std::string take = std::string("/take-") + host;
        server_.page(take, "taken");
        server_.page("/inner", "<form action=" + take +
                                   " method=post><input name=a value=1><button value=send>"
                                   "</button></form>");
        const PageDocument page =
            open_page("<form></form><iframe src=" + server_.url("/inner", host) + "></iframe>");
        ASSERT_THAT(page.frames, SizeIs(1));
        press(page.frames[0], "send");
        EXPECT_TRUE(wait_for("frame navigates " + server_.url(take, host)));
        EXPECT_TRUE(wait_until([&] { return server_.count_of(take) > 0; }));
        const NavigateEvent event = probe_.navigations.back();
        EXPECT_EQ(event.postdata, "a=1");
        expect_told_as_received(event, take);
        EXPECT_EQ(event.submitted.id, page.frames[0].id);
        EXPECT_EQ(event.submitted.url, server_.url("/inner", host));
        EXPECT_THAT(values(event), ElementsAre("1", "send"));
    }
}

TEST_F(EngineSubmission, a_frame_that_no_script_of_its_own_reaches_is_told) {
    server_.page("/page", "<iframe></iframe><script>frames[0].document.write('<form action=/take method=post>"
                          "<input name=a value=1><button value=send></button></form>');"
                          "frames[0].document.close()</script>");
    browser_->Navigate(server_.url("/page"));
    // The frame has its writer's address.
    ASSERT_TRUE(wait_for("complete " + server_.url("/page"), 2));
    const PageDocument page = probe_.last();
    ASSERT_THAT(page.frames, SizeIs(1));
    press(page.frames[0], "send");
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "a=1");
    expect_told_as_received(event);
}

TEST_F(EngineSubmission, a_prevented_submission_raises_nothing_and_its_data_goes_to_no_other_navigation) {
    const PageDocument page =
        open_page("<form action=/take method=post onsubmit='new FormData(this); return false'>"
                  "<input name=a value=1><button value=send></button></form><a href=/take>x</a>");
    probe_.forget();
    press(page, "send");
    image_of(page);
    EXPECT_THAT(probe_.navigations, IsEmpty());
    browser_->Navigate(server_.url("/take"));
    EXPECT_EQ(event_of().postdata, "");
}

TEST_F(EngineSubmission, a_dialogs_form_raises_nothing) {
    const PageDocument page =
        open_page("<dialog open><form method=dialog action=/take><button value=send></button>"
                  "</form></dialog>");
    probe_.forget();
    press(page, "send");
    image_of(page);
    let_everything_happen();
    EXPECT_THAT(probe_.road(), ElementsAre("navigate " + server_.url("/end-of-test"),
                                           "complete " + server_.url("/end-of-test")));
}

TEST_F(EngineSubmission, a_multipart_form_is_told_as_the_pairs_of_its_texts) {
    const PageDocument page =
        open_page("<form action=/take method=post enctype=multipart/form-data><input name=a "
                  "value='x y'><input type=file name=f><input name=b value='&'><button "
                  "value=send></button></form>");
    press(page, "send");
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "a=x+y&b=%26");
    EXPECT_EQ(event.headers, "Content-Type: multipart/form-data\r\nReferer: " + page.url + "\r\n");
}

TEST_F(EngineSubmission, a_post_too_large_to_be_told_is_sent_all_the_same_and_announced_without_its_data) {
    const PageDocument page = open_page(
        "<form action=/take method=post enctype=text/plain><input type=hidden name=a><button value=send>"
        "</button></form><script>document.forms[0].elements.a.value = 'x'.repeat(5 << 20)</script>");
    press(page, "send");
    const NavigateEvent event = event_of();
    EXPECT_EQ(event.postdata, "");
    EXPECT_TRUE(event.submitted.id.empty());
    EXPECT_EQ(received().body.size(), (5U << 20) + 4);
}

TEST_F(EngineSubmission, a_redirect_of_a_submission_is_not_told_again) {
    server_.page("/thanks", "thanks");
    server_.redirect("/take", "/thanks");
    const PageDocument page =
        open_page("<form action=/take method=post><input name=a value=1><button value=send></button></form>");
    probe_.forget();
    press(page, "send");
    EXPECT_TRUE(wait_for("complete " + server_.url("/thanks")));
    EXPECT_THAT(probe_.navigations, SizeIs(1));
    EXPECT_EQ(event_of().postdata, "a=1");
}

TEST_F(EngineSubmission, a_page_whose_controls_hide_the_forms_properties_is_told_all_the_same) {
    const PageDocument page = open_page(
        "<form action=/take method=post><input name=action value=1><input name=method value=2><input "
        "name=elements><input name=enctype><input name=target value=x><input name=getAttribute><input "
        "name=submit><button value=send></button></form><form name=createElement></form><form "
        "name=characterSet></form><form name=querySelector></form>");
    press(page, "send");
    const NavigateEvent event = event_of();
    expect_told_as_received(event);
    EXPECT_TRUE(event.postdata.starts_with("action=1&method=2&")) << event.postdata;
    EXPECT_EQ(event.frame_name, "");
}

} // namespace
} // namespace kestrune
