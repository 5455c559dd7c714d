#include "filling/label_table.h"

#include "filling/row_labels.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

// What the source says of a field: its label, "(outside)" outside every row, "(absent)" when it has no tag.
std::string label(std::string_view source, const std::string& name, std::size_t form = 0) {
    const LabelTable table{source, form, {name}};
    const LabelTable::Entry* const entry = table.LookupLabel(name);
    if (entry == nullptr)
        return "(absent)";
    return entry->in_row ? entry->text : "(outside)";
}

std::string row(const std::string& cells) {
    return "<form action=\"a\"><table><tr>" + cells + "</tr></table>";
}
std::string cell(const std::string& content) { return "<td>" + content + "</td>"; }
std::string input(const std::string& name) { return "<input type=\"text\" name=\"" + name + "\">"; }

TEST(LabelTable, OnlyFieldOfARowHasTheTextOfAllItsCells) {
    EXPECT_EQ(label(row(cell("<b>Program</b> name:") + cell(input("a")) + cell("*")), "a"),
              "Program name: *");
    EXPECT_EQ(label(row(cell("File size") + cell(input("a") + " <i>MB</i>")), "a"), "File size MB");
}

TEST(LabelTable, TagsAreRemovedAndEntitiesRead) {
    EXPECT_EQ(label(row(cell("Name&nbsp;&lt;full&gt;<br>&amp;\n  title") + cell(input("a"))), "a"),
              "Name <full> & title");
    EXPECT_EQ(label(row(cell("&amp;nbsp;x") + cell(input("a"))), "a"), "&nbsp;x");
}

TEST(LabelTable, NamesAreLookedUpInAnyLetterCase) {
    EXPECT_EQ(label(row(cell("Name") + cell(input("ProgName"))), "PROGNAME"), "Name");
}

TEST(LabelTable, FieldWithoutATagInTheSourceIsAbsent) {
    EXPECT_EQ(label(row(cell("Name") + cell(input("a"))), "b"), "(absent)");
    EXPECT_EQ(label(row(cell("Name") + cell(input("ab"))), "a"), "(absent)");
    EXPECT_EQ(label(row(cell("Name") + cell("<input type=\"text\">")), ""), "(absent)");
}

TEST(LabelTable, FieldOutsideEveryRowIsToldApartFromOneInARowWithoutText) {
    EXPECT_EQ(label("<form><p>Name " + input("a") + "</p></form>", "a"), "(outside)");
    EXPECT_EQ(label(row(cell(input("a"))), "a"), "");
    EXPECT_EQ(label("<table><tr><td>x</td></tr></table>" + input("a"), "a"), "(outside)");
}

TEST(LabelTable, OtherTagsAndAttributesOfThatNameAreNoField) {
    const std::string decoys =
        "<meta name=\"title\" content=\"x\"><a name=\"title\"></a><!-- <input name=\"title\"> -->"
        "<script>x = '<td>Script <input name=\"title\">';</script>"
        "<p>write  name=title here</p><input type=\"hidden\" name=\"title\">"
        "<input type=\"submit\" name=\"title\">";
    EXPECT_EQ(label(decoys + row(cell("The title") + cell(input("title"))), "title"), "The title");
    EXPECT_EQ(label(row(cell("One") + cell("<input value=\" name=b\" title='name=\"b\"' name=\"a\">")) +
                        row(cell("Two") + cell(input("b"))),
                    "b"),
              "Two");
}

TEST(LabelTable, FieldsNamedLikeAttributesAreFound) {
    const std::string page =
        row(cell("First") + cell(input("name"))) + row(cell("Second") + cell(input("value"))) +
        row(cell("Third") + cell(input("type"))) + row(cell("Fourth") + cell(input("action")));
    EXPECT_EQ(label(page, "name"), "First");
    EXPECT_EQ(label(page, "value"), "Second");
    EXPECT_EQ(label(page, "type"), "Third");
    EXPECT_EQ(label(page, "action"), "Fourth");
}

TEST(LabelTable, UnquotedAndSingleQuotedNamesAreRead) {
    EXPECT_EQ(label(row(cell("Name") + "<td><INPUT NAME=a TYPE=text>"), "a"), "Name");
    EXPECT_EQ(label(row(cell("Name") + cell("<textarea name='a b' rows=3>old &lt;td&gt;</textarea>")), "a b"),
              "Name");
}

