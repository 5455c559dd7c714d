#include "platform/jet/jet_conversion.h"

#include "jet_samples.h"
#include "platform/disk/disk_files.h"
#include "platform/jet/jet_header.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/sqlite/sqlite_handle.h"
#include "platform/sqlite/table_file.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <utility>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

// As Access scrambles the pages after the first: RC4 by a key that is told, scrambled, on the first page and
// mixed with the number of each page.
std::string encoded(std::string bytes, std::uint32_t key) {
    constexpr std::size_t page_size = 4096;
    constexpr std::size_t key_at = 0x3e;
    const auto little_endian = [](std::uint32_t number) {
        return std::string{static_cast<char>(number), static_cast<char>(number >> 8U),
                           static_cast<char>(number >> 16U), static_cast<char>(number >> 24U)};
    };
    const auto rc4 = [](const std::string& rc4_key, std::string& text, std::size_t from, std::size_t size) {
        std::array<unsigned char, 256> state{};
        std::iota(state.begin(), state.end(), static_cast<unsigned char>(0));
        unsigned char j = 0;
        for (std::size_t i = 0; i < state.size(); ++i) {
            j = static_cast<unsigned char>(j + state[i] + static_cast<unsigned char>(rc4_key[i % 4]));
            std::swap(state[i], state[j]);
        }
        unsigned char i = 0;
        j = 0;
        for (std::size_t at = from; at < from + size; ++at) {
            j = static_cast<unsigned char>(j + state[++i]);
            std::swap(state[i], state[j]);
            text[at] = static_cast<char>(static_cast<unsigned char>(text[at]) ^
                                         state[static_cast<unsigned char>(state[i] + state[j])]);
        }
    };
    for (std::uint32_t page = 1; page * page_size < bytes.size(); ++page)
        rc4(little_endian(key ^ page), bytes, page * page_size, page_size);
    const std::string told = little_endian(key);
    for (std::size_t i = 0; i < told.size(); ++i)
        bytes[key_at + i] = static_cast<char>(bytes[key_at + i] ^ told[i]);
    return bytes;
}

class JetConversion : public testing::Test {
protected:
    void SetUp() override { KESTRUNE_NEED_JET_SAMPLES(); }

    std::string bring(const std::string& sample, const std::string& name = "SubmitList.mdb") {
        std::string path = folder.file(name);
        fs::copy_file(jet_sample(sample), path);
        fs::permissions(path, fs::perms(0644));
        return path;
    }
    std::vector<JetOutcome> convert() {
        return JetConversions{jet_files_in(folder.path()), create_table_file}.finish();
    }
    // As the contents of the sample spell it.
    static std::optional<std::string> as_contents(const SqliteQuery& row, int column,
                                                  const std::string& type) {
        const DatabaseValue value = row.value(column);
        if (value == DatabaseValue{})
            return std::nullopt;
        std::string text = std::holds_alternative<std::int64_t>(value)
                               ? std::to_string(std::get<std::int64_t>(value))
                               : std::get<std::string>(value);
        if (type == "BOOLEAN")
            return text == "1" ? "true" : text == "0" ? "false" : "neither";
        if (type == "SHORT_DATE_TIME" && text.size() == 19)
            text[10] = 'T';
        return text;
    }
    // Every row of the file at the path, compared with the contents of the sample.
    void expect_contents(const std::string& path, const std::string& table,
                         const std::string& contents_name) {
        const JetContents expected = jet_contents(contents_name);
        ASSERT_FALSE(expected.rows.empty());
        const SqliteConnection database = SqliteConnection::open_existing(path);
        SqliteQuery rows{database, "SELECT * FROM " + table + " ORDER BY " + expected.columns[0]};
        ASSERT_EQ(static_cast<std::size_t>(rows.columns()), expected.columns.size());
        for (std::size_t i = 0; i < expected.columns.size(); ++i)
            EXPECT_EQ(rows.name(static_cast<int>(i)), expected.columns[i]);
        for (const auto& row : expected.rows) {
            ASSERT_TRUE(rows.step()) << "rows are missing";
            for (std::size_t i = 0; i < row.size(); ++i) {
                const int column = static_cast<int>(i);
                if (expected.types[i] == "DOUBLE" && row[i])
                    EXPECT_EQ(sqlite3_column_double(rows.get(), column),
                              std::strtod(row[i]->c_str(), nullptr));
                else
                    EXPECT_EQ(as_contents(rows, column, expected.types[i]), row[i])
                        << expected.columns[i] << " of row " << *row[0];
            }
        }
        EXPECT_FALSE(rows.step()) << "there are more rows than there should be";
    }

