// What loading the permanent records costs over reading their files: the same folder is read by the program
// and by the bare calls of the system, in one run.

#include "library/site_library.h"
#include "platform/disk/disk_files.h"
#include "platform/memory/memory_database.h"
#include "platform/memory/memory_ui.h"
#include "sessions/permanent_store.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

// A form of twenty fields, as a submission site has it.
RecordSession record_number(int number) {
    const std::string site = "http://www.site" + std::to_string(number * 7919LL % 1000003) + ".example";
    RecordSession record{"Form",
                         "Session" + std::to_string(number),
                         site + "/cgi-bin/submit.cgi?step=2",
                         site + "/cgi-bin/add.cgi",
                         "",
                         "Content-Type: application/x-www-form-urlencoded\r\nReferer: " + site + "/\r\n",
                         ""};
    for (int field = 0; field < 20; ++field) {
        record.Postdata += (field == 0 ? "field" : "&field") + std::to_string(field);
        record.Postdata += "=A+short+answer+of+the+author";
    }
    return record;
}

// Program folders with so many records. Made once and used by every benchmark that asks for them.
class RecordFolders {
public:
    RecordFolders() : folder_(fs::temp_directory_path() / "kestrune-bench-XXXXXX") {
        if (::mkdtemp(folder_.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
    }
    ~RecordFolders() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    RecordFolders(const RecordFolders&) = delete;
    RecordFolders& operator=(const RecordFolders&) = delete;
    RecordFolders(RecordFolders&&) = delete;
    RecordFolders& operator=(RecordFolders&&) = delete;

    const std::string& holding(int records) {
        std::string& made = made_[records];
        if (made.empty()) {
            made = folder_ + "/" + std::to_string(records);
            fs::create_directories(made + "/session");
            for (int i = 0; i < records; ++i) {
                const RecordSession record = record_number(i);
                std::ofstream(made + "/session/" + UrlToFileName(record.Url) + ".xml", std::ios::binary)
                    << XmlFileBytes(BuildSessionXml(record));
            }
        }
        return made;
    }

private:
    std::string folder_;
    std::map<int, std::string> made_;
};

// As a window starts.
class StartedWindow {
public:
    explicit StartedWindow(const std::string& folder)
        : record_files_(files_, folder), sites_(database_, files_, folder) {}

    void start() {
        store_.LoadPermanentSession();
        permanent_.sort(0, ListView::Order::ascending);
    }
    void finish() { store_.wait_until_loaded(); }
    [[nodiscard]] bool loaded() const { return store_.loaded(); }
    void handle_one_event() { ui_.run_one_later(); }
    [[nodiscard]] std::size_t listed() const { return permanent_.size(); }

private:
    static std::vector<std::string> record_keys() {
        return {"Type", "Url", "Action", "Postdata", "Header", "Frame"};
    }

    DiskFiles files_;
    MemoryDatabase database_;
    MemoryUserInterface ui_;
    ListView permanent_{"lvwPermanent", record_keys()};
    ListView temporary_{"ListView1", record_keys()};
    ListView pad_{"lvwPAD", {"url", "Status", "Category", "Comment"}};
    ListView non_pad_{"lvwNonPad", {"url", "Status", "Category", "Comment"}};
    StatusBar status_{"StatusBar1"};
    RecordCounters counters_;
    RecordFiles record_files_;
    SiteLibrary sites_;
    PermanentStore store_{
        {permanent_, temporary_, pad_, non_pad_, status_, counters_}, record_files_, sites_, ui_, {}};
};

std::size_t read_bare(const std::string& folder) {
    DIR* const entries = ::opendir(folder.c_str());
    if (entries == nullptr)
        std::abort();
    std::size_t bytes = 0;
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): read into
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread walks one folder.
    while (const dirent* const entry = ::readdir(entries)) {
        if (entry->d_type != DT_REG)
            continue;
        const int fd = ::openat(::dirfd(entries), entry->d_name, O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            std::abort();
        ssize_t got = 0;
        while ((got = ::read(fd, buffer.data(), buffer.size())) > 0)
            bytes += static_cast<std::size_t>(got);
        ::close(fd);
    }
    ::closedir(entries);
    return bytes;
}

void load_bare(benchmark::State& state, RecordFolders& folders, int records) {
    const std::string folder = folders.holding(records) + "/session";
    for (auto _ : state)
        benchmark::DoNotOptimize(read_bare(folder));
}

void load_by_program(benchmark::State& state, RecordFolders& folders, int records) {
    const std::string& folder = folders.holding(records);
    for (auto _ : state) {
        auto window = std::make_unique<StartedWindow>(folder);
        window->start();
        window->finish();
        if (window->listed() != static_cast<std::size_t>(records))
            std::abort();
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

// How long the window is held up before it first handles an event, and by the longest event afterwards.
void load_in_events(benchmark::State& state, RecordFolders& folders, int records) {
    const std::string& folder = folders.holding(records);
    using Clock = std::chrono::steady_clock;
    const auto milliseconds_since = [](Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    };
    double shown = 0;
    double longest = 0;
    for (auto _ : state) {
        StartedWindow window{folder};
        auto start = Clock::now();
        window.start();
        shown += milliseconds_since(start);
        double longest_here = 0;
        while (!window.loaded()) {
            start = Clock::now();
            window.handle_one_event();
            longest_here = std::max(longest_here, milliseconds_since(start));
        }
        longest += longest_here;
    }
    state.counters["shown_ms"] = benchmark::Counter(shown, benchmark::Counter::kAvgIterations);
    state.counters["longest_event_ms"] = benchmark::Counter(longest, benchmark::Counter::kAvgIterations);
}

template <typename Run>
void add(const std::string& name, int records, Run run) {
    static RecordFolders folders;
    benchmark::RegisterBenchmark((name + "/" + std::to_string(records)).c_str(),
                                 [run, records](benchmark::State& state) { run(state, folders, records); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    for (const int records : {10'000, 100'000}) {
        add("records/program", records, load_by_program);
        add("records/bare", records, load_bare);
    }
    for (const int records : {10, 10'000, 100'000})
        add("records/events", records, load_in_events);
    return true;
}();

} // namespace
} // namespace kestrune
