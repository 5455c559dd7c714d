#pragma once

#include "tests/desktop/painted.h"
#include "tests/desktop/program_fixture.h"

#include <QWebEngineView>

#include <string>
#include <vector>

namespace kestrune {

inline constexpr const char* temporary_record_question =
    "A temporary record is created, do you want to view/edit it now?";

// A user who records with Auto Record on, types into the page itself, and keeps what was recorded.
class ProgramCapture : public ProgramTest {
protected:
    ProgramCapture() { server().page("/taken", "<p>taken</p>"); }

    void start_recording() {
        start();
        user().choose("mnuAutoHide"); // the lists stay in view
        user().choose("mnuPromptFill");
        user().press("cmdRecord");
        ASSERT_TRUE(window().mnuAutoRecord.Checked.get());
    }
    void show_site(const std::string& path) {
        window().OpenSiteForPlayback(url(path), "A site");
        wait_for_document(url(path));
    }
    QWidget& page() {
        auto* const view = user().window().findChild<QWebEngineView*>();
        view->setFocus();
        return *view->focusProxy();
    }
    // Clicks at the page's left upper corner, where each page has its text box, types there and submits.
    void type_and_submit(const QString& text) {
        ASSERT_TRUE(wait_until_painted(*user().window().findChild<QWebEngineView*>()));
        QTest::mouseClick(&page(), Qt::LeftButton, {}, QPoint(20, 10));
        QTest::keyClicks(&page(), text);
        QTest::keyClick(&page(), Qt::Key_Return);
    }
    static std::string form(const std::string& attributes, const std::string& value = "") {
        return "<style>body, form { margin: 0 } input { width: 200px; height: 20px }</style><form " +
               attributes + "><input name=typed value='' autofocus><br><input name=given value='" + value +
               "'><select name=s><option>one</option><option" + (value.empty() ? "" : " selected") +
               ">two words</option></select><input type=checkbox name=c value=yes" +
               (value.empty() ? "" : " checked") + "><input type=submit name=go value=Send></form>";
    }
    [[nodiscard]] std::vector<SiteServer::Request> submissions() {
        std::vector<SiteServer::Request> found;
        for (const SiteServer::Request& request : server().requests()) {
            if (request.target.substr(0, request.target.find('?')) == "/taken")
                found.push_back(request);
        }
        return found;
    }
    void submit_recorded(const std::string& path) {
        answer_boxes({"No"});
        show_site(path);
        type_and_submit("a typed text");
        wait("the record", [this] { return window().ListView1.size() == 1; });
        wait("the submission", [this] { return submissions().size() == 1; });
        EXPECT_THAT(asked(), ::testing::ElementsAre(temporary_record_question));
        user().answer_with({});
    }
    RecordSession recorded() {
        const ListItem* const item = window().ListView1.find("K1");
        return item == nullptr ? RecordSession{} : RecordOf(window().ListView1, *item);
    }
    void keep_and_replay(const std::string& path) {
        window().SSTab1.set_tab(1);
        window().ListView1.select("K1");
        user().press("cmdSave");
        ASSERT_EQ(window().lvwPermanent.size(), 1U);
        ASSERT_EQ(window().ListView1.size(), 0U);
        user().press("cmdRecord");
        window().OpenSiteForPlayback(url(path), "A site");
        wait("the second submission", [this] { return submissions().size() == 2; });
    }
    void expect_same_requests() {
        const std::vector<SiteServer::Request> both = submissions();
        ASSERT_THAT(both, ::testing::SizeIs(2));
        EXPECT_EQ(both[0].method, both[1].method);
        EXPECT_EQ(both[0].target, both[1].target);
        EXPECT_EQ(both[0].body, both[1].body);
        EXPECT_EQ(both[0].parts, both[1].parts);
    }
};

} // namespace kestrune
