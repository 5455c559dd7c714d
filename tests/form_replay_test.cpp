#include "filling/form_replay.h"

#include "form_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* page_url = "http://a.b/page.html";

PageDocument page(std::vector<PageForm> forms) { return page_of_forms(page_url, std::move(forms)); }

class FormReplayTest : public testing::Test {
protected:
    FormReplayTest() { state.bAutoFillFlag = true; }

    bool write(FormPage& shown, const std::string& action, std::string postdata) {
        LivePage live{shown.browser, shown.image()};
        return FillForms(live, *live.document(), "WRITE", action, postdata, window());
    }
    std::string read(FormPage& shown, const std::string& action, std::string postdata) {
        LivePage live{shown.browser, shown.image()};
        EXPECT_FALSE(FillForms(live, *live.document(), "READ", action, postdata, window()));
        return postdata;
    }
    FormReplay window() { return {state, {mnuAutoClick, status}}; }

    PageState state;
    MenuItem mnuAutoClick{"mnuAutoClick", ""};
    StatusBar status{"StatusBar1"};
};

TEST(RecordedValues, NameIsFoundDecodedAndInAnyLetterCaseTheFirstPairWins) {
    const RecordedValues values{SplitPostData("First+Name=A%2CB&a%5B%5D=1&FIRST%20NAME=second&a[]=2")};
    EXPECT_EQ(values.FindPostValue("first name"), "A,B");
    EXPECT_EQ(values.FindPostValue("FIRST NAME"), "A,B");
    EXPECT_EQ(values.FindPostValue("last name"), std::nullopt);
    EXPECT_THAT(values.FindPostValues("A[]"), ElementsAre("1", "2"));
    EXPECT_THAT(values.FindPostValues("b"), IsEmpty());
}

TEST_F(FormReplayTest, TextPasswordAndTextAreaGetTheirValuesDecoded) {
    FormPage shown{page({form_of(
        "add.cgi", {element("text", "Name"), element("password", "pw"), element("textarea", "about")})})};
    EXPECT_TRUE(write(shown, "add.cgi", "name=A+B%2Cc&pw=s%26t&about=one%0D%0Atwo"));
    EXPECT_EQ(shown.element(0, 0).value, "A B,c");
    EXPECT_EQ(shown.element(0, 1).value, "s&t");
    EXPECT_EQ(shown.element(0, 2).value, "one\r\ntwo");
}

TEST_F(FormReplayTest, RecordedPercent2BIsWrittenAsASpaceAndLowerCaseOneAsAPlus) {
    FormPage shown{page({form_of("add.cgi", {element("text", "a"), element("text", "b")})})};
    write(shown, "add.cgi", "a=%2B1&b=%2b1");
    EXPECT_EQ(shown.element(0, 0).value, " 1");
    EXPECT_EQ(shown.element(0, 1).value, "+1");
}

TEST_F(FormReplayTest, FilledFormClearsThePendingFlagAndAFormThatIsNotThereLeavesIt) {
    FormPage shown{page({form_of("add.cgi", {element("text", "a")})})};
    EXPECT_FALSE(write(shown, "other.cgi", "a=1"));
    EXPECT_TRUE(state.bAutoFillFlag);
    EXPECT_TRUE(write(shown, "add.cgi", "a=1"));
    EXPECT_FALSE(state.bAutoFillFlag);
}

TEST_F(FormReplayTest, FormWithAnInputNamedActionAndAnIdHasTheActionOfThePageSourcesTag) {
    PageForm form = form_of("[object]", {element("hidden", "action", "do.cgi"), element("text", "a")});
    form.id = "f2";
    form.action_input = "do.cgi";
    PageDocument document = page({form});
    document.form_tags = {"<form id=f1 action=first.cgi>", "<form method=post ID=F2 action=\"add.cgi\">"};
    FormPage shown{document};
    EXPECT_FALSE(write(shown, "do.cgi", "a=1"));
    EXPECT_TRUE(write(shown, "http://a.b/add.cgi", "a=1"));
    EXPECT_EQ(shown.element(0, 1).value, "1");
}

