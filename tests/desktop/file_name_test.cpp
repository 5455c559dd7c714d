#include "platform/qt/file_name.h"
#include "tests/small_disk.h"
#include "tests/temporary_folder.h"

#include <filesystem>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

TEST(CleanFileName, keeps_no_path_no_hidden_name_and_nothing_that_lies) {
    const auto clean = [](const char* name) {
        return clean_file_name(QString::fromUtf8(name)).toStdString();
    };
    EXPECT_EQ(clean("../../evil.txt"), "evil.txt");
    EXPECT_EQ(clean("c:\\windows\\system.ini"), "system.ini");
    EXPECT_EQ(clean(".bashrc"), "bashrc");
    EXPECT_EQ(clean("..."), "download");
    EXPECT_EQ(clean(""), "download");
    EXPECT_EQ(clean("pic\xE2\x80\xAEgpj.exe"), "picgpj.exe");
    EXPECT_EQ(clean("a\nb\x07.txt"), "ab.txt");
    EXPECT_EQ(clean("a:b*c?.txt. "), "a_b_c_.txt");
    EXPECT_EQ(clean("CON.txt"), "_CON.txt");
    EXPECT_EQ(clean("lpt1"), "_lpt1");
    EXPECT_EQ(clean("\xC3\x9C"
                    "ber.tar.gz"),
              "\xC3\x9C"
              "ber.tar.gz");
    const std::string cut = clean((std::string(500, 'x') + ".zip").c_str());
    EXPECT_EQ(cut, std::string(196, 'x') + ".zip");
}

// Another disk than the one with the program's folder.
class OtherDisk : public ::testing::Test {
protected:
    static constexpr std::size_t size = 300000;
    OtherDisk() {
        write_bytes(here_.file("content"), std::string(size, 'z'));
        std::filesystem::create_directory(there_.file("disk"));
    }
    [[nodiscard]] std::string disk() const { return there_.file("disk"); }
    [[nodiscard]] std::string move(const std::string& name) const {
        return move_into_place(QString::fromStdString(here_.file("content")),
                               QString::fromStdString(disk() + "/" + name))
            .toStdString();
    }
    [[nodiscard]] bool still_here() const { return fs::exists(here_.file("content")); }
    [[nodiscard]] std::size_t entries_there() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(disk()), {}));
    }

    TemporaryFolder here_;
    TemporaryFolder there_;
};

TEST_F(OtherDisk, a_file_is_copied_there_whole_and_is_here_no_longer) {
    const SmallDisk tried = on_small_disk(disk(), "2m", [&] {
        EXPECT_EQ(move("mine.zip"), "");
        EXPECT_EQ(bytes_of(disk() + "/mine.zip"), std::string(size, 'z'));
        EXPECT_FALSE(still_here());
    });
    if (tried == SmallDisk::NotToBeHad)
        GTEST_SKIP() << "no small file system can be mounted here: not run";
    EXPECT_EQ(tried, SmallDisk::Done);
}

TEST_F(OtherDisk, a_full_one_gets_no_part_of_the_file_and_keeps_what_had_its_name) {
    const SmallDisk tried = on_small_disk(disk(), "128k", [&] {
        write_bytes(disk() + "/mine.zip", "older");
        EXPECT_EQ(move("mine.zip"), "No space left on device");
        EXPECT_EQ(bytes_of(disk() + "/mine.zip"), "older");
        EXPECT_EQ(entries_there(), 1U) << "nothing else is left there";
        EXPECT_TRUE(still_here());
    });
    if (tried == SmallDisk::NotToBeHad)
        GTEST_SKIP() << "no small file system can be mounted here: not run";
    EXPECT_EQ(tried, SmallDisk::Done);
}

TEST_F(OtherDisk, a_folder_that_may_not_be_written_to_says_so) {
    fs::permissions(disk(), fs::perms(0555));
    const OrdinaryUser user;
    EXPECT_EQ(move("mine.zip"), "Permission denied");
    EXPECT_TRUE(still_here());
}

TEST_F(OtherDisk, a_folder_under_the_name_is_not_replaced) {
    fs::create_directory(disk() + "/taken.zip");
    EXPECT_NE(move("taken.zip"), "");
    EXPECT_TRUE(still_here());
}

} // namespace
} // namespace kestrune
