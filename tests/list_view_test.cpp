#include "platform/list_view.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

std::string shown(const ListView& list) {
    std::string keys;
    for (std::size_t i = 0; i < list.size(); ++i)
        keys += list.item(i).Key + " ";
    return keys;
}

TEST(ListView, KeyThatIsTakenIsRefusedAndNothingIsAdded) {
    ListView list{"list", {"url"}};
    EXPECT_TRUE(list.add({"K1", "first", {"u"}}));
    EXPECT_FALSE(list.add({"K1", "second", {}}));
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(list.find("K1")->Text, "first");
}

TEST(ListView, SortingIgnoresLetterCaseAndKeepsTheOrderOfEqualEntries) {
    ListView list{"list", {"Status"}};
    list.add({"a", "beta", {"1"}});
    list.add({"b", "Alpha", {"2"}});
    list.add({"c", "BETA", {"3"}});
    list.sort(0, ListView::Order::ascending);
    EXPECT_EQ(shown(list), "b a c ");
    list.sort(0, ListView::Order::descending);
    EXPECT_EQ(shown(list), "a c b ");
}

TEST(ListView, EntryAddedWhileSortingIsOnTakesItsPlace) {
    ListView list{"list", {"url"}};
    list.add({"m", "m", {}});
    list.sort(0, ListView::Order::ascending);
    list.add({"z", "z", {}});
    list.add({"a", "A", {}});
    EXPECT_EQ(shown(list), "a m z ");
}

TEST(ListView, BulkFillIsSortedWhenItEnds) {
    ListView list{"list", {"url"}};
    list.sort(0, ListView::Order::descending);
    {
        const ListView::Bulk bulk{list};
        for (const char* key : {"1", "3", "2"})
            list.add({key, key, {}});
    }
    EXPECT_EQ(shown(list), "3 2 1 ");
}

TEST(ListView, RemovingTheSelectedEntrySelectsNothing) {
    ListView list{"list", {"url"}};
    list.add({"1", "one", {}});
    list.add({"2", "two", {}});
    list.select("1");
    EXPECT_TRUE(list.remove("1"));
    EXPECT_EQ(list.selected(), nullptr);
    EXPECT_EQ(shown(list), "2 ");
    EXPECT_TRUE(list.add({"1", "again", {}}));
    EXPECT_EQ(list.selected(), nullptr);
}

} // namespace
} // namespace kestrune
