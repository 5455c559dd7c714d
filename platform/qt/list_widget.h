#pragma once

#include "platform/qt/list_model.h"

#include <QTreeView>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kestrune {

// A list view on screen. The user's selection and clicks on column headers go to the list; column widths
// start as designed and are the user's from then on, also over a refill.
class ListWidget final : public QTreeView {
public:
    ListWidget(ListView& list, QWidget* parent);

    // Lets go of the list, which may be gone afterwards.
    void release();

private:
    void set_up_header();
    void lay_out_columns();
    void show_sort_order();
    void show_selection();
    void take_selection();

    ListView* list_;
    std::unique_ptr<ListModel> model_;
    int changing_ = 0; // above zero while the list changes or a change of it is being shown
    std::vector<std::string> laid_out_;
    std::map<std::string, int> dragged_; // pixels, by column title
    const ListItem* shown_selection_ = nullptr;
};

} // namespace kestrune
