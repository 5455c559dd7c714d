#include "library/product_profile.h"

#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProductProfileTest : public testing::Test {
protected:
    ~ProductProfileTest() override {
        EXPECT_THAT(ui.failures, IsEmpty());
        EXPECT_TRUE(ui.script_done());
    }

    // The user opens the dialog, does this in it, and leaves it.
    void open_setting(const std::function<void(Form&)>& user) {
        ui.expect_form("frmPreference", user);
        mnuSetting_Click(profile, ui, status, [this](std::string_view text) { written.emplace_back(text); });
    }
    void retrieve(const std::string& bytes) {
        files.contents["/home/pad.xml"] = bytes;
        ui.expect_file_dialog("/home/pad.xml");
        profile.cmdPad_Click();
    }
    [[nodiscard]] std::string hint(std::string_view box) const {
        for (const Form::Row& row : profile.Rows) {
            if (row.Field != nullptr && row.Field->Name == box)
                return row.Hint == nullptr ? "none" : row.Hint->Caption.get();
        }
        return "no such box";
    }
    void fill_every_box() {
        for (const ProfileField& field : ProfileFields())
            (profile.*field.box).Text = "old " + (profile.*field.box).Name;
    }
    [[nodiscard]] bool every_box_is_old() const {
        bool all = true;
        for (const ProfileField& field : ProfileFields())
            all = all && (profile.*field.box).Text == "old " + (profile.*field.box).Name;
        return all;
    }

    MemoryFiles files;
    MemoryUserInterface ui;
    StatusBar status{"StatusBar1"};
    FrmPreference profile{ui, files};
    std::vector<std::string> written;
};

constexpr std::string_view whole_file = "<?xml version=\"1.0\"?>\r\n"
                                        "<Kestrune>\r\n"
                                        "    <Type>Preference</Type>\r\n"
                                        "    <Pad>1</Pad>\r\n"
                                        "    <Home>2</Home>\r\n"
                                        "    <Program_Name>3</Program_Name>\r\n"
                                        "    <Author_Email>4</Author_Email>\r\n"
                                        "    <Application_Info_URL>5</Application_Info_URL>\r\n"
                                        "    <company_name>6</company_name>\r\n"
                                        "    <Char_Desc_80>7</Char_Desc_80>\r\n"
                                        "    <Char_Desc_450>8</Char_Desc_450>\r\n"
                                        "    <Program_Version>9</Program_Version>\r\n"
                                        "    <Primary_Download_URL>10</Primary_Download_URL>\r\n"
                                        "    <Contact_First_Name >11</Contact_First_Name >\r\n"
                                        "    <Contact_Last_Name>12</Contact_Last_Name>\r\n"
                                        "    <File_Size_Bytes>13</File_Size_Bytes>\r\n"
                                        "    <File_Size_K>14</File_Size_K>\r\n"
                                        "    <Application_Screenshot_URL>15</Application_Screenshot_URL>\r\n"
                                        "    <Keywords>16</Keywords>\r\n"
                                        "    <ShareItProdId>17</ShareItProdId>\r\n"
                                        "    <RegNowProdId>18</RegNowProdId>\r\n"
                                        "    <eSellProdId>19</eSellProdId>\r\n"
                                        "    <Program_Specific_Category>20</Program_Specific_Category>\r\n"
                                        "    <Program_Categories>21</Program_Categories>\r\n"
                                        "    <Requirement>22</Requirement>\r\n"
                                        "    <Program_Release_Year>23</Program_Release_Year>\r\n"
                                        "    <Program_Release_Month>24</Program_Release_Month>\r\n"
                                        "    <Program_Release_Day>25</Program_Release_Day>\r\n"
                                        "    <Program_Cost_Dollars>26</Program_Cost_Dollars>\r\n"
                                        "    <Program_Type>27</Program_Type>\r\n"
                                        "</Kestrune>";