TEST_F(FormReplayTest, FormWithAnInputNamedActionIsFoundByItsIdInQuotesAsTodaysEnginesWriteIt) {
    PageForm form = form_of("[object]", {element("hidden", "action", "do.cgi"), element("text", "a")});
    form.id = "f2";
    form.action_input = "do.cgi";
    PageDocument document = page({form});
    document.form_tags = {"<form id=\"f20\" action=\"first.cgi\">",
                          "<form method=\"post\" id=\"f2\" action=\"add.cgi\">"};
    FormPage shown{document};
    EXPECT_FALSE(write(shown, "http://a.b/first.cgi", "a=1"));
    EXPECT_TRUE(write(shown, "http://a.b/add.cgi", "a=1"));
    EXPECT_EQ(shown.element(0, 1).value, "1");
}

TEST_F(FormReplayTest, SameFormWithoutAnIdHasTheValueOfThatInputAsItsAction) {
    PageForm form = form_of("[object]", {element("hidden", "action", "do.cgi"), element("text", "a")});
    form.action_input = "do.cgi";
    PageDocument document = page({form});
    document.form_tags = {"<form action=add.cgi>"};
    FormPage shown{document};
    EXPECT_FALSE(write(shown, "add.cgi", "a=1"));
    EXPECT_TRUE(write(shown, "do.cgi", "a=1"));
}

TEST_F(FormReplayTest, IdThatNoTagHoldsLeavesTheActionAsItReads) {
    PageForm form = form_of("[object]", {element("text", "a")});
    form.id = "gone";
    form.action_input = "do.cgi";
    FormPage shown{page({form})};
    EXPECT_FALSE(write(shown, "do.cgi", "a=1"));
    EXPECT_TRUE(write(shown, "[object]", "a=1"));
}

TEST_F(FormReplayTest, FullRecordedAddressMatchesThePagesActionByItsLastPart) {
    FormPage shown{page({form_of("add.cgi", {element("text", "a")})})};
    EXPECT_TRUE(write(shown, "http://a.b/cgi/add.cgi", "a=1"));
    EXPECT_EQ(shown.element(0, 0).value, "1");
}

TEST_F(FormReplayTest, ActionWithAnotherQueryMatchesOnlyInTheSecondPass) {
    FormPage shown{page(
        {form_of("add.cgi?x=1", {element("text", "a")}), form_of("/go/add.cgi", {element("text", "a")})})};
    EXPECT_TRUE(write(shown, "http://a.b/cgi/add.cgi", "a=1"));
    EXPECT_EQ(shown.element(0, 0).value, "");
    EXPECT_EQ(shown.element(1, 0).value, "1");
    FormPage alone{page({form_of("add.cgi?x=1", {element("text", "a")})})};
    EXPECT_TRUE(write(alone, "http://a.b/cgi/add.cgi", "a=1"));
    EXPECT_EQ(alone.element(0, 0).value, "1");
}

TEST_F(FormReplayTest, SelectListIsMatchedByOptionTextSoARecordedOptionValueSelectsNothing) {
    FormPage shown{
        page({form_of("add.cgi", {list_of("select-one", "category", {{"Choose", "0"}, {"Games", "3"}}),
                                  list_of("select-one", "os", {{"Any", "0"}, {"Linux", "7"}})})})};
    EXPECT_TRUE(write(shown, "add.cgi", "category=3&os=Linux"));
    EXPECT_FALSE(shown.element(0, 0).options[1].selected);
    EXPECT_TRUE(shown.element(0, 1).options[1].selected);
}

TEST_F(FormReplayTest, OptionTextComparesWithItsLetterCaseAndTheFirstEqualOneIsSelected) {
    FormPage shown{page({form_of(
        "add.cgi", {list_of("select-one", "os", {{"linux", "0"}, {"Linux", "1"}, {"Linux", "2"}})})})};
    write(shown, "add.cgi", "os=Linux");
    EXPECT_FALSE(shown.element(0, 0).options[0].selected);
    EXPECT_TRUE(shown.element(0, 0).options[1].selected);
    EXPECT_FALSE(shown.element(0, 0).options[2].selected);
}

TEST_F(FormReplayTest, MultipleChoiceListIsMatchedByOptionValue) {
    FormPage shown{page({form_of(
        "add.cgi", {list_of("select-multiple", "os", {{"Windows", "w"}, {"Linux", "l"}, {"l", "mac"}})})})};
    EXPECT_TRUE(write(shown, "add.cgi", "os=l&os=w&os=Linux"));
    EXPECT_TRUE(shown.element(0, 0).options[0].selected);
    EXPECT_TRUE(shown.element(0, 0).options[1].selected);
    EXPECT_FALSE(shown.element(0, 0).options[2].selected);
}

