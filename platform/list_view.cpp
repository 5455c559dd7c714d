#include "platform/list_view.h"

#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace kestrune {

ListView::ListView(std::string name, std::vector<std::string> sub_item_keys)
    : Control(std::move(name)), sub_item_keys_(std::move(sub_item_keys)) {}

void ListView::set_columns(std::vector<Column> columns) {
    const Bulk reset{*this};
    columns_ = std::move(columns);
}

const ListItem* ListView::find(std::string_view key) const {
    const auto found = by_key_.find(key);
    return found == by_key_.end() ? nullptr : found->second;
}

ListItem* ListView::find_mutable(std::string_view key) {
    const auto found = by_key_.find(key);
    return found == by_key_.end() ? nullptr : found->second;
}

bool ListView::add(ListItem item) {
    if (by_key_.contains(item.Key))
        return false;
    item.SubItems.resize(sub_item_keys_.size());
    ListItem* kept = nullptr;
    if (free_.empty()) {
        kept = &store_.emplace_back(std::move(item));
    } else {
        kept = free_.back();
        free_.pop_back();
        *kept = std::move(item);
    }
    by_key_.emplace(kept->Key, kept);
    if (bulk_ > 0) {
        order_.push_back(kept);
        return true;
    }
    const std::size_t place = place_for(*kept);
    if (observer_ != nullptr)
        observer_->before_insert(place);
    order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(place), kept);
    if (observer_ != nullptr)
        observer_->after_insert();
    return true;
}

bool ListView::remove(std::string_view key) {
    ListItem* const item = find_mutable(key);
    if (item == nullptr)
        return false;
    const bool was_selected = selected_ == item;
    const std::size_t position = position_of(item);
    const bool announce = bulk_ == 0 && observer_ != nullptr;
    if (announce)
        observer_->before_remove(position);
    if (was_selected)
        selected_ = nullptr;
    by_key_.erase(item->Key);
    order_.erase(order_.begin() + static_cast<std::ptrdiff_t>(position));
    *item = ListItem{};
    free_.push_back(item);
    if (announce) {
        observer_->after_remove();
        if (was_selected)
            observer_->selection_changed();
    }
    return true;
}

void ListView::clear() {
    const Bulk reset{*this};
    selected_ = nullptr;
    by_key_.clear();
    order_.clear();
    free_.clear();
    store_.clear();
}

bool ListView::set_text(std::string_view key, std::string text) {
    ListItem* const item = find_mutable(key);
    if (item == nullptr)
        return false;
    item->Text = std::move(text);
    announce_change(item);
    return true;
}

bool ListView::set_sub_item(std::string_view key, std::string_view sub_item_key, std::string text) {
    ListItem* const item = find_mutable(key);
    const auto column = column_of(sub_item_key);
    if (item == nullptr || !column)
        return false;
    item->SubItems[*column] = std::move(text);
    announce_change(item);
    return true;
}

bool ListView::set_all_sub_items(std::string_view sub_item_key, std::string_view text) {
    const auto column = column_of(sub_item_key);
    if (!column)
        return false;
    const Bulk reset{*this};
    for (auto& [key, item] : by_key_)
        item->SubItems[*column] = text;
    return true;
}

std::string_view ListView::sub_item(const ListItem& item, std::string_view sub_item_key) const {
    const auto column = column_of(sub_item_key);
    return column && *column < item.SubItems.size() ? std::string_view{item.SubItems[*column]}
                                                    : std::string_view{};
}

bool ListView::select(std::string_view key) {
    const ListItem* const item = find(key);
    if (item == nullptr)
        return false;
    if (selected_ != item) {
        selected_ = item;
        if (observer_ != nullptr && bulk_ == 0)
            observer_->selection_changed();
    }
    return true;
}

void ListView::select_none() {
    if (selected_ == nullptr)
        return;
    selected_ = nullptr;
    if (observer_ != nullptr && bulk_ == 0)
        observer_->selection_changed();
}

void ListView::sort(int column, Order order) {
    const Bulk reset{*this};
    sorted_ = true;
    sort_key_ = column;
    sort_order_ = order;
}

std::optional<std::size_t> ListView::column_of(std::string_view sub_item_key) const {
    const auto found = std::find(sub_item_keys_.begin(), sub_item_keys_.end(), sub_item_key);
    if (found == sub_item_keys_.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - sub_item_keys_.begin());
}

const std::string& ListView::text_in_column(const ListItem& item) const {
    const auto column = static_cast<std::size_t>(sort_key_);
    return sort_key_ <= 0 || column > item.SubItems.size() ? item.Text : item.SubItems[column - 1];
}

bool ListView::before(const ListItem& left, const ListItem& right) const {
    const std::string a = lower_case(text_in_column(left));
    const std::string b = lower_case(text_in_column(right));
    return sort_order_ == Order::ascending ? a < b : b < a;
}

std::size_t ListView::position_of(const ListItem* item) const {
    return static_cast<std::size_t>(std::find(order_.begin(), order_.end(), item) - order_.begin());
}

std::size_t ListView::place_for(const ListItem& item) const {
    if (!sorted_)
        return order_.size();
    const auto place = std::upper_bound(order_.begin(), order_.end(), &item,
                                        [this](Row left, Row right) { return before(*left, *right); });
    return static_cast<std::size_t>(place - order_.begin());
}

void ListView::sort_now() {
    // Lower-casing once per entry, not once per comparison, is what makes 100,000 entries sort at once.
    std::vector<std::pair<std::string, Row>> keyed;
    keyed.reserve(order_.size());
    for (const Row row : order_)
        keyed.emplace_back(lower_case(text_in_column(*row)), row);
    const bool ascending = sort_order_ == Order::ascending;
    std::stable_sort(keyed.begin(), keyed.end(), [ascending](const auto& left, const auto& right) {
        return ascending ? left.first < right.first : right.first < left.first;
    });
    std::transform(keyed.begin(), keyed.end(), order_.begin(),
                   [](const auto& entry) { return entry.second; });
}

void ListView::announce_change(const ListItem* item) {
    if (observer_ != nullptr && bulk_ == 0)
        observer_->item_changed(position_of(item));
}

ListView::Bulk::Bulk(ListView& list) : list_(list) {
    if (list_.bulk_++ == 0 && list_.observer_ != nullptr)
        list_.observer_->before_reset();
}

ListView::Bulk::~Bulk() {
    if (--list_.bulk_ > 0)
        return;
    if (list_.sorted_)
        list_.sort_now();
    if (list_.observer_ != nullptr) {
        list_.observer_->after_reset();
        list_.observer_->selection_changed();
    }
}

} // namespace kestrune