    TemporaryFolder folder;
};

TEST_F(JetConversion, ConvertedLibraryHasEveryRowAndColumnWithItsType) {
    const std::string path = bring("sites-2000.mdb");
    EXPECT_EQ(convert()[0], JetOutcome::Converted);
    expect_contents(path, "tblSubmitList", "sites-2000.tsv");
}

TEST_F(JetConversion, ConvertedLibraryOfTheLaterFormatHasEveryRow) {
    const std::string path = bring("sites-2003.mdb");
    EXPECT_EQ(convert()[0], JetOutcome::Converted);
    expect_contents(path, "tblSubmitList", "sites-2003.tsv");
}

TEST_F(JetConversion, ConvertedReferralDatabaseHasEveryRow) {
    const std::string path = bring("referral-2000.mdb", "referral2.mdb");
    const auto outcomes = convert();
    EXPECT_EQ(outcomes[0], JetOutcome::NotJet);
    EXPECT_EQ(outcomes[1], JetOutcome::Converted);
    expect_contents(path, "referral2", "referral-2000.tsv");
}

TEST_F(JetConversion, OriginalIsKeptUntouchedBesideTheConvertedFile) {
    const std::string path = bring("sites-2000.mdb");
    const auto written = fs::last_write_time(path);
    convert();
    const std::string kept = folder.file("SubmitList (Access original).mdb");
    EXPECT_EQ(bytes_of(kept), bytes_of(jet_sample("sites-2000.mdb")));
    EXPECT_EQ(fs::last_write_time(kept), written);
    EXPECT_FALSE(is_jet_file(path));
    EXPECT_EQ(folder.entries(), 2U);
}

TEST_F(JetConversion, SecondOriginalDoesNotReplaceTheFirst) {
    bring("sites-2000.mdb");
    convert();
    fs::remove(folder.file("SubmitList.mdb"));
    bring("sites-2003.mdb");
    EXPECT_EQ(convert()[0], JetOutcome::Converted);
    EXPECT_EQ(bytes_of(folder.file("SubmitList (Access original).mdb")),
              bytes_of(jet_sample("sites-2000.mdb")));
    EXPECT_EQ(bytes_of(folder.file("SubmitList (Access original 2).mdb")),
              bytes_of(jet_sample("sites-2003.mdb")));
}

TEST_F(JetConversion, ConvertedFileIsNotConvertedAgain) {
    const std::string path = bring("sites-2000.mdb");
    convert();
    const std::string converted = bytes_of(path);
    EXPECT_EQ(convert()[0], JetOutcome::NotJet);
    EXPECT_EQ(bytes_of(path), converted);
    EXPECT_EQ(folder.entries(), 2U);
}

TEST_F(JetConversion, InterruptedConversionIsDoneAnewOverItsLeftovers) {
    const std::string path = bring("sites-2000.mdb");
    write_bytes(unfinished_name(path), "half a file");
    fs::create_hard_link(path, kept_original_name(path, 1));
    EXPECT_EQ(convert()[0], JetOutcome::Converted);
    expect_contents(path, "tblSubmitList", "sites-2000.tsv");
    EXPECT_EQ(folder.entries(), 2U);
}

TEST_F(JetConversion, BrokenFileIsLeftAlone) {
    const std::string path = bring("broken.mdb");
    EXPECT_NE(convert()[0], JetOutcome::Converted);
    EXPECT_EQ(bytes_of(path), bytes_of(jet_sample("broken.mdb")));
    EXPECT_EQ(folder.entries(), 1U);
}

