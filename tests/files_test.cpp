#include "platform/disk/disk_files.h"
#include "platform/memory/memory_files.h"
#include "temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace kestrune {
namespace {

// Every implementation has a folder to work in and a way to make things go wrong.
struct InMemory {
    MemoryFiles files;
    std::string folder = "/work";

    InMemory() { files.create_folder(folder); }
    void make_unreadable(const std::string& path) { files.unreadable.insert(path); }
    void make_read_only(const std::string& path) { files.read_only_folders.insert(path); }
    static int act_as_user() { return 0; }
};

struct OnDisk {
    DiskFiles files;
    TemporaryFolder temporary;
    std::string folder = temporary.path();

    OnDisk() { std::filesystem::permissions(folder, std::filesystem::perms(0777)); }
    static void make_unreadable(const std::string& path) {
        std::filesystem::permissions(path, std::filesystem::perms(0));
    }
    static void make_read_only(const std::string& path) {
        std::filesystem::permissions(path, std::filesystem::perms(0555));
    }
    static std::unique_ptr<OrdinaryUser> act_as_user() { return std::make_unique<OrdinaryUser>(); }
};

template <typename Family>
class FilesContract : public testing::Test {
protected:
    std::string at(const std::string& name) { return files().path(family.folder, name); }
    Files& files() { return family.files; }
    std::vector<std::string> names() {
        auto names = files().list(family.folder).value_or(std::vector<std::string>{});
        std::sort(names.begin(), names.end());
        return names;
    }
    Family family;
};

using Families = testing::Types<InMemory, OnDisk>;
TYPED_TEST_SUITE(FilesContract, Families);

TYPED_TEST(FilesContract, PathJoinsAFolderWithOrWithoutItsSeparator) {
    EXPECT_EQ(this->files().path("/a", "b"), "/a/b");
    EXPECT_EQ(this->files().path("/a/", "b"), "/a/b");
    EXPECT_EQ(this->files().path("/", "b"), "/b");
}

TYPED_TEST(FilesContract, WrittenBytesAreReadBackWhateverTheyAre) {
    const std::string bytes("a\0\r\n\xff\xfe", 6);
    EXPECT_TRUE(this->files().write(this->at("f"), bytes));
    EXPECT_EQ(this->files().read(this->at("f")), bytes);
    EXPECT_TRUE(this->files().write(this->at("f"), ""));
    EXPECT_EQ(this->files().read(this->at("f")), "");
}

TYPED_TEST(FilesContract, LargeFileIsReadWhole) {
    const std::string bytes(3'000'001, 'x');
    EXPECT_TRUE(this->files().write(this->at("f"), bytes));
    EXPECT_EQ(this->files().read(this->at("f")), bytes);
}

TYPED_TEST(FilesContract, MissingFileIsNeitherFoundNorReadNorRemoved) {
    EXPECT_FALSE(this->files().file_exists(this->at("f")));
    EXPECT_EQ(this->files().read(this->at("f")), std::nullopt);
    EXPECT_FALSE(this->files().remove(this->at("f")));
}

TYPED_TEST(FilesContract, RemovedFileIsGone) {
    ASSERT_TRUE(this->files().write(this->at("f"), "x"));
    EXPECT_TRUE(this->files().remove(this->at("f")));
    EXPECT_FALSE(this->files().file_exists(this->at("f")));
    EXPECT_FALSE(this->files().remove(this->at("f")));
}

TYPED_TEST(FilesContract, FolderIsNoFile) {
    ASSERT_TRUE(this->files().create_folder(this->at("d")));
    EXPECT_TRUE(this->files().folder_exists(this->at("d")));
    EXPECT_TRUE(this->files().folder_exists(this->at("d") + "/"));
    EXPECT_FALSE(this->files().file_exists(this->at("d")));
    EXPECT_EQ(this->files().read(this->at("d")), std::nullopt);
    EXPECT_FALSE(this->files().write(this->at("d"), "x"));
    EXPECT_FALSE(this->files().remove(this->at("d")));
    EXPECT_TRUE(this->files().folder_exists(this->at("d")));
}

TYPED_TEST(FilesContract, FileIsNoFolder) {
    ASSERT_TRUE(this->files().write(this->at("f"), "x"));
    EXPECT_FALSE(this->files().folder_exists(this->at("f")));
    EXPECT_FALSE(this->files().create_folder(this->at("f")));
    EXPECT_EQ(this->files().list(this->at("f")), std::nullopt);
}

TYPED_TEST(FilesContract, FolderIsCreatedOnceAndOnlyInAFolderThatExists) {
    EXPECT_FALSE(this->files().create_folder(this->at("a/b")));
    EXPECT_TRUE(this->files().create_folder(this->at("a")));
    EXPECT_FALSE(this->files().create_folder(this->at("a")));
    EXPECT_TRUE(this->files().create_folder(this->at("a/b")));
}

TYPED_TEST(FilesContract, FileIsWrittenOnlyInAFolderThatExists) {
    EXPECT_FALSE(this->files().write(this->at("a/f"), "x"));
    EXPECT_FALSE(this->files().file_exists(this->at("a/f")));
}

TYPED_TEST(FilesContract, ListHoldsTheFilesOfTheFolderAndNothingElse) {
    ASSERT_TRUE(this->files().write(this->at("one"), "1"));
    ASSERT_TRUE(this->files().write(this->at("empty"), ""));
    ASSERT_TRUE(this->files().create_folder(this->at("d")));
    ASSERT_TRUE(this->files().write(this->at("d/inner"), "x"));
    EXPECT_THAT(this->names(), testing::ElementsAre("empty", "one"));
}

TYPED_TEST(FilesContract, SequenceReadsTheFilesInTheOrderOfTheirNamesAndSaysNothingOfThoseThatCannotBeRead) {
    ASSERT_TRUE(this->files().write(this->at("b"), "second"));
    ASSERT_TRUE(this->files().write(this->at("a"), "first"));
    ASSERT_TRUE(this->files().write(this->at("empty"), ""));
    ASSERT_TRUE(this->files().create_folder(this->at("d")));
    const auto sequence = this->files().sequence(this->family.folder, {"b", "none", "d", "empty", "a"});
    EXPECT_EQ(sequence->next(), "second");
    EXPECT_EQ(sequence->next(), std::nullopt);
    EXPECT_EQ(sequence->next(), std::nullopt);
    EXPECT_EQ(sequence->next(), "");
    EXPECT_EQ(sequence->next(), "first");
    EXPECT_EQ(sequence->next(), std::nullopt);
}

TYPED_TEST(FilesContract, SequenceOfAMissingFolderReadsNothing) {
    EXPECT_EQ(this->files().sequence(this->at("none"), {"a"})->next(), std::nullopt);
}

TYPED_TEST(FilesContract, MissingFolderCannotBeListedAndAnEmptyOneIsEmpty) {
    EXPECT_EQ(this->files().list(this->at("none")), std::nullopt);
    ASSERT_TRUE(this->files().create_folder(this->at("d")));
    const auto entries = this->files().list(this->at("d"));
    ASSERT_TRUE(entries);
    EXPECT_TRUE(entries->empty());
}

TYPED_TEST(FilesContract, NameAsLongAsTheFileSystemAllowsIsWrittenAndALongerOneIsNot) {
    EXPECT_TRUE(this->files().write(this->at(std::string(255, 'n')), "x"));
    EXPECT_FALSE(this->files().write(this->at(std::string(256, 'n')), "x"));
    EXPECT_FALSE(this->files().create_folder(this->at(std::string(256, 'd'))));
    EXPECT_THAT(this->names(), testing::ElementsAre(std::string(255, 'n')));
}

TYPED_TEST(FilesContract, UnreadableFileExistsAndIsNotRead) {
    ASSERT_TRUE(this->files().write(this->at("f"), "x"));
    this->family.make_unreadable(this->at("f"));
    [[maybe_unused]] const auto user = this->family.act_as_user();
    EXPECT_TRUE(this->files().file_exists(this->at("f")));
    EXPECT_EQ(this->files().read(this->at("f")), std::nullopt);
}

TYPED_TEST(FilesContract, UnreadableFolderIsNotListed) {
    ASSERT_TRUE(this->files().create_folder(this->at("d")));
    this->family.make_unreadable(this->at("d"));
    [[maybe_unused]] const auto user = this->family.act_as_user();
    EXPECT_TRUE(this->files().folder_exists(this->at("d")));
    EXPECT_EQ(this->files().list(this->at("d")), std::nullopt);
}

TYPED_TEST(FilesContract, NothingChangesInAFolderThatIsReadOnly) {
    ASSERT_TRUE(this->files().write(this->at("f"), "old"));
    this->family.make_read_only(this->family.folder);
    [[maybe_unused]] const auto user = this->family.act_as_user();
    EXPECT_FALSE(this->files().write(this->at("f"), "new"));
    EXPECT_FALSE(this->files().write(this->at("g"), "new"));
    EXPECT_FALSE(this->files().create_folder(this->at("d")));
    EXPECT_FALSE(this->files().remove(this->at("f")));
    EXPECT_THAT(this->names(), testing::ElementsAre("f"));
}

TEST(MemoryFilesTest, WriteToAFullDiskFailsAndTheOldFileStays) {
    MemoryFiles files;
    ASSERT_TRUE(files.write("/f", "old"));
    files.disk_size = 8;
    EXPECT_FALSE(files.write("/f", "sixsix"));
    EXPECT_EQ(files.read("/f"), "old");
    EXPECT_TRUE(files.write("/f", "five5"));
}

TEST(DiskFilesTest, WriteThatTheDiskCannotHoldFailsAndLeavesTheOldFileAndNothingElse) {
    const TemporaryFolder folder;
    DiskFiles files;
    ASSERT_TRUE(files.write(folder.file("f"), "old"));
    {
        const FileSizeLimit limit{1000};
        EXPECT_FALSE(files.write(folder.file("f"), std::string(100'000, 'x')));
    }
    EXPECT_EQ(files.read(folder.file("f")), "old");
    EXPECT_EQ(folder.entries(), 1U);
}

TEST(DiskFilesTest, LinkToAFileIsListedAndOneToAFolderOrAPipeIsNot) {
    const TemporaryFolder folder;
    DiskFiles files;
    ASSERT_TRUE(files.write(folder.file("file"), "x"));
    ASSERT_TRUE(files.create_folder(folder.file("folder")));
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("file", folder.file("to_file"));
    std::filesystem::create_symlink("folder", folder.file("to_folder"));
    std::filesystem::create_symlink("pipe", folder.file("to_pipe"));
    std::filesystem::create_symlink("none", folder.file("to_nothing"));
    auto names = files.list(folder.path()).value_or(std::vector<std::string>{});
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, testing::ElementsAre("file", "to_file"));
}

TEST(DiskFilesTest, WrittenFilesAndFoldersAreOpenToTheirOwnerOnly) {
    const TemporaryFolder folder;
    DiskFiles files;
    ASSERT_TRUE(files.write(folder.file("f"), "x"));
    ASSERT_TRUE(files.create_folder(folder.file("d")));
    EXPECT_EQ(std::filesystem::status(folder.file("f")).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(std::filesystem::status(folder.file("d")).permissions(), std::filesystem::perms(0700));
}

} // namespace
} // namespace kestrune
