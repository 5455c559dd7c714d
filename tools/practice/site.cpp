#include "tools/practice/site.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace kestrune::practice {
namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

constexpr std::array<std::string_view, 6> softtypes{"1=general",  "2=game",     "3=developer",
                                                    "4=business", "5=freeware", "9=special"};

// One run over a site.txt.
class Parser {
public:
    Parser(std::string_view name, const std::filesystem::path& file) : file_(file) { site_.name = name; }

    Site parse(std::string_view text) {
        if (text.starts_with("\xEF\xBB\xBF"))
            text.remove_prefix(3);
        while (!text.empty()) {
            const auto end = text.find('\n');
            ++line_;
            take(trimmed(text.substr(0, end)));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        }
        check_whole();
        return std::move(site_);
    }

private:
    [[noreturn]] void fail(const std::string& message) const { throw SiteFileError(file_, line_, message); }

    void take(std::string_view line) {
        if (line.empty() || line.front() == '#')
            return;
        const auto equals = line.find('=');
        if (equals == std::string_view::npos)
            fail("\"key = value\" is wanted here");
        const std::string_view left = trimmed(line.substr(0, equals));
        const std::string_view value = trimmed(line.substr(equals + 1));
        if (left.empty())
            fail("the key is missing before \"=\"");
        if (value.empty())
            fail("the value of \"" + std::string(left) + "\" is missing");
        const auto space = left.find_first_of(" \t");
        if (space == std::string_view::npos)
            take_fact(left, value);
        else
            take_behaviour(left.substr(0, space), trimmed(left.substr(space)), value);
    }

    void take_fact(std::string_view key, std::string_view value) {
        if (take_repeated(key, value))
            return;
        if (const auto [before, fresh] = seen_.emplace(key, line_); !fresh)
            fail("\"" + std::string(key) + "\" stands on line " + std::to_string(before->second) +
                 " already");
        if (!take_row(key, value) && !take_outcome(key, value) && !take_recording(key, value) &&
            !take_hostile(key, value))
            fail("unknown key \"" + std::string(key) + "\"");
    }

    bool take_repeated(std::string_view key, std::string_view value) {
        if (key == "asked-for")
            site_.expected.asked_for.push_back(path_or_address(value));
        else if (key == "not-asked-for")
            site_.expected.not_asked_for.push_back(path_or_address(value));
        else if (key == "status")
            site_.expected.status.emplace_back(value);
        else if (key == "question")
            site_.expected.questions.push_back(question(value));
        else if (key == "hand")
            site_.recording.steps.push_back(hand_step(value));
        else if (key == "again")
            site_.hostile.again.push_back(question(value));
        else if (key == "bar")
            site_.hostile.bars.push_back(bar(value));
        else if (key == "value-at")
            site_.hostile.values_at.push_back(path_or_address(value));
        else
            return false;
        return true;
    }

    bool take_row(std::string_view key, std::string_view value) {
        if (key == "description")
            site_.description = value;
        else if (key == "softtype")
            site_.softtype = softtype(value);
        else if (key == "pad")
            site_.pad = yes_no(value) ? "PAD" : "NO";
        else if (key == "referral")
            site_.referral = number(value);
        else if (key == "home")
            site_.home = path(value);
        else if (key == "served")
            site_.served = yes_no(value);
        else if (key == "leave-out")
            site_.left_out = value;
        else
            return false;
        return true;
    }

    bool take_recording(std::string_view key, std::string_view value) {
        Recording& recording = site_.recording;
        if (key == "replayed")
            recording.replayed = static_cast<std::size_t>(number(value));
        else if (key == "differs")
            recording.differs = value;
        else if (key == "answer-at-title")
            recording.answer_at_title = value;
        else
            return false;
        return true;
    }

    bool take_hostile(std::string_view key, std::string_view value) {
        Hostile& hostile = site_.hostile;
        if (key == "hostile")
            hostile.does = value;
        else if (key == "record")
            take_record(value);
        else if (key == "auto-record")
            hostile.auto_record = yes_no(value);
        else if (key == "answer-at")
            hostile.answer_at = path_or_address(value);
        else if (key == "menu")
            hostile.menu = menu(value);
        else if (key == "deadline")
            hostile.deadline = std::chrono::milliseconds(number(value));
        else
            return false;
        return true;
    }

    bool take_outcome(std::string_view key, std::string_view value) {
        Expectation& expected = site_.expected;
        if (key == "link")
            expected.link = value == "none" ? "" : value;
        else if (key == "ends-at")
            expected.ends_at = value == "nowhere" ? "" : path_or_address(value);
        else if (key == "release")
            expected.release = path(value);
        else if (key == "answer-after")
            expected.answer_after = path_or_address(value);
        else if (key == "mark")
            expected.marks = marks(value);
        else if (key == "note")
            expected.note = value;
        else
            return false;
        return true;
    }

