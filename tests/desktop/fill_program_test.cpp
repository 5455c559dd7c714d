#include "tests/desktop/fill_fixture.h"

namespace kestrune {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

constexpr const char* listening =
    "<input name=log><script>for (const type of ['mousedown', 'contextmenu', 'focus', 'input', 'change', "
    "'keydown'])"
    "addEventListener(type, e => { if (e.target.name && e.target.name !== 'log') "
    "document.querySelector('[name=log]').value += type + ':' + e.target.name + (e.key ? ' ' + e.key : '') + "
    "';' }, true)</script>";

TEST_F(FillProgramTest, SingleInputWritesTheChosenTextIntoTheFieldUnderTheMouseThoughAnotherHadTheFocus) {
    open_form("<form><p>A <input name=a autofocus><p>B <input name=b></form>");
    choose("b", "mnuShortDesc");
    wait_for_page("the text", [this] { return value_of("b") == "txtShortDesc"; });
    EXPECT_EQ(value_of("a"), "");
    EXPECT_EQ(window().glngMnuIdx, 6);
}

TEST_F(FillProgramTest, ThePageSeesFocusInputAndChangeAndNothingOfTheClick) {
    open_form(std::string("<form><input name=a></form>") + listening);
    choose("a", "mnuProgramName");
    wait_for_page("the text", [this] { return value_of("a") == "txtProgramName"; });
    EXPECT_EQ(value_of("log"), "focus:a;input:a;change:a;");
}

TEST_F(FillProgramTest, TypingGoesOnInTheFieldThatWasFilled) {
    open_form("<form><input name=a><input name=b></form>");
    choose("b", "mnuProgramName");
    wait_for_page("the text", [this] { return value_of("b") == "txtProgramName"; });
    QTest::keyClicks(user().window().focusWidget(), " 2");
    wait_for_page("what is typed", [this] { return value_of("b") == "txtProgramName 2"; });
}

TEST_F(FillProgramTest, RightClickingAndDismissingTheMenuWritesNothingAndTheClickStillReachesTheBrowser) {
    open_form(std::string("<form><input name=a value=mine></form>") + listening);
    use_menu(place_of_field("a"), [](QMenu& menu) { QTest::keyClick(&menu, Qt::Key_Escape); });
    wait("the browser's own menu", [] { return open_menu() != nullptr; });
    EXPECT_NE(open_menu()->objectName(), "mnuRightClickMenu");
    open_menu()->close();
    wait_for_page("the click in the page",
                  [this] { return value_of("log") == "focus:a;mousedown:a;contextmenu:a;"; });
    EXPECT_EQ(value_of("a"), "mine");
    EXPECT_EQ(window().glngMnuIdx, fill_nothing);
}

TEST_F(FillProgramTest, OneRightClickShowsOneMenuAndLeadsToOneWrite) {
    open_form(std::string("<form><input name=a></form>") + listening);
    int shown = 0;
    for (int i = 0; i < 2; ++i) {
        use_menu(place_of_field("a"), [&shown](QMenu& menu) {
            ++shown;
            click_entry(menu, "mnuPrice");
        });
    }
    EXPECT_EQ(shown, 2);
    wait_for_page("both writes",
                  [this] { return value_of("log") == "focus:a;input:a;change:a;input:a;change:a;"; });
    EXPECT_EQ(open_menu(), nullptr);
}

TEST_F(FillProgramTest, TheMenuIsUsedByKeysAloneFromTheMenuKeyToTheText) {
    open_form(std::string("<form><input name=a></form>") + listening);
    view().setFocus();
    run("document.querySelector('[name=a]').focus()");
    run("document.querySelector('[name=log]').value = ''");
    for (const auto& [asking, held] : {std::pair(Qt::Key_Menu, Qt::KeyboardModifiers()),
                                       std::pair(Qt::Key_F10, Qt::KeyboardModifiers(Qt::ShiftModifier))}) {
        run("document.querySelector('[name=a]').value = ''");
        const QPoint below = view().mapToGlobal(place_of_field("a"));
        menus_.expect("mnuRightClickMenu", [below](QMenu& menu) {
            EXPECT_NEAR(menu.pos().y(), below.y(), 40) << "the menu stands at the field";
            QTest::keyClick(&menu, Qt::Key_Down);
            QTest::keyClick(&menu, Qt::Key_Right);
            QMenu* const product = action_of(menu, "mnuProduct").menu();
            ASSERT_TRUE(wait_until([product] { return product->isVisible(); }));
            QTest::keyClick(product, Qt::Key_Down);
            QTest::keyClick(product, Qt::Key_Return);
        });
        QTest::keyClick(view().focusProxy(), asking, held);
        wait_for_menu();
        wait_for_page("the text", [this] { return value_of("a") == "txtProgramName"; });
    }
    EXPECT_EQ(value_of("log"), "input:a;change:a;keydown:a Shift;input:a;change:a;");
}

TEST_F(FillProgramTest,
       SingleInputOnADropDownListWithEntry24SelectsTheFirstOptionThatMatchesTheLevel2Keyword) {
    open_form(std::string("<form><select name=c><option>Choose<option>Games<option>File tools - backup"
                          "<option>Backup of files</select></form>") +
              listening);
    window().frmPreference().txtL1Keyword.Text = "games";
    window().frmPreference().txtL2Keyword.Text = "recovery|backup&file";
    choose("c", "mnuCategory");
    wait_for_page("the option", [this] { return value_of("c") == "File tools - backup"; });
    EXPECT_THAT(value_of("log"), EndsWith("input:c;change:c;"));
}

TEST_F(FillProgramTest, SingleInputOnADropDownListWithEntry25SelectsByTheLicenceType) {
    open_form("<form><select name=t><option>type<option>Freeware<option>Shareware</select></form>");
    window().frmPreference().txtProgramType.Text = "shareware";
    choose("t", "mnuProgramType");
    wait_for_page("the option", [this] { return value_of("t") == "Shareware"; });
}

TEST_F(FillProgramTest, Entries24And25WriteTheirTextsIntoWhatIsNoList) {
    open_form("<form><input name=a><textarea name=b></textarea></form>");
    choose("a", "mnuCategory");
    choose("b", "mnuProgramType");
    wait_for_page("the texts", [this] { return value_of("b") == "txtProgramType"; });
    EXPECT_EQ(value_of("a"), "txtL2Keyword");
}

TEST_F(FillProgramTest, AnEmptyTextIsWrittenByItsEntryAndSelectsNothing) {
    open_form("<form><input name=a value=old><select name=c><option>One<option selected>Two</select></form>");
    window().frmPreference().txtPrice.Text = "";
    window().frmPreference().txtL2Keyword.Text = "";
    choose("a", "mnuPrice");
    choose("c", "mnuCategory");
    wait_for_page("the field to be empty", [this] { return value_of("a").empty(); });
    EXPECT_EQ(value_of("c"), "Two");
}

TEST_F(FillProgramTest, AFieldThatIsNoneAndADisabledOneTakeNothingAndNorDoesAnother) {
    open_form(
        "<form><input name=a value=mine autofocus><p style='height:50px' id=text>text<p><input name=off "
        "disabled value=its></form>");
    choose("off", "mnuPrice");
    EXPECT_EQ(value_of("a"), "mine");
    EXPECT_EQ(value_of("off"), "its");
}

TEST_F(FillProgramTest, TheMenuShowsThePresentTextsShortenedAndEmptyOnesAsEmpty) {
    open_form("<form><input name=a></form>");
    window().frmPreference().txtPrice.Text = "";
    window().frmPreference().txtLongDesc.Text = std::string(300, 'x') + "\r\nsecond line";
    window().frmPreference().txtKeywords.Text = "this & that";
    std::map<std::string, std::string> captions;
    use_menu(place_of_field("a"), [&captions](QMenu& menu) {
        for (const QAction* entry : action_of(menu, "mnuProduct").menu()->actions())
            captions[entry->objectName().toStdString()] = entry->text().toStdString();
        QTest::keyClick(&menu, Qt::Key_Escape);
    });
    EXPECT_EQ(captions.size(), 25U);
    EXPECT_EQ(captions["mnuPrice"], "Price in US dollars: (empty)");
    EXPECT_EQ(captions["mnuLongDesc"], "Long description: " + std::string(40, 'x') + "...");
    EXPECT_EQ(captions["mnuProgramName"], "Program name: txtProgramName");
    EXPECT_EQ(captions["mnuKeywords"], "Keywords: this && that");
}

TEST_F(FillProgramTest, AFieldInAFrameOfTheSameOrAnotherOriginIsFilled) {
    server().page(
        "/inner",
        "<!doctype html><body style='margin:0'><form><table><tr><td>Program name<td><input name=n "
        "style='position:fixed;left:50px;top:40px;width:100px;height:20px'></table></form><script>"
        "document.forms[0].n.onchange = e => top.postMessage(location.host + ' ' + e.target.value, '*')"
        "</script>");
    open_form("<script>heard = ''; onmessage = e => heard += e.data + ';'</script><iframe id=same src=/inner "
              "style='width:300px;height:100px'></iframe><iframe id=other src='" +
              server().url("/inner", "127.0.0.6") + "' style='width:300px;height:100px'></iframe>");
    // The place of the box in each frame, from the frame's middle.
    const QPoint off = QPoint(2 + 100, 2 + 50) - QPoint(2 + 150, 2 + 50);
    choose(place_of("#same") + off, "mnuPrice");
    wait_for_page("the text", [this] { return run("heard").toString().contains("txtPrice;"); });
    choose(place_of("#other") + off, "mnuAll");
    wait_for_page("the text", [this] { return run("heard").toString().contains("txtProgramName;"); });
    const std::string port = ":" + std::to_string(server().port());
    EXPECT_EQ(run("heard").toString().toStdString(),
              "127.0.0.1" + port + " txtPrice;127.0.0.6" + port + " txtProgramName;");
}

TEST_F(FillProgramTest, AFormInAPopUpIsFilled) {
    server().page("/popup", "<!doctype html><form><p>Program name <input name=n></form>");
    open_form("<button name=go onclick=\"window.open('/popup')\">open</button>");
    window().mnuBlock.Checked = false;
    QWidget& first = user().window();
    press_left(place_of_field("go"));
    wait("the pop-up", [&] { return &user().window() != &first && !first.isVisible(); });
    wait_for_page("its page", [this] { return run("!!document.querySelector('[name=n]')").toBool(); });
    wait_for_drawing();
    choose("n", "mnuAll");
    wait_for_page("the text", [this] { return value_of("n") == "txtProgramName"; });
}

TEST_F(FillProgramTest, MultiInputFillsTheFormOfTheFocusedFieldOnly) {
    const std::string form = "<form><p>Program name <input name=%><p>Version <input name=%2></form>";
    std::string body;
    for (const char* name : {"a", "b", "c"}) {
        for (const char letter : form)
            body += letter == '%' ? std::string(name) : std::string(1, letter);
    }
    open_form(body);
    choose("b2", "mnuAll");
    wait_for_page("the texts", [this] { return value_of("b2") == "txtProgramVersion"; });
    EXPECT_EQ(value_of("b"), "txtProgramName");
    for (const char* name : {"a", "a2", "c", "c2"})
        EXPECT_EQ(value_of(name), "") << name;
    EXPECT_EQ(run("document.activeElement.name").toString(), "b2");
}

TEST_F(FillProgramTest, MultiInputWithoutAFormAroundTheFocusFillsNothing) {
    open_form("<p>Program name <input name=loose><form><p>Program name <input name=a></form>");
    choose("loose", "mnuAll");
    user().answer_with([this](QDialog& dialog) {
        EXPECT_EQ(drive::Driver::text(dialog, "txtReport"),
                  "The last \"Multi-input\" found no form around the focused field.");
        user().press(dialog, "cmdOK");
    });
    key(Qt::Key_F8);
    EXPECT_EQ(value_of("loose"), "");
    EXPECT_EQ(value_of("a"), "");
}

// One field for each label, in a table and as paragraphs.
class FillByLabelTest : public FillProgramTest, public ::testing::WithParamInterface<bool> {
protected:
    void open_labels(const std::vector<std::pair<std::string, std::string>>& fields) {
        std::string body = GetParam() ? "<form><table>" : "<form>";
        for (const auto& [label, tag] : fields) {
            body += GetParam() ? "<tr><td>" + label + "</td><td>" + tag + "</td></tr>"
                               : "<p>" + label + " " + tag + "</p>";
        }
        open_form(body);
    }
    static std::string box(const std::string& name) { return "<input name=" + name + ">"; }
    // Waits for the last field of the form, which is written last.
    void fill(const std::string& from, const std::string& last, const std::string& text) {
        choose(from, "mnuAll");
        wait_for_page("the form", [&] { return value_of(last) == text; });
    }
};

INSTANTIATE_TEST_SUITE_P(RowsAndParagraphs, FillByLabelTest, ::testing::Bool(),
                         [](const auto& rows) { return rows.param ? "Rows" : "Paragraphs"; });

TEST_P(FillByLabelTest, ALabelProgramNameGetsTheProgramsNameAndAuthorNameTheCompanysNeverTheFirstName) {
    open_labels({{"Program Name:", box("a")}, {"Author Name", box("b")}, {"Version", box("z")}});
    fill("a", "z", "txtProgramVersion");
    EXPECT_EQ(value_of("a"), "txtProgramName");
    EXPECT_EQ(value_of("b"), "txtCompanyName");
}

TEST_P(FillByLabelTest, FileSizesInMegabytesStayEmptyInKilobytesAndBareGetTheirTexts) {
    open_labels({{"File Size (MB)", box("mb")},
                 {"File Size (KB)", box("kb")},
                 {"File Size", box("size")},
                 {"Version", box("z")}});
    fill("mb", "z", "txtProgramVersion");
    EXPECT_EQ(value_of("mb"), "");
    EXPECT_EQ(value_of("kb"), "txtSizeKbytes");
    EXPECT_EQ(value_of("size"), "txtSizeBytes");
}

TEST_P(FillByLabelTest, ScreenshotUrlGetsTheScreenshotBeforeUrlIsReached) {
    open_labels({{"Screenshot URL", box("a")}, {"URL", box("z")}});
    fill("a", "z", "txtDownloadUrl");
    EXPECT_EQ(value_of("a"), "txtScreenUrl");
}

TEST_P(FillByLabelTest, SupportEmailGetsTheInformationPageAsTheFirstMatchWins) {
    open_labels({{"Support E-mail", box("a")}, {"E-mail", box("z")}});
    fill("a", "z", "txtAuthorEmail");
    EXPECT_EQ(value_of("a"), "txtAppInfoUrl");
}

TEST_P(FillByLabelTest,
       ACategoryListWithoutTheLevel2KeywordGetsTheLevel1KeywordAndOneOfBothIsTestedForTheTypeLast) {
    open_labels({{"Category", "<select name=c><option>-<option>Games<option>Utilities</select>"},
                 {"Directory", "<select name=d><option>-<option>Utilities<option>Backup</select>"},
                 {"Category / License type",
                  "<select name=b><option>-<option>Utilities - free<option>Games - Shareware</select>"},
                 {"Version", box("z")}});
    window().frmPreference().txtL1Keyword.Text = "utilities";
    window().frmPreference().txtL2Keyword.Text = "backup";
    window().frmPreference().txtProgramType.Text = "shareware";
    fill("z", "z", "txtProgramVersion");
    EXPECT_EQ(value_of("c"), "Utilities");
    EXPECT_EQ(value_of("d"), "Backup");
    EXPECT_EQ(value_of("b"), "Games - Shareware");
}

TEST_P(FillByLabelTest, AFieldWhoseNameDoesNotOccurInTheSourceHasNoLabelAndStaysEmpty) {
    open_labels({{"Program Name", "<input id=nameless>"}, {"Version", box("z")}});
    fill("z", "z", "txtProgramVersion");
    EXPECT_EQ(run("nameless.value").toString(), "");
}

TEST_P(FillByLabelTest, CharacterReferencesInLabelsAreReadAsTheirSigns) {
    open_labels({{"Program&nbsp;name &gt; &lt; *", box("a")}, {"Version", box("z")}});
    fill("a", "z", "txtProgramVersion");
    EXPECT_EQ(value_of("a"), "txtProgramName");
    std::string report;
    user().answer_with([&](QDialog& dialog) {
        report = drive::Driver::text(dialog, "txtReport");
        user().press(dialog, "cmdOK");
    });
    key(Qt::Key_F8);
    EXPECT_THAT(report, StartsWith(GetParam() ? "a: \"Program name > < *\" (row) - "
                                              : "a: \"Program name > < *\" (text) - "));
}

TEST_P(FillByLabelTest, EveryWriteIsFollowedByInputAndChange) {
    open_labels({{"Program Name", box("a")},
                 {"Category", "<select name=c><option>-<option>txtL2Keyword</select>"},
                 {"Description", "<textarea name=t></textarea>"},
                 {"Nothing known", box("n")},
                 {"Version", box("z")}});
    run("log = ''; for (const type of ['input', 'change']) addEventListener(type, e => log += type + ':' + "
        "e.target.name + ';', true)");
    fill("n", "z", "txtProgramVersion");
    EXPECT_EQ(run("log").toString().toStdString(),
              "input:a;change:a;input:c;change:c;input:t;change:t;input:z;change:z;");
    EXPECT_EQ(run("document.activeElement.name").toString(), "n");
}

} // namespace
} // namespace kestrune
