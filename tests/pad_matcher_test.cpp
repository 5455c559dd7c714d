#include "filling/pad_matcher.h"

#include "profile_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PadMatcherTest : public ProfilePageTest {
protected:
    FillReport fill() {
        LivePage page{browser, image};
        return FillAllFields(page, profile);
    }
    // What a field with this label gets.
    std::string value_for(const std::string& label) {
        const std::string name = "field" + std::to_string(++fields_);
        add("text", name, label);
        fill();
        return written_to(name);
    }

private:
    int fields_ = 0;
};

TEST(Pattern, MatchesWhenEveryWordOfOneAlternativeOccursSomewhere) {
    EXPECT_TRUE(MatchAny("Name of your Program", "program&name"));
    EXPECT_TRUE(MatchAny("Username", "name"));
    EXPECT_TRUE(MatchAny("File size (MB)", "x|size"));
    EXPECT_FALSE(MatchAny("Program", "program&name"));
    EXPECT_FALSE(MatchAny("", "name"));
    EXPECT_TRUE(MatchAll("a b", "b&a"));
    EXPECT_FALSE(MatchAll("a|b", "c|b"));
}

TEST(Pattern, IgnoresLetterCaseOnBothSides) {
    EXPECT_TRUE(MatchAny("PROGRAM name", "Program&NAME"));
    EXPECT_TRUE(MatchAny("\u041D\u0410\u0417\u0412\u0410\u041D\u0418\u0415", "\u043D\u0430\u0437\u0432"));
}

TEST(Pattern, WithoutAWordMatchesNothing) {
    EXPECT_FALSE(MatchAny("text", ""));
    EXPECT_FALSE(MatchAny("a text", " "));
    EXPECT_FALSE(MatchAny("text", "|"));
    EXPECT_FALSE(MatchAny("text", "&"));
    EXPECT_TRUE(MatchAny("text", "text|"));
    EXPECT_TRUE(MatchAny("text", "&text"));
}

TEST_F(PadMatcherTest, ProgramNameAndAuthorNameAreToldApart) {
    EXPECT_EQ(value_for("Program Name:"), "txtProgramName");
    EXPECT_EQ(value_for("Author Name"), "txtCompanyName");
}

TEST_F(PadMatcherTest, FileSizeInMegabytesIsLeftEmpty) {
    EXPECT_EQ(value_for("File Size (MB)"), "nothing");
    EXPECT_EQ(value_for("File Size (KB)"), "txtSizeKbytes");
    EXPECT_EQ(value_for("File Size"), "txtSizeBytes");
}

TEST_F(PadMatcherTest, ScreenshotUrlIsNoDownloadUrl) {
    EXPECT_EQ(value_for("Screenshot URL"), "txtScreenUrl");
}

TEST_F(PadMatcherTest, SupportEMailGetsTheFirstRowThatMatches) {
    EXPECT_EQ(value_for("Support E-mail"), "txtAppInfoUrl");
}

TEST_F(PadMatcherTest, EveryRowOfTheTableDecidesOnALabelOfItsOwn) {
    EXPECT_EQ(value_for("Your product's full name"), "txtProgramName");
    EXPECT_EQ(value_for("Software title"), "txtProgramName");
    EXPECT_EQ(value_for("Short description"), "txtShortDesc");
    EXPECT_EQ(value_for("Small description"), "txtShortDesc");
    EXPECT_EQ(value_for("Long description"), "txtLongDesc");
    EXPECT_EQ(value_for("Company name"), "txtCompanyName");
    EXPECT_EQ(value_for("Publisher"), "txtCompanyName");
    EXPECT_EQ(value_for("Developer"), "txtCompanyName");
    EXPECT_EQ(value_for("Size in megabytes"), "nothing");
    EXPECT_EQ(value_for("Size in kilobytes"), "txtSizeKbytes");
    EXPECT_EQ(value_for("PAD URL"), "txtPADUrl");
    EXPECT_EQ(value_for("Size"), "txtSizeBytes");
    EXPECT_EQ(value_for("Image URL"), "txtScreenUrl");
    EXPECT_EQ(value_for("Home page"), "txtAppInfoUrl");
    EXPECT_EQ(value_for("Web site"), "txtAppInfoUrl");
    EXPECT_EQ(value_for("Registration link"), "txtAppInfoUrl");
    EXPECT_EQ(value_for("Program info page"), "txtAppInfoUrl");
    EXPECT_EQ(value_for("Download link"), "txtDownloadUrl");
    EXPECT_EQ(value_for("Program URL"), "txtDownloadUrl");
    EXPECT_EQ(value_for("E-mail"), "txtAuthorEmail");
    EXPECT_EQ(value_for("First name"), "txtFirstName");
    EXPECT_EQ(value_for("Contact name"), "txtFirstName");
    EXPECT_EQ(value_for("Version"), "txtProgramVersion");
    EXPECT_EQ(value_for("System requirements"), "txtRequirement");
    EXPECT_EQ(value_for("Description"), "txtLongDesc");
    EXPECT_EQ(value_for("Name"), "txtProgramName");
    EXPECT_EQ(value_for("Keywords"), "txtKeywords");
    EXPECT_EQ(value_for("Author"), "txtCompanyName");
    EXPECT_EQ(value_for("Title"), "txtProgramName");
    EXPECT_EQ(value_for("URL"), "txtDownloadUrl");
    EXPECT_EQ(value_for("Price"), "txtPrice");
    EXPECT_EQ(value_for("Cost in dollars"), "txtPrice");
    EXPECT_EQ(value_for("Comments"), "nothing");
}

