#include "filling/auto_click.h"

#include "form_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* unable = "System is unable to do auto-click, please perform click manually!";

PageElement image_button(std::string name, std::string src = "go.gif") {
    PageElement button = element("image", std::move(name));
    button.src = std::move(src);
    return button;
}

class AutoClickTest : public testing::Test {
protected:
    // A page of one form with these elements; `inputs` are all of the document, when they are not just those.
    static PageDocument page(std::vector<PageElement> elements, std::vector<PageElement> inputs = {}) {
        PageDocument document = page_of_forms("http://a.b/", {form_of("add.cgi", std::move(elements))});
        document.inputs = std::move(inputs);
        return document;
    }
    // Names of what was clicked on the page.
    std::vector<std::string> click(PageDocument document, const std::vector<std::string>& names) {
        FormPage shown{std::move(document)};
        {
            LivePage live{shown.browser, shown.image()};
            AutoClick(live, *live.document(), live.document()->forms.at(0), names, "http://c.d/add.cgi",
                      {mnuAutoClick, status});
        }
        return shown.browser.pressed;
    }

    MenuItem mnuAutoClick{"mnuAutoClick", "", true};
    StatusBar status{"StatusBar1"};
};

TEST_F(AutoClickTest, OfTwoSubmitButtonsTheFirstInElementOrderIsClicked) {
    EXPECT_THAT(
        click(page({element("text", "a"), element("Submit", "one"), element("submit", "two")}), {"a"}),
        ElementsAre("one"));
    EXPECT_EQ(status.text(1), "");
}

TEST_F(AutoClickTest, ButtonWithAnActionOfItsOwnIsClickedOnlyWhenItLeadsToThePagesOrTheRecordsSite) {
    const auto leading_to = [this](const char* type, const char* address) {
        PageElement button = element(type, "go");
        button.src = "go.gif";
        button.form_action = address;
        status.set_text(1, "");
        return click(
            page({element("text", "a"), button, element("submit", "next")}, {element("text", "a"), button}),
            {"a"});
    };
    EXPECT_THAT(leading_to("submit", "http://A.B:80/preview"), ElementsAre("go"));
    EXPECT_THAT(leading_to("submit", "http://c.d/other.cgi"), ElementsAre("go"));
    EXPECT_EQ(status.text(1), "");
    for (const char* stranger : {"http://evil.c/add.cgi", "javascript:alert(1)", "http://a.b:81/add.cgi"}) {
        EXPECT_THAT(leading_to("submit", stranger), IsEmpty()) << stranger;
        EXPECT_EQ(status.text(1), unable);
    }
}

TEST_F(AutoClickTest, NothingIsClickedNorSaidWhenTheSwitchIsOff) {
    mnuAutoClick.Checked = false;
    EXPECT_THAT(click(page({element("submit", "one")}), {}), IsEmpty());
    EXPECT_THAT(click(page({element("text", "a")}), {"a"}), IsEmpty());
    EXPECT_EQ(status.text(1), "");
}

TEST_F(AutoClickTest, ImageButtonBeforeTheFormIsPassedOverAndTheOneAfterTheFilledTextBoxIsClicked) {
    const std::vector<PageElement> inputs{image_button("search"), element("text", "a"), image_button("send"),
                                          image_button("later")};
    EXPECT_THAT(click(page({element("text", "a")}, inputs), {"a"}), ElementsAre("send"));
}

TEST_F(AutoClickTest, ImageButtonWithAnEmptySourceIsPassedOver) {
    EXPECT_THAT(click(page({element("text", "a"), image_button("blank", ""), image_button("send")}), {"a"}),
                ElementsAre("send"));
}

TEST_F(AutoClickTest, FormWhoseRecordedFieldsAreAllTextAreasGetsTheStatusText) {
    EXPECT_THAT(click(page({element("textarea", "a"), image_button("send")}), {"a"}), IsEmpty());
    EXPECT_EQ(status.text(1), unable);
}

TEST_F(AutoClickTest, FilledPasswordBoxesAndSelectListsQualifyNoImageButton) {
    EXPECT_THAT(click(page({element("password", "p"), list_of("select-one", "s", {{"A", "a"}}),
                            element("text", "b"), image_button("send")}),
                      {"p", "s"}),
                IsEmpty());
    EXPECT_EQ(status.text(1), unable);
}

TEST_F(AutoClickTest, NamesCompareWithoutLetterCase) {
    EXPECT_THAT(click(page({element("TEXT", "EMAIL"), image_button("send")}), {"Email"}),
                ElementsAre("send"));
}

TEST_F(AutoClickTest, SubmitButtonOfTheFormComesBeforeAnyImageButton) {
    EXPECT_THAT(
        click(page({element("text", "a"), image_button("picture"), element("submit", "send")}), {"a"}),
        ElementsAre("send"));
}

TEST_F(AutoClickTest, FormWithoutAnyButtonGetsTheStatusText) {
    EXPECT_THAT(click(page({element("text", "a"), element("button", "b"), element("reset", "r")}), {"a"}),
                IsEmpty());
    EXPECT_EQ(status.text(1), unable);
}

} // namespace
} // namespace kestrune
