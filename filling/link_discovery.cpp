#include "filling/link_discovery.h"

#include "library/site_library.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace kestrune {
namespace {

constexpr std::size_t most_words = 4;

constexpr std::array<std::string_view, 4> submission_verbs{"submit", "add", "add/update", "suggest"};
constexpr std::array<std::string_view, 24> objects{
    "game",     "pad",  "listing",  "soft",      "program",    "product",     "freeware",     "shareware",
    "software", "tool", "programs", "products",  "sharewares", "softwares",   "tools",        "file",
    "download", "form", "files",    "downloads", "forms",      "application", "applications", "app"};
constexpr std::array<std::string_view, 3> fillers{"a", "your", "new"};
constexpr std::array<std::string_view, 3> developer_words{"developers", "developer", "developer's"};
constexpr std::array<std::string_view, 4> developer_area_words{"login", "logon", "area", "center"};
constexpr std::array<std::string_view, 2> author_words{"author", "authors"};
constexpr std::array<std::string_view, 2> login_words{"login", "logon"};
constexpr std::string_view skippable_word = "software";

template <std::size_t N>
bool in(const std::array<std::string_view, N>& table, std::string_view word) {
    return std::find(table.begin(), table.end(), word) != table.end();
}

// Whether the words from `at` on are fillers and then, as the very last word, an object.
bool ends_in_object(const std::vector<std::string>& words, std::size_t at) {
    for (; at < words.size(); ++at) {
        const std::string word = lower_case(words[at]);
        if (in(objects, word))
            return at + 1 == words.size();
        if (!in(fillers, word))
            return false;
    }
    return false;
}

// The verdict on the words from `at` on, whose first is `word`; nothing when this word decides nothing.
std::optional<bool> submit_verdict(const std::vector<std::string>& words, std::size_t at,
                                   std::string_view word) {
    if (!in(submission_verbs, word))
        return std::nullopt;
    return words.size() == 1 || ends_in_object(words, at + 1);
}

// As above; steps `at` and `word` on past an author word.
std::optional<bool> developer_verdict(const std::vector<std::string>& words, std::size_t& at,
                                      std::string& word) {
    const bool alone = words.size() == 1;
    if (in(developer_words, word))
        return alone || (at + 1 < words.size() && in(developer_area_words, lower_case(words[at + 1])));
    if (alone && in(login_words, word))
        return true;
    if (!in(author_words, word))
        return std::nullopt;
    if (alone)
        return true;
    if (++at >= words.size())
        return false;
    word = lower_case(words[at]);
    if (in(login_words, word))
        return true;
    return std::nullopt;
}

// Whether the link is one to offer. Tells the user on the status bar, except of a developer link.
bool is_candidate(const PageLink& link, LinkSearch& search) {
    const std::vector<std::string> words = SplitWords(link.innertext);
    if (words.empty())
        return false;
    if (lower_case(link.innertext) == "software submission" || IsSubmitLink(words, "submit")) {
        search.StatusBar1.set_text(1, "Found Submit Link = " + SqlQuote(link.innertext));
        return true;
    }
    return IsSubmitLink(words, "developer");
}

bool still_there(const PageDocument* document, const ElementRef& ref) {
    return document != nullptr && document->id == ref.document &&
           std::any_of(document->links.begin(), document->links.end(),
                       [&ref](const PageLink& link) { return link.ref.element == ref.element; });
}

// True when the user wants to follow the link. The page is as it stands after the question.
bool agreed(LivePage& page, const PageLink& link, LinkSearch& search) {
    if (!search.mnuPromptFill.Checked.get())
        return true;
    const std::string title = "Link = " + SqlQuote(link.innertext);
    const Answer answer = search.ui.MessageBox("Do you want to go to this link", Buttons::YesNo, title);
    page.retake();
    return answer == Answer::Yes;
}

} // namespace

std::vector<std::string> SplitWords(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    for (const char letter : text) {
        if (word.empty()) {
            if (letter > ' ' && letter <= 'z')
                word = letter;
        } else if (letter == ' ' || letter == '-') {
            words.push_back(std::move(word));
            word.clear();
        } else {
            word += letter;
        }
    }
    if (!word.empty())
        words.push_back(std::move(word));
    return words;
}

bool IsSubmitLink(const std::vector<std::string>& words, std::string_view linkClass) {
    if (words.size() > most_words)
        return false;
    for (std::size_t at = 0; at < words.size(); ++at) {
        std::string word = lower_case(words[at]);
        const auto verdict =
            linkClass == "submit" ? submit_verdict(words, at, word) : developer_verdict(words, at, word);
        if (verdict)
            return *verdict;
        if (word != skippable_word)
            return false;
    }
    return false;
}

void FindSubmitLink(LivePage& page, const PickDocument& pick, LinkSearch& search) {
    for (std::size_t i = 0;; ++i) {
        const PageDocument* const document = pick();
        if (document == nullptr || i >= document->links.size())
            return;
        const PageLink link = document->links[i];
        if (!is_candidate(link, search) || !agreed(page, link, search))
            continue;
        if (!still_there(pick(), link.ref))
            return;
        search.state.bFindLinkFlag = false;
        page.note({PageEdit::Kind::click, link.ref});
        return;
    }
}

} // namespace kestrune