TEST_F(PadMatcherTest, TableHasItsRowsInTheirOrder) {
    std::vector<std::string> patterns;
    for (const PatternRow& row : PatternTable())
        patterns.emplace_back(row.pattern);
    EXPECT_THAT(
        patterns,
        ElementsAre("product&name|program&title|program&name|soft&name|soft&title|prog&title",
                    "short&description|small&description", "long&description",
                    "company&name|author&name|developer|publisher", "size&mb|size&mbyte|size&megabyte",
                    "size&kb|size&kbyte|size&kilobyte", "pad&url", "size", "screen|image&url",
                    "home&page|program&information|web&site|registration|information&page|info&page|support|"
                    "program&page",
                    "download|program&url|download&url", "mail|email|e-mail",
                    "first&name|contact&name|author&name", "version", "requirement", "description", "name",
                    "keyword", "author", "title", "url", "price|cost"));
}

TEST_F(PadMatcherTest, TextAreasAreFilledLikeTextFields) {
    add("textarea", "d", "Description");
    fill();
    EXPECT_EQ(written_to("d"), "txtLongDesc");
}

TEST_F(PadMatcherTest, OtherKindsOfElementsAreLeftAlone) {
    for (const char* type : {"password", "checkbox", "radio", "file", "hidden", "submit", "select-multiple"})
        add(type, type, "Program name");
    EXPECT_THAT(fill(), IsEmpty());
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(PadMatcherTest, FieldThatThePageHasLockedIsLeftAsItIs) {
    add("text", "publisher", "Publisher").locked = true;
    add_list("kind", "License", {"Freeware", "txtProgramType"}).locked = true;
    add("text", "title", "Title");
    const FillReport report = fill();
    EXPECT_EQ(written_to("publisher"), "nothing");
    EXPECT_TRUE(selected_in("kind").empty());
    EXPECT_EQ(written_to("title"), "txtProgramName");
    ASSERT_EQ(report.size(), 3U);
    EXPECT_TRUE(report[0].locked);
    EXPECT_FALSE(report[2].locked);
}

TEST_F(PadMatcherTest, TypeOfAnElementCountsInAnyLetterCase) {
    add("text", "a", "Program name").type = "TEXT";
    fill();
    EXPECT_EQ(written_to("a"), "txtProgramName");
}

TEST_F(PadMatcherTest, CategoryListGetsTheDetailedKeyword) {
    profile.txtL1Keyword.Text = "games";
    profile.txtL2Keyword.Text = "action";
    add_list("c", "Category", {"Choose", "Games", "Games: Action", "More action"});
    fill();
    EXPECT_THAT(selected_in("c"), ElementsAre("Games: Action"));
}

TEST_F(PadMatcherTest, CategoryListWithoutTheDetailedKeywordGetsTheMainOne) {
    profile.txtL1Keyword.Text = "games";
    profile.txtL2Keyword.Text = "arcade";
    add_list("c", "Directory", {"Choose", "All Games", "Games"});
    fill();
    EXPECT_THAT(selected_in("c"), ElementsAre("All Games"));
}

TEST_F(PadMatcherTest, ListOfCategoryAndLicenceTypeIsTestedForBothAndTheTypeComesLast) {
    profile.txtL2Keyword.Text = "games";
    profile.txtProgramType.Text = "shareware";
    add_list("c", "Category / License type", {"Shareware", "Games"});
    fill();
    EXPECT_THAT(selected_in("c"), ElementsAre("Games", "Shareware"));
}

TEST_F(PadMatcherTest, LicenceListGetsTheProgramType) {
    profile.txtProgramType.Text = "demo|shareware";
    add_list("t", "Licence", {"Freeware", "Shareware (try before you buy)"});
    fill();
    EXPECT_THAT(selected_in("t"), ElementsAre("Shareware (try before you buy)"));
}

TEST_F(PadMatcherTest, ListWithAnotherLabelIsLeftAlone) {
    profile.txtL2Keyword.Text = "games";
    add_list("t", "Program name", {"Games"});
    fill();
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(PadMatcherTest, EmptyProfileTextLeavesTheFieldAndSelectsNothing) {
    profile.txtProgramName.Text = "";
    profile.txtL2Keyword.Text = "";
    profile.txtL1Keyword.Text = "";
    add("text", "a", "Program name").value = "stays";
    add_list("c", "Category", {"Games"});
    const FillReport report = fill();
    EXPECT_THAT(browser.edits, IsEmpty());
    ASSERT_EQ(report.size(), 2U);
    EXPECT_FALSE(report[0].written);
    EXPECT_NE(report[0].pattern, "");
}

TEST_F(PadMatcherTest, FieldWhoseNameIsNotInTheSourceMatchesNothing) {
    PageElement& element = add_element("text", "made_by_script");
    element.label = "Program name";
    element.label_from = "label";
    const FillReport report = fill();
    EXPECT_THAT(browser.edits, IsEmpty());
    ASSERT_EQ(report.size(), 1U);
    EXPECT_EQ(report[0].label, "");
}

TEST_F(PadMatcherTest, FieldOutsideEveryRowHasTheLabelThatAPersonSees) {
    image.source += "<label for=\"i\">Program name</label><input type=\"text\" id=\"i\" name=\"a\">";
    PageElement& element = add_element("text", "a");
    element.label = "Program name";
    element.label_from = "label";
    const FillReport report = fill();
    EXPECT_EQ(written_to("a"), "txtProgramName");
    EXPECT_EQ(report.at(0).label_from, "label");
}

TEST_F(PadMatcherTest, RowCountsBeforeEveryOtherLabel) {
    PageElement& element = add("text", "a", "Program name");
    element.label = "Version";
    element.label_from = "placeholder";
    const FillReport report = fill();
    EXPECT_EQ(written_to("a"), "txtProgramName");
    EXPECT_EQ(report.at(0).label_from, "row");
}

TEST_F(PadMatcherTest, RowWithoutTextLeavesTheWordToTheFieldItself) {
    PageElement& element = add("text", "a", "");
    element.label = "Version";
    element.label_from = "placeholder";
    fill();
    EXPECT_EQ(written_to("a"), "txtProgramVersion");
}

TEST_F(PadMatcherTest, OnlyTheFormOfTheActiveElementIsFilled) {
    add("text", "first", "Program name");
    add_form();
    add("text", "second", "Program name");
    image.active_element.ref = image.forms[1].elements[0].ref;
    fill();
    EXPECT_EQ(written_to("first"), "nothing");
    EXPECT_EQ(written_to("second"), "txtProgramName");
}

TEST_F(PadMatcherTest, NothingIsFilledWhenNoFormHoldsTheActiveElement) {
    add("text", "a", "Program name");
    image.active_element.ref = next_ref();
    EXPECT_THAT(fill(), IsEmpty());
    image.active_element.ref = {};
    EXPECT_THAT(fill(), IsEmpty());
    image.active_element.ref = {"another document", image.forms[0].elements[0].ref.element};
    EXPECT_THAT(fill(), IsEmpty());
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(PadMatcherTest, ActiveElementMayBeAnyElementOfTheForm) {
    add("text", "a", "Program name");
    image.active_element.ref = add("submit", "send", "").ref;
    fill();
    EXPECT_EQ(written_to("a"), "txtProgramName");
}

TEST_F(PadMatcherTest, ReportTellsTheLabelTheRowAndTheValueOfEachField) {
    add("text", "a", "Program name");
    add("text", "b", "Comments");
    add("text", "c", "Size (MB)");
    const FillReport report = fill();
    ASSERT_EQ(report.size(), 3U);
    EXPECT_EQ(report[0].name, "a");
    EXPECT_EQ(report[0].label, "Program name");
    EXPECT_EQ(report[0].pattern, PatternTable()[0].pattern);
    EXPECT_EQ(report[0].value, "txtProgramName");
    EXPECT_TRUE(report[0].written);
    EXPECT_EQ(report[1].pattern, "");
    EXPECT_FALSE(report[1].written);
    EXPECT_EQ(report[2].pattern, PatternTable()[4].pattern);
    EXPECT_FALSE(report[2].written);
}

} // namespace
} // namespace kestrune
