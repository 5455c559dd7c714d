// What looking after the library costs: converting a file made with Access beside the export of the same file
// by the tool of the library that reads it, ranking by hit counts, and importing. At three sizes each, where
// there are files of three sizes, so that the growth can be seen.

#include "library/referral_ranking.h"
#include "library/site_library.h"
#include "platform/disk/disk_files.h"
#include "platform/jet/jet_conversion.h"
#include "platform/sqlite/site_schema.h"
#include "platform/sqlite/sqlite_database.h"
#include "platform/sqlite/table_file.h"
#include "tools/library/library_file.h"
#include "tools/library/site_import.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

class Folder {
public:
    Folder() : path_(fs::temp_directory_path() / "kestrune-bench-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    Folder(Folder&&) = delete;
    Folder& operator=(Folder&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// The environment names it: no Access file belongs to this project.
std::string access_file() {
    const char* const path = std::getenv("KESTRUNE_ACCESS_FILE"); // NOLINT(concurrency-mt-unsafe)
    return path == nullptr ? "" : path;
}

// A Jet 4 file whose largest table has lost most of its pages, to have one file at several sizes. The table's
// map of pages and its number of rows are put right; the pages themselves stay in the file, unused.
class ShortenedAccessFile {
public:
    ShortenedAccessFile(const std::string& path, std::size_t divisor) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
        std::map<std::uint32_t, std::vector<std::size_t>> pages_of_tables;
        for (std::size_t page = 1; page < bytes_.size() / page_size; ++page) {
            if (number<std::uint8_t>(page * page_size) == data_page)
                pages_of_tables[number<std::uint32_t>(page * page_size + 4)].push_back(page);
        }
        pages_of_tables.erase(long_values);
        const auto& [table, pages] =
            *std::max_element(pages_of_tables.begin(), pages_of_tables.end(),
                              [](const auto& a, const auto& b) { return a.second.size() < b.second.size(); });
        for (std::size_t i = 0; i < pages.size(); ++i) {
            if (i < pages.size() / divisor)
                rows_ += rows_on(pages[i]);
            else
                disown(table, pages[i]);
        }
        put(table * page_size + 16, static_cast<std::uint32_t>(rows_));
    }

    [[nodiscard]] std::int64_t rows() const { return rows_; }
    void write(const std::string& path) const { std::ofstream(path, std::ios::binary) << bytes_; }

private:
    static constexpr std::size_t page_size = 4096;
    static constexpr std::uint8_t data_page = 1;
    static constexpr std::uint32_t long_values = 0x4c41564c; // "LVAL"
    static constexpr std::uint16_t deleted = 0x4000;

    template <typename T>
    [[nodiscard]] T number(std::size_t at) const {
        T value{};
        std::memcpy(&value, bytes_.data() + at, sizeof value);
        return value;
    }
    template <typename T>
    void put(std::size_t at, T value) {
        std::memcpy(bytes_.data() + at, &value, sizeof value);
    }
    [[nodiscard]] std::int64_t rows_on(std::size_t page) const {
        std::int64_t rows = 0;
        const std::size_t from = page * page_size;
        for (std::size_t i = 0; i < number<std::uint16_t>(from + 12); ++i)
            rows += (number<std::uint16_t>(from + 14 + 2 * i) & deleted) == 0 ? 1 : 0;
        return rows;
    }
    // Takes a page out of the table's map: a row on another page that names the pages of the map itself.
    void disown(std::size_t table, std::size_t page) {
        const auto place = number<std::uint32_t>(table * page_size + 55);
        const std::size_t map_page = (place >> 8U) * page_size;
        const std::size_t row = number<std::uint16_t>(map_page + 14 + 2 * (place & 0xffU)) & 0x1fffU;
        constexpr std::size_t pages_per_map = (page_size - 4) * 8;
        if (number<std::uint8_t>(map_page + row) != 1)
            throw std::runtime_error("the table is too small to be shortened");
        const auto map = number<std::uint32_t>(map_page + row + 1 + 4 * (page / pages_per_map));
        const std::size_t bit = page % pages_per_map;
        const std::size_t at = map * page_size + 4 + bit / 8;
        put(at, static_cast<std::uint8_t>(number<std::uint8_t>(at) & ~(1U << (bit % 8))));
    }

    std::string bytes_;
    std::int64_t rows_ = 0;
};

// Processor time of the processes that this one has waited for, in seconds.
double childrens_time() {
    rusage used{};
    ::getrusage(RUSAGE_CHILDREN, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// Both work in other processes, so their processor time is counted here. `work` gets a folder with the file
// as SubmitList.mdb, and returns what went wrong.
void measure_access_file(benchmark::State& state, const std::function<std::string(const Folder&)>& work) {
    if (access_file().empty()) {
        state.SkipWithError("KESTRUNE_ACCESS_FILE names no file");
        return;
    }
    const ShortenedAccessFile file{access_file(), static_cast<std::size_t>(state.range(0))};
    double processor = 0;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const Folder folder;
        file.write(folder.file("SubmitList.mdb"));
        const double before = childrens_time();
        state.ResumeTiming();
        if (const std::string failure = work(folder); !failure.empty())
            state.SkipWithError(failure.c_str());
        processor += childrens_time() - before;
    }
    state.counters["rows"] = static_cast<double>(file.rows());
    state.counters["processor_ms"] = benchmark::Counter(processor * 1000, benchmark::Counter::kAvgIterations);
}

void ConvertAccessFile(benchmark::State& state) {
    measure_access_file(state, [](const Folder& folder) -> std::string {
        const auto outcomes = JetConversions{jet_files_in(folder.path()), create_table_file}.finish();
        return outcomes[0] == JetOutcome::Converted ? "" : describe(outcomes[0]);
    });
}

void ExportAccessFileWithMdbtools(benchmark::State& state) {
    measure_access_file(state, [](const Folder& folder) -> std::string {
        const std::string command = "mdb-export '" + folder.file("SubmitList.mdb") + "' tblSubmitList >'" +
                                    folder.file("export.csv") + "'";
        return std::system(command.c_str()) == 0 ? "" : "mdb-export is not there or failed"; // NOLINT
    });
}

BENCHMARK(ConvertAccessFile)->Arg(16)->Arg(4)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ExportAccessFileWithMdbtools)
    ->Arg(16)
    ->Arg(4)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

std::string address(std::int64_t i) { return "http://www.site" + std::to_string(i) + ".example"; }

void create_library(const Folder& folder, std::int64_t size) {
    std::vector<SiteRow> rows(static_cast<std::size_t>(size));
    for (std::int64_t i = 0; i < size; ++i) {
        SiteRow& row = rows[static_cast<std::size_t>(i)];
        row.padkey = static_cast<std::int32_t>(i + 1);
        // A prime step: addresses come in no order of the keys.
        row.url = address(i * 7919 % size) + "/";
        row.description = "Site " + std::to_string(i);
        row.softtype = "1=general";
        row.pad = "PAD";
    }
    create_site_library(folder.file("SubmitList.mdb"), rows);
}

void create_hits(const Folder& folder, std::int64_t size) {
    const auto table = create_table_file(folder.file("referral2.mdb"), "referral2",
                                         {{"url", ColumnType::Text}, {"hitcount", ColumnType::WholeNumber}});
    for (std::int64_t i = 0; i < size; ++i)
        table->add({address(i), i % 1000});
    table->finish();
}

void Rank(benchmark::State& state) {
    const Folder folder;
    create_library(folder, state.range(0));
    create_hits(folder, state.range(0));
    SqliteDatabase database;
    const DiskFiles files;
    const ReferralRanking ranking{database, files, folder.path()};
    for ([[maybe_unused]] auto _ : state) {
        const RankingSummary summary = ranking.RecomputeReferralRanks([](std::int64_t) { return true; });
        if (summary.end != RankingSummary::End::Finished)
            state.SkipWithError(summary.failure.c_str());
    }
    state.counters["us_per_site"] =
        benchmark::Counter(static_cast<double>(state.range(0)) / 1e6,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Rank)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->UseRealTime();

void Import(benchmark::State& state) {
    std::string csv = "url,description,softtype,pad,note\r\n";
    for (std::int64_t i = 0; i < state.range(0); ++i)
        csv += address(i) + ",\"Site, number " + std::to_string(i) + "\",1=general,PAD,none\r\n";
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const Folder folder;
        create_site_library(folder.file("SubmitList.mdb"), {});
        state.ResumeTiming();
        LibraryFile library{folder.path()};
        if (import_sites(library, csv, {}).added != state.range(0))
            state.SkipWithError("not every site was added");
    }
}
BENCHMARK(Import)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace kestrune