TEST_F(JetConversion, FileCutAnywhereIsLeftAlone) {
    const std::string whole = bytes_of(jet_sample("sites-2000.mdb"));
    for (std::size_t size = 160; size < whole.size() - 4096; size += 13001) {
        write_bytes(folder.file("SubmitList.mdb"), whole.substr(0, size));
        EXPECT_NE(convert()[0], JetOutcome::Converted) << "cut at " << size;
        ASSERT_EQ(folder.entries(), 1U);
        EXPECT_EQ(fs::file_size(folder.file("SubmitList.mdb")), size);
    }
}

TEST_F(JetConversion, ScrambledPagesNeverHarmTheProgramOrTheFile) {
    const std::string whole = bytes_of(jet_sample("referral-2000.mdb"));
    std::srand(7); // NOLINT: the same damage in every run.
    for (int round = 0; round < 40; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 60; ++i)
            damaged[4096 + static_cast<std::size_t>(std::rand()) % (damaged.size() - 4096)] ^= // NOLINT
                static_cast<char>(1 + std::rand() % 255);                                      // NOLINT
        write_bytes(folder.file("referral2.mdb"), damaged);
        const JetOutcome outcome = convert()[1];
        const bool converted = outcome == JetOutcome::Converted;
        const std::string kept = folder.file(converted ? "referral2 (Access original).mdb" : "referral2.mdb");
        EXPECT_EQ(bytes_of(kept), damaged);
        EXPECT_EQ(folder.entries(), converted ? 2U : 1U);
        for (const auto& entry : fs::directory_iterator(folder.path()))
            fs::remove(entry);
    }
}

TEST_F(JetConversion, FileWithAPasswordIsLeftAlone) {
    std::string bytes = bytes_of(jet_sample("sites-2000.mdb"));
    bytes[0x42] ^= 'x';
    write_bytes(folder.file("SubmitList.mdb"), bytes);
    EXPECT_EQ(convert()[0], JetOutcome::Encrypted);
    EXPECT_EQ(bytes_of(folder.file("SubmitList.mdb")), bytes);
}

TEST_F(JetConversion, EncryptedFileIsLeftAlone) {
    const std::string bytes = encoded(bytes_of(jet_sample("sites-2000.mdb")), 0x5eed1234);
    EXPECT_EQ(bytes.find("tblSubmitList"), std::string::npos);
    write_bytes(folder.file("SubmitList.mdb"), bytes);
    EXPECT_EQ(convert()[0], JetOutcome::Encrypted);
    EXPECT_EQ(bytes_of(folder.file("SubmitList.mdb")), bytes);
    EXPECT_EQ(folder.entries(), 1U);
}

// The file says that it is not scrambled, and is.
TEST_F(JetConversion, EncryptedFileThatHidesItsKeyIsLeftAlone) {
    const std::string whole = bytes_of(jet_sample("sites-2000.mdb"));
    const std::string bytes = whole.substr(0, 4096) + encoded(whole, 0x5eed1234).substr(4096);
    write_bytes(folder.file("SubmitList.mdb"), bytes);
    EXPECT_EQ(convert()[0], JetOutcome::Damaged);
    EXPECT_EQ(bytes_of(folder.file("SubmitList.mdb")), bytes);
    EXPECT_EQ(folder.entries(), 1U);
}

// One page at a time is lost, as a bad sector loses it: the file is converted whole or left alone.
TEST_F(JetConversion, FileWithAPageOfZerosIsConvertedWholeOrLeftAlone) {
    const std::string whole = bytes_of(jet_sample("sites-2003.mdb"));
    int left_alone = 0;
    for (std::size_t page = 1; page < whole.size() / 4096; ++page) {
        std::string damaged = whole;
        damaged.replace(page * 4096, 4096, 4096, '\0');
        const std::string path = folder.file("SubmitList.mdb");
        write_bytes(path, damaged);
        if (convert()[0] == JetOutcome::Converted) {
            expect_contents(path, "tblSubmitList", "sites-2003.tsv");
            EXPECT_EQ(bytes_of(kept_original_name(path, 1)), damaged);
            fs::remove(kept_original_name(path, 1));
        } else {
            ++left_alone;
            EXPECT_EQ(bytes_of(path), damaged);
        }
        EXPECT_EQ(folder.entries(), 1U) << "page " << page;
    }
    EXPECT_GT(left_alone, 0);
}

