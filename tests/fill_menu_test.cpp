#include "filling/fill_menu.h"

#include "profile_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FillMenuTest : public ProfilePageTest {
protected:
    // The user right-clicks this element, whose reference the image holds already, and chooses the entry.
    std::optional<FillReport> choose(const PageElement& element, std::int32_t index) {
        image.active_element = element;
        LivePage page{browser, image};
        return FillFromMenu(page, profile, index);
    }
    [[nodiscard]] std::vector<PageEdit::Kind> kinds() const {
        std::vector<PageEdit::Kind> found;
        for (const PageEdit& edit : browser.edits)
            found.push_back(edit.kind);
        return found;
    }
    [[nodiscard]] std::string caption(std::string_view name) const {
        for (const MenuItem* item : menu.mnuProduct.Items) {
            if (item->Name == name)
                return item->Caption.get();
        }
        return "no such item";
    }

    FillMenu menu;
};

TEST_F(FillMenuTest, EveryEntryWritesItsBoxIntoTheFieldUnderTheMouse) {
    add("text", "other", "Other");
    const PageElement field = add("text", "a", "Anything");
    const std::vector<std::string> boxes{
        "txtPADUrl",        "txtProgramName",  "txtAuthorEmail",    "txtAppInfoUrl",  "txtCompanyName",
        "txtShortDesc",     "txtLongDesc",     "txtProgramVersion", "txtDownloadUrl", "txtFirstName",
        "txtLastName",      "txtSizeBytes",    "txtSizeKbytes",     "txtScreenUrl",   "txtKeywords",
        "txtShareItProdId", "txtRegNowProdId", "txteSellProdId",    "txtRequirement", "txtRelYear",
        "txtRelMonth",      "txtRelDay",       "txtPrice",          "txtL2Keyword",   "txtProgramType"};
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        browser.edits.clear();
        choose(field, static_cast<std::int32_t>(i + 1));
        EXPECT_EQ(written_to("a"), boxes[i]);
        EXPECT_EQ(written_to("other"), "nothing");
    }
}

TEST_F(FillMenuTest, DismissedMenuWritesNothing) {
    choose(add("text", "a", "Program name"), fill_nothing);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, IndexOfNoEntryWritesNothing) {
    choose(add("text", "a", "Program name"), 26);
    choose(image.forms[0].elements[0], -1);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, CategoryOnAListSelectsTheFirstOptionThatFitsTheDetailedKeyword) {
    profile.txtL1Keyword.Text = "games";
    profile.txtL2Keyword.Text = "arcade|action";
    choose(add_list("c", "Anything", {"Choose", "Games", "Action", "Arcade"}), fill_category);
    EXPECT_THAT(selected_in("c"), ElementsAre("Action"));
}

TEST_F(FillMenuTest, CategoryOnAListWithoutTheDetailedKeywordSelectsNothing) {
    profile.txtL1Keyword.Text = "games";
    profile.txtL2Keyword.Text = "arcade";
    choose(add_list("c", "Category", {"Games"}), fill_category);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, ProgramTypeOnAListSelectsByTheProfilesType) {
    profile.txtProgramType.Text = "shareware";
    choose(add_list("t", "Anything", {"type", "license", "Shareware"}), fill_program_type);
    EXPECT_THAT(selected_in("t"), ElementsAre("Shareware"));
}

TEST_F(FillMenuTest, OtherEntriesDoNothingToAList) {
    profile.txtProgramName.Text = "Games";
    choose(add_list("c", "Category", {"Games"}), 2);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, EmptyProfileTextIsWrittenIntoAFieldButSelectsNothingInAList) {
    profile.txtProgramName.Text = "";
    profile.txtL2Keyword.Text = "";
    choose(add("text", "a", "Program name"), 2);
    EXPECT_EQ(written_to("a"), "");
    browser.edits.clear();
    choose(add_list("c", "Category", {"Games"}), fill_category);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, FieldOutsideEveryFormTakesItsValueToo) {
    PageElement loose;
    loose.ref = next_ref();
    loose.type = "textarea";
    choose(loose, 7);
    ASSERT_EQ(browser.edits.size(), 2U);
    EXPECT_EQ(browser.edits[1].ref.element, loose.ref.element);
    EXPECT_EQ(browser.edits[1].text, "txtLongDesc");
}

TEST_F(FillMenuTest, ElementThatNobodyTypesIntoTakesNothing) {
    for (const char* type : {"submit", "checkbox", "radio", "hidden", "file", "select-multiple", "image", ""})
        choose(add(type, type, "Program name"), 2);
    choose(PageElement{}, 2);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, FieldThatThePageHasLockedTakesNothing) {
    for (const char* type : {"text", "textarea"}) {
        PageElement& field = add(type, type, "Program name");
        field.locked = true;
        choose(field, 2);
    }
    PageElement& list = add_list("list", "License", {"Freeware", "txtProgramType"});
    list.locked = true;
    choose(list, fill_program_type);
    EXPECT_THAT(browser.edits, IsEmpty());
}