TEST(LabelTable, TwoFieldsOfOneNameShareTheLabelOfTheFirst) {
    const std::string page =
        row(cell("Home page") + cell(input("url"))) + row(cell("Download") + cell(input("url")));
    EXPECT_EQ(label(page, "url"), "Home page");
}

TEST(LabelTable, FieldOfTheSameNameInAnEarlierFormDoesNotCount) {
    const std::string page = row(cell("Search") + cell(input("name"))) + "</form>" +
                             row(cell("Program name") + cell(input("name"))) + "</form>";
    EXPECT_EQ(label(page, "name", 0), "Search");
    EXPECT_EQ(label(page, "name", 1), "Program name");
}

TEST(LabelTable, FormThatStandsEmptyBetweenTableTagsStillHasItsFields) {
    const std::string page = "<form></form>" + input("q") + "<table><form action=\"x\"></form><tbody><tr>" +
                             cell("Search") + cell(input("q")) + "</tr></tbody></table>";
    EXPECT_EQ(label(page, "q", 1), "Search");
}

TEST(LabelTable, OptionsTextAreasButtonsAndScriptsAreNoLabelText) {
    EXPECT_EQ(label(row(cell("Category") +
                        cell("<select name=\"a\"><option>Games</option><option>Name</option></select>"
                             "<button>Browse name</button><script>var name;</script><style>.name{}</style>")),
                    "a"),
              "Category");
}

TEST(LabelTable, EachOfSeveralFieldsHasItsOwnCells) {
    const std::string page =
        row(cell("First name") + cell(input("a")) + cell("Last name") + cell(input("b")) + cell("required"));
    EXPECT_EQ(label(page, "a"), "First name");
    EXPECT_EQ(label(page, "b"), "Last name required");
}

TEST(LabelTable, LabelsBehindTheirFieldsAreReadThatWay) {
    const std::string page = row(cell(input("a")) + cell("Version") + cell(input("b")) + cell("Price"));
    EXPECT_EQ(label(page, "a"), "Version");
    EXPECT_EQ(label(page, "b"), "Price");
}

TEST(LabelTable, LabelBesideTwoFieldCellsBelongsToTheFirst) {
    const std::string page = row(cell("Contact name") + cell(input("a")) + cell(input("b")));
    EXPECT_EQ(label(page, "a"), "Contact name");
    EXPECT_EQ(label(page, "b"), "");
}

TEST(LabelTable, FieldsOfOneCellHaveTheTextBeforeThem) {
    const std::string page = row(cell("Name: " + input("a") + " E-mail: " + input("b")));
    EXPECT_EQ(label(page, "a"), "Name:");
    EXPECT_EQ(label(page, "b"), "E-mail:");
}

TEST(LabelTable, FieldsOfOneCellWithTheirTextsBehindAreReadThatWay) {
    const std::string page = row(cell(input("a") + " Version " + input("b") + " Price"));
    EXPECT_EQ(label(page, "a"), "Version");
    EXPECT_EQ(label(page, "b"), "Price");
}

TEST(LabelTable, UnitBelongsToTheFieldBeforeIt) {
    const std::string beside = row(cell("File size") + cell(input("a") + " KB " + input("b") + " (MB)"));
    EXPECT_EQ(label(beside, "a"), "File size KB");
    EXPECT_EQ(label(beside, "b"), "File size (MB)");
    const std::string inside = row(cell("Size " + input("a") + " bytes " + input("b") + " KB"));
    EXPECT_EQ(label(inside, "a"), "Size bytes");
    EXPECT_EQ(label(inside, "b"), "Size KB");
}

TEST(LabelTable, ThreeBoxesOfADateShareNoLabel) {
    const std::string page =
        row(cell("Release date") + cell(input("a") + "/" + input("b") + "/" + input("c")));
    EXPECT_EQ(label(page, "a"), "Release date");
    EXPECT_EQ(label(page, "b"), "");
    EXPECT_EQ(label(page, "c"), "");
}

TEST(LabelTable, ListBeforeAFieldLeavesItsLabelToTheField) {
    const std::string page =
        row(cell("Download URL") + cell("<select name=\"a\"><option>http://</option></select>" + input("b")));
    EXPECT_EQ(label(page, "a"), "Download URL");
    EXPECT_EQ(label(page, "b"), "Download URL");
}

