#include "platform/jet/jet_table.h"

#include "platform/jet/jet_text.h"
#include "platform/text.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <mdbtools.h>
#include <optional>
#include <span>
#include <string_view>

namespace kestrune {
namespace {

// Row offsets carry flags in their upper bits.
constexpr int row_offset_mask = 0x1fff;

// The head of a memo's place in its row: length and flags, then where the text lies.
constexpr std::uint32_t long_value_inline = 0x80000000;
constexpr std::uint32_t long_value_single_page = 0x40000000;
constexpr std::uint32_t long_value_length = 0x3fffffff;

// How a page of long values begins: a data page, then what is free on it, then who owns it.
constexpr char data_page = 1;
constexpr std::size_t owner_at = 4;
constexpr std::string_view long_value_owner{"LVAL"};

ColumnType type_of(const MdbColumn& column) {
    switch (column.col_type) {
    case MDB_BOOL:
        return ColumnType::YesNo;
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT:
    case MDB_COMPLEX:
        return ColumnType::WholeNumber;
    case MDB_FLOAT:
    case MDB_DOUBLE:
        return ColumnType::Number;
    case MDB_MONEY:
    case MDB_NUMERIC:
        return ColumnType::ExactNumber;
    case MDB_DATETIME:
        return ColumnType::DateTime;
    case MDB_TEXT:
    case MDB_MEMO:
    case MDB_REPID:
        return ColumnType::Text;
    default:
        return ColumnType::Bytes;
    }
}

template <typename T>
T number_in(std::string_view bytes) {
    if (bytes.size() < sizeof(T))
        throw JetError("a number is cut short");
    T value{};
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

// The double that has the same shortest digits: 0.1, not the 0.100000001 that a single becomes.
double widened(float single) {
    std::array<char, 64> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), single);
    double value = single;
    std::from_chars(digits.data(), written.ptr, value);
    return value;
}

std::vector<std::byte> as_bytes(std::string_view bytes) {
    const auto all = std::as_bytes(std::span{bytes});
    return {all.begin(), all.end()};
}

// How libmdb's settings are taken from the environment is no business of a file.
void ignore_environment() {
    for (const char* const name : {"MDBOPTS", "MDBICONV", "MDB_JET3_CHARSET", "MDBPATH"})
        ::unsetenv(name); // NOLINT(concurrency-mt-unsafe): the reader's process has one thread.
}

template <typename T, auto Free>
struct Release {
    void operator()(T* held) const { Free(held); }
};

} // namespace

class JetTable::Reader {
public:
    Reader(const std::string& path, const std::string& name) {
        ignore_environment();
        file_.reset(::mdb_open(path.c_str(), MDB_NOFLAGS));
        if (!file_)
            throw JetError("no database that libmdb can open");
        code_page_.emplace(file_->f->code_page);
        table_.reset(::mdb_read_table(find_entry(name)));
        if (!table_ || ::mdb_read_columns(table_.get()) == nullptr)
            throw JetError("the table cannot be read");
        ::mdb_rewind_table(table_.get());
        fields_.resize(table_->num_cols);
    }

    [[nodiscard]] std::vector<TableColumn> columns() const {
        std::vector<TableColumn> columns;
        for (unsigned int i = 0; i < table_->num_cols; ++i)
            columns.push_back({column(i).name, type_of(column(i))});
        return columns;
    }
    [[nodiscard]] std::int64_t row_count() const { return table_->num_rows; }

    bool next(std::vector<TableValue>& row) {
        if (::mdb_fetch_row(table_.get()) == 0)
            return false;
        // The row's fields once more, straight from the page: bound values do not tell an empty text from
        // Null.
        int start = 0;
        std::size_t size = 0;
        if (::mdb_find_row(file_.get(), static_cast<int>(table_->cur_row) - 1, &start, &size) != 0 ||
            ::mdb_crack_row(table_.get(), start & row_offset_mask, size, fields_.data()) < 0)
            throw JetError("a row cannot be read");
        row.clear();
        for (unsigned int i = 0; i < table_->num_cols; ++i)
            row.push_back(value(column(i), fields_[i]));
        return true;
    }

private:
    [[nodiscard]] const MdbColumn& column(unsigned int i) const {
        return *static_cast<const MdbColumn*>(g_ptr_array_index(table_->columns, i));
    }

