#include "tests/desktop/window_fixture.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>
#include <QTreeView>

#include <iostream>

namespace kestrune {
namespace {

using testing_desktop::RealWindow;

std::string numbered(const char* before, int number) {
    std::string text = before;
    text += std::to_string(number);
    return text;
}

class List : public testing::Test {
protected:
    void SetUp() override {
        list.set_columns({{"Library Name", 2500}, {"URL", 3500}, {"Status", 700}});
        real.open();
        real.controls.SSTab1.set_tab(2);
        real.show();
        view = &real.widget<QTreeView>("lvwPAD");
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&real.window()));
    }

    [[nodiscard]] std::string shown(int row, int column) const {
        return view->model()->index(row, column).data().toString().toStdString();
    }
    [[nodiscard]] int selected_row() const {
        const QModelIndexList rows = view->selectionModel()->selectedRows();
        return rows.isEmpty() ? -1 : rows.first().row();
    }
    void click_row(int row) {
        const QRect cell = view->visualRect(view->model()->index(row, 0));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, cell.center());
    }
    void click_header(int column) {
        QHeaderView& header = *view->header();
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(column) + 20, header.height() / 2));
    }

    RealWindow real;
    ListView& list = real.controls.lvwPAD;
    QTreeView* view = nullptr;
};

TEST_F(List, ColumnsStartAsDesignedAndStayAsTheUserDraggedThemOverARefill) {
    EXPECT_EQ(view->header()->count(), 3);
    EXPECT_EQ(view->header()->sectionSize(1), 233);
    EXPECT_EQ(view->model()->headerData(1, Qt::Horizontal).toString(), "URL");
    view->header()->resizeSection(1, 300);
    const auto columns = list.columns();
    list.set_columns({});
    EXPECT_EQ(view->header()->count(), 0);
    list.set_columns(columns);
    EXPECT_EQ(view->header()->sectionSize(0), 167);
    EXPECT_EQ(view->header()->sectionSize(1), 300);
}

TEST_F(List, EntriesShowWithTheirSubItemsAndFollowChanges) {
    list.add({"K1", "one", {"http://1/", "N", "", ""}});
    list.add({"K2", "two & <b>", {"http://2/", "N", "", ""}});
    EXPECT_EQ(view->model()->rowCount(), 2);
    EXPECT_EQ(shown(1, 0), "two & <b>");
    EXPECT_EQ(shown(1, 1), "http://2/");
    list.set_sub_item("K1", "Status", "Y");
    EXPECT_EQ(shown(0, 2), "Y");
    list.remove("K1");
    EXPECT_EQ(view->model()->rowCount(), 1);
}

TEST_F(List, RowClickedIsTheListsSelection) {
    list.add({"K1", "one", {}});
    list.add({"K2", "two", {}});
    click_row(1);
    ASSERT_NE(list.selected(), nullptr);
    EXPECT_EQ(list.selected()->Key, "K2");
    QTest::keyClick(view, Qt::Key_Up);
    EXPECT_EQ(list.selected()->Key, "K1");
}

TEST_F(List, SelectionMadeByCodeShowsAndFollowsItsEntryWhenSorted) {
    list.add({"K1", "a", {}});
    list.add({"K2", "b", {}});
    list.select("K2");
    EXPECT_EQ(selected_row(), 1);
    list.sort(0, ListView::Order::descending);
    EXPECT_EQ(selected_row(), 0);
    EXPECT_EQ(list.selected()->Key, "K2");
    list.select_none();
    EXPECT_EQ(selected_row(), -1);
}

TEST_F(List, RemovingTheSelectedEntrySelectsNoOther) {
    for (const char* key : {"K1", "K2", "K3"})
        list.add({key, key, {}});
    click_row(1);
    list.remove("K2");
    EXPECT_EQ(list.selected(), nullptr);
    EXPECT_EQ(selected_row(), -1);
    list.select("K3");
    list.remove("K1");
    EXPECT_EQ(selected_row(), 0);
    EXPECT_EQ(list.selected()->Key, "K3");
}

TEST_F(List, HeaderClickReportsTheHeadersNumberAndShowsTheListsOrder) {
    std::vector<int> clicked;
    list.ColumnClick = [&](int index) {
        clicked.push_back(index);
        list.sort(index - 1,
                  clicked.size() % 2 == 1 ? ListView::Order::ascending : ListView::Order::descending);
    };
    list.add({"K1", "a", {"z"}});
    EXPECT_FALSE(view->header()->isSortIndicatorShown());
    click_header(1);
    EXPECT_EQ(clicked, std::vector<int>{2});
    EXPECT_TRUE(view->header()->isSortIndicatorShown());
    EXPECT_EQ(view->header()->sortIndicatorSection(), 1);
    EXPECT_EQ(view->header()->sortIndicatorOrder(), Qt::AscendingOrder);
    click_header(1);
    EXPECT_EQ(view->header()->sortIndicatorOrder(), Qt::DescendingOrder);
}

TEST_F(List, HeaderClickWithoutAHandlerChangesNothing) {
    list.add({"K1", "b", {}});
    list.add({"K2", "a", {}});
    click_header(0);
    EXPECT_FALSE(view->header()->isSortIndicatorShown());
    EXPECT_EQ(shown(0, 0), "b");
}

// Figures for the reader of the log; how long it takes on a busy machine proves nothing.
TEST_F(List, HundredThousandEntriesFillSortAndScroll) {
    QElapsedTimer clock;
    const auto report = [&clock](const char* what) {
        std::cout << "  " << what << ": " << clock.restart() << " ms\n";
    };
    constexpr int count = 100000;
    clock.start();
    {
        const ListView::Bulk fill{list};
        for (int i = 0; i < count; ++i)
            list.add({numbered("K", i),
                      numbered("Site ", (i * 7919) % count),
                      {numbered("http://www.example.com/", i)}});
    }
    view->viewport()->repaint();
    report("fill and show");
    list.sort(0, ListView::Order::ascending);
    view->viewport()->repaint();
    report("sort by name and show");
    list.select("K99999");
    list.sort(1, ListView::Order::descending);
    view->viewport()->repaint();
    report("sort by address with a selection and show");
    for (int page = 0; page < 100; ++page) {
        view->verticalScrollBar()->setValue(page * 997);
        view->viewport()->repaint();
    }
    report("scroll to 100 places");
    list.add({"new", "Site 5", {}});
    list.remove("K5");
    view->viewport()->repaint();
    report("one more and one less");
    EXPECT_EQ(view->model()->rowCount(), count);
    EXPECT_EQ(list.item(static_cast<std::size_t>(selected_row())).Key, "K99999");
}

} // namespace
} // namespace kestrune