TEST_F(FormReplayTest, RadioButtonWhoseValueWasRecordedIsChecked) {
    FormPage shown{
        page({form_of("add.cgi", {element("radio", "licence", "free"), element("radio", "licence", "paid"),
                                  element("radio", "other", "free")})})};
    EXPECT_TRUE(write(shown, "add.cgi", "licence=paid"));
    EXPECT_FALSE(shown.element(0, 0).checked);
    EXPECT_TRUE(shown.element(0, 1).checked);
    EXPECT_FALSE(shown.element(0, 2).checked);
}

TEST_F(FormReplayTest, CheckBoxIsCheckedWhenItsValueIsAmongTheRecordedOnesAndNeverUnchecked) {
    PageElement by_default = element("checkbox", "news", "yes");
    by_default.checked = true;
    FormPage shown{
        page({form_of("add.cgi", {element("checkbox", "os", "win"), element("checkbox", "os", "mac"),
                                  element("checkbox", "os", "linux"), by_default})})};
    EXPECT_TRUE(write(shown, "add.cgi", "os=linux&os=win&news=no"));
    EXPECT_TRUE(shown.element(0, 0).checked);
    EXPECT_FALSE(shown.element(0, 1).checked);
    EXPECT_TRUE(shown.element(0, 2).checked);
    EXPECT_TRUE(shown.element(0, 3).checked);
}

TEST_F(FormReplayTest, HiddenSubmitButtonAndFileElementsAreLeftAloneButCountAsReceived) {
    for (const char* type : {"hidden", "submit", "button", "file", "image", "reset"}) {
        FormPage shown{page({form_of("add.cgi", {element(type, "a", "own")})})};
        EXPECT_TRUE(write(shown, "add.cgi", "a=1")) << type;
        EXPECT_EQ(shown.element(0, 0).value, "own") << type;
    }
}

TEST_F(FormReplayTest, ElementTypeIsReadInAnyLetterCase) {
    FormPage shown{page({form_of("add.cgi", {element("TEXT", "a")})})};
    write(shown, "add.cgi", "a=1");
    EXPECT_EQ(shown.element(0, 0).value, "1");
}

TEST_F(FormReplayTest, OfTwoFormsWithTheSameActionTheOneWithRecordedNamesIsFilled) {
    FormPage shown{
        page({form_of("add.cgi", {element("text", "query")}), form_of("add.cgi", {element("text", "a")}),
              form_of("add.cgi", {element("text", "a")})})};
    EXPECT_TRUE(write(shown, "add.cgi", "a=1"));
    EXPECT_EQ(shown.element(0, 0).value, "");
    EXPECT_EQ(shown.element(1, 0).value, "1");
    EXPECT_EQ(shown.element(2, 0).value, "");
}

TEST_F(FormReplayTest, SecondPassSkipsAFormWhoseFirstElementWasNotRecorded) {
    const auto search = {element("hidden", "session", "77"), element("text", "a")};
    FormPage shown{page({form_of("add.cgi?x=1", search), form_of("add.cgi?x=2", {element("text", "a")})})};
    EXPECT_TRUE(write(shown, "add.cgi", "a=1"));
    EXPECT_EQ(shown.element(0, 1).value, "");
    EXPECT_EQ(shown.element(1, 0).value, "1");
    FormPage first_pass{page({form_of("add.cgi", search)})};
    EXPECT_TRUE(write(first_pass, "add.cgi", "a=1"));
    EXPECT_EQ(first_pass.element(0, 1).value, "1");
}

TEST_F(FormReplayTest, FormOfTheVeryActionThatReceivesNothingKeepsTheSecondPassFromRunning) {
    FormPage shown{page(
        {form_of("add.cgi", {element("text", "query")}), form_of("add.cgi?x=1", {element("text", "a")})})};
    EXPECT_FALSE(write(shown, "add.cgi", "a=1"));
    EXPECT_EQ(shown.element(1, 0).value, "");
}

