#include "sessions/record_editor.h"

#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"
#include "sessions/post_data.h"
#include "sessions/record_dialogs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace kestrune {
namespace {

using testing::IsEmpty;

class NoLibrary : public Database {
public:
    std::unique_ptr<Recordset> open(const std::string& path, std::string_view /*statement*/) override {
        throw DatabaseError(path);
    }
};

std::vector<std::string> record_keys() { return {"Type", "Url", "Action", "Postdata", "Header", "Frame"}; }
std::vector<std::string> site_keys() { return {"url", "Status", "Category", "Comment"}; }

class RecordEditorTest : public testing::Test {
protected:
    RecordEditorTest() { files.folders = {"program"}; }
    ~RecordEditorTest() override {
        EXPECT_THAT(ui.failures, IsEmpty());
        EXPECT_TRUE(ui.script_done());
    }

    static RecordSession form(std::string postdata, std::string url = "http://a.b/page.html") {
        return {"Form",     "Session1", std::move(url), "http://a.b/add.php", std::move(postdata),
                "H: 1\r\n", "main"};
    }
    void put_temporary(const RecordSession& record) {
        temporary.add(ItemOf("K1", record));
        temporary.select("K1");
    }
    void put_permanent(const RecordSession& record) {
        AddRecordToList(permanent, record);
        permanent.select(UrlToRecordKey(record.Url));
        ++counters.glngNoOfPermanentRecord;
    }
    // Opens the editor on the list's selected record; `user` works in it.
    void edit(ListView& list, const std::function<void(FrmEdit&)>& user) {
        ui.expect_form("frmEdit", [&user](Form& shown) { user(dynamic_cast<FrmEdit&>(shown)); });
        editor.cmdEdit_Click(&list);
    }
    static void press_ok(FrmEdit& dialog) { dialog.cmdOK.press(); }
    [[nodiscard]] std::string postdata_after_ok(const std::string& postdata) {
        put_temporary(form(postdata));
        edit(temporary, press_ok);
        return RecordOf(temporary, temporary.item(0)).Postdata;
    }
    static std::string parts(int count) {
        std::string postdata;
        for (int i = 1; i <= count; ++i)
            postdata.append(i == 1 ? "" : "&").append("n").append(std::to_string(i)).append("=v.");
        return postdata;
    }

