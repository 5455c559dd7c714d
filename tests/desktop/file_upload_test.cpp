#include "platform/qt/engine_waits.h"
#include "tests/desktop/comforts_fixture.h"
#include "tests/desktop/dialog_user.h"
#include "tests/desktop/painted.h"
#include "tests/temporary_folder.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QWebEngineView>
#include <QWindow>

namespace kestrune {
namespace {

using ::testing::HasSubstr;

class FileUpload : public ComfortsTest {
protected:
    FileUpload() {
        write_bytes(folder_.file("icon.png"), "icon");
        write_bytes(folder_.file("tool.zip"), "tool");
    }

    // A page with a field for files, which tells in its last input what was chosen, and in its attribute.
    PageDocument open_field(const std::string& attributes) {
        const PageDocument page = open_page(
            "<body style='margin:0'><input type=file " + attributes +
            " style='display:block;width:300px;height:50px' "
            "onchange=\"document.querySelector('#said').value = "
            "Array.from(this.files, f => f.name).sort().join()\" "
            "oncancel=\"document.querySelector('#said').value = 'cancelled'\"><input id=said>words");
        EXPECT_TRUE(wait_until_painted(browser_->view()));
        return page;
    }
    // A press of the mouse on the field: the engine opens a file dialog for nothing else.
    void press_field() {
        QTest::mouseClick(browser_->view().focusProxy(), Qt::LeftButton, {}, QPoint(60, 20));
    }
    // The next dialog is looked at and answered with these files of the folder.
    void choose(const QStringList& names, const std::function<void(QFileDialog&)>& look = {}) {
        dialogs_.expect("UploadFileDialog", [this, names, look](QDialog& dialog) {
            auto& chooser = dynamic_cast<QFileDialog&>(dialog);
            if (look)
                look(chooser);
            chooser.setDirectory(QString::fromStdString(folder_.path()));
            if (!names.empty())
                chooser.findChild<QLineEdit*>("fileNameEdit")->setText(u'"' + names.join("\" \"") + u'"');
            QMetaObject::invokeMethod(&chooser, "accept");
        });
    }
    void expect_chosen(const PageDocument& page, const std::string& names) {
        EXPECT_TRUE(wait_until([&] { return dialogs_.done(); }));
        EXPECT_TRUE(wait_until([&] { return image_of(page).inputs.back().value == names; }))
            << image_of(page).inputs.back().value;
    }

    TemporaryFolder folder_;
    testing_desktop::DialogUser dialogs_;
};

TEST_F(FileUpload, a_field_opens_the_file_dialog_above_its_window_and_takes_the_chosen_file) {
    const PageDocument page = open_field("accept='.png,application/zip'");
    choose({"icon.png"}, [this](QFileDialog& chooser) {
        EXPECT_THAT(chooser.nameFilters().first().toStdString(), HasSubstr("*.png"));
        EXPECT_THAT(chooser.nameFilters().first().toStdString(), HasSubstr("*.zip"));
        EXPECT_EQ(chooser.nameFilters().last(), "All files (*)");
        EXPECT_EQ(chooser.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(chooser.windowHandle()->transientParent(), place_.windowHandle());
        EXPECT_TRUE(profile_->waits().open());
    });
    press_field();
    expect_chosen(page, "icon.png");
}

TEST_F(FileUpload, a_field_for_several_files_takes_several) {
    const PageDocument page = open_field("multiple");
    choose({"icon.png", "tool.zip"});
    press_field();
    expect_chosen(page, "icon.png,tool.zip");
}

TEST_F(FileUpload, a_field_for_a_folder_takes_what_is_in_it) {
    const PageDocument page = open_field("webkitdirectory");
    choose({}, [](QFileDialog& chooser) { EXPECT_EQ(chooser.fileMode(), QFileDialog::Directory); });
    press_field();
    expect_chosen(page, "icon.png,tool.zip");
}

TEST_F(FileUpload, a_dialog_that_is_cancelled_sends_nothing_and_can_be_opened_again) {
    const PageDocument page = open_field("");
    dialogs_.expect("UploadFileDialog", [](QDialog& dialog) { dialog.reject(); });
    press_field();
    ASSERT_TRUE(wait_until([&] { return dialogs_.done(); }));
    choose({"tool.zip"});
    press_field();
    expect_chosen(page, "tool.zip");
}

TEST_F(FileUpload, a_field_pressed_while_the_program_waits_for_the_page_opens_the_dialog) {
    const PageDocument page = open_field("");
    choose({"icon.png"});
    {
        const EngineWaits::ForPage waiting(profile_->waits());
        press_field();
        EXPECT_TRUE(wait_until([&] { return dialogs_.done(); }));
    }
    expect_chosen(page, "icon.png");
}

TEST_F(FileUpload, a_field_pressed_just_before_a_question_of_the_program_opens_the_dialog_after_it) {
    const PageDocument page = open_field("");
    QDialog own(&place_);
    own.setObjectName("own");
    own.setModal(true);
    dialogs_.expect("own", [this](QDialog& question) {
        // Ends the question once the page has asked for its files, which it does at once.
        QTimer::singleShot(500, &question, [this, &question] {
            EXPECT_TRUE(dialogs_.surprises.empty()) << "nothing lies over a question that is open";
            choose({"icon.png"});
            question.accept();
        });
    });
    press_field();
    own.exec();
    expect_chosen(page, "icon.png");
}

TEST_F(FileUpload, a_window_that_cannot_be_seen_opens_no_dialog) {
    const PageDocument page = open_field("");
    press_field();
    place_.hide();
    image_of(page);
    let_everything_happen();
    EXPECT_TRUE(dialogs_.surprises.empty());
    place_.show();
}

TEST_F(FileUpload, a_browser_that_ends_while_its_page_waits_for_files_ends_in_peace) {
    open_field("");
    dialogs_.expect("UploadFileDialog", [this](QDialog& dialog) {
        browser_.reset();
        // The engine's own ends have had their chance while it is inside its call still.
        QMetaObject::invokeMethod(&dialog, "reject", Qt::QueuedConnection);
    });
    press_field();
    ASSERT_TRUE(wait_until([&] { return dialogs_.done() && !profile_->waits().open(); }));
    browser_ = std::make_unique<QtBrowser>(place_, probe_, profile_);
    let_everything_happen();
}

} // namespace
} // namespace kestrune
