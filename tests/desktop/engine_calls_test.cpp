#include "platform/qt/engine_calls.h"
#include "platform/qt/engine_waits.h"
#include "tests/desktop/engine_fixture.h"

#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <optional>

namespace kestrune {
namespace {

using namespace std::chrono_literals;

// Answers as the page side may give them, without a page behind them.
class PageAnswers : public ::testing::Test {
protected:
    PageAnswers() {
        calls_.fetch_image("id", {}, [this](PageCalls::Answer answer) { answer_ = std::move(answer); });
    }

    QWebEnginePage page_;
    EngineWaits waits_;
    PageCalls calls_{page_, 60s, waits_};
    std::optional<PageCalls::Answer> answer_;
};

TEST_F(PageAnswers, null_means_that_the_document_is_gone) {
    calls_.arrived(1, "null");
    ASSERT_TRUE(answer_.has_value());
    EXPECT_TRUE(answer_->gone);
    EXPECT_FALSE(answer_->image.has_value());
}

TEST_F(PageAnswers, an_image_is_read) {
    calls_.arrived(1, R"({"id":"id","url":"http://a/"})");
    ASSERT_TRUE(answer_.has_value());
    EXPECT_FALSE(answer_->gone);
    EXPECT_EQ(answer_->image.value().url, "http://a/");
}

TEST_F(PageAnswers, what_cannot_be_read_does_not_mean_that_the_document_is_gone) {
    for (const char* text : {"unreadable", "[]", "{\"id\":\"other\"}", "{\"id\":"}) {
        calls_.fetch_image("id", {}, [this](PageCalls::Answer answer) { answer_ = std::move(answer); });
        static quint32 request = 1;
        answer_.reset();
        calls_.arrived(++request, text);
        ASSERT_TRUE(answer_.has_value()) << text;
        EXPECT_FALSE(answer_->gone) << text;
        EXPECT_FALSE(answer_->image.has_value()) << text;
    }
}

class UnreadablePage : public EngineTest {
protected:
    UnreadablePage() {
        server_.page("/end-of-test", "the end");
        server_.page("/frame", "<a href=/x>in the frame</a>");
        server_.answer("/picture", {.body = "picture", .type = "image/png", .held = true});
    }
    // Loads the page up to its picture, makes its images fail, and lets it complete.
    void complete_unreadably(const std::string& html) {
        server_.page("/page", html + "<a href=/x>x</a><img src=/picture>");
        browser_->Navigate(server_.url("/page"));
        ASSERT_TRUE(wait_until([this] { return server_.count_of("/picture") == 1; }));
        bool done = false;
        browser_->view().page()->runJavaScript(
            "kestrune.agent.image = () => { throw new Error('no image') }; 'done'",
            QWebEngineScript::ApplicationWorld,
            [&done](const QVariant& answer) { done = answer.toString() == "done"; });
        ASSERT_TRUE(wait_until([&done] { return done; }));
        server_.release();
        ASSERT_TRUE(wait_for("complete " + server_.url("/page")));
        EXPECT_FALSE(probe_.last().id.empty());
        EXPECT_FALSE(probe_.last().parts.links);
    }
};

TEST_F(UnreadablePage, a_document_whose_image_fails_completes_all_the_same) { complete_unreadably(""); }

TEST_F(UnreadablePage, a_document_with_frames_whose_image_fails_completes_all_the_same) {
    complete_unreadably("<iframe src=/frame></iframe>");
    EXPECT_EQ(probe_.count("complete " + server_.url("/frame")), 1);
}

} // namespace
} // namespace kestrune