void number_boxes(FrmPreference& profile) {
    profile.txtPADUrl.Text = "1";
    profile.txtHomeUrl.Text = "2";
    profile.txtProgramName.Text = "3";
    profile.txtAuthorEmail.Text = "4";
    profile.txtAppInfoUrl.Text = "5";
    profile.txtCompanyName.Text = "6";
    profile.txtShortDesc.Text = "7";
    profile.txtLongDesc.Text = "8";
    profile.txtProgramVersion.Text = "9";
    profile.txtDownloadUrl.Text = "10";
    profile.txtFirstName.Text = "11";
    profile.txtLastName.Text = "12";
    profile.txtSizeBytes.Text = "13";
    profile.txtSizeKbytes.Text = "14";
    profile.txtScreenUrl.Text = "15";
    profile.txtKeywords.Text = "16";
    profile.txtShareItProdId.Text = "17";
    profile.txtRegNowProdId.Text = "18";
    profile.txteSellProdId.Text = "19";
    profile.txtL1Keyword.Text = "20";
    profile.txtL2Keyword.Text = "21";
    profile.txtRequirement.Text = "22";
    profile.txtRelYear.Text = "23";
    profile.txtRelMonth.Text = "24";
    profile.txtRelDay.Text = "25";
    profile.txtPrice.Text = "26";
    profile.txtProgramType.Text = "27";
}

TEST_F(ProductProfileTest, FileHoldsEveryBoxUnderItsTagWithTheTwoIrregularOnes) {
    number_boxes(profile);
    EXPECT_EQ(BuildProfileXml(profile), whole_file);
}

TEST_F(ProductProfileTest, FileBeginsWithTheDeclarationAndEndsWithoutALineBreak) {
    const std::string text = BuildProfileXml(profile);
    EXPECT_THAT(text, testing::StartsWith("<?xml version=\"1.0\"?>\r\n"));
    EXPECT_THAT(text, testing::EndsWith("</Kestrune>"));
}

TEST_F(ProductProfileTest, FileIsReadBackIntoTheSameBoxes) {
    fill_every_box();
    ReadProfileXml(whole_file, profile);
    EXPECT_EQ(BuildProfileXml(profile), whole_file);
    EXPECT_EQ(profile.txtFirstName.Text.get(), "11");
    EXPECT_EQ(profile.txtCompanyName.Text.get(), "6");
}

TEST_F(ProductProfileTest, FirstNameWithoutTheBlankInItsTagIsNotReadBack) {
    ReadProfileXml("<Contact_First_Name>Ann</Contact_First_Name>", profile);
    EXPECT_EQ(profile.txtFirstName.Text.get(), "");
}

TEST_F(ProductProfileTest, ElementsInAnyLetterCaseAreReadAndMissingOnesEmptyTheirBoxes) {
    fill_every_box();
    ReadProfileXml("<COMPANY_Name>Acme</company_NAME>", profile);
    EXPECT_EQ(profile.txtCompanyName.Text.get(), "Acme");
    EXPECT_EQ(profile.txtPADUrl.Text.get(), "");
}

TEST_F(ProductProfileTest, AngleBracketsAndAmpersandsAreWrittenUnescaped) {
    profile.txtLongDesc.Text = "a < b & \"c\" > d\r\nsecond line";
    const std::string text = BuildProfileXml(profile);
    EXPECT_NE(text.find("    <Char_Desc_450>a < b & \"c\" > d\r\nsecond line</Char_Desc_450>\r\n"),
              std::string::npos);
    FrmPreference other{ui, files};
    ReadProfileXml(text, other);
    EXPECT_EQ(other.txtLongDesc.Text.get(), profile.txtLongDesc.Text.get());
}

TEST_F(ProductProfileTest, SaveHandsOverTheTextAndSaysSo) {
    open_setting([](Form& form) {
        EXPECT_TRUE(type_into(form, "txtProgramName", "Photo Album"));
        EXPECT_TRUE(press_button(form, "cmdSave"));
    });
    EXPECT_THAT(written, ElementsAre(BuildProfileXml(profile)));
    EXPECT_NE(written[0].find("<Program_Name>Photo Album</Program_Name>"), std::string::npos);
    EXPECT_EQ(status.text(1), "Setting is updated");
}

