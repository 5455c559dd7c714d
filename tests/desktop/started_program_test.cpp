#include "platform/sqlite/site_schema.h"
#include "tests/desktop/wait_until.h"
#include "tests/temporary_folder.h"

#include <QByteArray>
#include <QProcess>
#include <QString>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

// The program's own file, copied alone into a folder and started from there.
class StartedProgram : public ::testing::Test {
protected:
    ~StartedProgram() override {
        process_.kill();
        process_.waitForFinished();
    }

    void start() {
        fs::copy_file(KESTRUNE_PROGRAM, folder() / "kestrune");
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start(QString::fromStdString(folder() / "kestrune"), {});
    }
    [[nodiscard]] fs::path folder() const { return folder_.path(); }
    // The first thing that a window does with its folder once its controls are there.
    [[nodiscard]] bool has_started() {
        return wait_until([this] {
            return fs::is_directory(folder() / "session") || process_.state() == QProcess::NotRunning;
        });
    }
    [[nodiscard]] bool is_running() const { return process_.state() == QProcess::Running; }
    [[nodiscard]] std::string output() { return process_.readAll().toStdString(); }

private:
    TemporaryFolder folder_;
    QProcess process_;
};

TEST_F(StartedProgram, RunsFromAnyFolderThatHoldsALibrary) {
    SiteRow site;
    site.padkey = 1;
    site.url = "http://a/";
    site.description = "A";
    create_site_library(folder() / "SubmitList.mdb", {site});
    start();
    EXPECT_TRUE(has_started());
    EXPECT_TRUE(is_running()) << output();
}

TEST_F(StartedProgram, RunsWithoutALibrary) {
    start();
    EXPECT_TRUE(has_started());
    EXPECT_TRUE(is_running()) << output();
    EXPECT_FALSE(fs::exists(folder() / "SubmitList.mdb")) << "the program never creates the library";
}

} // namespace
} // namespace kestrune
