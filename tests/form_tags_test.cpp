#include "filling/form_tags.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

TEST(FormTags, ActionEndsAtTheFirstBlankOrWithoutOneAtTheClosingBracket) {
    EXPECT_EQ(GetTagAction("<form action=add.cgi method=post>"), "add.cgi");
    EXPECT_EQ(GetTagAction("<form method=post action=add.cgi>"), "add.cgi");
    EXPECT_EQ(GetTagAction("<FORM ACTION=\"Add.cgi\" id=x>"), "Add.cgi");
    EXPECT_EQ(GetTagAction("<form action= \"add.cgi\">"), "");
}

TEST(FormTags, OneQuoteOfEitherKindIsTakenOffAtEachEnd) {
    EXPECT_EQ(GetTagAction("<form action='add.cgi\">"), "add.cgi");
    EXPECT_EQ(GetTagAction("<form action=\"add.cgi'>"), "add.cgi");
    EXPECT_EQ(GetTagAction("<form action=\"\">"), "");
    EXPECT_EQ(GetTagAction("<form action=\">"), "");
    EXPECT_EQ(GetTagAction("<form action=\"'add.cgi'\">"), "'add.cgi'");
}

TEST(FormTags, TagWithoutActionHasNone) {
    EXPECT_EQ(GetTagAction("<form method=\"post\">"), "");
    EXPECT_EQ(GetTagAction(""), "");
    EXPECT_EQ(GetTagAction("<form action="), "");
}

TEST(FormTags, FormIsFoundByItsIdInAnyLetterCaseAndWithoutAnIdTheFirstIsTaken) {
    const std::vector<std::string> tags{"<form action=one.cgi>", "<form id=addForm action=two.cgi>",
                                        "<form id=\"quoted\" action=three.cgi>"};
    EXPECT_EQ(GetFormTagAction(tags, "ADDFORM"), "two.cgi");
    EXPECT_EQ(GetFormTagAction(tags, "add"), "two.cgi");
    EXPECT_EQ(GetFormTagAction(tags, ""), "one.cgi");
    EXPECT_EQ(GetFormTagAction(tags, "none"), "");
    EXPECT_EQ(GetFormTagAction({}, ""), "");
    // Only an id that follows its equals sign at once is seen.
    EXPECT_EQ(GetFormTagAction(tags, "quoted"), "");
}

TEST(FormTags, LastPartOfAFolderKeepsItsSlash) {
    EXPECT_EQ(LastPart("http://a.b/dir/"), "dir/");
    EXPECT_EQ(LastPart("dir/"), "dir/");
    EXPECT_EQ(LastPart("http://a.b/dir/add.cgi?x=1"), "add.cgi?x=1");
    EXPECT_EQ(LastPart("add.cgi"), "add.cgi");
    EXPECT_EQ(LastPart("/"), "/");
    EXPECT_EQ(LastPart(""), "");
}

TEST(FormTags, FullAddressMatchesARelativeActionByItsLastSegment) {
    EXPECT_TRUE(ActionsMatch("http://a.b/cgi/add.cgi", "add.cgi"));
    EXPECT_TRUE(ActionsMatch("http://a.b/ADD.cgi", "HTTP://A.B/add.CGI"));
    EXPECT_TRUE(ActionsMatch("a/b/dir/", "dir/"));
    EXPECT_FALSE(ActionsMatch("http://a.b/cgi/Add.cgi", "add.cgi"));
    EXPECT_FALSE(ActionsMatch("http://a.b/cgi/add.cgi", ""));
}

TEST(FormTags, ActionWithAQueryMatchesOnlyWhenQueriesAreIgnored) {
    EXPECT_FALSE(ActionsMatch("http://a.b/cgi/add.cgi", "add.cgi?x=1"));
    EXPECT_TRUE(ActionsMatchIgnoringQuery("http://a.b/cgi/add.cgi", "add.cgi?x=1"));
    EXPECT_TRUE(ActionsMatchIgnoringQuery("http://a.b/add.cgi?next=/x", "add.cgi?x=1"));
    EXPECT_FALSE(ActionsMatchIgnoringQuery("http://a.b/dir/?x=1", "dir/?x=2"));
    EXPECT_FALSE(ActionsMatchIgnoringQuery("http://a.b/Add.cgi", "add.cgi"));
}

} // namespace
} // namespace kestrune
