#include "platform/memory/memory_database.h"

#include "platform/database_value.h"
#include "platform/statement.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace kestrune {
namespace {

using Row = MemoryTable::Row;

std::string folded(std::string text) {
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

// Null sorts first, then numbers, then texts.
int compare(const DatabaseValue& left, const DatabaseValue& right, bool ignoring_case) {
    if (left.index() != right.index())
        return left.index() < right.index() ? -1 : 1;
    if (const auto* const number = std::get_if<std::int64_t>(&left)) {
        const auto other = std::get<std::int64_t>(right);
        return *number == other ? 0 : (*number < other ? -1 : 1);
    }
    if (const auto* const text = std::get_if<std::string>(&left)) {
        const auto& other = std::get<std::string>(right);
        return ignoring_case ? folded(*text).compare(folded(other)) : text->compare(other);
    }
    return 0;
}

bool same_text(const DatabaseValue& value, std::string_view text) {
    return compare(value, std::string(text), true) == 0;
}

// Finds the rows of one statement, in order.
class Selection {
public:
    explicit Selection(MemoryTable& table) : table_(table) {}

    void keep(const std::function<bool(const Row&)>& wanted) {
        if (!started_) {
            for (Row& row : table_.rows)
                found_.push_back(&row);
            started_ = true;
        }
        std::erase_if(found_, [&wanted](const Row* row) { return !wanted(*row); });
    }

    void order_by(std::string_view column, bool descending = false, bool ignoring_case = true) {
        const std::size_t at = table_.column(column);
        std::stable_sort(found_.begin(), found_.end(), [=](const Row* left, const Row* right) {
            const int order = compare(left->values[at], right->values[at], ignoring_case);
            return descending ? order > 0 : order < 0;
        });
    }

    void first(const std::function<bool(const Row&)>& preferred) {
        std::stable_partition(found_.begin(), found_.end(),
                              [&preferred](const Row* row) { return preferred(*row); });
    }

    void filter(const SiteFilter& filter) {
        const std::size_t pad = table_.column("pad");
        keep([=](const Row& row) {
            const DatabaseValue& value = row.values[pad];
            return value != DatabaseValue{} && same_text(value, "PAD") == filter.pad;
        });
        if (filter.categories.empty())
            return;
        const std::size_t softtype = table_.column("softtype");
        keep([&](const Row& row) {
            return std::any_of(
                filter.categories.begin(), filter.categories.end(),
                [&](const std::string& category) { return same_text(row.values[softtype], category); });
        });
    }

    void queued(const SiteFilter& wanted) {
        const std::size_t status = table_.column("status");
        filter(wanted);
        keep([=](const Row& row) { return same_text(row.values[status], "N"); });
    }

    [[nodiscard]] std::vector<std::int64_t> ids() const {
        std::vector<std::int64_t> ids;
        for (const Row* const row : found_)
            ids.push_back(row->id);
        return ids;
    }

private:
    MemoryTable& table_;
    std::vector<const Row*> found_;
    bool started_ = false;
};

struct Select {
    Selection& rows;
    MemoryTable& table;

    void operator()(const SiteByKey& by_key) const {
        const std::size_t padkey = table.column("padkey");
        rows.keep(
            [&](const Row& row) { return row.values[padkey] == DatabaseValue{std::int64_t{by_key.padkey}}; });
    }
    void operator()(const SitesByUrl& by_url) const {
        const std::size_t url = table.column("url");
        rows.keep([&](const Row& row) { return row.values[url] == DatabaseValue{by_url.url}; });
    }
    void operator()(const SiteList& list) const {
        rows.filter(list.filter);
        rows.order_by("description");
    }
    void operator()(const SiteQueue& queue) const {
        rows.queued(queue.filter);
        rows.order_by("description");
        rows.order_by("softtype");
        rows.order_by("linkfound", true);
        rows.order_by("referral", true);
    }
    void operator()(const SiteQueueCount& count) const { rows.queued(count.filter); }
    void operator()(const AllSites& /*all*/) const {
        rows.keep([](const Row&) { return true; });
        rows.order_by("url", false, false);
    }
    void operator()(const ReferralsByUrl& by_url) const {
        const std::size_t url = table.column("url");
        rows.keep([&](const Row& row) {
            return same_text(row.values[url], by_url.url) || same_text(row.values[url], by_url.alternative);
        });
        rows.first([&](const Row& row) { return same_text(row.values[url], by_url.url); });
    }
};

class MemoryRecordset final : public Recordset {
public:
    MemoryRecordset(MemoryTable& table, DatabaseFaults& faults, std::vector<std::int64_t> ids)
        : table_(table), faults_(faults), ids_(std::move(ids)) {}

    [[nodiscard]] bool at_end() const override { return position_ >= ids_.size(); }

    void move_next() override {
        faults_.count();
        pending_.clear();
        deleted_ = false;
        if (!at_end())
            ++position_;
        while (!at_end() && table_.find(ids_[position_]) == nullptr)
            ++position_;
    }

    [[nodiscard]] std::optional<std::string> text(std::string_view column) const override {
        return as_text(cell(column));
    }
    [[nodiscard]] std::optional<std::int64_t> number(std::string_view column) const override {
        return as_number(cell(column));
    }

    void set(std::string_view column, DatabaseValue value) override {
        need_row();
        pending_.emplace_back(table_.column(column), std::move(value));
    }

    void update() override {
        Row& row = current();
        if (pending_.empty())
            return;
        write();
        for (const auto& [column, value] : pending_) {
            const auto required =
                std::find(table_.required.begin(), table_.required.end(), table_.columns[column]);
            if (value == DatabaseValue{} && required != table_.required.end())
                throw DatabaseError("a value is required: " + *required);
        }
        for (auto& [column, value] : std::exchange(pending_, {}))
            row.values[column] = std::move(value);
    }

    void delete_current() override {
        const std::int64_t id = current().id;
        write();
        std::erase_if(table_.rows, [id](const Row& row) { return row.id == id; });
        pending_.clear();
        deleted_ = true;
    }

private:
    [[nodiscard]] Row* row() const { return at_end() || deleted_ ? nullptr : table_.find(ids_[position_]); }
    void need_row() const {
        if (row() == nullptr)
            throw DatabaseError("there is no current row");
    }
    [[nodiscard]] Row& current() const {
        need_row();
        return *row();
    }
    [[nodiscard]] const DatabaseValue& cell(std::string_view column) const {
        return current().values[table_.column(column)];
    }
    void write() {
        faults_.count();
        if (faults_.read_only)
            throw DatabaseError("attempt to write a read-only database");
    }

    MemoryTable& table_;
    DatabaseFaults& faults_;
    std::vector<std::int64_t> ids_;
    std::size_t position_ = 0;
    bool deleted_ = false;
    std::vector<std::pair<std::size_t, DatabaseValue>> pending_;
};

class CountRecordset final : public Recordset {
public:
    explicit CountRecordset(std::size_t count) : count_(static_cast<std::int64_t>(count)) {}

    [[nodiscard]] bool at_end() const override { return at_end_; }
    void move_next() override { at_end_ = true; }
    [[nodiscard]] std::optional<std::string> text(std::string_view column) const override {
        return as_text(cell(column));
    }
    [[nodiscard]] std::optional<std::int64_t> number(std::string_view column) const override {
        return as_number(cell(column));
    }
    void set(std::string_view /*column*/, DatabaseValue /*value*/) override { refuse(); }
    void update() override { refuse(); }
    void delete_current() override { refuse(); }

private:
    [[noreturn]] static void refuse() { throw DatabaseError("a count cannot be changed"); }
    [[nodiscard]] DatabaseValue cell(std::string_view column) const {
        if (at_end_ || !same_column(column, "cnt"))
            throw DatabaseError("no such column: " + std::string(column));
        return count_;
    }

    std::int64_t count_;
    bool at_end_ = false;
};

DatabaseValue stored(const std::optional<std::string>& text) {
    return text ? DatabaseValue{*text} : DatabaseValue{};
}
DatabaseValue stored(std::optional<std::int64_t> number) {
    return number ? DatabaseValue{*number} : DatabaseValue{};
}

} // namespace

MemoryTable::Row* MemoryTable::find(std::int64_t id) {
    const auto found = std::lower_bound(rows.begin(), rows.end(), id,
                                        [](const Row& row, std::int64_t wanted) { return row.id < wanted; });
    return found == rows.end() || found->id != id ? nullptr : &*found;
}

std::size_t MemoryTable::column(std::string_view column) const {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [column](const std::string& name) { return same_column(name, column); });
    if (found == columns.end())
        throw DatabaseError("no such column: " + std::string(column));
    return static_cast<std::size_t>(found - columns.begin());
}

