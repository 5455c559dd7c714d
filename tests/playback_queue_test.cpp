#include "library/playback_queue.h"

#include "libraries.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace kestrune {
namespace {

const std::string lib{site_library_name};

// The selection menus, in the state in which the program starts.
struct Menus {
    MenuItem mnuWithPAD{"mnuWithPAD", "", true};
    MenuItem mnuNoPAD{"mnuNoPAD", ""};
    MenuItem mnuSelectGeneral{"mnuSelectGeneral", "", true};
    MenuItem mnuSelectGame{"mnuSelectGame", ""};
    MenuItem mnuSelectDeveloper{"mnuSelectDeveloper", ""};
    MenuItem mnuSelectBusiness{"mnuSelectBusiness", ""};
    MenuItem mnuSelectFreeware{"mnuSelectFreeware", ""};
    MenuItem mnuSelectSpecial{"mnuSelectSpecial", ""};
    QueueSwitches switches{mnuWithPAD,         mnuNoPAD,          mnuSelectGeneral,  mnuSelectGame,
                           mnuSelectDeveloper, mnuSelectBusiness, mnuSelectFreeware, mnuSelectSpecial};
};

TEST(QueueFilter, CategoriesFollowThePadPartInTheOrderOfTheMenus) {
    Menus menus;
    EXPECT_EQ(QueueFilter(menus.switches), "PAD = 'PAD' and (softtype = '1=general')");
    menus.mnuSelectGeneral.Checked = false;
    menus.mnuSelectBusiness.Checked = true;
    menus.mnuSelectGame.Checked = true;
    EXPECT_EQ(QueueFilter(menus.switches),
              "PAD = 'PAD' and (softtype = '2=game' or softtype = '4=business')");
    menus.mnuSelectGeneral.Checked = true;
    menus.mnuSelectDeveloper.Checked = true;
    menus.mnuSelectFreeware.Checked = true;
    menus.mnuSelectSpecial.Checked = true;
    EXPECT_EQ(QueueFilter(menus.switches),
              "PAD = 'PAD' and (softtype = '1=general' or softtype = '2=game' or softtype = '3=developer' or "
              "softtype "
              "= '4=business' or softtype = '5=freeware' or softtype = '9=special')");
}

TEST(QueueFilter, NoCategoryCheckedLeavesThePadPartAlone) {
    Menus menus;
    menus.mnuSelectGeneral.Checked = false;
    EXPECT_EQ(QueueFilter(menus.switches), "PAD = 'PAD'");
    menus.mnuWithPAD.Checked = false;
    menus.mnuNoPAD.Checked = true;
    EXPECT_EQ(QueueFilter(menus.switches), "PAD <> 'PAD'");
}

template <typename Libraries>
class PlaybackQueueTest : public testing::Test {
protected:
    PlaybackQueueTest() { StatusBar1.set_text(3, "before"); }

    std::optional<NextSite> next(const std::string& name = lib) {
        return SelectNextSite(library, name, menus.switches, StatusBar1);
    }
    int next_key() {
        const auto site = next();
        return site ? site->padkey : -1;
    }
    void check_no_category() { menus.mnuSelectGeneral.Checked = false; }
    void check_no_pad() {
        menus.mnuWithPAD.Checked = false;
        menus.mnuNoPAD.Checked = true;
    }
    [[nodiscard]] const std::string& left() const { return StatusBar1.text(3); }