TEST_F(ProductProfileTest, CancelWritesNothingAndKeepsWhatWasTyped) {
    status.set_text(1, "earlier");
    open_setting([](Form& form) {
        type_into(form, "txtProgramName", "typed");
        press_button(form, "cmdCancel");
    });
    EXPECT_THAT(written, IsEmpty());
    EXPECT_EQ(status.text(1), "");
    EXPECT_EQ(profile.txtProgramName.Text.get(), "typed");
}

TEST_F(ProductProfileTest, CloseBoxAfterAnEarlierSaveIsACancel) {
    open_setting([](Form& form) { press_button(form, "cmdSave"); });
    open_setting([](Form& form) { type_into(form, "txtProgramName", "typed"); });
    EXPECT_EQ(written.size(), 1U);
    EXPECT_EQ(status.text(1), "");
}

constexpr std::string_view pad_text =
    "<XML_DIZ_INFO>\n"
    "<Company_Info><Company_Name>Acme</Company_Name>\n"
    "<Company_WebSite_URL>http://acme</Company_WebSite_URL></Company_Info>\n"
    "<Contact_First_Name>Ann</Contact_First_Name>\n"
    "<PROGRAM_NAME>Photo Album</PROGRAM_NAME>\n"
    "<File_Size_K>123</File_Size_K>\n"
    "<Char_Desc_80>first</Char_Desc_80><Char_Desc_80>second</Char_Desc_80>\n"
    "<Application_XML_File_URL>http://acme/p.xml</Application_XML_File_URL>\n"
    "</XML_DIZ_INFO>";

TEST_F(ProductProfileTest, RetrievePadFillsBoxesFromTheirTagsAndEmptiesTheOthers) {
    fill_every_box();
    retrieve(std::string(pad_text));
    EXPECT_EQ(profile.txtCompanyName.Text.get(), "Acme");
    EXPECT_EQ(profile.txtHomeUrl.Text.get(), "http://acme");
    EXPECT_EQ(profile.txtFirstName.Text.get(), "Ann");
    EXPECT_EQ(profile.txtProgramName.Text.get(), "Photo Album");
    EXPECT_EQ(profile.txtSizeKbytes.Text.get(), "123");
    EXPECT_EQ(profile.txtShortDesc.Text.get(), "first");
    EXPECT_EQ(profile.txtPADUrl.Text.get(), "http://acme/p.xml");
    for (const TextBox* box : {&profile.txtShareItProdId, &profile.txtRegNowProdId, &profile.txteSellProdId,
                               &profile.txtRequirement, &profile.txtLongDesc})
        EXPECT_EQ(box->Text.get(), "") << box->Name;
}

TEST_F(ProductProfileTest, EveryBoxHasItsOwnPadTag) {
    std::string text;
    for (const ProfileField& field : ProfileFields()) {
        if (!field.pad_tag.empty())
            text += "<" + std::string(field.pad_tag) + ">" + (profile.*field.box).Name + "</" +
                    std::string(field.pad_tag) + ">";
    }
    retrieve(text);
    int filled = 0;
    for (const ProfileField& field : ProfileFields()) {
        const TextBox& box = profile.*field.box;
        EXPECT_EQ(box.Text.get(), field.pad_tag.empty() ? "" : box.Name);
        filled += box.Text.get().empty() ? 0 : 1;
    }
    EXPECT_EQ(filled, 23);
}

TEST_F(ProductProfileTest, RetrievePadAsksForPadFiles) {
    class Watching : public MemoryUserInterface {
    public:
        std::string OpenFileDialog(std::string_view filter) override {
            asked_for = filter;
            return {};
        }
        std::string asked_for;
    } watching;
    FrmPreference dialog{watching, files};
    dialog.cmdPad.press();
    EXPECT_EQ(watching.asked_for, "PAD File|*.xml");
}

