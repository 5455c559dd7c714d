#include "tests/desktop/program_fixture.h"
#include "tests/desktop/wait_until.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>

#include <fstream>

namespace kestrune {
namespace {

using ::testing::HasSubstr;

// The dialog "Setting" and its import from PAD files, as a user has them.
class SettingDialogTest : public ProgramTest {
protected:
    // Opens the dialog and does this in it; Cancel closes it when it is still open.
    void with_dialog(std::function<void(QDialog&)> use) {
        user().answer_with([this, use = std::move(use)](QDialog& dialog) {
            if (dialog.objectName() != "frmPreference") {
                ASSERT_TRUE(other_) << "unexpected: " << dialog.windowTitle().toStdString();
                other_(dialog);
                return;
            }
            dialog.activateWindow();
            ASSERT_TRUE(wait_until([&dialog] { return dialog.isActiveWindow(); }));
            use(dialog);
            if (dialog.isVisible())
                user().press(dialog, "cmdCancel");
        });
        user().choose("mnuSetting");
    }
    // Retrieve PAD, and this name in the file dialog; "" cancels it. Returns the message that followed.
    std::string retrieve(QDialog& dialog, const std::string& path) {
        std::string message;
        other_ = [&](QDialog& asked) {
            if (auto* const files = qobject_cast<QFileDialog*>(&asked)) {
                if (path.empty()) {
                    files->reject();
                    return;
                }
                auto* const name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
                ASSERT_NE(name, nullptr);
                name->setText(QString::fromStdString(path));
                QMetaObject::invokeMethod(files, "accept");
                return;
            }
            message = drive::Driver::text(asked, "Text");
            user().answer(asked, "OK");
        };
        user().press(dialog, "cmdPad");
        dialog.activateWindow();
        EXPECT_TRUE(wait_until([&dialog] { return dialog.isActiveWindow(); }));
        return message;
    }
    std::string file(const std::string& name, const std::string& bytes) {
        const std::string path = folder() + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    static std::string text(QDialog& dialog, const char* name) { return drive::Driver::text(dialog, name); }

private:
    std::function<void(QDialog&)> other_;
};

TEST_F(SettingDialogTest, TheCountOfCharactersFollowsTheTyping) {
    start();
    with_dialog([this](QDialog& dialog) {
        EXPECT_EQ(text(dialog, "txtProgramName.Hint"), "0 of 40 characters");
        user().type(dialog, "txtProgramName", "Photo Album");
        EXPECT_EQ(text(dialog, "txtProgramName.Hint"), "11 of 40 characters");
        EXPECT_EQ(drive::Driver::find<QLineEdit>(dialog, "txtProgramName").accessibleDescription(),
                  "11 of 40 characters");
        user().type(dialog, "txtShortDesc", std::string(83, 'x'));
        EXPECT_EQ(text(dialog, "txtShortDesc.Hint"), "83 of 80 characters, 3 too many");
        const auto& box = drive::Driver::find<QWidget>(dialog, "txtShortDesc");
        const auto& hint = drive::Driver::find<QLabel>(dialog, "txtShortDesc.Hint");
        EXPECT_TRUE(hint.isVisible());
        EXPECT_GE(hint.geometry().top(), box.geometry().bottom());
    });
}

TEST_F(SettingDialogTest, TheBoxesOfAllGroupsLineUpAndTheDialogFitsTheScreen) {
    start();
    with_dialog([](QDialog& dialog) {
        const auto left = [&dialog](const char* name) {
            return drive::Driver::find<QWidget>(dialog, name).mapTo(&dialog, QPoint()).x();
        };
        EXPECT_EQ(left("txtProgramName"), left("txtLongDesc"));
        EXPECT_EQ(left("txtProgramName"), left("txtShareItProdId"));
        EXPECT_LE(dialog.height(), QGuiApplication::primaryScreen()->availableSize().height());
        EXPECT_LE(dialog.width(), QGuiApplication::primaryScreen()->availableSize().width());
    });
}

TEST_F(SettingDialogTest, AnImportIsUndoneByItsButtonAndByItsKey) {
    start();
    const std::string pad =
        file("pad.xml", "<X><Program_Name>New</Program_Name><Char_Desc_450>Long</Char_Desc_450></X>");
    with_dialog([&](QDialog& dialog) {
        user().type(dialog, "txtProgramName", "Old");
        EXPECT_FALSE(drive::Driver::find<QPushButton>(dialog, "cmdUndoPad").isEnabled());
        for (const bool by_key : {false, true}) {
            EXPECT_EQ(retrieve(dialog, pad), "");
            EXPECT_EQ(text(dialog, "txtProgramName"), "New");
            EXPECT_EQ(text(dialog, "txtLongDesc"), "Long");
            auto& box = drive::Driver::find<QWidget>(dialog, by_key ? "txtLongDesc" : "txtProgramName");
            box.setFocus();
            if (by_key)
                QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
            else
                user().press(dialog, "cmdUndoPad");
            EXPECT_EQ(text(dialog, "txtProgramName"), "Old");
            EXPECT_EQ(text(dialog, "txtLongDesc"), "");
        }
    });
}

TEST_F(SettingDialogTest, TheKeyUndoesWhatWasTypedInABoxBeforeTheImport) {
    start();
    const std::string pad = file("pad.xml", "<X><Program_Name>New</Program_Name></X>");
    with_dialog([&](QDialog& dialog) {
        user().type(dialog, "txtProgramName", "Old");
        retrieve(dialog, pad);
        auto& box = drive::Driver::find<QLineEdit>(dialog, "txtProgramName");
        box.setFocus();
        box.end(false);
        QTest::keyClicks(&box, "er");
        EXPECT_EQ(text(dialog, "txtProgramName"), "Newer");
        QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(text(dialog, "txtProgramName"), "New");
        QTest::keyClick(&box, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(text(dialog, "txtProgramName"), "Old");
    });
}

TEST_F(SettingDialogTest, CancellingTheFileDialogChangesNothingAndANameThatDoesNotExistIsNotFound) {
    start();
    with_dialog([&](QDialog& dialog) {
        user().type(dialog, "txtProgramName", "Old");
        EXPECT_EQ(retrieve(dialog, ""), "");
        EXPECT_EQ(text(dialog, "txtProgramName"), "Old");
        EXPECT_EQ(retrieve(dialog, folder() + "/none.xml"), "File not found!");
        EXPECT_EQ(text(dialog, "txtProgramName"), "Old");
        EXPECT_FALSE(drive::Driver::find<QPushButton>(dialog, "cmdUndoPad").isEnabled());
    });
}

TEST_F(SettingDialogTest, FilesOfAnyEncodingAndSizeAreImportedAndAnEmptyOneIsNot) {
    start();
    std::string wide = "\xFF\xFE";
    for (const char letter : std::string("<?xml version=\"1.0\" encoding=\"UTF-16\"?><P><Program_Name>"))
        wide += {letter, '\0'};
    wide += {'\xE9', '\0'};
    for (const char letter : std::string("</Program_Name></P>"))
        wide += {letter, '\0'};
    const std::string utf16 = file("utf16.xml", wide);
    const std::string large =
        file("large.xml", "<P>" + std::string(6 << 20, 'x') + "<Program_Name>Large</Program_Name></P>");
    const std::string other = file("other.xml", "<html>no PAD file at all</html>");
    const std::string empty = file("empty.xml", "");
    with_dialog([&](QDialog& dialog) {
        EXPECT_EQ(retrieve(dialog, utf16), "");
        EXPECT_EQ(text(dialog, "txtProgramName"), "\xC3\xA9");
        EXPECT_EQ(retrieve(dialog, large), "");
        EXPECT_EQ(text(dialog, "txtProgramName"), "Large");
        EXPECT_EQ(retrieve(dialog, empty), "File cannot be read!");
        EXPECT_EQ(text(dialog, "txtProgramName"), "Large");
        EXPECT_EQ(retrieve(dialog, other), "");
        EXPECT_THAT(text(dialog, "lblImport"), HasSubstr("No PAD text was found in other.xml"));
        user().press(dialog, "cmdUndoPad");
        EXPECT_EQ(text(dialog, "txtProgramName"), "Large");
    });
}

TEST_F(SettingDialogTest, RetrievePadFollowedByCancelKeepsTheTextsInUseAndTheFileAsItWas) {
    start();
    const std::string pad =
        file("pad.xml", "<X><Program_Name>Imported &amp; <![CDATA[raw]]></Program_Name></X>");
    with_dialog([&](QDialog& dialog) {
        user().type(dialog, "txtProgramName", "Kept");
        user().press(dialog, "cmdSave");
    });
    EXPECT_EQ(user().status(1), "Setting is updated");
    with_dialog([&](QDialog& dialog) { retrieve(dialog, pad); });
    EXPECT_EQ(user().status(1), "");
    EXPECT_EQ(window().frmPreference().txtProgramName.Text.get(), "Imported &amp; <![CDATA[raw]]>");
    std::ifstream saved(folder() + "/session/Kestrune.xml", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(saved), {}};
    EXPECT_THAT(bytes, ::testing::StartsWith("<?xml version=\"1.0\"?>\r\n<Kestrune>\r\n"));
    EXPECT_THAT(bytes, ::testing::EndsWith("\r\n</Kestrune>"));
    EXPECT_THAT(bytes, HasSubstr("<Program_Name>Kept</Program_Name>"));
}

} // namespace
} // namespace kestrune
