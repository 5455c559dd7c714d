#include "platform/qt/list_widget.h"

#include "platform/qt/child_of.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/twips.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QToolTip>

#include <utility>

namespace kestrune {
namespace {

// What a cell shows at most. Post data may be megabytes, of which no cell is wide enough to show more.
constexpr int longest_cell = 1000;
constexpr int row_spacing = 4; // pixels

// Cells are one line of plain text; one that is cut has its whole text as tool tip.
class CellDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QString displayText(const QVariant& value, const QLocale& /*locale*/) const override {
        QString text = value.toString().left(longest_cell);
        for (QChar& letter : text) {
            if (letter == u'\r' || letter == u'\n' || letter == u'\t')
                letter = u' ';
        }
        return text;
    }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, row_spacing);
    }

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        if (event->type() != QEvent::ToolTip || !index.isValid())
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        const bool cut = sizeHint(option, index).width() > view->visualRect(index).width();
        const QString text = index.data(Qt::DisplayRole).toString();
        QToolTip::showText(event->globalPos(), cut ? plain_tooltip(text) : QString(), view);
        return true;
    }
};

} // namespace

ListWidget::ListWidget(ListView& list, QWidget* parent)
    : QTreeView(parent), list_(&list), model_(std::make_unique<ListModel>(list)) {
    setItemDelegate(&child_of<CellDelegate>(*this));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setModel(model_.get());
    set_up_header();

    model_->before_change = [this] { ++changing_; };
    model_->after_change = [this] {
        lay_out_columns();
        show_sort_order();
        show_selection();
        --changing_;
    };
    model_->select = [this] { show_selection(); };
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { take_selection(); });
    lay_out_columns();
    show_sort_order();
    show_selection();
}

void ListWidget::release() {
    list_ = nullptr;
    ++changing_;
    setModel(nullptr);
    model_.reset();
}

void ListWidget::set_up_header() {
    QHeaderView& columns = *header();
    columns.setStretchLastSection(false);
    columns.setSectionResizeMode(QHeaderView::Interactive);
    columns.setSectionsClickable(true);
    columns.setSectionsMovable(false);
    connect(&columns, &QHeaderView::sectionResized, this, [this](int section, int /*before*/, int width) {
        if (changing_ == 0 && list_ != nullptr)
            dragged_[list_->columns().at(static_cast<std::size_t>(section)).Title] = width;
    });
    connect(&columns, &QHeaderView::sectionClicked, this, [this](int section) {
        if (list_ != nullptr && list_->ColumnClick)
            list_->ColumnClick(section + 1);
        // The header has turned its arrow by itself; the list knows what it is sorted by.
        if (list_ != nullptr)
            show_sort_order();
    });
}

void ListWidget::lay_out_columns() {
    std::vector<std::string> titles;
    for (const ListView::Column& column : list_->columns())
        titles.push_back(column.Title);
    if (std::exchange(laid_out_, titles) == titles)
        return;
    const QScopedValueRollback quiet(changing_, changing_ + 1);
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const auto dragged = dragged_.find(titles[i]);
        header()->resizeSection(static_cast<int>(i), dragged != dragged_.end()
                                                         ? dragged->second
                                                         : to_pixels(list_->columns()[i].Width));
    }
}

void ListWidget::show_sort_order() {
    header()->setSortIndicatorShown(list_->Sorted());
    if (list_->Sorted())
        header()->setSortIndicator(list_->SortKey(), list_->SortOrder() == ListView::Order::ascending
                                                         ? Qt::AscendingOrder
                                                         : Qt::DescendingOrder);
}

void ListWidget::show_selection() {
    const QScopedValueRollback quiet(changing_, changing_ + 1);
    const ListItem* const selected = list_->selected();
    const bool moved = std::exchange(shown_selection_, selected) != selected;
    if (selected == nullptr) {
        selectionModel()->clearSelection();
        return;
    }
    const QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.size() == 1 && &list_->item(static_cast<std::size_t>(rows.first().row())) == selected)
        return;
    std::size_t position = 0;
    while (position < list_->size() && &list_->item(position) != selected)
        ++position;
    if (position == list_->size())
        return;
    const QModelIndex index = model_->index(static_cast<int>(position), 0);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (moved)
        scrollTo(index);
}

void ListWidget::take_selection() {
    if (changing_ > 0 || list_ == nullptr)
        return;
    const QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        list_->select_none();
        return;
    }
    // A copy: `select` takes a view, and the entry may go while those who are told of it act.
    const std::string key = list_->item(static_cast<std::size_t>(rows.first().row())).Key;
    list_->select(key);
}

} // namespace kestrune
