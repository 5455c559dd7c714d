#include "platform/qt/outside_links.h"
#include "tests/desktop/bars_fixture.h"

namespace kestrune {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class OutsideLinksTest : public BarsFixture {
protected:
    std::string asked_about(const char* address) {
        OutsideLinks links(bars_);
        links.wanted(QUrl(QString::fromLatin1(address)), QStringLiteral("host"));
        PageBar* const bar = BarUser::shown(place_, "OutsideLink");
        const std::string text = bar == nullptr ? "" : BarUser::text(*bar);
        links.leaving();
        return text;
    }
};

TEST_F(OutsideLinksTest, what_desktops_take_for_folders_commands_or_settings_is_never_handed_on) {
    for (const char* address : {"applications:/x.desktop",
                                "programs:/x",
                                "fish://host/x",
                                "dav://host/x",
                                "davs://host/x",
                                "dav+sd://host/x",
                                "webdav://host/x",
                                "sftp://host/x",
                                "ftp://host/x",
                                "smb://host/x",
                                "smb2://host/x",
                                "nfs://host/x",
                                "kio-x:/y",
                                "man:ls",
                                "help:x",
                                "search-ms:query=x",
                                "ms-msdt:/id",
                                "ms-settings:display",
                                "ms-word:ofe|u|x",
                                "ssh://host",
                                "telnet://host",
                                "shell:startup",
                                "jar:x!/y",
                                "trash:/x",
                                "recentdocuments:/x",
                                "apt:package",
                                "chrome-extension://x/y",
                                "SFTP://host/x"})
        EXPECT_FALSE(OutsideLinks::leads_outside(QUrl(QString::fromLatin1(address)))) << address;
    for (const char* address :
         {"mailto:a@b.c", "tel:1", "sms:1", "news:x", "irc://host/x", "magnet:?x", "x-tool:run"})
        EXPECT_TRUE(OutsideLinks::leads_outside(QUrl(QString::fromLatin1(address)))) << address;
}

TEST_F(OutsideLinksTest, an_unfamiliar_scheme_is_asked_about_with_a_warning_in_front) {
    EXPECT_EQ(asked_about("mailto:a@b.c"), "mailto:a@b.c");
    EXPECT_THAT(asked_about("x-tool:run"), ::testing::StartsWith("Open it only if you know"));
    EXPECT_THAT(asked_about("x-tool:run"), HasSubstr("\"x-tool:\""));
    EXPECT_THAT(asked_about("x-tool:run"), ::testing::EndsWith("\nx-tool:run"));
}

} // namespace
} // namespace kestrune
