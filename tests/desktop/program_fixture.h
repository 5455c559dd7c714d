#pragma once

#include "platform/disk/disk_files.h"
#include "platform/qt/qt_user_interface.h"
#include "platform/sqlite/site_schema.h"
#include "platform/sqlite/sqlite_database.h"
#include "shell/browser_window.h"
#include "shell/program.h"
#include "tests/desktop/site_server.h"
#include "tests/temporary_folder.h"
#include "tools/tour/driver.h"

#include <QTest>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// The whole program in a folder of its own: the real window, the real engine, the library on disk, and a
// server for its pages. Used as a user does.
class ProgramTest : public ::testing::Test {
protected:
    void add_site(int key, std::string url, std::string description, std::string pad = "PAD") {
        SiteRow row;
        row.padkey = key;
        row.url = std::move(url);
        row.description = std::move(description);
        row.pad = std::move(pad);
        row.softtype = "1=general";
        rows_.push_back(std::move(row));
    }

    void start() {
        create_site_library(files_.path(folder_.path(), site_library_name), rows_);
        window_ = &program_.start();
        wait("the blank page", [this] { return window().strCurDocUrl == "about:blank"; });
    }

    [[nodiscard]] BrowserWindow& window() { return *window_; }
    [[nodiscard]] Program& program() { return program_; }
    [[nodiscard]] SiteServer& server() { return server_; }
    [[nodiscard]] drive::Driver& user() { return driver_; }
    [[nodiscard]] std::string url(const std::string& path) const { return server_.url(path); }

    void wait(std::string_view what, const std::function<bool()>& condition) {
        driver_.wait(what, condition);
    }
    void wait_for_document(const std::string& address) {
        wait("the document " + address, [&] { return window().strCurDocUrl == address; });
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        driver_.window().activateWindow();
        wait("the window to be in front", [this] { return driver_.window().isActiveWindow(); });
        QTest::keyClick(&driver_.window(), key, modifiers);
        driver_.check();
    }
    // Ctrl+L, the address, Enter.
    void open_address(const std::string& address) {
        user().answer_with([&](QDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), "frmOpenAddress");
            user().type(dialog, "txtAddress", address);
            user().press(dialog, "cmdOpen");
        });
        key(Qt::Key_L, Qt::ControlModifier);
        wait_for_document(address);
    }
    // The next dialogs are message boxes, answered with these buttons in turn.
    void answer_boxes(std::vector<std::string> buttons) {
        user().answer_with([this, buttons = std::move(buttons), next = std::size_t{0}](QDialog& box) mutable {
            ASSERT_LT(next, buttons.size()) << "one question too many: " << drive::Driver::text(box, "Text");
            asked_.push_back(drive::Driver::text(box, "Text"));
            user().answer(box, buttons[next++]);
        });
    }
    [[nodiscard]] std::vector<std::string> asked() const { return asked_; }
    [[nodiscard]] std::string status_in_library(const std::string& address) {
        auto row = database_.open(files_.path(folder_.path(), site_library_name),
                                  "select * from tblSubmitList where url = " + SqlQuote(address));
        return row->at_end() ? "no row" : row->text("status").value_or("Null");
    }
    [[nodiscard]] const std::string& folder() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
    SiteServer server_;
    drive::Driver driver_;
    std::vector<SiteRow> rows_;
    std::vector<std::string> asked_;
    DiskFiles files_;
    SqliteDatabase database_;
    QtUserInterface ui_;
    Program program_{ui_, files_, database_, folder_.path()};
    BrowserWindow* window_ = nullptr;
};

} // namespace kestrune