TEST_F(FillMenuTest, FieldHasTheFocusWhenItIsWrittenAndAfterwards) {
    choose(add("text", "a", "Program name"), 2);
    EXPECT_THAT(kinds(), ElementsAre(PageEdit::Kind::focus, PageEdit::Kind::value));
}

TEST_F(FillMenuTest, MultiInputFillsTheFormOfTheFocusedFieldAloneAndLeavesTheFocusThere) {
    add("text", "first", "Program name");
    add_form();
    add("text", "second", "Program name");
    const PageElement field = add("text", "third", "Version");
    const auto report = choose(field, fill_all);
    EXPECT_EQ(written_to("first"), "nothing");
    EXPECT_EQ(written_to("second"), "txtProgramName");
    EXPECT_EQ(written_to("third"), "txtProgramVersion");
    ASSERT_TRUE(report);
    EXPECT_EQ(report->size(), 2U);
    EXPECT_EQ(browser.edits.back().kind, PageEdit::Kind::focus);
    EXPECT_EQ(browser.edits.back().ref.element, field.ref.element);
}

TEST_F(FillMenuTest, LabelsAreAskedForByMultiInputAlone) {
    EXPECT_FALSE(parts_for_entry(2).labels);
    EXPECT_TRUE(parts_for_entry(2).forms);
    EXPECT_TRUE(parts_for_entry(fill_all).labels);
    EXPECT_TRUE(parts_for_entry(fill_all).forms);
}

TEST_F(FillMenuTest, EntriesHaveTheirNamesAndSetTheirIndex) {
    std::vector<std::int32_t> chosen;
    menu.on_choice = [&chosen](std::int32_t index) { chosen.push_back(index); };
    std::set<std::string> names;
    for (const MenuItem* item : menu.mnuProduct.Items) {
        item->choose();
        names.insert(item->Name);
    }
    menu.mnuAll.choose();
    ASSERT_EQ(chosen.size(), 26U);
    for (std::int32_t i = 0; i < 25; ++i)
        EXPECT_EQ(chosen[static_cast<std::size_t>(i)], i + 1);
    EXPECT_EQ(chosen[25], fill_all);
    EXPECT_EQ(names.size(), 25U);
    EXPECT_EQ(menu.mnuProduct.Items[0]->Name, "mnuPadUrl");
    EXPECT_EQ(menu.mnuProduct.Items[17]->Name, "mnueSellProdId");
    EXPECT_EQ(menu.mnuProduct.Items[24]->Name, "mnuProgramType");
    EXPECT_EQ(menu.mnuProduct.Caption.get(), "Single-input");
    EXPECT_EQ(menu.mnuAll.Caption.get(), "Multi-input");
}

TEST_F(FillMenuTest, PresentValueStandsBesideEachEntry) {
    profile.txtProgramName.Text = "Photo Album";
    profile.txtShortDesc.Text = " \r\n ";
    profile.txtLongDesc.Text = "One  line\r\nand\tanother " + std::string(50, 'x');
    profile.txtKeywords.Text = std::string(39, 'k') + "\u00FC";
    menu.show_values(profile);
    EXPECT_EQ(caption("mnuProgramName"), "Program name: Photo Album");
    EXPECT_EQ(caption("mnuShortDesc"), "Short description: (empty)");
    EXPECT_EQ(caption("mnuLongDesc"),
              "Long description: One line and another " + std::string(19, 'x') + "...");
    EXPECT_EQ(caption("mnuKeywords"), "Keywords: " + std::string(39, 'k') + "\u00FC");
    EXPECT_EQ(caption("mnuCategory"), "Category, also in a list: txtL2Keyword");
}

TEST_F(FillMenuTest, ReportForPeopleTellsLabelRowAndValue) {
    const FillReport report{
        {"a", "text", "Program name", "row", "program&name", "Photo Album", true},
        {"b", "text", "", "", "", "", false},
        {"", "text", "Size (MB)", "placeholder", "size&mb", "", false},
        {"c", "text", "Publisher", "row", "", "", false, true},
    };
    EXPECT_EQ(FillReportText(report),
              "a: \"Program name\" (row) - program&name - \"Photo Album\"\n"
              "b: no label - no row of the table matches - left as it is\n"
              "(no name): \"Size (MB)\" (placeholder) - size&mb - left as it is\n"
              "c: \"Publisher\" (row) - the page lets nobody write there - left as it is\n");
}

TEST_F(FillMenuTest, ReportForPeopleShortensWhatPagesCallTheirFields) {
    const FillReport report{{std::string(5000000, 'n') + "\nend", "text", "", "", "", "", false}};
    EXPECT_EQ(FillReportText(report),
              std::string(40, 'n') + "...: no label - no row of the table matches - left as it is\n");
}

} // namespace
} // namespace kestrune