void DatabaseFaults::count() {
    if (++operations == fail_at)
        throw DatabaseError("operation " + std::to_string(operations) + " fails");
}

std::unique_ptr<Recordset> MemoryDatabase::open(const std::string& path, std::string_view statement) {
    const Statement known = parse_statement(statement);
    faults.count();
    if (faults.locked)
        throw DatabaseError("database is locked");
    const bool referrals = std::holds_alternative<ReferralsByUrl>(known);
    MemoryTable* const found = table(path, referrals ? "referral2" : "tblSubmitList");
    if (found == nullptr)
        throw DatabaseError("no such database or table: " + path);
    Selection rows{*found};
    std::visit(Select{rows, *found}, known);
    if (std::holds_alternative<SiteQueueCount>(known))
        return std::make_unique<CountRecordset>(rows.ids().size());
    return std::make_unique<MemoryRecordset>(*found, faults, rows.ids());
}

void MemoryDatabase::copy(const std::string& from, const std::string& to) {
    faults.count();
    if (faults.locked)
        throw DatabaseError("database is locked");
    const auto source = files_.find(from);
    if (source == files_.end())
        throw DatabaseError("no such database: " + from);
    std::vector<std::unique_ptr<MemoryTable>> tables;
    for (const auto& table : source->second)
        tables.push_back(std::make_unique<MemoryTable>(*table));
    files_[to] = std::move(tables);
}

