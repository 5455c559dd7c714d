#include "platform/qt/engine_age.h"
#include "platform/qt/site_data.h"
#include "platform/qt/start_notices.h"
#include "tests/temporary_folder.h"

#include <QStringList>

#include <gmock/gmock.h>

#include <cstdlib>

namespace kestrune {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string words(const char* version, QDate today) { return engine_age_words(version, today).toStdString(); }

TEST(EngineAge, date_is_that_of_the_milestone) {
    EXPECT_EQ(chromium_date("108.0.5359.94"), QDate(2022, 11, 29));
    EXPECT_EQ(chromium_date("102.0.5005.57"), QDate(2022, 5, 24));
    EXPECT_EQ(chromium_date("141.0.1.1"), QDate(2025, 9, 30));
    EXPECT_EQ(chromium_date("80.0.1.1"), std::nullopt);
    EXPECT_EQ(chromium_date("unknown"), std::nullopt);
    EXPECT_EQ(chromium_date(""), std::nullopt);
}

TEST(EngineAge, old_fixes_are_counted_in_months_with_what_to_do) {
    const std::string old = words("108.0.5359.94", QDate(2026, 11, 21));
    EXPECT_THAT(old, HasSubstr("about 48 months old"));
    EXPECT_THAT(old, HasSubstr("upgrade"));
    EXPECT_THAT(words("87.0", QDate(2026, 1, 1)), HasSubstr("several years old"));
}

TEST(EngineAge, new_fixes_are_said_to_be_new) {
    EXPECT_THAT(words("140.0.1.1", QDate(2025, 10, 1)), HasSubstr("up to date"));
    EXPECT_THAT(words("140.0.1.1", QDate(2025, 10, 1)), Not(HasSubstr("months old")));
}

TEST(EngineAge, each_way_to_lose_the_sandbox_is_named) {
    EXPECT_EQ(sandbox_words({}, {}, {}), QString());
    EXPECT_EQ(sandbox_words("0", "--enable-logging", {"kestrune"}), QString());
    EXPECT_THAT(sandbox_words("1", {}, {}).toStdString(), HasSubstr("QTWEBENGINE_DISABLE_SANDBOX"));
    EXPECT_THAT(sandbox_words({}, "--no-sandbox", {}).toStdString(), HasSubstr("QTWEBENGINE_CHROMIUM_FLAGS"));
    EXPECT_THAT(sandbox_words({}, {}, {"kestrune", "--no-sandbox"}).toStdString(), HasSubstr("--no-sandbox"));
}

TEST(EngineAge, age_is_told_at_the_first_start_and_not_again) {
    const TemporaryFolder folder;
    SiteData data(folder.path());
    const auto told_of_age = [&data] {
        for (const auto& [heading, text] : start_notices(&data)) {
            if (heading == "The browser engine")
                return true;
        }
        return false;
    };
    EXPECT_TRUE(told_of_age());
    EXPECT_FALSE(told_of_age());
    data.set_note("engine told", "1.0");
    EXPECT_TRUE(told_of_age()) << "another engine";
}

} // namespace
} // namespace kestrune
