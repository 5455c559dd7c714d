#include "window_fixture.h"

#include <gmock/gmock.h>

namespace kestrune {
namespace {

using testing::HasSubstr;

class RightClickTest : public WindowTest {
protected:
    RightClickTest() {
        PageDocument page;
        page.url = "http://a.b/submit";
        page.source =
            "<form action=\"x\"><table><tr><td>Program name</td><td><input name=\"title\"></td></tr>"
            "<tr><td>Comments</td><td><input name=\"note\"></td></tr></table></form>";
        page.forms.resize(1);
        for (const char* name : {"title", "note"}) {
            PageElement element;
            element.type = "text";
            element.name = name;
            page.forms[0].elements.push_back(std::move(element));
        }
        pages[page.url] = page;
        PageDocument outer;
        outer.url = "http://a.b/frames";
        outer.frames = {PageDocument{}, page};
        pages[outer.url] = outer;
        start();
        program.frmPreference().txtProgramName.Text = "Photo Album";
    }

    void open(const std::string& url) {
        browser().pages = pages;
        browser().Navigate(url);
        arrive();
        page().active_element = field("note");
    }
    // The document with the form.
    PageDocument& page() {
        PageDocument& shown = *browser().showing();
        return shown.frames.empty() ? shown : shown.frames.back();
    }
    PageElement& field(const std::string& name) {
        auto& elements = page().forms.at(0).elements;
        return elements.at(name == "title" ? 0 : 1);
    }
    bool right_click(const std::string& entry) {
        ui.expect_menu("mnuRightClickMenu", entry);
        return events().ContextMenu(focused());
    }
    // The field that has the focus as the menu opens.
    ElementRef focused() { return {page().id, page().active_element.ref.element}; }
    BrowserEvents& events() { return browser().events(); }

    std::map<std::string, PageDocument> pages;
};

TEST_F(RightClickTest, ChosenEntryIsWrittenIntoTheFieldOfTheClick) {
    open("http://a.b/submit");
    EXPECT_TRUE(right_click("mnuProgramName"));
    EXPECT_EQ(window().glngMnuIdx, 2);
    EXPECT_EQ(field("note").value, "Photo Album");
    EXPECT_EQ(field("title").value, "");
}

TEST_F(RightClickTest, DismissedMenuWritesNothingAndLeavesTheClickToTheBrowser) {
    open("http://a.b/submit");
    right_click("mnuProgramName");
    field("note").value = "";
    EXPECT_FALSE(right_click(""));
    EXPECT_EQ(window().glngMnuIdx, fill_nothing);
    EXPECT_EQ(field("note").value, "");
}

TEST_F(RightClickTest, MultiInputFillsByLabels) {
    open("http://a.b/submit");
    EXPECT_TRUE(right_click("mnuAll"));
    EXPECT_EQ(field("title").value, "Photo Album");
    EXPECT_EQ(field("note").value, "");
}

TEST_F(RightClickTest, FormInAFrameIsFilled) {
    open("http://a.b/frames");
    EXPECT_TRUE(right_click("mnuAll"));
    EXPECT_EQ(field("title").value, "Photo Album");
}

TEST_F(RightClickTest, MenuShowsTheProfileAsItIsNow) {
    open("http://a.b/submit");
    program.frmPreference().txtProgramName.Text = "Newer";
    right_click("");
    EXPECT_EQ(window().fill_menu.product_items.at(1)->Caption.get(), "Program name: Newer");
}

TEST_F(RightClickTest, PageThatIsGoneWhenTheMenuClosesGetsNothing) {
    open("http://a.b/submit");
    browser().on_take_image = [this] { browser().lose_page(); };
    ui.expect_menu("mnuRightClickMenu", "mnuAll");
    EXPECT_TRUE(events().ContextMenu(focused()));
    EXPECT_EQ(browser().showing(), nullptr);
}

TEST_F(RightClickTest, FocusThatThePageMovesWhileTheMenuIsOpenTakesNothingWithIt) {
    for (const char* entry : {"mnuProgramName", "mnuAll"}) {
        open("http://a.b/submit");
        const ElementRef pointed_at = focused();
        page().active_element = field("title");
        ASSERT_NE(focused().element, pointed_at.element);
        ui.expect_menu("mnuRightClickMenu", entry);
        EXPECT_TRUE(events().ContextMenu(pointed_at)) << entry;
        EXPECT_EQ(field("title").value, "") << entry;
        EXPECT_EQ(field("note").value, "") << entry;
    }
}

TEST_F(RightClickTest, MenuOfAnOpenQuestionsPageIsTheBrowsersOwn) {
    open("http://a.b/submit");
    bool answer = true;
    ui.expect_form("frmAbout", [&](Form& form) {
        answer = events().ContextMenu(focused());
        press_button(form, "cmdOK");
    });
    window().mnuAbout.choose();
    EXPECT_FALSE(answer);
}

TEST_F(RightClickTest, ReportTellsWhatTheLastMultiInputDid) {
    const auto report = [this] {
        std::string text;
        ui.expect_form("frmFillReport", [&text](Form& form) {
            if (const auto* box = dynamic_cast<TextBox*>(form.find("txtReport")))
                text = box->Text.get();
        });
        press_key("F8");
        return text;
    };
    open("http://a.b/submit");
    EXPECT_THAT(report(), HasSubstr("No form has been filled"));
    right_click("mnuAll");
    EXPECT_THAT(report(), HasSubstr("title: \"Program name\" (row)"));
    right_click("mnuProgramName");
    EXPECT_THAT(report(), HasSubstr("title: \"Program name\" (row)"));
    page().active_element = {};
    right_click("mnuAll");
    EXPECT_THAT(report(), HasSubstr("found no form"));
}

} // namespace
} // namespace kestrune