    MdbCatalogEntry* find_entry(const std::string& name) {
        if (::mdb_read_catalog(file_.get(), MDB_TABLE) == nullptr)
            throw JetError("the list of tables cannot be read");
        for (unsigned int i = 0; i < file_->num_catalog; ++i) {
            auto* const entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(file_->catalog, i));
            if (entry->object_type == MDB_TABLE && equal_ignoring_case(entry->object_name, name))
                return entry;
        }
        throw NoSuchJetTable("there is no such table");
    }

    TableValue value(const MdbColumn& column, const MdbField& field) {
        if (column.col_type == MDB_BOOL)
            return std::int64_t{field.is_null ? 0 : 1};
        if (field.is_null != 0 || field.value == nullptr)
            return {};
        const std::string_view stored{static_cast<const char*>(field.value),
                                      static_cast<std::size_t>(field.siz)};
        switch (column.col_type) {
        case MDB_BYTE:
            return std::int64_t{number_in<std::uint8_t>(stored)};
        case MDB_INT:
            return std::int64_t{number_in<std::int16_t>(stored)};
        case MDB_LONGINT:
        case MDB_COMPLEX:
            return std::int64_t{number_in<std::int32_t>(stored)};
        case MDB_MONEY:
            return jet_currency(number_in<std::int64_t>(stored));
        case MDB_FLOAT:
            return widened(number_in<float>(stored));
        case MDB_DOUBLE:
            return number_in<double>(stored);
        case MDB_DATETIME:
            return jet_date(number_in<double>(stored));
        case MDB_TEXT:
            return text(stored);
        case MDB_MEMO:
            return text(long_value(stored));
        case MDB_OLE:
            return as_bytes(long_value(stored));
        case MDB_NUMERIC:
            return owned(
                ::mdb_numeric_to_string(file_.get(), field.start, column.col_scale, column.col_prec));
        case MDB_REPID:
            return owned(::mdb_uuid_to_string(file_->pg_buf, field.start));
        default:
            return as_bytes(stored);
        }
    }

    [[nodiscard]] std::string text(std::string_view stored) const {
        return file_->f->jet_version == MDB_VER_JET3 ? code_page_->read(stored) : jet4_text(stored);
    }

    static std::string owned(char* made) {
        const std::unique_ptr<char, Release<void, ::g_free>> text{made};
        return text ? std::string{text.get()} : std::string{};
    }

    // Texts that are too long for a row lie on pages of their own, a chain of them when one does not do.
    std::string long_value(std::string_view stored) {
        if (stored.size() < MDB_MEMO_OVERHEAD)
            throw JetError("a long value is cut short");
        const auto head = number_in<std::uint32_t>(stored);
        const std::size_t length = head & long_value_length;
        if ((head & long_value_inline) != 0)
            return std::string{stored.substr(MDB_MEMO_OVERHEAD, length)};
        auto place = number_in<std::uint32_t>(stored.substr(4));
        if ((head & long_value_single_page) != 0) {
            const std::string_view whole = piece(place);
            if (whole.size() < length)
                throw JetError("a long value is cut short");
            return std::string{whole.substr(0, length)};
        }
        std::string all;
        while (place != 0 && all.size() < length) {
            const std::string_view part = piece(place);
            if (part.size() <= 4)
                throw JetError("a long value is cut short");
            place = number_in<std::uint32_t>(part);
            all += part.substr(4);
        }
        if (all.size() < length)
            throw JetError("a long value is cut short");
        all.resize(length);
        return all;
    }

    // Valid until the next call.
    std::string_view piece(std::uint32_t place) {
        void* page = nullptr;
        int offset = 0;
        std::size_t size = 0;
        if (::mdb_find_pg_row(file_.get(), static_cast<int>(place), &page, &offset, &size) != 0)
            throw JetError("a long value is not where its row says");
        // libmdb takes any page for one of long values, an empty one included.
        const std::string_view head{static_cast<const char*>(page), owner_at + long_value_owner.size()};
        if (head.front() != data_page || !head.ends_with(long_value_owner))
            throw JetError("a page of long values is none");
        return {static_cast<const char*>(page) + offset, size};
    }

    std::unique_ptr<MdbHandle, Release<MdbHandle, ::mdb_close>> file_;
    std::unique_ptr<MdbTableDef, Release<MdbTableDef, ::mdb_free_tabledef>> table_;
    std::optional<CodePageReader> code_page_;
    std::vector<MdbField> fields_;
};

JetTable::JetTable(const std::string& path, const std::string& table)
    : reader_(std::make_unique<Reader>(path, table)), columns_(reader_->columns()) {}

JetTable::~JetTable() = default;

std::int64_t JetTable::row_count() const { return reader_->row_count(); }

bool JetTable::next(std::vector<TableValue>& row) { return reader_->next(row); }

} // namespace kestrune
