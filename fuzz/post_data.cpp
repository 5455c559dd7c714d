#include "fuzz/targets.h"

#include "sessions/post_data.h"

#include <algorithm>

namespace kestrune::fuzz {
namespace {

void check_codes(const std::string& text) {
    require(is_utf8(UrlDecode(text)), "decoded text is UTF-8");
    // What the codecs lose on purpose: a plus sign reads back as a blank, and codes below 16 lack a zero.
    const bool reads_back =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 16; });
    std::string expected = text;
    std::replace(expected.begin(), expected.end(), '+', ' ');
    for (const CodePage code_page : {CodePage::windows_1252, CodePage::utf_8}) {
        const std::string encoded = UrlEncode(text, code_page);
        require(encoded.find_first_not_of(
                    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz%") == std::string::npos,
                "encoded text is letters, digits and codes");
        if (reads_back)
            require(UrlDecode(encoded) == expected, "encoded text decodes to itself");
    }
}

void check_pairs(const std::string& text) {
    const PostFields fields = SplitPostData(text);
    require(fields.names.size() == fields.values.size(), "every name has a value");
    require(fields.size() >= 1 && fields.size() <= 61, "there are one to sixty-one pairs");
    const std::string joined = JoinPostData(fields);
    std::size_t parts = 0;
    bool all_with_equals = true;
    for (std::string_view rest = text;; rest.remove_prefix(rest.find('&') + 1)) {
        ++parts;
        all_with_equals =
            all_with_equals && rest.substr(0, rest.find('&')).find('=') != std::string_view::npos;
        if (rest.find('&') == std::string_view::npos)
            break;
    }
    if (all_with_equals && parts <= 60)
        require(joined == text, "joining puts together what splitting took apart");
    require(fields.size() == (parts <= 61 ? parts : 60), "pairs beyond the sixtieth are dropped");
    static_cast<void>(RecordCodePage(text));
}

void check_replacing(const std::string& text) {
    const PostFields before = SplitPostData(text);
    const std::size_t place = text.size() % before.size();
    std::string changed = text;
    ReplacePostValue(changed, place, "new%2Fvalue");
    const PostFields after = SplitPostData(changed);
    require(after.names == before.names, "replacing a value changes no name");
    for (std::size_t i = 0; i < before.size(); ++i)
        require(after.values[i] == (i == place ? "new%2Fvalue" : before.values[i]),
                "replacing a value changes that one alone");
    std::string unchanged = text;
    ReplacePostValue(unchanged, text.size() + 1, "x");
    require(unchanged == text, "a pair that is not there is not replaced");
}

} // namespace

void code_post_data(std::string_view input) {
    const std::string text = text_of_bytes(input);
    check_codes(text);
    check_pairs(text);
    check_replacing(text);
}

} // namespace kestrune::fuzz