TEST(LabelTable, TextBehindACheckBoxIsNotAFieldsLabel) {
    const std::string page =
        row(cell("Program name") + cell(input("a") + " <input type=checkbox name=c> Free version"));
    EXPECT_EQ(label(page, "a"), "Program name");
    const std::string options =
        row(cell("Licence: <input type=radio name=r> Free <input type=radio name=r> Other " + input("a")));
    EXPECT_EQ(label(options, "a"), "Licence:");
}

TEST(LabelTable, LinesOfACellAreReadOneByOne) {
    const std::string page =
        row(cell("Name: " + input("a") + "<br>E-mail: " + input("b") + " *<br>Price<br>" + input("c")));
    EXPECT_EQ(label(page, "a"), "Name:");
    EXPECT_EQ(label(page, "b"), "E-mail: *");
    EXPECT_EQ(label(page, "c"), "Price");
}

TEST(LabelTable, LabelsAboveTheirFieldsInACellAreRead) {
    const std::string page =
        row(cell("<p>Please fill in:</p><div>Name</div><div>" + input("a") +
                 "</div><small>As it shall appear</small><div>Price</div><div>(in dollars)</div>" +
                 input("b") + "<br>" + input("c")));
    EXPECT_EQ(label(page, "a"), "Name");
    EXPECT_EQ(label(page, "b"), "Price (in dollars)");
    EXPECT_EQ(label(page, "c"), "");
}

TEST(LabelTable, LabelsBelowTheirFieldsInACellAreRead) {
    const std::string page = row(cell(input("a") + "<br>Name<br>" + input("b") + "<br>Price"));
    EXPECT_EQ(label(page, "a"), "Name");
    EXPECT_EQ(label(page, "b"), "Price");
}

TEST(LabelTable, LabelsInTheRowAboveAreRead) {
    const std::string page =
        "<table><tr><td>Name</td><td>Price</td></tr><tr>" + cell(input("a")) + cell(input("b")) +
        "</tr><tr><td colspan=2>Long description</td></tr><tr><td></td>" + cell(input("c")) + "</tr></table>";
    EXPECT_EQ(label(page, "a"), "Name");
    EXPECT_EQ(label(page, "b"), "Price");
    EXPECT_EQ(label(page, "c"), "Long description");
}

TEST(LabelTable, HeadingOverSeveralFieldsIsReadWithTheFirst) {
    const std::string page = "<table><tr><td colspan=2>Author name</td></tr><tr>" + cell(input("a")) +
                             cell(input("b")) + "</tr></table>";
    EXPECT_EQ(label(page, "a"), "Author name");
    EXPECT_EQ(label(page, "b"), "");
}

TEST(LabelTable, LabelsInTheRowBelowAreRead) {
    const std::string page = "<table><tr>" + cell(input("a")) + "</tr><tr><td>Name</td></tr><tr>" +
                             cell(input("b")) + "</tr><tr><td>Price</td></tr></table>";
    EXPECT_EQ(label(page, "a"), "Name");
    EXPECT_EQ(label(page, "b"), "Price");
}

TEST(LabelTable, RowWithAFieldAboveIsNoLabel) {
    const std::string page = "<table><tr>" + cell("Name") + cell(input("a")) + "</tr><tr><td></td>" +
                             cell(input("b")) + "</tr></table>";
    EXPECT_EQ(label(page, "b"), "");
}

TEST(LabelTable, InnermostRowCountsInALayoutTable) {
    const std::string page = "<table><tr><td>Home Download Software Submit</td><td><form><table><tr>" +
                             cell("Version") + cell(input("a")) + "</tr><tr>" + cell("Price") +
                             cell(input("b")) + "</tr></table></form></td></tr></table>";
    EXPECT_EQ(label(page, "a"), "Version");
    EXPECT_EQ(label(page, "b"), "Price");
}

TEST(LabelTable, TableAroundALoneFieldTakesTheTextOfTheRowAroundIt) {
    const std::string wrapped = "<table><tr><td>" + input("a") + "</td></tr></table>";
    EXPECT_EQ(label(row(cell("Version") + cell(wrapped)), "a"), "Version");
}

