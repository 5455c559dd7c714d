#pragma once

#include "platform/memory/memory_database.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"
#include "shell/browser_window.h"
#include "shell/program.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kestrune {

// A program on the in-memory desktop with its first window loaded, and what a test does to it.
class WindowTest : public ::testing::Test {
protected:
    static constexpr const char* folder = "/program";

    WindowTest() { files.create_folder(folder); }
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

    void add_site(int key, std::string_view url, std::string_view description, std::string_view pad = "PAD",
                  std::string_view softtype = "1=general", std::string_view status = "N") {
        sites().push_back({{"padkey", std::int64_t{key}},
                           {"url", std::string(url)},
                           {"description", std::string(description)},
                           {"status", std::string(status)},
                           {"softtype", std::string(softtype)},
                           {"pad", std::string(pad)},
                           {"referral", std::int64_t{0}},
                           {"linkfound", std::int64_t{0}},
                           {"note", std::string()}});
    }

    MemoryUserInterface ui;
    MemoryFiles files;
    MemoryDatabase database;
    Program program{ui, files, database, folder};

private:
    BrowserWindow* window_ = nullptr;
};

} // namespace kestrune