    void take_behaviour(std::string_view key, std::string_view where, std::string_view value) {
        Behaviour& behaviour = site_.behaviours[where == "*" ? "*" : path(where)];
        if (key == "header") {
            behaviour.headers.push_back(header(value));
            return;
        }
        const std::string whole = std::string(key) + " " + std::string(where);
        if (const auto [before, fresh] = seen_.emplace(whole, line_); !fresh)
            fail("\"" + whole + "\" stands on line " + std::to_string(before->second) + " already");
        if (key == "redirect")
            behaviour.redirect = path_or_address(value);
        else if (key == "delay")
            behaviour.delay = std::chrono::milliseconds(number(value));
        else if (key == "hang")
            behaviour.hang = hang(value);
        else if (key == "code")
            behaviour.code = code(value);
        else if (key == "type")
            behaviour.type = value;
        else
            fail("unknown key \"" + std::string(key) + "\"");
    }

    [[nodiscard]] bool yes_no(std::string_view value) const {
        if (value != "yes" && value != "no")
            fail("\"yes\" or \"no\" is wanted, not \"" + std::string(value) + "\"");
        return value == "yes";
    }

    [[nodiscard]] std::int64_t number(std::string_view value) const {
        std::int64_t result = 0;
        const char* end = value.data() + value.size();
        const auto parsed = std::from_chars(value.data(), end, result);
        if (parsed.ec != std::errc() || parsed.ptr != end || result < 0)
            fail("a whole number is wanted, not \"" + std::string(value) + "\"");
        return result;
    }

    [[nodiscard]] int code(std::string_view value) const {
        const std::int64_t result = number(value);
        if (result < 200 || result > 599)
            fail("an HTTP status from 200 to 599 is wanted, not \"" + std::string(value) + "\"");
        return static_cast<int>(result);
    }

    [[nodiscard]] std::string path(std::string_view value) const {
        if (!value.starts_with('/'))
            fail("a path that starts with \"/\" is wanted, not \"" + std::string(value) + "\"");
        return std::string(value);
    }

    [[nodiscard]] std::string path_or_address(std::string_view value) const {
        if (value.starts_with("{{") || value.find("://") != std::string_view::npos)
            return std::string(value);
        return path(value);
    }

    [[nodiscard]] std::string softtype(std::string_view value) const {
        if (std::ranges::find(softtypes, value) == softtypes.end())
            fail("\"" + std::string(value) +
                 "\" is no category; they are 1=general, 2=game, 3=developer, "
                 "4=business, 5=freeware and 9=special");
        return std::string(value);
    }

    [[nodiscard]] std::pair<std::string, std::string> header(std::string_view value) const {
        const auto colon = value.find(':');
        if (colon == std::string_view::npos || colon == 0)
            fail("\"Name: value\" is wanted, not \"" + std::string(value) + "\"");
        return {std::string(trimmed(value.substr(0, colon))), std::string(trimmed(value.substr(colon + 1)))};
    }

    [[nodiscard]] Behaviour::Hang hang(std::string_view value) const {
        if (value == "silent")
            return Behaviour::Hang::silent;
        if (value == "body")
            return Behaviour::Hang::body;
        fail("\"silent\" or \"body\" is wanted, not \"" + std::string(value) + "\"");
    }

    [[nodiscard]] Question question(std::string_view value) const {
        const auto first = value.find('|');
        const auto second = first == std::string_view::npos ? first : value.find('|', first + 1);
        if (second == std::string_view::npos)
            fail("\"ANSWER | TITLE | TEXT\" is wanted, not \"" + std::string(value) + "\"");
        Question result{std::string(trimmed(value.substr(0, first))),
                        std::string(trimmed(value.substr(first + 1, second - first - 1))),
                        std::string(trimmed(value.substr(second + 1)))};
        constexpr std::array<std::string_view, 4> answers{"Yes", "No", "OK", "Cancel"};
        if (std::ranges::find(answers, result.answer) == answers.end())
            fail("\"" + result.answer + "\" is no answer; they are Yes, No, OK and Cancel");
        return result;
    }

    void take_record(std::string_view value) {
        const auto bar = value.find('|');
        if (bar == std::string_view::npos)
            fail("\"PAGE | ACTION\" is wanted, not \"" + std::string(value) + "\"");
        site_.hostile.record_page = path_or_address(trimmed(value.substr(0, bar)));
        site_.hostile.record_action = path_or_address(trimmed(value.substr(bar + 1)));
    }