TEST_F(ProductProfileTest, EntitiesAndCDataAreCopiedAsTheyStand) {
    EXPECT_EQ(GetTagValue("<a>x &amp; &#38; y</a>", "A"), "x &amp; &#38; y");
    EXPECT_EQ(GetTagValue("<a> <![CDATA[1 < 2]]>\r\n</a>", "a"), " <![CDATA[1 < 2]]>\r\n");
}

TEST_F(ProductProfileTest, TagWithAttributesOrBlanksInsideIsNotFound) {
    EXPECT_EQ(GetTagValue("<a b=\"c\">x</a>", "a"), "");
    EXPECT_EQ(GetTagValue("<a >x</a>", "a"), "");
    EXPECT_EQ(GetTagValue("<a>x", "a"), "");
    EXPECT_EQ(GetTagValue("</a><a>x</a>", "a"), "x");
}

TEST_F(ProductProfileTest, CancellingTheFileDialogChangesNothing) {
    fill_every_box();
    for (const char* chosen : {"", "   "}) {
        ui.expect_file_dialog(chosen);
        profile.cmdPad_Click();
    }
    EXPECT_TRUE(every_box_is_old());
    EXPECT_FALSE(profile.cmdUndoPad.Enabled.get());
    EXPECT_THAT(ui.asked, IsEmpty());
}

TEST_F(ProductProfileTest, TypedNameOfNoFileIsNotFound) {
    fill_every_box();
    ui.expect_file_dialog("/home/nothing.xml");
    ui.expect_box("File not found!", Answer::Ok);
    profile.cmdPad_Click();
    EXPECT_TRUE(every_box_is_old());
    EXPECT_THAT(ui.asked,
                ElementsAre(MemoryUserInterface::Asked{"File not found!", Buttons::Ok, "Kestrune"}));
}

TEST_F(ProductProfileTest, FolderIsNotFound) {
    files.folders.insert("/home");
    ui.expect_file_dialog("/home");
    ui.expect_box("File not found!", Answer::Ok);
    profile.cmdPad_Click();
}

TEST_F(ProductProfileTest, UnreadableOrEmptyFileSaysSoAndChangesNothing) {
    fill_every_box();
    files.unreadable.insert("/home/pad.xml");
    ui.expect_box("File cannot be read!", Answer::Ok);
    retrieve(std::string(pad_text));
    files.unreadable.clear();
    ui.expect_box("File cannot be read!", Answer::Ok);
    retrieve("");
    EXPECT_TRUE(every_box_is_old());
    EXPECT_FALSE(profile.cmdUndoPad.Enabled.get());
}

TEST_F(ProductProfileTest, FileThatIsNoPadEmptiesTheBoxesAndUndoBringsThemBack) {
    fill_every_box();
    retrieve("<html><body>Page not found</body></html>");
    for (const ProfileField& field : ProfileFields())
        EXPECT_EQ((profile.*field.box).Text.get(), "");
    ASSERT_TRUE(press_button(profile, "cmdUndoPad"));
    EXPECT_TRUE(every_box_is_old());
    EXPECT_FALSE(profile.cmdUndoPad.Enabled.get());
}

TEST_F(ProductProfileTest, ImportsAreUndoneOneAfterTheOther) {
    fill_every_box();
    retrieve("<Program_Name>one</Program_Name>");
    retrieve("<Program_Name>two</Program_Name>");
    profile.cmdUndoPad_Click();
    EXPECT_EQ(profile.txtProgramName.Text.get(), "one");
    profile.cmdUndoPad_Click();
    EXPECT_TRUE(every_box_is_old());
}

