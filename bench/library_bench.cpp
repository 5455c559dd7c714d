// What the site library costs over the database itself: each operation of the program stands beside the same
// query made with SQLite's C interface alone, on the same file and index, opening and closing included on
// both sides.

#include "library/playback_queue.h"
#include "library/site_library.h"
#include "platform/disk/disk_files.h"
#include "platform/list_view.h"
#include "platform/sqlite/site_schema.h"
#include "platform/sqlite/sqlite_database.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {
namespace {

// Mixed: a third of the sites is still to be submitted to. Fresh: all of them are.
enum class Kind { mixed, fresh };

std::vector<SiteRow> make_rows(int size, Kind kind) {
    const std::array<const char*, 3> statuses{"N", "Y", "P"};
    const std::array<const char*, 6> categories{"1=general",  "2=game",     "3=developer",
                                                "4=business", "5=freeware", "9=special"};
    std::vector<SiteRow> rows(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        SiteRow& row = rows[static_cast<std::size_t>(i)];
        row.padkey = i + 1;
        row.url = "http://www.site" + std::to_string(i) + ".example/submit/";
        // A prime step: descriptions come in no order of the keys.
        row.description = "Download site " + std::to_string(i * 7919LL % 1000003);
        row.status = kind == Kind::fresh ? "N" : statuses[static_cast<std::size_t>(i % 3)];
        row.pad = i / 3 % 2 == 0 ? "PAD" : "NO";
        row.softtype = categories[static_cast<std::size_t>(i / 6 % 6)];
        row.referral = i * 31LL % 1000;
        row.linkfound = i % 5;
    }
    return rows;
}

// Libraries are made once and used by every benchmark that asks for them.
class Libraries {
public:
    Libraries() : folder_(std::filesystem::temp_directory_path() / "kestrune-bench-XXXXXX") {
        if (::mkdtemp(folder_.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
    }
    ~Libraries() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Libraries(const Libraries&) = delete;
    Libraries& operator=(const Libraries&) = delete;
    Libraries(Libraries&&) = delete;
    Libraries& operator=(Libraries&&) = delete;

    std::string name(int size, Kind kind) {
        std::string name = std::to_string(size) + (kind == Kind::fresh ? "-fresh.mdb" : "-mixed.mdb");
        if (!std::filesystem::exists(folder_ + "/" + name))
            create_site_library(folder_ + "/" + name, make_rows(size, kind));
        return name;
    }
    [[nodiscard]] const std::string& folder() const { return folder_; }

private:
    std::string folder_;
};

Libraries& libraries() {
    static Libraries made;
    return made;
}

struct Program {
    SqliteDatabase database;
    DiskFiles files;
    SiteLibrary library{database, files, libraries().folder()};
};

// The menus with PAD support and the first `categories` categories checked.
struct Menus {
    std::array<MenuItem, 6> categories{MenuItem{"1", ""}, MenuItem{"2", ""}, MenuItem{"3", ""},
                                       MenuItem{"4", ""}, MenuItem{"5", ""}, MenuItem{"6", ""}};
    MenuItem with{"mnuWithPAD", "", true};
    MenuItem without{"mnuNoPAD", ""};
    QueueSwitches switches{with,          without,       categories[0], categories[1],
                           categories[2], categories[3], categories[4], categories[5]};
    explicit Menus(std::int64_t checked) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(checked); ++i)
            categories.at(i).Checked = true;
    }
};

const std::array<const char*, 3> first_labels{"1=general", "2=game", "3=developer"};

// SQLite alone.
class Bare {
public:
    Bare(const std::string& name, const std::string& sql) {
        sqlite3* database = nullptr;
        const std::string path = libraries().folder() + "/" + name;
        sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        database_.reset(database);
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(database));
        statement_.reset(statement);
    }
    void bind(int index, const char* text) { sqlite3_bind_text(get(), index, text, -1, SQLITE_STATIC); }
    [[nodiscard]] bool step() { return sqlite3_step(get()) == SQLITE_ROW; }
    [[nodiscard]] sqlite3_stmt* get() const { return statement_.get(); }
    [[nodiscard]] std::string text(int column) const {
        const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(get(), column));
        return {text, static_cast<std::size_t>(sqlite3_column_bytes(get(), column))};
    }

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> database_{nullptr, sqlite3_close};
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement_{nullptr, sqlite3_finalize};
};

