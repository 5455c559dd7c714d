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

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
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

void ConvertAccessFile(benchmark::State& state) {
    if (access_file().empty()) {
        state.SkipWithError("KESTRUNE_ACCESS_FILE names no file");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        const Folder folder;
        fs::copy_file(access_file(), folder.file("SubmitList.mdb"));
        state.ResumeTiming();
        const auto outcomes = JetConversions{jet_files_in(folder.path()), create_table_file}.finish();
        if (outcomes[0] != JetOutcome::Converted)
            state.SkipWithError(describe(outcomes[0]));
    }
}
BENCHMARK(ConvertAccessFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void ExportAccessFileWithMdbtools(benchmark::State& state) {
    if (access_file().empty() || std::system("command -v mdb-export >/dev/null") != 0) { // NOLINT
        state.SkipWithError("no file or no mdb-export");
        return;
    }
    const Folder folder;
    const std::string command =
        "mdb-export '" + access_file() + "' tblSubmitList >'" + folder.file("export.csv") + "'";
    for ([[maybe_unused]] auto _ : state) {
        if (std::system(command.c_str()) != 0) // NOLINT
            state.SkipWithError("mdb-export failed");
    }
}
BENCHMARK(ExportAccessFileWithMdbtools)->Unit(benchmark::kMillisecond)->UseRealTime();

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
