#include "tests/desktop/hostile_fixture.h"

namespace kestrune {
namespace {

using practice::Site;

// Those that are played, without the hosts that they only use.
std::vector<std::string> names_of_hostile_sites() {
    std::vector<std::string> names;
    try {
        for (const Site& site : practice::load_sites(std::string(practice_folder) + "hostile")) {
            if (!site.hostile.does.empty())
                names.push_back(site.name);
        }
    } catch (const std::exception&) {
        names.clear(); // said by the test of the folder
    }
    return names;
}

TEST_P(HostileSite, LeaksNothingWritesNothingElsewhereAndLeavesTheProgramUsable) {
    SCOPED_TRACE(site_.hostile.does);
    play();
    settle();
    if (records_expected() > 0)
        keep_and_load_the_record();
    play_the_honest_site();
    check_menus();
    check_requests();
    check_files();
}

INSTANTIATE_TEST_SUITE_P(Practice, HostileSite, ::testing::ValuesIn(names_of_hostile_sites()),
                         [](const auto& site) {
                             std::string name = site.param;
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

TEST(HostileSites, AreThereAndCanBeRead) {
    const std::vector<Site> sites = practice::load_sites(std::string(practice_folder) + "hostile");
    EXPECT_GE(sites.size(), 30U);
    EXPECT_EQ(names_of_hostile_sites().size() + 1, sites.size()) << "every one but \"elsewhere\" is played";
}

} // namespace
} // namespace kestrune