TEST_F(ProductProfileTest, ImportCanBeUndoneAfterCancelButNotAfterSave) {
    fill_every_box();
    open_setting([this](Form& form) {
        retrieve(std::string(pad_text));
        press_button(form, "cmdCancel");
    });
    open_setting([](Form& form) { EXPECT_TRUE(press_button(form, "cmdUndoPad")); });
    EXPECT_TRUE(every_box_is_old());
    open_setting([this](Form& form) {
        retrieve(std::string(pad_text));
        press_button(form, "cmdSave");
    });
    open_setting([](Form& form) { EXPECT_FALSE(press_button(form, "cmdUndoPad")); });
    EXPECT_EQ(profile.txtCompanyName.Text.get(), "Acme");
}

TEST_F(ProductProfileTest, RetrievePadThenCancelKeepsTheImportInUseAndTheFileAsItWas) {
    open_setting([this](Form& form) {
        retrieve(std::string(pad_text));
        press_button(form, "cmdCancel");
    });
    EXPECT_EQ(profile.txtProgramName.Text.get(), "Photo Album");
    EXPECT_THAT(written, IsEmpty());
}

TEST_F(ProductProfileTest, PadFileOfSeveralMegabytesIsReadWhole) {
    std::string text = "<XML_DIZ_INFO>";
    for (int i = 0; i < 200000; ++i)
        text += "<Filler_Element>some text</Filler_Element>\n";
    text += "<Program_Type>Freeware</Program_Type></XML_DIZ_INFO>";
    ASSERT_GT(text.size(), 8000000U);
    retrieve(text);
    EXPECT_EQ(profile.txtProgramType.Text.get(), "Freeware");
}

TEST_F(ProductProfileTest, PadFileInUtf16IsReadByItsByteOrderMark) {
    std::string bytes = "\xFF\xFE";
    for (const char letter : std::string_view("<Keywords>a"))
        bytes.append({letter, '\0'});
    bytes.append("\x2F\x04", 2);
    for (const char letter : std::string_view("</Keywords>"))
        bytes.append({letter, '\0'});
    retrieve(bytes);
    EXPECT_EQ(profile.txtKeywords.Text.get(), "a\u042F");
}

TEST_F(ProductProfileTest, CountOfCharactersFollowsTheTyping) {
    EXPECT_EQ(hint("txtShortDesc"), "0 of 80 characters");
    type_into(profile, "txtShortDesc", "Gr\u00FC\u00DFe");
    EXPECT_EQ(hint("txtShortDesc"), "5 of 80 characters");
    type_into(profile, "txtShortDesc", std::string(83, 'x'));
    EXPECT_EQ(hint("txtShortDesc"), "83 of 80 characters, 3 too many");
    EXPECT_EQ(hint("txtPADUrl"), "none");
}

TEST_F(ProductProfileTest, CountOfAnAddressLeavesItsSchemeOut) {
    type_into(profile, "txtDownloadUrl", "https://a.b/c");
    EXPECT_EQ(hint("txtDownloadUrl"), "5 of 120 characters after \"://\"");
    type_into(profile, "txtDownloadUrl", "a.b");
    EXPECT_EQ(hint("txtDownloadUrl"), "3 of 120 characters after \"://\"");
}

TEST_F(ProductProfileTest, DialogShowsEachBoxOnceInGroupsThatStandTogether) {
    std::vector<std::string> groups;
    for (const ProfileField& field : ProfileFields()) {
        const TextBox& box = profile.*field.box;
        EXPECT_EQ(std::count_if(profile.Rows.begin(), profile.Rows.end(),
                                [&box](const Form::Row& row) { return row.Field == &box; }),
                  1)
            << box.Name;
    }
    for (const Form::Row& row : profile.Rows) {
        if (groups.empty() || groups.back() != row.Group)
            groups.push_back(row.Group);
    }
    EXPECT_THAT(groups, ElementsAre("", "Program", "Descriptions", "Web addresses", "Author",
                                    "Download and release", "Shop numbers"));
    EXPECT_TRUE(profile.txtLongDesc.MultiLine);
    EXPECT_FALSE(profile.txtProgramName.MultiLine);
}

} // namespace
} // namespace kestrune
