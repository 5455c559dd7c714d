#include "tests/desktop/engine_fixture.h"

#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class EngineHostile : public EngineTest {
protected:
    EngineHostile() {
        server_.page("/end-of-test", "the end");
        server_.page("/two", "<a href=/x>two</a>");
    }

    PageDocument open_page(std::string html) {
        server_.page("/page", std::move(html));
        return open(server_.url("/page"));
    }

    // What page code computes, read from the first input of the page.
    std::string said(const PageDocument& page) { return image_of(page).inputs.at(0).value; }
};

TEST_F(EngineHostile, page_code_reaches_nothing_of_ours) {
    const PageDocument page = open_page(
        "<iframe src=/two></iframe><input><script>onload = () => setTimeout(() => { const found = [];"
        "for (const view of [window, frames[0]]) for (const name of ['kestrune', 'qt', 'QWebChannel']) "
        "if (name in view) found.push(name); document.querySelector('input').value = found.join() || "
        "'nothing' })</script>");
    EXPECT_TRUE(wait_until([&] { return !said(page).empty(); }));
    EXPECT_EQ(said(page), "nothing");
}

TEST_F(EngineHostile, page_code_hears_none_of_our_messages) {
    server_.page("/inner",
                 "<script>addEventListener('message', e => parent.postMessage('leak', '*'), true)</script>"
                 "<a href=/x>inner</a>");
    const PageDocument page = open_page(
        "<input><script>const heard = e => document.querySelector('input').value += JSON.stringify(e.data);"
        "addEventListener('message', heard, true); addEventListener('message', heard); window.onmessage = "
        "heard;"
        "for (const name of ['data', 'ports', 'source']) Object.defineProperty(MessageEvent.prototype, name, "
        "{get() { heard({data: name}) }})</script><iframe src=/inner></iframe><iframe src='" +
        server_.url("/inner", "127.0.0.2") + "'></iframe>");
    image_of(page);
    browser_->apply({{PageEdit::Kind::click, page.frames.at(0).links.at(0).ref}});
    EXPECT_TRUE(wait_for("frame navigates " + server_.url("/x")));
    EXPECT_EQ(said(page), "");
}

TEST_F(EngineHostile, forged_messages_change_nothing) {
    server_.page(
        "/forger",
        "<script>for (const token of ['', 'x', undefined, {}, null]) { const c = new MessageChannel();"
        "top.postMessage({token, id: 'forged', url: 'http://bank/'}, '*', [c.port2]);"
        "c.port1.postMessage({event: 'complete', url: 'http://bank/'}); }"
        "top.postMessage('text', '*'); top.postMessage(null, '*');</script><a href=/x>own</a>");
    const PageDocument page =
        open_page("<script>for (let i = 0; i < 3; ++i) { const c = new MessageChannel();"
                  "postMessage({token: 'x', id: 'forged', url: 'http://bank/'}, '*', [c.port2]);"
                  "c.port1.postMessage({event: 'complete'}) }</script><iframe src='" +
                  server_.url("/forger", "127.0.0.2") + "'></iframe>");
    ASSERT_THAT(page.frames, SizeIs(1));
    EXPECT_EQ(page.frames[0].url, server_.url("/forger", "127.0.0.2"));
    EXPECT_THAT(link_texts(page.frames[0]), ElementsAre("own"));
    EXPECT_FALSE(browser_->take_image("forged", everything).has_value());
    let_everything_happen();
    EXPECT_EQ(probe_.count("complete http://bank/"), 0);
}

TEST_F(EngineHostile, the_pages_own_messages_still_arrive) {
    server_.page(
        "/sender",
        "<script>parent.postMessage({token: 'mine', n: 1}, '*', [new MessageChannel().port1])</script>");
    const PageDocument page =
        open_page("<input><script>onmessage = e => document.querySelector('input').value = "
                  "e.data.token + e.ports.length</script><iframe src=/sender></iframe>");
    EXPECT_TRUE(wait_until([&] { return said(page) == "mine1"; }));
}

