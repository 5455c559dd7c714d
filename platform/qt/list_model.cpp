#include "platform/qt/list_model.h"

#include "platform/qt/qt_text.h"

namespace kestrune {

ListModel::ListModel(ListView& list) : list_(list) { list_.observe(this); }

ListModel::~ListModel() { list_.observe(nullptr); }

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(list_.size());
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(list_.columns().size());
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid() || index.row() >= rowCount({}))
        return {};
    const ListItem& item = list_.item(static_cast<std::size_t>(index.row()));
    if (index.column() == 0)
        return to_qt(item.Text);
    const auto sub_item = static_cast<std::size_t>(index.column()) - 1;
    return sub_item < item.SubItems.size() ? to_qt(item.SubItems[sub_item]) : QString();
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount({}))
        return {};
    if (role == Qt::DisplayRole)
        return to_qt(list_.columns()[static_cast<std::size_t>(section)].Title);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    return {};
}

void ListModel::before_insert(std::size_t position) {
    before_change();
    beginInsertRows({}, static_cast<int>(position), static_cast<int>(position));
}

void ListModel::after_insert() {
    endInsertRows();
    after_change();
}

void ListModel::before_remove(std::size_t position) {
    before_change();
    beginRemoveRows({}, static_cast<int>(position), static_cast<int>(position));
}

void ListModel::after_remove() {
    endRemoveRows();
    after_change();
}

void ListModel::item_changed(std::size_t position) {
    const int row = static_cast<int>(position);
    const int last = columnCount({}) - 1;
    if (last >= 0)
        emit dataChanged(index(row, 0), index(row, last));
}

void ListModel::before_reset() {
    before_change();
    beginResetModel();
}

void ListModel::after_reset() {
    endResetModel();
    after_change();
}

void ListModel::selection_changed() { select(); }

} // namespace kestrune