TEST_F(FormReplayTest, PageWithoutFormsAndFormWithoutElementsReceiveNothing) {
    FormPage none{page({})};
    EXPECT_FALSE(write(none, "add.cgi", "a=1"));
    FormPage empty{page({form_of("add.cgi", {}), form_of("add.cgi?x", {})})};
    EXPECT_FALSE(write(empty, "add.cgi", "a=1"));
    FormPage loose{page({form_of("add.cgi?x", {})})};
    EXPECT_FALSE(write(loose, "add.cgi", "a=1"));
}

TEST_F(FormReplayTest, RecordOfMoreThanSixtyPairsIsFilledUpToTheSixtiethWithTheWarning) {
    std::string postdata;
    PageForm form = form_of("add.cgi", {});
    for (int i = 1; i <= 62; ++i) {
        const std::string name = "n" + std::to_string(i);
        postdata.append(i == 1 ? "" : "&").append(name).append("=v");
        form.elements.push_back(element("text", name));
    }
    FormPage shown{page({form})};
    EXPECT_TRUE(write(shown, "add.cgi", postdata));
    EXPECT_EQ(shown.element(0, 59).value, "v");
    EXPECT_EQ(shown.element(0, 60).value, "");
    EXPECT_EQ(status.text(1), "Warning: Only maximum 20 fields can be recorded!");
}

TEST_F(FormReplayTest, FilledFormIsSubmittedWhenAutoClickIsOnAndNotOtherwise) {
    FormPage shown{page({form_of("add.cgi", {element("text", "a"), element("submit", "send")})})};
    write(shown, "add.cgi", "a=1");
    EXPECT_THAT(shown.browser.pressed, IsEmpty());
    mnuAutoClick.Checked = true;
    write(shown, "add.cgi", "a=1");
    EXPECT_THAT(shown.browser.pressed, ElementsAre("send"));
}

TEST_F(FormReplayTest, ValuesStandInThePageWhenItsButtonIsPressed) {
    FormPage shown{page({form_of("add.cgi", {element("submit", "send"), element("text", "a")})})};
    std::string seen;
    shown.browser.on_press = [&](const PageElement& /*button*/) { seen = shown.element(0, 1).value; };
    mnuAutoClick.Checked = true;
    write(shown, "add.cgi", "a=1");
    EXPECT_EQ(seen, "1");
}

TEST_F(FormReplayTest, ReadingBackChangesOnlyWhatTheFormHoldsOtherwiseByNow) {
    FormPage shown{page({form_of("add.cgi", {element("text", "a", "x,y"), element("password", "p", "new one"),
                                             element("textarea", "t", "1\r\n2")})})};
    EXPECT_EQ(read(shown, "http://a.b/add.cgi", "a=x%2cy&p=old&flag&t=1%0D%0A2&gone=~"),
              "a=x%2cy&p=new%20one&flag&t=1%0D%0A2&gone=~");
}

TEST_F(FormReplayTest, ReadingBackLeavesThePageAndThePendingFlagAlone) {
    mnuAutoClick.Checked = true;
    FormPage shown{page({form_of("add.cgi", {element("text", "a", "new"), element("submit", "s")})})};
    EXPECT_EQ(read(shown, "add.cgi", "a=old"), "a=new");
    EXPECT_EQ(shown.element(0, 0).value, "new");
    EXPECT_THAT(shown.browser.pressed, IsEmpty());
    EXPECT_TRUE(state.bAutoFillFlag);
}

TEST_F(FormReplayTest, PostedPlusSignThatStillStandsInThePageIsNotRewritten) {
    FormPage shown{
        page({form_of("add.cgi", {element("text", "a", "+49 1"), element("textarea", "b", "1+1\r\n2")})})};
    EXPECT_EQ(read(shown, "add.cgi", "a=%2B49+1&b=1%2B1%0D%0A2"), "a=%2B49+1&b=1%2B1%0D%0A2");
}

TEST_F(FormReplayTest, ListWithOneChoiceIsReadBackByTheTextOfItsOption) {
    PageElement list = list_of("select-one", "category", {{"Choose", "0"}, {"Games & more", "3"}});
    list.options[1].selected = true;
    FormPage shown{page({form_of("add.cgi", {list})})};
    EXPECT_EQ(read(shown, "add.cgi", "category=3"), "category=Games%20%26%20more");
}

