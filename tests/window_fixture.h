#pragma once

#include "platform/memory/memory_database.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"
#include "shell/browser_window.h"
#include "shell/program.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

// A program on the in-memory desktop with its first window loaded, and what a test does to it.
class WindowTest : public ::testing::Test {
protected:
    static constexpr const char* folder = "/program";

    WindowTest() {
        files.create_folder(folder);
        database.create_library(library_path());
    }
    ~WindowTest() override { EXPECT_EQ(ui.failures, std::vector<std::string>{}); }

    // Most tests begin here; those about start-up put files or rows in place first.
    void start() {
        window_ = &program.start();
        arrive();
    }

    BrowserWindow& window() { return *window_; }
    MemoryBrowser& browser() { return *ui.browsers.at(0); }
    // The navigation under way brings its document.
    void arrive() { EXPECT_TRUE(browser().arrive()); }
    const std::string& panel(int index) { return window().StatusBar1.text(index); }

    void press_key(std::string_view keys) {
        for (const auto& shortcut : window().form.Shortcuts) {
            if (shortcut.Keys == keys)
                return shortcut.Press();
        }
        ADD_FAILURE() << "no such key: " << keys;
    }

    [[nodiscard]] std::string library_path() const { return files.path(folder, site_library_name); }
    [[nodiscard]] MemoryTable& sites() { return *database.table(library_path(), "tblSubmitList"); }
    // The library's row with this key.
    [[nodiscard]] SiteRow site(int key) {
        for (const SiteRow& row : MemoryDatabase::sites(sites())) {
            if (row.padkey == key)
                return row;
        }
        ADD_FAILURE() << "no site " << key;
        return {};
    }

    void add_site(int key, std::string url, std::string description, std::string pad = "PAD",
                  std::string softtype = "1=general", int referral = 0) {
        SiteRow row;
        row.padkey = key;
        row.url = std::move(url);
        row.description = std::move(description);
        row.pad = std::move(pad);
        row.softtype = std::move(softtype);
        row.referral = referral;
        MemoryDatabase::add_site(sites(), row);
    }

    MemoryUserInterface ui;
    MemoryFiles files;
    MemoryDatabase database;
    Program program{ui, files, database, folder};

private:
    BrowserWindow* window_ = nullptr;
};

} // namespace kestrune