TEST_F(JetConversion, FileWithoutTheTableIsLeftAlone) {
    const std::string path = bring("referral-2000.mdb");
    EXPECT_EQ(convert()[0], JetOutcome::NoTable);
    EXPECT_EQ(bytes_of(path), bytes_of(jet_sample("referral-2000.mdb")));
    EXPECT_EQ(folder.entries(), 1U);
}

TEST_F(JetConversion, FileOfALaterAccessFormatIsForeign) {
    std::string bytes = bytes_of(jet_sample("sites-2000.mdb"));
    bytes[0x14] = 2;
    write_bytes(folder.file("SubmitList.mdb"), bytes);
    EXPECT_EQ(convert()[0], JetOutcome::NotJet);
}

TEST_F(JetConversion, FullDiskLeavesTheOriginal) {
    const std::string path = bring("sites-2000.mdb");
    {
        const FileSizeLimit limit{20000};
        EXPECT_EQ(convert()[0], JetOutcome::NotWritten);
    }
    EXPECT_EQ(bytes_of(path), bytes_of(jet_sample("sites-2000.mdb")));
    EXPECT_EQ(folder.entries(), 1U);
}

TEST_F(JetConversion, ReadOnlyFolderLeavesTheOriginal) {
    const std::string path = bring("sites-2000.mdb");
    fs::permissions(folder.path(), fs::perms(0555));
    {
        const OrdinaryUser user;
        EXPECT_EQ(convert()[0], JetOutcome::NotWritten);
    }
    EXPECT_EQ(bytes_of(path), bytes_of(jet_sample("sites-2000.mdb")));
}

TEST_F(JetConversion, TwoProgramsAtOnceConvertOnce) {
    const std::string path = bring("sites-2003.mdb");
    JetConversions one{jet_files_in(folder.path()), create_table_file};
    JetConversions other{jet_files_in(folder.path()), create_table_file};
    const JetOutcome first = one.finish()[0];
    const JetOutcome second = other.finish()[0];
    EXPECT_NE(first == JetOutcome::Converted, second == JetOutcome::Converted);
    expect_contents(path, "tblSubmitList", "sites-2003.tsv");
    EXPECT_EQ(folder.entries(), 2U);
}

TEST_F(JetConversion, ProgressNamesTheRowsDoneAndAll) {
    const std::string path = bring("sites-2003.mdb");
    std::vector<JetProgress> heard;
    EXPECT_EQ(convert_jet_file({path, "tblSubmitList"}, create_table_file,
                               [&heard](JetProgress progress) { heard.push_back(progress); }),
              JetOutcome::Converted);
    const auto all = static_cast<std::int64_t>(jet_contents("sites-2003.tsv").rows.size());
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.front().done, 0);
    for (const JetProgress& progress : heard)
        EXPECT_EQ(progress.total, all);
}

TEST_F(JetConversion, ConvertedLibraryUsesTheIndexesOfTheProgram) {
    const std::string path = bring("sites-2000.mdb");
    convert();
    const SqliteConnection database = SqliteConnection::open_existing(path);
    SqliteQuery plan{database,
                     "EXPLAIN QUERY PLAN SELECT * FROM tblSubmitList WHERE url = 'x' COLLATE BINARY"};
    ASSERT_TRUE(plan.step());
    EXPECT_NE(std::get<std::string>(plan.value(3)).find("sites_by_url"), std::string::npos);
}

TEST_F(JetConversion, ProgramFindsEachRowOfAConvertedLibraryByKey) {
    const std::string path = bring("sites-2000.mdb");
    convert();
    SqliteDatabase database;
    for (const auto& row : jet_contents("sites-2000.tsv").rows) {
        const auto found = database.open(path, "select * from tblSubmitList where padkey = " + *row[0]);
        ASSERT_FALSE(found->at_end()) << *row[0];
        EXPECT_EQ(found->text("url"), row[1]);
        EXPECT_EQ(found->text("note"), row[8]);
        EXPECT_EQ(found->text("pad"), row[5]);
    }
}

} // namespace
} // namespace kestrune