TEST_F(EngineHostile, a_flood_of_messages_is_survived) {
    const PageDocument page =
        open_page("<a href=/x>x</a><script>for (let i = 0; i < 20000; ++i) postMessage({token: i}, "
                  "'*', [new MessageChannel().port1])</script>");
    EXPECT_THAT(link_texts(page), ElementsAre("x"));
}

TEST_F(EngineHostile, a_flood_of_frames_is_survived) {
    const PageDocument page =
        open_page("<a href=/x>x</a><script>for (let i = 0; i < 600; ++i) document.body.append("
                  "document.createElement('iframe'))</script>");
    EXPECT_THAT(link_texts(page), ElementsAre("x"));
    EXPECT_LE(page.frames.size(), 200U) << "what a page has beyond that is not looked at";
    EXPECT_LE(probe_.completed.size(), 201U);
}

TEST_F(EngineHostile, a_page_that_loads_itself_in_a_frame_for_ever_is_survived) {
    server_.page("/self", "<a href=/x>x</a><script>document.write('<iframe src=/self?' + Math.random() + "
                          "'></iframe>')</script>");
    const PageDocument page = open(server_.url("/self"));
    EXPECT_FALSE(page.id.empty());
}

TEST_F(EngineHostile, a_page_that_navigates_for_ever_can_be_left) {
    server_.page("/loop", "<script>onload = () => location.replace('/loop?' + Math.random())</script>loop");
    browser_->Navigate(server_.url("/loop"));
    EXPECT_TRUE(wait_until([&] { return probe_.navigations.size() > 20; }));
    server_.page("/out", "out");
    open(server_.url("/out", "127.0.0.2"));
}

TEST_F(EngineHostile, an_address_of_two_megabytes_and_odd_names_are_survived) {
    const std::string address = "/page?" + std::string(1900000, 'x');
    server_.page(
        "/page",
        "<title>\x01\x02\x1b[31m</title><script>history.replaceState(0, '', '/page?' + 'x'.repeat(1900000))"
        "</script><form name=\"');alert(1)//\" id=\"</script><script>alert(1)//\" "
        "action=\"'+alert(1)+'\"><input name=\"`${alert(1)}`\"></form>");
    browser_->Navigate(server_.url("/page"));
    ASSERT_TRUE(wait_for("complete " + server_.url(address)));
    const PageDocument page = probe_.last();
    const PageDocument now = image_of(page);
    ASSERT_THAT(now.forms, SizeIs(1));
    EXPECT_EQ(now.forms[0].id, "</script><script>alert(1)//");
    browser_->apply({{PageEdit::Kind::value, now.inputs.at(0).ref, "ok"}});
    EXPECT_EQ(said(page), "ok");
}

TEST_F(EngineHostile, permissions_are_denied_at_once) {
    const PageDocument page = open_page(
        "<input><script>const say = t => document.querySelector('input').value += t;"
        "navigator.geolocation.getCurrentPosition(() => say('allowed'), e => say('denied'))</script>");
    EXPECT_TRUE(wait_until([&] { return !said(page).empty(); }));
    EXPECT_EQ(said(page), "denied");
}

TEST_F(EngineHostile, links_out_of_the_web_lead_nowhere) {
    server_.page("/other", "other");
    const PageDocument page =
        open_page("<a href=mailto:a@b.c>m</a><a href=custom:x>c</a><a href=file:///etc/passwd>f</a>"
                  "<a href=chrome://version>v</a>");
    for (const PageLink& link : page.links)
        browser_->apply({{PageEdit::Kind::click, link.ref}});
    EXPECT_TRUE(browser_->take_image(page.id, everything).has_value());
    let_everything_happen();
    EXPECT_EQ(probe_.completed.size(), 2U);
    for (const NavigateEvent& event : probe_.navigations)
        EXPECT_TRUE(event.url.starts_with("http")) << event.url;
}

} // namespace
} // namespace kestrune
