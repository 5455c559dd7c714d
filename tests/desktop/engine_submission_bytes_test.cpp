#include "tests/desktop/submission_fixture.h"

namespace kestrune {
namespace {

struct Referral {
    const char* name;
    const char* head;
    const char* form;
    const char* host;
};
class EngineSubmissionReferral : public EngineSubmission, public ::testing::WithParamInterface<Referral> {};

TEST_P(EngineSubmissionReferral, is_told_as_the_server_received_it) {
    server_.page("/page", std::string(GetParam().head) + "<form method=post action='" +
                              server_.url("/take", GetParam().host) + "' " + GetParam().form +
                              "><input name=a value=1><button value=send></button></form>");
    const PageDocument page = open(server_.url("/page?secret#part"));
    press(page, "send");
    EXPECT_TRUE(wait_for("navigate " + server_.url("/take", GetParam().host)));
    ASSERT_TRUE(wait_until([&] { return server_.count_of("/take") > 0; }));
    expect_told_as_received(probe_.navigations.back());
}

INSTANTIATE_TEST_SUITE_P(
    Policies, EngineSubmissionReferral,
    ::testing::Values(
        Referral{"same_origin", "", "", "127.0.0.1"}, Referral{"other_origin", "", "", "127.0.0.2"},
        Referral{"none", "<meta name=referrer content=no-referrer>", "", "127.0.0.1"},
        Referral{"origin", "<meta name=referrer content=origin>", "", "127.0.0.1"},
        Referral{"same_origin_only", "<meta name=Referrer content=same-origin>", "", "127.0.0.2"},
        Referral{"unsafe", "<meta name=referrer content=unsafe-url>", "", "127.0.0.2"},
        Referral{"old_name", "<meta name=referrer content=always>", "", "127.0.0.2"},
        Referral{
            "last_known_policy",
            "<meta name=referrer content=origin><meta name=referrer content=unsafe-url><meta name=referrer "
            "content=nonsense>",
            "", "127.0.0.2"},
        Referral{"form_without", "", "rel=noreferrer", "127.0.0.1"}),
    [](const auto& tested) { return tested.param.name; });

struct Charset {
    const char* name;
    const char* of_page;
    const char* accepted;
};
class EngineSubmissionCharset : public EngineSubmission, public ::testing::WithParamInterface<Charset> {
protected:
    PageDocument open_form(const std::string& text_script, const std::string& enctype) {
        return open_page(
            "<form method=post action=/take enctype=" + enctype + " accept-charset='" + GetParam().accepted +
                "'><textarea name=t hidden></textarea><input type=hidden name=_charset_><button value=send>"
                "</button></form><script>let s = ''; " +
                text_script + "; document.querySelector('textarea').value = s</script>",
            GetParam().of_page);
    }
};

TEST_P(EngineSubmissionCharset, escaped_bytes_are_those_that_the_server_received) {
    const PageDocument page = open_form(
        R"(s = 'a\u00e4\u20ac\u201c\u3042\u6f22\u30bd\u8868\uff8a\u4e02\u0416\ud83d\ude00 \ud800 \u00a5~\u2212')",
        "application/x-www-form-urlencoded");
    press(page, "send");
    const NavigateEvent event = event_of();
    expect_told_as_received(event);
    EXPECT_NE(event.postdata, "");
}

TEST_P(EngineSubmissionCharset, every_character_of_the_basic_plane_is_written_as_the_engine_writes_it) {
    const PageDocument page =
        open_form("for (let c = 32; c < 65536; ++c) s += c === 127 || c >= 0xd800 && c < 0xe000 ? '' "
                  ": String.fromCharCode(c) + ' '",
                  "text/plain");
    press(page, "send");
    const NavigateEvent event = event_of();
    const std::string body = received().body;
    ASSERT_EQ(event.postdata.size(), body.size());
    const auto differ = std::mismatch(body.begin(), body.end(), event.postdata.begin());
    EXPECT_EQ(differ.first - body.begin(), static_cast<std::ptrdiff_t>(body.size()));
}

INSTANTIATE_TEST_SUITE_P(
    Charsets, EngineSubmissionCharset,
    ::testing::Values(Charset{"utf_8", "utf-8", ""}, Charset{"windows_1252", "windows-1252", ""},
                      Charset{"latin_1_is_windows_1252", "iso-8859-1", ""},
                      Charset{"shift_jis", "shift_jis", ""}, Charset{"euc_jp", "euc-jp", ""},
                      Charset{"gb18030", "gb18030", ""},
                      Charset{"accepts_windows_1252", "utf-8", "windows-1252"},
                      Charset{"accepts_koi8_r", "utf-8", "koi8-r"},
                      Charset{"accepts_the_first_known", "utf-8", "nonsense, shift_jis utf-8"},
                      Charset{"accepts_shift_jis", "windows-1252", "shift_jis"},
                      Charset{"accepts_euc_jp", "utf-8", "euc-jp"},
                      Charset{"accepts_euc_kr", "utf-8", "euc-kr"}, Charset{"accepts_big5", "utf-8", "big5"},
                      Charset{"accepts_gbk", "utf-8", "gbk"}, Charset{"accepts_gb18030", "utf-8", "gb18030"},
                      Charset{"accepts_utf_8", "shift_jis", "UTF-8"}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace kestrune
