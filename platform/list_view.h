#pragma once

#include "platform/control.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrune {

// One entry of a list view. The texts in `SubItems` stand under the list's sub-item keys, in their order.
struct ListItem {
    std::string Key;
    std::string Text;
    std::vector<std::string> SubItems;
};

// What a view of a list is told. Positions are 0-based, in the order shown. Every change is announced before
// and after it is made; between the two calls the list must not be read.
class ListViewObserver {
public:
    ListViewObserver() = default;
    virtual ~ListViewObserver() = default;
    ListViewObserver(const ListViewObserver&) = delete;
    ListViewObserver& operator=(const ListViewObserver&) = delete;
    ListViewObserver(ListViewObserver&&) = delete;
    ListViewObserver& operator=(ListViewObserver&&) = delete;

    virtual void before_insert(std::size_t position) = 0;
    virtual void after_insert() = 0;
    virtual void before_remove(std::size_t position) = 0;
    virtual void after_remove() = 0;
    virtual void item_changed(std::size_t position) = 0;
    // Everything may have changed: entries, order, columns.
    virtual void before_reset() = 0;
    virtual void after_reset() = 0;
    virtual void selection_changed() = 0;
};

// A list view in report style: columns, entries with unique keys, at most one selected entry, sorting by a
// column. Text compares without regard to letter case. Entries keep their address until they are removed.
class ListView : public Control {
public:
    struct Column {
        std::string Title;
        int Width = 0; // twips, as designed; what the user drags it to belongs to the view
    };
    enum class Order : std::uint8_t { ascending, descending };

    // sub_item_keys name the sub-items, in the order in which entries hold them.
    ListView(std::string name, std::vector<std::string> sub_item_keys);

    void set_columns(std::vector<Column> columns);
    [[nodiscard]] const std::vector<Column>& columns() const { return columns_; }

    [[nodiscard]] std::size_t size() const { return order_.size(); }
    // position must be below size().
    [[nodiscard]] const ListItem& item(std::size_t position) const { return *order_[position]; }
    // Null when no entry has the key. Keys compare exactly.
    [[nodiscard]] const ListItem* find(std::string_view key) const;

    // Adds an entry at the end, or at its sorted place while sorting is on. False, and nothing is added, when
    // the key is taken. Missing sub-items read as "".
    bool add(ListItem item);
    bool remove(std::string_view key);
    void clear();
    // The following three do nothing and return false when no entry has the key (or no sub-item has that
    // key). A changed entry keeps its place until the list is sorted again.
    bool set_text(std::string_view key, std::string text);
    bool set_sub_item(std::string_view key, std::string_view sub_item_key, std::string text);
    // Sets one sub-item of every entry.
    bool set_all_sub_items(std::string_view sub_item_key, std::string_view text);

    // "" for a sub-item that the list does not have.
    [[nodiscard]] std::string_view sub_item(const ListItem& item, std::string_view sub_item_key) const;

    // The selected entry, or null. Removing the selected entry selects nothing.
    [[nodiscard]] const ListItem* selected() const { return selected_; }
    bool select(std::string_view key);
    void select_none();

    // Sorts by the column (0-based; 0 is the entry's text) and keeps sorting from now on. Entries that
    // compare equal keep the order they had.
    void sort(int column, Order order);
    [[nodiscard]] bool Sorted() const { return sorted_; }
    [[nodiscard]] int SortKey() const { return sort_key_; }
    [[nodiscard]] Order SortOrder() const { return sort_order_; }

    // The order from which the first flip starts; does not sort.
    void set_sort_order(Order order) { sort_order_ = order; }

    // What a click on a column header does; headers are numbered from 1. Null where clicking does nothing.
    std::function<void(int header)> ColumnClick;

    void observe(ListViewObserver* observer) { observer_ = observer; }

    // While one lives, entries are added at the end; they are sorted and shown when it goes.
    class Bulk {
    public:
        explicit Bulk(ListView& list);
        ~Bulk();
        Bulk(const Bulk&) = delete;
        Bulk& operator=(const Bulk&) = delete;
        Bulk(Bulk&&) = delete;
        Bulk& operator=(Bulk&&) = delete;

    private:
        ListView& list_;
    };

private:
    using Row = const ListItem*;

    [[nodiscard]] std::optional<std::size_t> column_of(std::string_view sub_item_key) const;
    [[nodiscard]] const std::string& text_in_column(const ListItem& item) const;
    [[nodiscard]] bool before(const ListItem& left, const ListItem& right) const;
    [[nodiscard]] std::size_t position_of(const ListItem* item) const;
    [[nodiscard]] std::size_t place_for(const ListItem& item) const;
    void sort_now();
    ListItem* find_mutable(std::string_view key);
    void announce_change(const ListItem* item);

    std::vector<std::string> sub_item_keys_;
    std::vector<Column> columns_;
    std::unordered_map<std::string_view, ListItem*> by_key_; // views into the entries' own keys
    std::deque<ListItem> store_;
    std::vector<ListItem*> free_;
    std::vector<Row> order_;
    const ListItem* selected_ = nullptr;
    bool sorted_ = false;
    int sort_key_ = 0;
    Order sort_order_ = Order::ascending;
    ListViewObserver* observer_ = nullptr;
    int bulk_ = 0;
};

} // namespace kestrune