MemoryTable& MemoryDatabase::create_library(const std::string& path) {
    MemoryTable& library = create_table(
        path, "tblSubmitList",
        {"padkey", "url", "description", "status", "softtype", "pad", "referral", "linkfound", "note"});
    library.required = {"url", "description", "status"};
    return library;
}

MemoryTable& MemoryDatabase::create_table(const std::string& path, std::string name,
                                          std::vector<std::string> columns) {
    auto& tables = files_[path];
    tables.push_back(std::make_unique<MemoryTable>());
    tables.back()->name = std::move(name);
    tables.back()->columns = std::move(columns);
    return *tables.back();
}

MemoryTable* MemoryDatabase::table(const std::string& path, std::string_view name) {
    const auto file = files_.find(path);
    if (file == files_.end())
        return nullptr;
    for (const auto& table : file->second) {
        if (same_column(table->name, name))
            return table.get();
    }
    return nullptr;
}

void MemoryDatabase::add_site(MemoryTable& table, const SiteRow& row) {
    std::vector<DatabaseValue> values(table.columns.size());
    const auto put = [&](std::string_view column, DatabaseValue value) {
        const auto place =
            std::find_if(table.columns.begin(), table.columns.end(),
                         [column](const std::string& name) { return same_column(name, column); });
        if (place != table.columns.end())
            values[static_cast<std::size_t>(place - table.columns.begin())] = std::move(value);
    };
    put("padkey", std::int64_t{row.padkey});
    put("url", stored(row.url));
    put("description", stored(row.description));
    put("status", stored(row.status));
    put("softtype", stored(row.softtype));
    put("pad", stored(row.pad));
    put("referral", stored(row.referral));
    put("linkfound", stored(row.linkfound));
    put("note", stored(row.note));
    table.add(std::move(values));
}

std::vector<SiteRow> MemoryDatabase::sites(const MemoryTable& table) {
    std::vector<SiteRow> sites;
    for (const Row& row : table.rows) {
        const auto text = [&](std::string_view column) { return as_text(row.values[table.column(column)]); };
        const auto number = [&](std::string_view column) {
            return as_number(row.values[table.column(column)]);
        };
        sites.push_back({static_cast<std::int32_t>(number("padkey").value_or(0)), text("url"),
                         text("description"), text("status"), text("softtype"), text("pad"),
                         number("referral"), number("linkfound"), text("note")});
    }
    return sites;
}

} // namespace kestrune
