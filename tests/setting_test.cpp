#include "window_fixture.h"

#include <gmock/gmock.h>

namespace kestrune {
namespace {

constexpr const char* profile_path = "/program/session/Kestrune.xml";
constexpr const char* backup_path = "/program/backup/Kestrune.xml";
constexpr const char* unsaved_path = "/program/backup/Kestrune_not_saved.xml";

class SettingTest : public WindowTest {
protected:
    static std::string profile_named(const std::string& name) {
        return "<?xml version=\"1.0\"?>\r\n<Kestrune>\r\n    <Type>Preference</Type>\r\n    <Program_Name>" +
               name + "</Program_Name>\r\n</Kestrune>";
    }
    void put(const std::string& name, const std::string& bytes) {
        files.folders.insert("/program/session");
        files.contents["/program/session/" + name] = bytes;
    }
    void set_name(const std::string& name, const char* button) {
        ui.expect_form("frmPreference", [&name, button](Form& form) {
            EXPECT_TRUE(type_into(form, "txtProgramName", name));
            EXPECT_TRUE(press_button(form, button));
        });
        window().mnuSetting.choose();
    }
    [[nodiscard]] std::string name_in_use() { return program.frmPreference().txtProgramName.Text.get(); }
    [[nodiscard]] std::string bytes(const std::string& path) const {
        const auto found = files.contents.find(path);
        return found == files.contents.end() ? "no file" : found->second;
    }
    [[nodiscard]] std::string built() { return BuildProfileXml(program.frmPreference()); }
};

TEST_F(SettingTest, ProfileFileIsReadAtStartAndNotListed) {
    put("Kestrune.xml", profile_named("Photo Album"));
    start();
    EXPECT_EQ(name_in_use(), "Photo Album");
    EXPECT_EQ(window().lvwPermanent.size(), 0U);
    EXPECT_EQ(window().glngNoOfPermanentRecord, 0);
}

TEST_F(SettingTest, SaveWritesTheFileWithoutAFinalLineBreak) {
    start();
    set_name("Photo Album", "cmdSave");
    EXPECT_EQ(bytes(profile_path), built());
    EXPECT_EQ(panel(1), "Setting is updated");
    EXPECT_EQ(bytes(backup_path), "no file");
}

TEST_F(SettingTest, DialogStandsInTheMiddleOfTheScreen) {
    start();
    set_name("x", "cmdCancel");
    const FrmPreference& dialog = program.frmPreference();
    EXPECT_EQ(dialog.Left.get(), (ui.screen_size.Width - dialog.Width.get()) / 2);
    EXPECT_EQ(dialog.Top.get(), (ui.screen_size.Height - dialog.Height.get()) / 2);
}

TEST_F(SettingTest, SavedProfileIsTheOneOfTheNextRun) {
    start();
    set_name("Gr\u00FC\u00DFe & \u041F", "cmdSave");
    Program next{ui, files, database, folder};
    next.start();
    EXPECT_EQ(next.frmPreference().txtProgramName.Text.get(), "Gr\u00FC\u00DFe & \u041F");
    EXPECT_EQ(BuildProfileXml(next.frmPreference()), built());
}

TEST_F(SettingTest, ReplacedProfileIsKeptAsABackup) {
    put("Kestrune.xml", profile_named("old"));
    start();
    set_name("new", "cmdSave");
    EXPECT_EQ(bytes(profile_path), built());
    EXPECT_EQ(bytes(backup_path), profile_named("old"));
}

TEST_F(SettingTest, SavingWhatIsThereAlreadyKeepsTheEarlierBackup) {
    put("Kestrune.xml", profile_named("old"));
    start();
    set_name("new", "cmdSave");
    set_name("new", "cmdSave");
    EXPECT_EQ(bytes(backup_path), profile_named("old"));
}

TEST_F(SettingTest, FailedWriteLeavesNoProfileFileAndTheOldOneAsABackup) {
    put("Kestrune.xml", profile_named("old"));
    start();
    files.folders.insert("/program/backup");
    files.disk_full = true;
    set_name("new", "cmdSave");
    EXPECT_EQ(bytes(profile_path), "no file");
    EXPECT_EQ(bytes(backup_path), profile_named("old"));
    EXPECT_EQ(name_in_use(), "new");
}

TEST_F(SettingTest, ProfileThatCannotBeWrittenUnderItsNameIsKeptAsABackupBesideTheOldOne) {
    class Refusing : public MemoryFiles {
    public:
        bool write(const std::string& path, std::string_view text) override {
            return path != profile_path && MemoryFiles::write(path, text);
        }
    } refusing;
    refusing.folders = {folder, "/program/session"};
    refusing.contents[profile_path] = profile_named("old");
    RecordFiles records{refusing, folder};
    records.write_profile("new");
    EXPECT_FALSE(refusing.file_exists(profile_path));
    EXPECT_EQ(refusing.contents[backup_path], profile_named("old"));
    EXPECT_EQ(refusing.contents[unsaved_path], "new");
}

TEST_F(SettingTest, CancelKeepsTheTextsInUseAndTheFileAsItWas) {
    put("Kestrune.xml", profile_named("old"));
    start();
    set_name("typed", "cmdCancel");
    EXPECT_EQ(name_in_use(), "typed");
    EXPECT_EQ(bytes(profile_path), profile_named("old"));
    EXPECT_EQ(panel(1), "");
}

TEST_F(SettingTest, PopUpDoesNotReadTheProfileAgain) {
    put("Kestrune.xml", profile_named("old"));
    start();
    set_name("typed", "cmdCancel");
    BrowserWindow& popup = window().OpenPopupWindow();
    EXPECT_EQ(popup.frmPreference().txtProgramName.Text.get(), "typed");
    popup.gbRecordChanged = true;
    popup.Unload();
    EXPECT_EQ(name_in_use(), "typed");
}

TEST_F(SettingTest, ProfileSavedLaterInTheRunIsNotReadByAReload) {
    start();
    set_name("saved", "cmdSave");
    set_name("typed", "cmdCancel");
    window().CallLoadPermanentRecord();
    EXPECT_EQ(name_in_use(), "typed");
}

TEST_F(SettingTest, ProfileAmongManyRecordsIsReadBeforeTheDialogOpens) {
    for (int i = 0; i < 500; ++i) {
        const std::string address = "http://a.b/" + std::to_string(i);
        const RecordSession record{"Form", "r", address, "", "", "", ""};
        put("A_b_" + std::to_string(i) + ".xml", BuildSessionXml(record));
    }
    put("Kestrune.xml", profile_named("Photo Album"));
    BrowserWindow& window = program.start();
    ASSERT_EQ(name_in_use(), "");
    ui.expect_form("frmPreference", [](Form& form) {
        const auto* box = dynamic_cast<TextBox*>(form.find("txtProgramName"));
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->Text.get(), "Photo Album");
    });
    window.mnuSetting.choose();
}

TEST_F(SettingTest, ReloadThatCutsTheFirstLoadShortReadsTheProfile) {
    for (int i = 0; i < 500; ++i) {
        const RecordSession record{"Form", "r", "http://a.b/" + std::to_string(i), "", "", "", ""};
        put("A_b_" + std::to_string(i) + ".xml", BuildSessionXml(record));
    }
    put("Kestrune.xml", profile_named("Photo Album"));
    BrowserWindow& window = program.start();
    ASSERT_EQ(name_in_use(), "");
    window.CallLoadPermanentRecord();
    ui.run_later();
    EXPECT_EQ(name_in_use(), "Photo Album");
}

} // namespace
} // namespace kestrune
