#include "child_process.h"
#include "platform/disk/disk_files.h"
#include "platform/memory/memory_database.h"
#include "platform/memory/memory_ui.h"
#include "sessions/permanent_store.h"
#include "sessions/post_data.h"
#include "sessions/record_dialogs.h"
#include "sessions/record_editor.h"
#include "temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>

namespace kestrune {
namespace {

constexpr int rounds = 100;
constexpr int kept_records = 12;
constexpr int versions_per_round = 100000;

std::vector<std::string> record_keys() { return {"Type", "Url", "Action", "Postdata", "Header", "Frame"}; }
std::vector<std::string> site_keys() { return {"url", "Status", "Category", "Comment"}; }

std::string address(int number) { return "http://www.site" + std::to_string(number) + ".example/submit.cgi"; }

// Every field tells the version, and the size differs from one to the next, so that a mixture shows.
RecordSession version_of(const std::string& url, int version) {
    const std::string number = std::to_string(version);
    return {"Form",
            "Version" + number,
            url,
            "http://a.example/" + number,
            "version=" + number + "&text=" + std::string(static_cast<std::size_t>(version % 977), 'x'),
            "X-Version: " + number + "\r\n",
            "frame" + number};
}

// Version of a record that is whole; -1 for a torn one.
int version_in(const RecordSession& record) {
    const int version = std::atoi(record.Session.substr(std::string("Version").size()).c_str());
    return record == version_of(record.Url, version) ? version : -1;
}

// The record lists of a running program, on real files.
struct Program {
    explicit Program(const std::string& folder)
        : record_files(files, folder), library(database, files, folder) {
        store.LoadPermanentSession();
        store.wait_until_loaded();
    }

    void save(const RecordSession& record) {
        ListView1.add(ItemOf("K1", record));
        ListView1.select("K1");
        store.cmdSave_Click();
    }
    // Through the dialog, whose boxes get the texts of this version.
    void edit(ListView& list, const RecordSession& record) {
        ui.expect_form("frmEdit", [&](Form& form) {
            auto& dialog = dynamic_cast<FrmEdit&>(form);
            dialog.txtSession.Text = record.Session;
            dialog.txtAction.Text = record.Action;
            const PostFields fields = SplitPostData(record.Postdata);
            dialog.txtValue(0).Text = fields.values[0];
            dialog.txtValue(1).Text = fields.values[1];
            press_button(form, &list == &lvwPermanent ? "cmdOK" : "cmdPermanentOK");
        });
        editor.cmdEdit_Click(&list);
    }
    void remove(const std::string& url) {
        lvwPermanent.select(UrlToRecordKey(url));
        ui.expect_box("Are you sure to delete this permanent record session?", Answer::Yes);
        store.cmdDelete_Click(&lvwPermanent);
    }

    DiskFiles files;
    MemoryDatabase database;
    MemoryUserInterface ui;
    ListView lvwPermanent{"lvwPermanent", record_keys()};
    ListView ListView1{"ListView1", record_keys()};
    ListView lvwPAD{"lvwPAD", site_keys()};
    ListView lvwNonPad{"lvwNonPad", site_keys()};
    StatusBar StatusBar1{"StatusBar1"};
    RecordCounters counters;
    RecordFiles record_files;
    SiteLibrary library;
    RecordPanel panel{lvwPermanent, ListView1, lvwPAD, lvwNonPad, StatusBar1, counters};
    PermanentStore store{panel, record_files, library, ui, {}};
    RecordEditor editor{panel, store, record_files, ui};
};

// What the program does with its records, over and over: keeps new versions of the first ones, edits them,
// moves edited temporary ones, and makes and deletes others.
void work(Program& program, int first_version) {
    for (int i = 0;; ++i) {
        const std::string url = address(i % kept_records);
        RecordSession record = version_of(url, first_version + i);
        switch (i / kept_records % 3) {
        case 0:
            program.save(record);
            break;
        case 1:
            // The editor changes neither headers nor frame.
            program.lvwPermanent.set_sub_item(UrlToRecordKey(url), "Header", record.Header);
            program.lvwPermanent.set_sub_item(UrlToRecordKey(url), "Frame", record.Frame);
            program.lvwPermanent.select(UrlToRecordKey(url));
            program.edit(program.lvwPermanent, record);
            break;
        default:
            program.ListView1.add(ItemOf("K1", record));
            program.ListView1.select("K1");
            program.edit(program.ListView1, record);
        }
        const std::string passing = address(kept_records + i % 3);
        program.save(version_of(passing, first_version + i));
        program.remove(passing);
    }
}

TEST(KilledProgramRecords, EveryPermanentRecordNotBeingDeletedIsTheOldOrTheNewOne) {
    const TemporaryFolder folder;
    std::map<std::string, int> versions;
    {
        Program program{folder.path()};
        for (int i = 0; i < kept_records; ++i) {
            program.save(version_of(address(i), i));
            versions[address(i)] = i;
        }
    }
    std::mt19937 random(20261121); // NOLINT(cert-msc51-cpp): the same delays in every run
    int changed = 0;
    for (int round = 1; round <= rounds; ++round) {
        const int first_version = round * versions_per_round;
        std::unique_ptr<Program> running;
        ChildProcess program{[&] { running = std::make_unique<Program>(folder.path()); },
                             [&] { work(*running, first_version); }};
        program.kill_after(std::chrono::microseconds(std::uniform_int_distribution<>(0, 12000)(random)));

        const Program restarted{folder.path()};
        std::map<std::string, int> listed;
        for (std::size_t i = 0; i < restarted.lvwPermanent.size(); ++i) {
            const RecordSession record = RecordOf(restarted.lvwPermanent, restarted.lvwPermanent.item(i));
            listed[record.Url] = version_in(record);
        }
        for (auto& [url, before] : versions) {
            ASSERT_TRUE(listed.contains(url)) << url << " is missing after round " << round;
            const int now = listed[url];
            ASSERT_TRUE(now == before || now >= first_version)
                << url << " has version " << now << " in round " << round << " and had " << before;
            changed += now == before ? 0 : 1;
            before = now;
            listed.erase(url);
        }
        // One that is made and deleted is there or not, but whole.
        for (const auto& [url, version] : listed)
            ASSERT_GE(version, versions_per_round) << url << " in round " << round;
        ASSERT_LE(listed.size(), 3U);
    }
    // How many there are is the machine's affair.
    EXPECT_GT(changed, 0) << "the program was killed too early to have done anything";
}

TEST(KilledProgramRecords, FileThatAKilledProgramLeftHalfWrittenIsNotListedAndHarmsNothing) {
    const TemporaryFolder folder;
    Program{folder.path()}.save(version_of(address(1), 1));
    const std::string text = BuildSessionXml(version_of(address(2), 2));
    write_bytes(folder.file("session/.kestrune-a1B2c3"), text);
    write_bytes(folder.file("session/.kestrune-d4E5f6"), text.substr(0, text.size() / 2));
    Program program{folder.path()};
    ASSERT_EQ(program.lvwPermanent.size(), 1U);
    EXPECT_EQ(program.lvwPermanent.item(0).Text, "Version1");
    program.save(version_of(address(2), 3));
    EXPECT_EQ(Program{folder.path()}.lvwPermanent.size(), 2U);
}

} // namespace
} // namespace kestrune