const std::string queued = " WHERE status = 'N' COLLATE NOCASE AND pad = 'PAD' COLLATE NOCASE";
const std::string ranked =
    " ORDER BY referral DESC, linkfound DESC, softtype COLLATE NOCASE, description COLLATE NOCASE";

std::string bare_pick(std::int64_t categories) {
    const std::string select =
        "SELECT padkey, url, description, referral, linkfound, softtype FROM tblSubmitList";
    if (categories == 0)
        return select + " INDEXED BY queue_with_pad" + queued + ranked + " LIMIT 1";
    std::string sql;
    for (std::int64_t i = 1; i <= categories; ++i)
        sql += (i == 1 ? "" : " UNION ALL ") + select + " INDEXED BY category_queue_with_pad" + queued +
               " AND softtype = ?" + std::to_string(i) + " COLLATE NOCASE";
    return sql + ranked + " LIMIT 1";
}

std::string bare_count(std::int64_t categories) {
    std::string sql = "SELECT count(*) FROM tblSubmitList INDEXED BY count_with_pad" + queued;
    for (std::int64_t i = 1; i <= categories; ++i)
        sql += (i == 1 ? " AND softtype COLLATE NOCASE IN (?" : ", ?") + std::to_string(i);
    return sql + (categories == 0 ? "" : ")");
}

void bind_categories(Bare& query, std::int64_t categories) {
    for (std::int64_t i = 0; i < categories; ++i)
        query.bind(static_cast<int>(i) + 1, first_labels.at(static_cast<std::size_t>(i)));
}

std::string library_of(const benchmark::State& state) {
    return libraries().name(static_cast<int>(state.range(0)), static_cast<Kind>(state.range(2)));
}

// The two statements of a press of "Submit" as the program composes them.
std::string pick_statement(const QueueSwitches& switches) {
    return "select * from tblSubmitList where status = 'N' and " + QueueFilter(switches) +
           " order by referral desc, linkfound desc, softtype, description";
}

std::string count_statement(const QueueSwitches& switches) {
    return "select count(*) as cnt from tblSubmitList where status = 'N' and " + QueueFilter(switches);
}

void pick_program(benchmark::State& state) {
    Program program;
    const Menus menus(state.range(1));
    const std::string name = library_of(state);
    for (auto _ : state) {
        const auto row = program.database.open(program.library.path(name), pick_statement(menus.switches));
        benchmark::DoNotOptimize(
            NextSite{site_key(*row), required_text(*row, "url"), required_text(*row, "description")});
    }
}

void pick_bare(benchmark::State& state) {
    const std::string name = library_of(state);
    for (auto _ : state) {
        Bare query{name, bare_pick(state.range(1))};
        bind_categories(query, state.range(1));
        if (!query.step())
            state.SkipWithError("no site");
        benchmark::DoNotOptimize(NextSite{sqlite3_column_int(query.get(), 0), query.text(1), query.text(2)});
    }
}

void count_program(benchmark::State& state) {
    Program program;
    const Menus menus(state.range(1));
    const std::string name = library_of(state);
    std::int64_t counted = 0;
    for (auto _ : state) {
        const auto row = program.database.open(program.library.path(name), count_statement(menus.switches));
        counted = row->number("cnt").value();
        benchmark::DoNotOptimize(counted);
    }
    state.counters["sites"] = static_cast<double>(counted);
}

