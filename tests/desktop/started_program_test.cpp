#include "platform/sqlite/site_schema.h"
#include "tests/desktop/wait_until.h"
#include "tests/jet_samples.h"
#include "tests/temporary_folder.h"

#include <QByteArray>
#include <QProcess>
#include <QString>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/file.h>
#include <unistd.h>

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
        return wait_until([this] { return fs::is_directory(folder() / "session") || has_ended(); });
    }
    // The process that converts, a child of the program's; 0 while there is none.
    [[nodiscard]] pid_t converting_process() const {
        const std::string id = std::to_string(process_.processId());
        pid_t child = 0;
        std::ifstream("/proc/" + id + "/task/" + id + "/children") >> child;
        return child;
    }
    void kill_program() {
        process_.kill();
        process_.waitForFinished();
    }
    [[nodiscard]] bool has_ended() const { return process_.state() == QProcess::NotRunning; }
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

// A conversion that takes as long as the test likes: it waits for the lock that keeps two programs from
// converting one file.
class ProgramThatConverts : public StartedProgram {
protected:
    void SetUp() override {
        KESTRUNE_NEED_JET_SAMPLES();
        fs::copy_file(jet_sample("sites-2003.mdb"), library());
        held_ = ::open(library().c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::flock(held_, LOCK_EX), 0);
        start();
        ASSERT_TRUE(wait_until([this] { return converting_process() != 0 || has_ended(); }));
    }
    void TearDown() override { let_go(); }
    void let_go() {
        if (held_ >= 0)
            ::close(held_);
        held_ = -1;
    }
    [[nodiscard]] fs::path library() const { return folder() / "SubmitList.mdb"; }

private:
    int held_ = -1;
};

TEST_F(ProgramThatConverts, StartsWhenTheConversionIsDone) {
    EXPECT_TRUE(is_running()) << output();
    EXPECT_FALSE(fs::exists(folder() / "session"));
    let_go();
    EXPECT_TRUE(has_started());
    EXPECT_TRUE(is_running()) << output();
    EXPECT_NE(bytes_of(library()), bytes_of(jet_sample("sites-2003.mdb")));
    EXPECT_EQ(bytes_of(folder() / "SubmitList (Access original).mdb"),
              bytes_of(jet_sample("sites-2003.mdb")));
}

TEST_F(ProgramThatConverts, KilledMeanwhileTakesTheConversionWithItAndLeavesTheFile) {
    const pid_t child = converting_process();
    ASSERT_NE(child, 0);
    kill_program();
    EXPECT_TRUE(wait_until([child] { return ::kill(child, 0) != 0; }));
    EXPECT_EQ(bytes_of(library()), bytes_of(jet_sample("sites-2003.mdb")));
    EXPECT_FALSE(fs::exists(folder() / "SubmitList.mdb.converting"));
}

} // namespace
} // namespace kestrune