TEST(LabelTable, UnitInATableAroundALoneFieldIsReadWithTheTextOfTheRowAroundIt) {
    const std::string small = "<table><tr>" + cell(input("a")) + cell("&nbsp;KB") + "</tr></table>";
    EXPECT_EQ(label(row(cell("Size") + cell(small)), "a"), "Size KB");
    EXPECT_EQ(label("<form>" + small, "a"), "KB");
}

TEST(LabelTable, LayoutRowGivesALabelLessFieldOfALongFormNothing) {
    std::string rows_of_form = "<tr>" + cell(input("first")) + "</tr>";
    for (const char* name : {"a", "b", "c", "d", "e"})
        rows_of_form += "<tr>" + cell("Text " + std::string(name)) + cell(input(name)) +
                        "</tr><tr><td></td>" + cell(input(std::string(name) + "2")) + "</tr>";
    const std::string page =
        row(cell("Program name and version") + cell("<table>" + rows_of_form + "</table>"));
    EXPECT_EQ(label(page, "b"), "Text b");
    EXPECT_EQ(label(page, "b2"), "");
    EXPECT_EQ(label(page, "first"), "");
}

TEST(LabelTable, FieldsLaidOutWithoutATableOfTheirOwnAreReadByTheirLines) {
    const std::string navigation(300, 'x');
    const std::string page =
        row(cell(navigation) + cell("<h1>Submit</h1><p>Name: " + input("a") + "</p><p>Price: " + input("b") +
                                    "</p><dl><dt>Version</dt><dd>" + input("c") + "</dd></dl>"));
    EXPECT_EQ(label(page, "a"), "Name:");
    EXPECT_EQ(label(page, "b"), "Price:");
    EXPECT_EQ(label(page, "c"), "Version");
}

TEST(LabelTable, LoneFieldInARowThatLaysOutThePageHasItsOwnLine) {
    const std::string text =
        "We list software of every kind, and the name of each program is checked by hand. ";
    const std::string page = row(cell("<p>" + text + text + text + "</p><p>PAD URL: " + input("a") + "</p>"));
    EXPECT_EQ(label(page, "a"), "PAD URL:");
}

TEST(LabelTable, ShadowRootsAreReadWhereTheyStandAndTemplatesAreNot) {
    const std::string page =
        row(cell("Name") + cell("<x-y><template shadowrootmode=\"open\">" + input("a") +
                                "</template></x-y><template>" + input("b") + "</template>"));
    EXPECT_EQ(label(page, "a"), "Name");
    EXPECT_EQ(label(page, "b"), "(absent)");
}

TEST(LabelTable, BrokenSourceIsReadAsFarAsItGoes) {
    EXPECT_EQ(label("<table><tr><td>Name<td>" + input("a") + "<tr><td>Price<td>" + input("b"), "b"), "Price");
    EXPECT_EQ(label("</td></tr></table><tr><td>Name " + input("a"), "a"), "Name");
    EXPECT_EQ(label("<td>Name " + input("a") + "<input name=\"b", "b"), "(absent)");
    EXPECT_EQ(label("<", "a"), "(absent)");
    EXPECT_EQ(label("<!-- " + input("a"), "a"), "(absent)");
    EXPECT_EQ(label("1 < 2 " + input("a"), "a"), "(outside)");
    EXPECT_EQ(label("", "a"), "(absent)");
}

TEST(LabelTable, FiveThousandRowsAreAllLabelled) {
    std::string page = "<table>";
    std::vector<std::string> names;
    for (int i = 0; i < 5000; ++i) {
        names.push_back("field" + std::to_string(i));
        page += "<tr>" + cell("Label " + std::to_string(i)) + cell(input(names.back())) + "</tr>";
    }
    const LabelTable table{page, 0, names};
    ASSERT_NE(table.LookupLabel("field4999"), nullptr);
    EXPECT_EQ(table.LookupLabel("field4999")->text, "Label 4999");
    EXPECT_EQ(table.LookupLabel("field0")->text, "Label 0");
}

TEST(Units, AreToldFromOtherWords) {
    EXPECT_TRUE(is_unit("KB"));
    EXPECT_TRUE(is_unit(" (Bytes) "));
    EXPECT_FALSE(is_unit("KB or so"));
    EXPECT_FALSE(is_unit("*"));
    EXPECT_FALSE(has_words("* : -"));
    EXPECT_TRUE(has_words("\u0418\u043C\u044F"));
}

} // namespace
} // namespace kestrune
