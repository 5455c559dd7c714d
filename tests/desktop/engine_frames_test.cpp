#include "tests/desktop/engine_fixture.h"

namespace kestrune {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

class EngineFrames : public EngineTest {
protected:
    EngineFrames() {
        server_.page("/end-of-test", "the end");
        server_.page("/one", "<a href=/x>one</a><form action=/one></form>");
        server_.page("/two", "<a href=/x>two</a>");
        server_.page("/three", "<a href=/x>three</a>");
    }

    // One of the same origin, one of another host, one of another name of the same host.
    std::string three_origins() const {
        return "<iframe src=/one></iframe><iframe src='" + server_.url("/two", "127.0.0.2") +
               "'></iframe><iframe src='" + server_.url("/three", "localhost") +
               "'></iframe><a href=/x>top</a>";
    }

    std::vector<std::string> completed_urls() const {
        std::vector<std::string> urls;
        for (const PageDocument& document : probe_.completed)
            urls.push_back(document.url);
        return urls;
    }
};

TEST_F(EngineFrames, frames_of_any_origin_complete_before_their_document) {
    server_.page("/top", three_origins());
    open(server_.url("/top"));
    ASSERT_THAT(probe_.completed, SizeIs(4));
    EXPECT_EQ(probe_.last().url, server_.url("/top"));
    std::vector<std::string> inner = completed_urls();
    inner.pop_back();
    EXPECT_THAT(inner, UnorderedElementsAre(server_.url("/one"), server_.url("/two", "127.0.0.2"),
                                            server_.url("/three", "localhost")));
}

TEST_F(EngineFrames, the_image_holds_frames_of_any_origin_in_their_order) {
    server_.page("/top", three_origins());
    const PageDocument page = open(server_.url("/top"));
    ASSERT_THAT(page.frames, SizeIs(3));
    EXPECT_THAT(link_texts(page), ElementsAre("top"));
    EXPECT_THAT(link_texts(page.frames[0]), ElementsAre("one"));
    EXPECT_THAT(link_texts(page.frames[1]), ElementsAre("two"));
    EXPECT_THAT(link_texts(page.frames[2]), ElementsAre("three"));
    EXPECT_EQ(page.frames[1].url, server_.url("/two", "127.0.0.2"));
    EXPECT_THAT(page.frames[0].form_tags, ElementsAre("<form action=\"/one\">"));
    EXPECT_EQ(page.frames[2].parts, everything);
}

TEST_F(EngineFrames, each_document_tells_whose_it_is_whatever_its_address) {
    server_.page("/top", three_origins() + "<iframe></iframe><iframe srcdoc='<a href=/x>x</a>'></iframe>"
                                           "<iframe src='data:text/html,<a href=/x>x</a>'></iframe>"
                                           "<iframe sandbox src=/one></iframe><iframe name=origin></iframe>");
    const PageDocument page = open(server_.url("/top"));
    const std::string own = page.url.substr(0, page.url.rfind('/'));
    EXPECT_EQ(page.origin, own);
    std::vector<std::string> origins;
    for (const PageDocument& frame : page.frames)
        origins.push_back(frame.origin);
    const std::string port = ":" + std::to_string(server_.port());
    EXPECT_THAT(origins, ElementsAre(own, "http://127.0.0.2" + port, "http://localhost" + port, own, own,
                                     "null", "null", own));
}

TEST_F(EngineFrames, a_frameset_has_its_frames) {
    server_.page("/top", "<frameset cols='30%,*'><frame src=/one><frame src='" +
                             server_.url("/two", "127.0.0.2") + "'></frameset>");
    const PageDocument page = open(server_.url("/top"));
    ASSERT_THAT(page.frames, SizeIs(2));
    EXPECT_THAT(link_texts(page.frames[1]), ElementsAre("two"));
    EXPECT_THAT(probe_.completed, SizeIs(3));
}

TEST_F(EngineFrames, frames_in_frames_complete_from_the_inside_out) {
    server_.page("/inner", "<a href=/x>inner</a>");
    server_.page("/middle",
                 "<iframe src='" + server_.url("/inner", "127.0.0.3") + "'></iframe><a href=/x>middle</a>");
    server_.page("/top",
                 "<iframe src='" + server_.url("/middle", "127.0.0.2") + "'></iframe><a href=/x>top</a>");
    const PageDocument page = open(server_.url("/top"));
    EXPECT_THAT(completed_urls(), ElementsAre(server_.url("/inner", "127.0.0.3"),
                                              server_.url("/middle", "127.0.0.2"), server_.url("/top")));
    ASSERT_THAT(page.frames, SizeIs(1));
    ASSERT_THAT(page.frames[0].frames, SizeIs(1));
    EXPECT_THAT(link_texts(page.frames[0].frames[0]), ElementsAre("inner"));
    EXPECT_EQ(page.frames[0].frames[0].id, probe_.completed[0].id);
}

TEST_F(EngineFrames, a_frames_own_image_can_be_taken) {
    server_.page("/top", three_origins());
    const PageDocument page = open(server_.url("/top"));
    const PageDocument frame = image_of(page.frames[1]);
    EXPECT_EQ(frame.id, page.frames[1].id);
    EXPECT_THAT(link_texts(frame), ElementsAre("two"));
}

TEST_F(EngineFrames, frames_without_an_address_of_their_own_stand_in_the_image) {
    server_.page(
        "/top",
        "<iframe></iframe><iframe srcdoc='<a href=/x>written</a>'></iframe>"
        "<iframe sandbox src=/one></iframe><iframe src='data:text/html,<a href=x:y>data</a>'></iframe>"
        "<iframe id=w></iframe><script>const d = document.getElementById('w').contentDocument;"
        "d.open(); d.write('<a href=/x>by script</a>'); d.close();</script>");
    browser_->Navigate(server_.url("/top"));
    // A written document has the address of the one that wrote it.
    ASSERT_TRUE(wait_for("complete " + server_.url("/top"), 2));
    const PageDocument page = probe_.last();
    ASSERT_THAT(page.frames, SizeIs(5));
    for (const PageDocument& frame : page.frames)
        EXPECT_FALSE(frame.id.empty());
    EXPECT_THAT(link_texts(page.frames[1]), ElementsAre("written"));
    EXPECT_THAT(link_texts(page.frames[2]), ElementsAre("one"));
    EXPECT_THAT(link_texts(page.frames[3]), ElementsAre("data"));
    EXPECT_THAT(link_texts(page.frames[4]), ElementsAre("by script"));
    EXPECT_THAT(probe_.completed, SizeIs(6));
}

TEST_F(EngineFrames, an_edit_reaches_a_frame_of_another_origin) {
    server_.page("/form", "<form action=/sent><input name=field><a href=/two>go</a></form>");
    server_.page("/top", "<iframe src='" + server_.url("/form", "127.0.0.2") + "'></iframe>");
    const PageDocument page = open(server_.url("/top"));
    const PageElement& field = page.frames.at(0).forms.at(0).elements.at(0);
    browser_->apply({{PageEdit::Kind::value, field.ref, "w\xC3\xB6rd"}});
    EXPECT_EQ(image_of(page).frames.at(0).inputs.at(0).value, "w\xC3\xB6rd");
    browser_->apply({{PageEdit::Kind::click, page.frames[0].links.at(0).ref}});
    EXPECT_TRUE(wait_for("complete " + server_.url("/two", "127.0.0.2")));
    EXPECT_EQ(probe_.count("frame navigates " + server_.url("/two", "127.0.0.2")), 1);
}

TEST_F(EngineFrames, a_frame_that_moves_on_is_another_document_of_the_same_page) {
    server_.page("/top", "<iframe name=f src=/one></iframe><a href=/two target=f>go</a>");
    const PageDocument page = open(server_.url("/top"));
    browser_->apply({{PageEdit::Kind::click, page.links.at(0).ref}});
    EXPECT_TRUE(wait_for("complete " + server_.url("/two")));
    EXPECT_FALSE(browser_->take_image(page.frames[0].id, everything).has_value());
    EXPECT_THAT(link_texts(image_of(page).frames.at(0)), ElementsAre("two"));
    EXPECT_EQ(probe_.count("complete " + server_.url("/top")), 1);
}

TEST_F(EngineFrames, a_frame_that_is_taken_out_is_gone) {
    server_.page("/top", "<iframe src=/one></iframe><iframe src=/two></iframe>"
                         "<input type=checkbox onclick='document.querySelector(\"iframe\").remove()'>");
    const PageDocument page = open(server_.url("/top"));
    browser_->apply({{PageEdit::Kind::click, page.inputs.at(0).ref}});
    const PageDocument after = image_of(page);
    ASSERT_THAT(after.frames, SizeIs(1));
    EXPECT_THAT(link_texts(after.frames[0]), ElementsAre("two"));
    EXPECT_FALSE(browser_->take_image(page.frames[0].id, everything).has_value());
}

TEST_F(EngineFrames, an_unreachable_frame_completes_nothing_and_stands_empty_in_the_image) {
    server_.page("/top", "<iframe src=http://127.0.0.1:1/></iframe><iframe src=/two></iframe>");
    const PageDocument page = open(server_.url("/top"));
    ASSERT_THAT(page.frames, SizeIs(2));
    EXPECT_TRUE(page.frames[0].id.empty());
    EXPECT_TRUE(page.frames[0].url.empty());
    EXPECT_THAT(link_texts(page.frames[1]), ElementsAre("two"));
    EXPECT_THAT(probe_.completed, SizeIs(2));
}

TEST_F(EngineFrames, a_frame_that_hangs_costs_a_bounded_time_and_is_seen_again_afterwards) {
    server_.page("/hangs", "<a href=/x>back</a><script>onload = () => setTimeout(() => {"
                           "const end = Date.now() + 2000; while (Date.now() < end); }, 100)</script>");
    server_.page("/top", "<iframe src='" + server_.url("/hangs", "127.0.0.2") +
                             "'></iframe><iframe src=/two></iframe>");
    const PageDocument page = open(server_.url("/top"));
    browser_->set_answer_time(std::chrono::milliseconds(200));
    const auto frame_is_seen = [&] {
        const std::optional<PageDocument> now = browser_->take_image(page.id, everything);
        return now && now->frames.size() == 2 && link_texts(now->frames[0]).size() == 1;
    };
    EXPECT_TRUE(wait_until([&] { return !frame_is_seen(); }));
    EXPECT_TRUE(wait_until(frame_is_seen));
}

TEST_F(EngineFrames, a_hundred_frames_complete_each_once) {
    std::string html;
    for (int i = 0; i < 100; ++i)
        html += "<iframe srcdoc='<a href=/x>" + std::to_string(i) + "</a>'></iframe>";
    server_.page("/top", html);
    const PageDocument page = open(server_.url("/top"));
    ASSERT_THAT(page.frames, SizeIs(100));
    EXPECT_THAT(link_texts(page.frames[99]), ElementsAre("99"));
    EXPECT_THAT(probe_.completed, SizeIs(101));
}

} // namespace
} // namespace kestrune
