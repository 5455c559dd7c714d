#include "tests/desktop/bar_user.h"
#include "tests/desktop/painted.h"
#include "tests/desktop/program_fixture.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace kestrune {
namespace {

// Where the keyboard's keys go in the whole window, by Tab and after what came up has gone.
class PageFocus : public ProgramTest {
protected:
    [[nodiscard]] QWebEngineView& view() { return *user().window().findChild<QWebEngineView*>(); }
    [[nodiscard]] QWidget* focus() { return user().window().focusWidget(); }
    [[nodiscard]] bool page_has_focus() { return view().isAncestorOf(focus()); }
    void open_page(const std::string& path) {
        open_address(url(path));
        ASSERT_TRUE(wait_until_painted(view()));
        user().window().activateWindow();
        wait("the window to be in front", [this] { return user().window().isActiveWindow(); });
    }
    // Where the focus goes when Tab is pressed that often; presses that stay in the page, or in one part of
    // the window, count as one place.
    std::vector<std::string> walk(Qt::Key key, int presses) {
        std::vector<std::string> places;
        while (presses-- > 0) {
            const QPointer<QWidget> before = focus();
            const std::string place = page_place();
            QTest::keyClick(before, key);
            wait("the key", [&] { return focus() != before || page_place() != place; });
            const std::string now = page_has_focus() ? "page" : focus()->objectName().toStdString();
            if (places.empty() || places.back() != now)
                places.push_back(now);
        }
        return places;
    }
    // The element that has the page's focus; page code says it in the title.
    std::string page_place() { return page_has_focus() ? view().title().toStdString() : ""; }

    // Two links, of which the second lies far below.
    static constexpr const char* long_page =
        "<title>nothing</title><a href=/one id=one>one</a><p style='height:5000px'>far<p>word<a href=/two "
        "id=two>two</a><script>addEventListener('focusin', e => document.title = e.target.id);"
        "onscroll = () => fetch('/scrolled')</script>";
};

TEST_F(PageFocus, TabLeadsFromThePageToTheListsAndButtonsAndRoundToTheToolbarAndBack) {
    server().page("/page", long_page);
    start();
    open_page("/page");
    EXPECT_TRUE(page_has_focus()) << "a page that was opened has the keys";
    const std::vector<std::string> buttons{"cmdPlayback", "cmdHideRecord", "cmdRecord",
                                           "cmdAutoHide", "cmdPrompt",     "cmdAutoClick",
                                           "txtUrl",      "txtDesc",       "page"};
    std::vector<std::string> ring{"page", "cmdReset"};
    ring.insert(ring.end(), buttons.begin(), buttons.end());
    EXPECT_EQ(walk(Qt::Key_Tab, 12), ring) << "with the lists hidden";
}

TEST_F(PageFocus, ClosingTheFindBarLeavesThePageWhereTheMatchIsAndGivesItTheKeys) {
    server().page("/page", long_page);
    start();
    open_page("/page");
    key(Qt::Key_F, Qt::ControlModifier);
    auto& text = *view().parentWidget()->findChild<QLineEdit*>("FindText");
    auto& count = *view().parentWidget()->findChild<QLabel*>("FindCount");
    QTest::keyClicks(&text, "word");
    wait("the match", [&] { return count.text() == "1 of 1"; });
    wait("the page to go there", [this] { return server().count_of("/scrolled") > 0; });
    const QPointF place = view().page()->scrollPosition();
    QTest::keyClick(&text, Qt::Key_Escape);
    EXPECT_TRUE(page_has_focus());
    // The next link is the one that follows the match, not the page's first.
    QTest::keyClick(focus(), Qt::Key_Tab);
    wait("a link", [this] { return page_place() != "nothing"; });
    EXPECT_EQ(page_place(), "two");
    EXPECT_EQ(view().page()->scrollPosition(), place);
    key(Qt::Key_F3);
    wait("the match again", [&] { return count.text() == "1 of 1"; });
    server().page("/other", "<p>words");
    open_page("/other");
    EXPECT_EQ(count.text(), "") << "what was found was found elsewhere";
}

TEST_F(PageFocus, ABarThatIsAnsweredGivesThePageItsKeysBack) {
    server().page("/page", std::string(long_page) + "<script>onload = () => confirm('?')</script>");
    start();
    bool had_keys = false;
    BarUser bars;
    bars.expect("PageConfirm", [&](PageBar& bar) {
        had_keys = bar.isAncestorOf(focus());
        BarUser::after_a_look(bar, [&] { QTest::keyClick(focus(), Qt::Key_Return); });
    });
    open_page("/page");
    EXPECT_TRUE(bars.done());
    wait("the page's keys", [this] { return page_has_focus(); });
    EXPECT_EQ(page_place(), "nothing") << "none of its links was gone to";
}

TEST_F(PageFocus, AButtonThatIsPressedByTheMouseLeavesThePageItsKeys) {
    server().page("/page", long_page);
    start();
    open_page("/page");
    QTest::mouseClick(user().window().findChild<QPushButton*>("cmdAutoHide"), Qt::LeftButton);
    EXPECT_TRUE(page_has_focus());
}

TEST_F(PageFocus, TheAddressUnderTheMouseGoesWithItsPage) {
    server().page("/page",
                  "<body style='margin:0'><a href=/elsewhere style='display:block;height:300px'>x</a>");
    server().never("/never");
    start();
    open_page("/page");
    const auto& words = *view().parentWidget()->findChild<QLabel*>("PageWords");
    QTest::mouseMove(view().focusProxy(), QPoint(60, 60));
    wait("the address", [&] { return words.text().toStdString() == url("/elsewhere"); });
    window().OpenSiteForPlayback(url("/never"), "A site");
    wait("the address to go", [&] { return words.isHidden(); });
}

} // namespace
} // namespace kestrune
