#pragma once

#include "platform/list_view.h"

#include <QAbstractTableModel>

#include <functional>

namespace kestrune {

// A list view's entries as a model: nothing is copied, so the number of entries does not matter.
class ListModel final : public QAbstractTableModel, public ListViewObserver {
public:
    // Observes the list until it is destroyed.
    explicit ListModel(ListView& list);
    ~ListModel() override;
    ListModel(const ListModel&) = delete;
    ListModel& operator=(const ListModel&) = delete;
    ListModel(ListModel&&) = delete;
    ListModel& operator=(ListModel&&) = delete;

    // Told around each change, so that a view can tell what the user selects from what a change does to its
    // selection, and when the list's own selection changed.
    std::function<void()> before_change;
    std::function<void()> after_change;
    std::function<void()> select;

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void before_insert(std::size_t position) override;
    void after_insert() override;
    void before_remove(std::size_t position) override;
    void after_remove() override;
    void item_changed(std::size_t position) override;
    void before_reset() override;
    void after_reset() override;
    void selection_changed() override;

private:
    ListView& list_;
};

} // namespace kestrune