TEST_F(FormReplayTest, RecordThatWasReadBackSelectsItsOptionWhenItIsReplayed) {
    PageElement list = list_of("select-one", "category", {{"Choose", "0"}, {"Games & more", "3"}});
    list.options[1].selected = true;
    FormPage submitted{page({form_of("add.cgi", {list})})};
    const std::string record = read(submitted, "add.cgi", "category=3");
    list.options[1].selected = false;
    FormPage later{page({form_of("add.cgi", {list})})};
    write(later, "add.cgi", record);
    EXPECT_TRUE(later.element(0, 0).options[1].selected);
}

TEST_F(FormReplayTest, SeveralElementsOfOneNameAreReadBackIntoTheirPairsInOrder) {
    FormPage shown{
        page({form_of("add.cgi", {element("text", "Key", "one"), element("text", "x", "-"),
                                  element("text", "key", "two"), element("text", "key", "three")})})};
    EXPECT_EQ(read(shown, "add.cgi", "key=1&KEY=two"), "key=one&KEY=two");
}

TEST_F(FormReplayTest, OnlyChosenBoxesAndButtonsAreReadBackAndHaveAPair) {
    const auto chosen = [](PageElement box) {
        box.checked = true;
        return box;
    };
    PageElement list = list_of("select-multiple", "m", {{"A", "a"}, {"B", "b"}, {"C", "c"}});
    list.options[0].selected = list.options[2].selected = true;
    FormPage shown{
        page({form_of("add.cgi", {element("radio", "r", "1"), chosen(element("radio", "r", "2")),
                                  element("checkbox", "c", "x"), chosen(element("checkbox", "c", "y")),
                                  chosen(element("checkbox", "c", "z")), list})})};
    EXPECT_EQ(read(shown, "add.cgi", "r=2&c=y&c=old&m=a&m=b"), "r=2&c=y&c=z&m=a&m=c");
    EXPECT_EQ(read(shown, "add.cgi", "r=2&c=y"), "r=2&c=y");
}

TEST_F(FormReplayTest, HiddenFieldKeepsItsPairAndTheBoxOfTheSameNameHasTheNextOne) {
    PageElement box = element("checkbox", "ok", "1");
    box.checked = true;
    FormPage shown{page({form_of("add.cgi", {element("hidden", "ok", "0"), box})})};
    EXPECT_EQ(read(shown, "add.cgi", "ok=0&ok=1"), "ok=0&ok=1");
}

TEST_F(FormReplayTest, ChangedValueIsEncodedInTheRecordsCodePage) {
    FormPage shown{
        page({form_of("add.cgi", {element("text", "a", "\u00fc"), element("text", "b", "\u00e9")})})};
    EXPECT_EQ(read(shown, "add.cgi", "a=%C3%A9&b=%C3%A9"), "a=%C3%BC&b=%C3%A9");
    EXPECT_EQ(read(shown, "add.cgi", "a=%E9&b=%E9"), "a=%FC&b=%E9");
}

TEST_F(FormReplayTest, TextOfAnotherCodePageIsRecordedSoThatItCanBeReplayed) {
    FormPage submitted{page({form_of("add.cgi", {element("text", "a", "\u65e5\u672c")})})};
    const std::string record = read(submitted, "add.cgi", "a=%93%FA%96%7B");
    FormPage later{page({form_of("add.cgi", {element("text", "a")})})};
    write(later, "add.cgi", record);
    EXPECT_EQ(later.element(0, 0).value, "\u65e5\u672c");
}

TEST_F(FormReplayTest, ReadingBackGoesBySecondPassToo) {
    FormPage shown{page({form_of("add.cgi?step=1", {element("text", "a", "new")})})};
    EXPECT_EQ(read(shown, "http://a.b/add.cgi?step=2", "a=old"), "a=new");
    FormPage skipped{
        page({form_of("add.cgi?step=1", {element("hidden", "h"), element("text", "a", "new")})})};
    EXPECT_EQ(read(skipped, "http://a.b/add.cgi?step=2", "a=old"), "a=old");
}

TEST_F(FormReplayTest, PairsBeyondTheSixtiethAreKeptAsPosted) {
    std::string postdata = "a=old";
    for (int i = 2; i <= 70; ++i)
        postdata += "&n" + std::to_string(i) + "=v";
    FormPage shown{page({form_of("add.cgi", {element("text", "a", "new")})})};
    EXPECT_EQ(read(shown, "add.cgi", postdata), "a=new" + postdata.substr(5));
}

} // namespace
} // namespace kestrune