    [[nodiscard]] static BarUse bar(std::string_view value) {
        const auto end = std::min(value.find('|'), value.size());
        return {std::string(trimmed(value.substr(0, end))),
                std::string(trimmed(value.substr(std::min(end + 1, value.size()))))};
    }

    [[nodiscard]] MenuUse menu(std::string_view value) const {
        const auto bar = value.find('|');
        const std::string_view place = trimmed(value.substr(0, bar));
        const auto between = place.find(' ');
        if (bar == std::string_view::npos || between == std::string_view::npos)
            fail("\"X Y | ENTRY\" is wanted, not \"" + std::string(value) + "\"");
        return {static_cast<int>(number(place.substr(0, between))),
                static_cast<int>(number(trimmed(place.substr(between)))),
                std::string(trimmed(value.substr(bar + 1)))};
    }

    [[nodiscard]] HandStep hand_step(std::string_view value) const {
        const auto bar = value.find('|');
        if (bar == std::string_view::npos)
            fail("\"PATH | DEED; DEED ...\" is wanted, not \"" + std::string(value) + "\"");
        HandStep step{path(trimmed(value.substr(0, bar))), {}};
        for (std::string_view rest = value.substr(bar + 1); !rest.empty();) {
            const auto end = std::min(rest.find(';'), rest.size());
            step.deeds.push_back(deed(trimmed(rest.substr(0, end))));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return step;
    }

    [[nodiscard]] HandStep::Deed deed(std::string_view text) const {
        using Kind = HandStep::Deed::Kind;
        const auto space = text.find(' ');
        const std::string_view word = text.substr(0, space);
        const std::string_view rest = space == std::string_view::npos ? "" : text.substr(space + 1);
        constexpr std::array<std::string_view, 4> keys{"tab", "space", "enter", "down"};
        if (std::ranges::find(keys, text) != keys.end())
            return {Kind::press, 0, 0, std::string(text)};
        if (word == "type" && !rest.empty())
            return {Kind::type, 0, 0, std::string(rest)};
        const auto between = rest.find(' ');
        if (word != "click" || between == std::string_view::npos)
            fail("\"" + std::string(text) +
                 "\" is no deed; they are \"click X Y\", \"type TEXT\", \"tab\", \"space\", \"enter\" and "
                 "\"down\"");
        return {Kind::click,
                static_cast<int>(number(rest.substr(0, between))),
                static_cast<int>(number(rest.substr(between + 1))),
                {}};
    }

    [[nodiscard]] std::vector<std::string> marks(std::string_view value) const {
        std::vector<std::string> result;
        for (;;) {
            const auto comma = value.find(',');
            const std::string mark{trimmed(value.substr(0, comma))};
            if (mark != "Y" && mark != "P" && mark != "N" && mark != "cancel")
                fail("\"" + mark + "\" is no outcome; they are Y, P, N and cancel");
            result.push_back(mark);
            if (comma == std::string_view::npos)
                break;
            value.remove_prefix(comma + 1);
        }
        if (result.back() != "Y" && result.back() != "P")
            fail("the last outcome must be Y or P, or the site is played for ever");
        return result;
    }

    void check_whole() const {
        require("description");
        if (!site_.left_out.empty() || !site_.hostile.does.empty() || !site_.recording.steps.empty())
            return;
        for (const std::string_view key : {"link", "ends-at", "mark"})
            require(key);
        check_link();
    }

    void require(std::string_view key) const {
        if (!seen_.contains(key))
            fail("\"" + std::string(key) + "\" is missing");
    }

    // The link and the questions tell the same story twice; a slip in one shows here, not in a failed tour.
    void check_link() const {
        constexpr std::string_view title = "Link = '";
        std::string followed;
        for (const Question& question : site_.expected.questions) {
            if (question.answer == "Yes" && question.title.starts_with(title))
                followed = question.title.substr(title.size(), question.title.size() - title.size() - 1);
        }
        if (trimmed(followed) != site_.expected.link)
            fail("\"link\" is \"" + (site_.expected.link.empty() ? "none" : site_.expected.link) +
                 "\" but the question answered with Yes is about \"" + followed + "\"");
    }

    const std::filesystem::path& file_;
    std::size_t line_ = 0;
    Site site_;
    std::map<std::string, std::size_t, std::less<>> seen_; // key to line
};

} // namespace

SiteFileError::SiteFileError(const std::filesystem::path& file, std::size_t line, std::string_view message)
    : std::runtime_error(file.string() + ":" + std::to_string(line) + ": " + std::string(message)) {}

Site parse_site(std::string_view name, std::string_view text, const std::filesystem::path& file) {
    return Parser(name, file).parse(text);
}

} // namespace kestrune::practice