    Libraries libraries;
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    Menus menus;
    StatusBar StatusBar1{"StatusBar1"};
};
TYPED_TEST_SUITE(PlaybackQueueTest, EveryLibrary);

TYPED_TEST(PlaybackQueueTest, TopRankedSiteIsPickedAndTheCountIncludesIt) {
    SiteRow top = site(2, "Two");
    top.referral = 5;
    SiteRow done = site(3, "Three");
    done.referral = 9;
    done.status = "Y";
    SiteRow failed = site(4, "Four");
    failed.referral = 9;
    failed.status = "P";
    this->libraries.create(lib, {site(1, "One"), top, done, failed});
    EXPECT_EQ(this->next(), (NextSite{2, "http://site2.example/", "Two"}));
    EXPECT_EQ(this->left(), "2 PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, AmongEqualReferralTheHigherLinkfoundComesFirst) {
    SiteRow found = site(2, "Two");
    found.linkfound = 1;
    this->libraries.create(lib, {site(1, "One"), found});
    EXPECT_EQ(this->next_key(), 2);
}

TYPED_TEST(PlaybackQueueTest, AmongEqualRanksTheLowerCategoryThenTheLowerDescriptionComesFirst) {
    SiteRow game_a = site(1, "a");
    game_a.softtype = "2=game";
    SiteRow general_z = site(2, "z");
    SiteRow general_b = site(3, "B");
    this->libraries.create(lib, {game_a, general_z, general_b});
    this->menus.mnuSelectGame.Checked = true;
    EXPECT_EQ(this->next_key(), 3);
    this->library.UpdateSubmitStatus(lib, "http://site3.example/", "Y", "");
    EXPECT_EQ(this->next_key(), 2);
    this->library.UpdateSubmitStatus(lib, "http://site2.example/", "Y", "");
    EXPECT_EQ(this->next_key(), 1);
}

TYPED_TEST(PlaybackQueueTest, SitesOfNullCategoryAreInTheQueueOnlyWhenNoCategoryIsChecked) {
    SiteRow null = site(1, "Null");
    null.softtype = std::nullopt;
    this->libraries.create(lib, {null});
    for (MenuItem* const menu :
         {&this->menus.mnuSelectGeneral, &this->menus.mnuSelectGame, &this->menus.mnuSelectDeveloper,
          &this->menus.mnuSelectBusiness, &this->menus.mnuSelectFreeware, &this->menus.mnuSelectSpecial}) {
        menu->Checked = true;
        EXPECT_EQ(this->next(), std::nullopt);
        EXPECT_EQ(this->left(), "0 PAD Sites left");
    }
    for (MenuItem* const menu :
         {&this->menus.mnuSelectGeneral, &this->menus.mnuSelectGame, &this->menus.mnuSelectDeveloper,
          &this->menus.mnuSelectBusiness, &this->menus.mnuSelectFreeware, &this->menus.mnuSelectSpecial})
        menu->Checked = false;
    EXPECT_EQ(this->next_key(), 1);
    EXPECT_EQ(this->left(), "1 PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, OnlyTheCheckedCategoriesAreInTheQueue) {
    SiteRow game = site(1, "Game");
    game.softtype = "2=game";
    game.referral = 9;
    this->libraries.create(lib, {game, site(2, "General")});
    EXPECT_EQ(this->next_key(), 2);
    this->menus.mnuSelectGame.Checked = true;
    EXPECT_EQ(this->next_key(), 1);
    EXPECT_EQ(this->left(), "2 PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, SitesWithoutPadAreQueuedByTheOtherSwitch) {
    SiteRow other = site(2, "Two");
    other.pad = "NO";
    this->libraries.create(lib, {site(1, "One"), other});
    this->check_no_pad();
    EXPECT_EQ(this->next_key(), 2);
    EXPECT_EQ(this->left(), "1 Non-PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, EverythingMarkedFindsNothingAndShowsZero) {
    SiteRow done = site(1, "One");
    done.status = "Y";
    this->libraries.create(lib, {done});
    EXPECT_EQ(this->next(), std::nullopt);
    EXPECT_EQ(this->left(), "0 PAD Sites left");
    this->check_no_pad();
    EXPECT_EQ(this->next(), std::nullopt);
    EXPECT_EQ(this->left(), "0 Non-PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, RetryLeavesTheSiteFirstInTheQueue) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    ASSERT_EQ(this->next_key(), 1);
    this->library.UpdateSubmitStatus(lib, "http://site1.example/", "N", "later");
    EXPECT_EQ(this->next_key(), 1);
    this->library.UpdateSubmitStatus(lib, "http://site1.example/", "Y", "");
    EXPECT_EQ(this->next_key(), 2);
    EXPECT_EQ(this->left(), "1 PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, WithBothPadSwitchesTheSecondFilterWinsAndTheSuffixIsOfTheFirst) {
    SiteRow other = site(2, "Two");
    other.pad = "NO";
    this->libraries.create(lib, {site(1, "One"), other});
    this->menus.mnuNoPAD.Checked = true;
    EXPECT_EQ(this->next_key(), 2);
    EXPECT_EQ(this->left(), "1 PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, WithNeitherPadSwitchNoSiteIsFoundAndThePanelKeepsItsText) {
    this->libraries.create(lib, {site(1, "One")});
    this->menus.mnuWithPAD.Checked = false;
    EXPECT_EQ(this->next(), std::nullopt);
    this->check_no_category();
    EXPECT_EQ(this->next(), std::nullopt);
    EXPECT_EQ(this->left(), "before");
}

TYPED_TEST(PlaybackQueueTest, LibraryThatFailsFindsNoSiteAndThePanelKeepsItsText) {
    EXPECT_EQ(this->next(), std::nullopt);
    for (const char* const column : {"pad", "status", "referral", "softtype"}) {
        const std::string name = std::string(column) + ".mdb";
        this->libraries.create_without(name, column, {site(1, "One")});
        EXPECT_EQ(this->next(name), std::nullopt) << column;
    }
    this->libraries.create(lib, {site(1, "One")});
    const Guard locked = this->libraries.lock(lib);
    EXPECT_EQ(this->next(), std::nullopt);
    EXPECT_EQ(this->left(), "before");
}

TYPED_TEST(PlaybackQueueTest, ReadOnlyLibraryIsPlayedBack) {
    this->libraries.create(lib, {site(1, "One")});
    const Guard read_only = this->libraries.make_read_only(lib);
    EXPECT_EQ(this->next_key(), 1);
    EXPECT_EQ(this->left(), "1 PAD Sites left");
}

TYPED_TEST(PlaybackQueueTest, FirstSiteWithoutAnAddressIsNotFoundAndNothingIsCounted) {
    SiteRow null = site(1, "One");
    null.url = std::nullopt;
    this->libraries.create_loose(lib, {null});
    EXPECT_EQ(this->next(), std::nullopt);
    EXPECT_EQ(this->left(), "before");
}

TYPED_TEST(PlaybackQueueTest, ChangeByAnotherProgramIsSeenAtTheNextPick) {
    this->libraries.create(lib, {site(1, "One"), site(2, "Two")});
    ASSERT_EQ(this->next_key(), 1);
    this->libraries.delete_behind_the_back(lib, 1);
    EXPECT_EQ(this->next_key(), 2);
}

TEST(SelectNextSiteTest, SiteIsFoundEvenWhenTheCountFails) {
    MemoryLibraries libraries;
    libraries.create(lib, {site(1, "One")});
    SiteLibrary library{libraries.database, libraries.files, libraries.folder};
    const Menus menus;
    StatusBar StatusBar1{"StatusBar1"};
    StatusBar1.set_text(3, "before");
    libraries.database.faults.fail_at = 2;
    const auto next = SelectNextSite(library, lib, menus.switches, StatusBar1);
    EXPECT_EQ(next, (NextSite{1, "http://site1.example/", "One"}));
    EXPECT_EQ(StatusBar1.text(3), "before");
}

} // namespace
} // namespace kestrune