    MemoryFiles files;
    NoLibrary database;
    MemoryUserInterface ui;
    ListView permanent{"lvwPermanent", record_keys()};
    ListView temporary{"ListView1", record_keys()};
    ListView pad{"lvwPAD", site_keys()};
    ListView non_pad{"lvwNonPad", site_keys()};
    StatusBar status{"StatusBar1"};
    RecordCounters counters;
    RecordPanel panel{permanent, temporary, pad, non_pad, status, counters};
    SiteLibrary library{database, files, "program"};
    RecordFiles record_files{files, "program"};
    PermanentStore store{panel, record_files, library, ui, [](std::string_view /*text*/) {}};
    RecordEditor editor{panel, store, record_files, ui};
};

TEST_F(RecordEditorTest, PostDataShowsDecodedRowsAndIsEncodedAgainWhenSavedUnchanged) {
    put_temporary(form("name=A+B&q=a%2Cb.c"));
    edit(temporary, [](FrmEdit& dialog) {
        EXPECT_EQ(dialog.lblName(0).Caption, "name");
        EXPECT_EQ(dialog.txtValue(0).Text, "A B");
        EXPECT_TRUE(dialog.txtValue(0).Enabled.get());
        EXPECT_EQ(dialog.lblName(1).Caption, "q");
        EXPECT_EQ(dialog.txtValue(1).Text, "a,b.c");
        EXPECT_EQ(dialog.lblName(2).Caption, "Blank");
        EXPECT_EQ(dialog.txtValue(2).Text, "");
        EXPECT_FALSE(dialog.txtValue(2).Enabled.get());
        dialog.cmdOK.press();
    });
    EXPECT_EQ(temporary.item(0).SubItems.at(3), "name=A%20B&q=a%2Cb%2Ec");
    EXPECT_EQ(status.text(1), "Record session is modified!");
}

TEST_F(RecordEditorTest, ValueHoldingPercent2BShowsASpace) {
    put_temporary(form("tel=%2B49&low=%2b49"));
    edit(temporary, [](FrmEdit& dialog) {
        EXPECT_EQ(dialog.txtValue(0).Text, " 49");
        EXPECT_EQ(dialog.txtValue(1).Text, "+49");
    });
}

TEST_F(RecordEditorTest, PostDataOf62PartsGives60RowsAndTheWarningAndTheRestIsLostWhenSaved) {
    put_temporary(form(parts(62)));
    edit(temporary, [this](FrmEdit& dialog) {
        EXPECT_EQ(status.text(1), "Warning: Only maximum 20 fields can be recorded!");
        EXPECT_EQ(dialog.lblName(59).Caption, "n60");
        EXPECT_TRUE(dialog.txtValue(59).Enabled.get());
        dialog.cmdOK.press();
    });
    const std::string saved = RecordOf(temporary, temporary.item(0)).Postdata;
    EXPECT_EQ(SplitPostData(saved).size(), 60U);
    EXPECT_EQ(saved.find("n61"), std::string::npos);
}

TEST_F(RecordEditorTest, PostDataOf61PartsKeepsThePartWithoutARowAsItWas) {
    const std::string saved = postdata_after_ok(parts(61));
    EXPECT_NE(saved.find("&n60=v%2E&n61=v."), std::string::npos) << saved;
    EXPECT_EQ(status.text(1), "Record session is modified!");
}

TEST_F(RecordEditorTest, FieldNameWithASpaceOrPercentIsWrittenBackUnencoded) {
    EXPECT_EQ(postdata_after_ok("first name=x&a%5B%5D=y&c+d=z"), "first name=x&a%5B%5D=y&c+d=z");
}

TEST_F(RecordEditorTest, PartWithoutEqualsIsWrittenBackWithIt) {
    EXPECT_EQ(postdata_after_ok("flag&a=1"), "flag=&a=1");
}

TEST_F(RecordEditorTest, BookmarkRecordCannotBeEdited) {
    put_temporary({"Bookmark", "b", "http://a.b/", "", "", "", ""});
    editor.cmdEdit_Click(&temporary);
    EXPECT_EQ(status.text(1), "Cannot edit bookmark record!");
    EXPECT_THAT(ui.shown_forms, IsEmpty());
}

TEST_F(RecordEditorTest, EveryTypeButExactlyFormIsRefused) {
    RecordSession record = form("a=1");
    record.Type = "form";
    put_temporary(record);
    editor.cmdEdit_Click(&temporary);
    EXPECT_EQ(status.text(1), "Cannot edit bookmark record!");
}

TEST_F(RecordEditorTest, EditingWithNothingSelectedOnlySaysSo) {
    for (ListView* list : {&permanent, &temporary, static_cast<ListView*>(nullptr)}) {
        ui.expect_box("Please select a record session from the list first!", Answer::Ok);
        editor.cmdEdit_Click(list);
    }
    EXPECT_EQ(status.text(1), "");
}

TEST_F(RecordEditorTest, CancelLeavesRecordEntryAndFileUntouched) {
    const RecordSession record = form("a=x.y");
    put_permanent(record);
    record_files.write(record);
    const auto before = files.contents;
    edit(permanent, [](FrmEdit& dialog) {
        type_into(dialog, "txtSession", "changed");
        type_into(dialog, "txtValue(0)", "changed");
        dialog.cmdCancel.press();
    });
    EXPECT_EQ(RecordOf(permanent, permanent.item(0)), record);
    EXPECT_EQ(files.contents, before);
    EXPECT_FALSE(counters.gbRecordChanged);
    EXPECT_EQ(status.text(1), "Modification is cancelled!");
}

TEST_F(RecordEditorTest, EditorOfATemporaryRecordCanSaveAsPermanentThatOfAPermanentOneCannot) {
    put_temporary(form("a=1"));
    put_permanent(form("a=1"));
    edit(temporary, [](FrmEdit& dialog) {
        EXPECT_EQ(dialog.Caption, "Edit Temporary Record Session");
        EXPECT_TRUE(dialog.cmdPermanentOK.Enabled.get());
        EXPECT_EQ(dialog.txtSession.Text, "Session1");
        EXPECT_EQ(dialog.txtUrl.Text, "http://a.b/page.html");
        EXPECT_EQ(dialog.txtAction.Text, "http://a.b/add.php");
    });
    edit(permanent, [](FrmEdit& dialog) {
        EXPECT_EQ(dialog.Caption, "Edit Permanent Record Session");
        EXPECT_FALSE(dialog.cmdPermanentOK.Enabled.get());
    });
}

TEST_F(RecordEditorTest, EditedTemporaryRecordChangesItsEntryAndNoFile) {
    put_temporary(form("a=1&b=2"));
    edit(temporary, [](FrmEdit& dialog) {
        type_into(dialog, "txtSession", "My form");
        type_into(dialog, "txtUrl", "http://c.d/");
        type_into(dialog, "txtAction", "http://c.d/go");
        type_into(dialog, "txtValue(1)", "two words");
        dialog.cmdOK.press();
    });
    EXPECT_EQ(RecordOf(temporary, *temporary.find("K1")),
              (RecordSession{"Form", "My form", "http://c.d/", "http://c.d/go", "a=1&b=two%20words",
                             "H: 1\r\n", "main"}));
    EXPECT_THAT(files.contents, IsEmpty());
    EXPECT_FALSE(counters.gbRecordChanged);
}

TEST_F(RecordEditorTest, EditedPermanentRecordKeepsItsKeyAndItsOldFileAndWritesTheFileOfItsNewAddress) {
    const RecordSession record = form("a=1");
    put_permanent(record);
    record_files.write(record);
    edit(permanent, [](FrmEdit& dialog) {
        type_into(dialog, "txtUrl", "http://c.d/new");
        dialog.cmdOK.press();
    });
    const ListItem* const entry = permanent.find("http://a.b/page.html");
    ASSERT_NE(entry, nullptr);
    RecordSession edited = record;
    edited.Url = "http://c.d/new";
    EXPECT_EQ(RecordOf(permanent, *entry), edited);
    EXPECT_EQ(record_files.record_for("http://c.d/new"), edited);
    EXPECT_EQ(record_files.record_for("http://a.b/page.html"), record);
    EXPECT_TRUE(counters.gbRecordChanged);
    EXPECT_EQ(counters.glngNoOfPermanentRecord, 1);
}

TEST_F(RecordEditorTest, SaveAsPermanentMovesTheEditedRecord) {
    put_temporary(form("a=1"));
    edit(temporary, [](FrmEdit& dialog) {
        type_into(dialog, "txtSession", "kept");
        dialog.cmdPermanentOK.press();
    });
    EXPECT_EQ(temporary.size(), 0U);
    ASSERT_EQ(permanent.size(), 1U);
    EXPECT_EQ(permanent.item(0).Text, "kept");
    ASSERT_TRUE(record_files.record_for("http://a.b/page.html"));
    EXPECT_EQ(record_files.record_for("http://a.b/page.html")->Session, "kept");
}

TEST_F(RecordEditorTest, SysgenNameTypedIntoTheEditorIsReplacedWhenTheRecordIsKept) {
    put_temporary(form("a=1"));
    edit(temporary, [](FrmEdit& dialog) {
        type_into(dialog, "txtSession", "*sysgen*");
        dialog.cmdPermanentOK.press();
    });
    EXPECT_EQ(permanent.item(0).Text, "Session1");
}

TEST_F(RecordEditorTest, CharactersAreEncodedInTheCodePageOfTheRecordsOtherValues) {
    put_temporary(form("old=caf%E9&new="));
    edit(temporary, [](FrmEdit& dialog) {
        EXPECT_EQ(dialog.txtValue(0).Text, "caf\u00e9");
        type_into(dialog, "txtValue(1)", "\u00fc");
        dialog.cmdOK.press();
    });
    EXPECT_EQ(temporary.item(0).SubItems.at(3), "old=caf%E9&new=%FC");
    edit(temporary, [](FrmEdit& dialog) {
        type_into(dialog, "txtValue(0)", "\u20ac\u0416");
        type_into(dialog, "txtValue(1)", "");
        dialog.cmdOK.press();
    });
    EXPECT_EQ(temporary.item(0).SubItems.at(3), "old=%E2%82%AC%D0%96&new=");
}

TEST_F(RecordEditorTest, RowsStandOnThreePagesOfTwenty) {
    put_temporary(form("a=1"));
    edit(temporary, [](FrmEdit& dialog) {
        std::map<std::string, int> rows;
        for (const Form::Row& row : dialog.Rows)
            ++rows[row.Page];
        EXPECT_EQ(rows,
                  (std::map<std::string, int>{{"", 3}, {"Page 1", 20}, {"Page 2", 20}, {"Page 3", 20}}));
        EXPECT_EQ(dialog.find("lblName(20)"), &dialog.lblName(20));
        EXPECT_EQ(dialog.find("txtValue(59)"), &dialog.txtValue(59));
        EXPECT_EQ(dialog.Rows.at(3 + 20).Page, "Page 2");
        EXPECT_EQ(dialog.Rows.at(3 + 20).Field, &dialog.txtValue(20));
        EXPECT_EQ(dialog.Rows.at(3 + 20).Title, &dialog.lblName(20));
    });
}

TEST_F(RecordEditorTest, EditorStandsInTheMiddleOfTheScreen) {
    put_temporary(form("a=1"));
    edit(temporary, [this](FrmEdit& dialog) {
        EXPECT_EQ(dialog.Left, (ui.screen_size.Width - dialog.Width) / 2);
        EXPECT_EQ(dialog.Top, (ui.screen_size.Height - dialog.Height) / 2);
    });
}

TEST_F(RecordEditorTest, PasswordsAreMaskedUntilTheUserAsksToSeeThemAndSavedAsTheyAre) {
    put_temporary(form("user=me&User%5Bpassword%5D=top.secret"));
    edit(temporary, [](FrmEdit& dialog) {
        EXPECT_FALSE(dialog.txtValue(0).Masked.get());
        EXPECT_TRUE(dialog.txtValue(1).Masked.get());
        EXPECT_EQ(dialog.txtValue(1).Text, "top.secret");
        dialog.cmdShowPasswords.press();
        EXPECT_FALSE(dialog.txtValue(1).Masked.get());
        EXPECT_EQ(dialog.cmdShowPasswords.Caption, "Hide Passwords");
        dialog.cmdShowPasswords.press();
        EXPECT_FALSE(dialog.txtValue(0).Masked.get());
        EXPECT_TRUE(dialog.txtValue(1).Masked.get());
        EXPECT_EQ(dialog.cmdShowPasswords.Caption, "Show Passwords");
        dialog.cmdOK.press();
    });
    EXPECT_EQ(temporary.item(0).SubItems.at(3), "user=me&User%5Bpassword%5D=top%2Esecret");
}

TEST_F(RecordEditorTest, WithoutAPasswordThereIsNothingToShow) {
    put_temporary(form("user=me"));
    edit(temporary, [](FrmEdit& dialog) { EXPECT_FALSE(dialog.cmdShowPasswords.Enabled.get()); });
}

TEST(IsPasswordName, NamesThatSpeakOfAPasswordAreKnownInAnyLetterCase) {
    for (const char* name : {"password", "PassWord2", "user_pass", "passwd", "pwd", "login%5Bpassword%5D",
                             "Kennwort", "contrase%C3%B1a"})
        EXPECT_TRUE(IsPasswordName(name)) << name;
    for (const char* name : {"user", "email", "company", "pw_count", ""})
        EXPECT_FALSE(IsPasswordName(name)) << name;
}

TEST_F(RecordEditorTest, BookmarkedPageStandsSelectedAmongTheTemporaryRecords) {
    put_temporary(form("a=1"));
    counters.temporary_records = 1;
    ui.expect_form("frmBookmark", [](Form& dialog) {
        EXPECT_EQ(dialog.Caption, "Edit Bookmark");
        EXPECT_EQ(dialog.Rows.at(0).Label, "Bookmark name:");
        EXPECT_EQ(dialog.Rows.at(1).Label, "Destination Address:");
        EXPECT_EQ(dialog.Rows.at(2).Label, "Originating Address:");
        type_into(dialog, "txtName", "My page");
        press_button(dialog, "cmdOK");
    });
    EXPECT_TRUE(editor.BookmarkPage("http://a.b/here", "http://a.b/from"));
    ASSERT_NE(temporary.find("K2"), nullptr);
    EXPECT_EQ(RecordOf(temporary, *temporary.find("K2")),
              (RecordSession{"Bookmark", "My page", "http://a.b/here", "http://a.b/from", "", "", ""}));
    EXPECT_EQ(temporary.selected(), temporary.find("K2"));
    EXPECT_EQ(counters.temporary_records, 2);
}

TEST_F(RecordEditorTest, BookmarkIsKeptAndReadBackLikeOtherRecords) {
    ui.expect_form("frmBookmark", [](Form& dialog) { press_button(dialog, "cmdOK"); });
    EXPECT_TRUE(editor.BookmarkPage("http://a.b/here", "http://a.b/from"));
    store.cmdSave_Click();
    EXPECT_EQ(temporary.size(), 0U);
    ASSERT_TRUE(record_files.record_for("http://a.b/here"));
    EXPECT_EQ(record_files.record_for("http://a.b/here")->Type, "Bookmark");
}

TEST_F(RecordEditorTest, CancelledBookmarkAndOneWithoutAnAddressAddNothing) {
    ui.expect_form("frmBookmark", [](Form& dialog) { press_button(dialog, "cmdCancel"); });
    EXPECT_FALSE(editor.BookmarkPage("http://a.b/here", ""));
    ui.expect_form("frmBookmark", [](Form& dialog) {
        type_into(dialog, "txtDestination", "");
        press_button(dialog, "cmdOK");
    });
    EXPECT_FALSE(editor.BookmarkPage("http://a.b/here", ""));
    EXPECT_EQ(temporary.size(), 0U);
    EXPECT_EQ(counters.temporary_records, 0);
}

} // namespace
} // namespace kestrune