void count_bare(benchmark::State& state) {
    const std::string name = library_of(state);
    std::int64_t counted = 0;
    for (auto _ : state) {
        Bare query{name, bare_count(state.range(1))};
        bind_categories(query, state.range(1));
        if (!query.step())
            state.SkipWithError("no count");
        counted = sqlite3_column_int64(query.get(), 0);
        benchmark::DoNotOptimize(counted);
    }
    state.counters["sites"] = static_cast<double>(counted);
}

// Arguments: rows of the library, categories checked, kind of library.
void sizes(benchmark::internal::Benchmark* benchmark) {
    for (const int size : {10'000, 100'000, 1'000'000}) {
        for (const int categories : {0, 1, 3})
            benchmark->Args({size, categories, static_cast<int>(Kind::mixed)});
    }
    benchmark->Args({1'000'000, 1, static_cast<int>(Kind::fresh)});
    benchmark->Args({1'000'000, 0, static_cast<int>(Kind::fresh)});
    benchmark->ArgNames({"rows", "categories", "fresh"})->Unit(benchmark::kMicrosecond);
}

BENCHMARK(pick_program)->Apply(sizes);
BENCHMARK(pick_bare)->Apply(sizes);
BENCHMARK(count_program)->Apply(sizes);
BENCHMARK(count_bare)->Apply(sizes);

// Twice as many rows as the list shows: the other half has no PAD support.
constexpr int listed = 100'000;

std::string list_library() { return libraries().name(2 * listed, Kind::mixed); }

void list_fill_program(benchmark::State& state) {
    Program program;
    const std::string name = list_library();
    ListView list{"lvwPAD", {"url", "Status", "Category", "Comment"}};
    if (state.range(0) != 0)
        list.sort(0, ListView::Order::descending);
    int counter = 0;
    for (auto _ : state)
        program.library.LoadSiteList(name, list, true, counter);
    state.counters["sites"] = counter;
}

// Every text of every row is looked at, none is kept.
void list_walk_bare(benchmark::State& state) {
    const std::string name = list_library();
    for (auto _ : state) {
        Bare query{name,
                   "SELECT padkey, description, url, status, softtype, note FROM tblSubmitList INDEXED BY "
                   "list_with_pad WHERE pad = 'PAD' COLLATE NOCASE ORDER BY description COLLATE NOCASE"};
        while (query.step()) {
            benchmark::DoNotOptimize(sqlite3_column_int64(query.get(), 0));
            for (int column = 1; column < 6; ++column)
                benchmark::DoNotOptimize(sqlite3_column_text(query.get(), column));
        }
    }
}

void list_sort(benchmark::State& state) {
    Program program;
    ListView list{"lvwPAD", {"url", "Status", "Category", "Comment"}};
    int counter = 0;
    program.library.LoadSiteList(list_library(), list, true, counter);
    auto order = ListView::Order::ascending;
    for (auto _ : state) {
        order =
            order == ListView::Order::ascending ? ListView::Order::descending : ListView::Order::ascending;
        list.sort(static_cast<int>(state.range(0)), order);
    }
    state.counters["sites"] = counter;
}

BENCHMARK(list_fill_program)->ArgName("sorted")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(list_walk_bare)->Unit(benchmark::kMillisecond);
BENCHMARK(list_sort)->ArgName("column")->Arg(0)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

void mark_program(benchmark::State& state) {
    Program program;
    const std::string name = libraries().name(static_cast<int>(state.range(0)), Kind::mixed);
    int site = 0;
    for (auto _ : state) {
        site = (site + 1) % 1000;
        const std::string url = "http://www.site" + std::to_string(site) + ".example/submit/";
        const bool marked = program.library.UpdateSubmitStatus(name, url, site % 2 == 0 ? "Y" : "N", "note");
        if (!marked)
            state.SkipWithError("no such site");
    }
}

// Last: it changes the libraries.
BENCHMARK(mark_program)->ArgName("rows")->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrune
