#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune::practice {

// A practice site that cannot be used. what() reads "FILE:LINE: what is wrong".
class SiteFileError : public std::runtime_error {
public:
    SiteFileError(const std::filesystem::path& file, std::size_t line, std::string_view message);
};

// What the server does at one path instead of plainly serving the file there.
struct Behaviour {
    enum class Hang : std::uint8_t {
        never,
        silent, // takes the request and answers nothing
        body,   // sends the first half of the file
    };
    std::string redirect; // where to, placeholders not yet filled in; empty: nowhere
    std::vector<std::pair<std::string, std::string>> headers;
    std::chrono::milliseconds delay{0}; // before the answer begins
    Hang hang = Hang::never;            // until released
    int code = 0;                       // HTTP status; 0: what fits
    std::string type;                   // Content-Type; empty: by the file's name
};

// A question that the program must ask, with the button that answers it.
struct Question {
    std::string answer; // "Yes", "No", "OK" or "Cancel"
    std::string title;
    std::string text;
    friend bool operator==(const Question&, const Question&) = default;
};

// What must happen when the site is played. Texts may hold placeholders.
struct Expectation {
    std::string link; // text of the link that is followed; empty: none may be
    // Path, or whole address on another site, that the browser shows in the end; empty: the site never brings
    // a document.
    std::string ends_at;
    std::vector<std::string> asked_for;     // paths that the server must have been asked for
    std::vector<std::string> not_asked_for; // paths that it must not have been asked for
    std::vector<std::string> status; // texts that status panel 1 shows, in this order, others in between
    std::vector<Question> questions; // all of them, in order
    // While the first question is open: the hanging path that is let go, and then the path or
    // address whose document must have completed before the question is answered. Both may be empty.
    std::string release;
    std::string answer_after;
    // One outcome for each visit: "Y", "P", "N" or "cancel"; the last one stays in the library.
    std::vector<std::string> marks;
    std::string note;
};

// A form that the user submits by hand: where it stands, and what the user does there, in order.
struct HandStep {
    std::string page; // path
    struct Deed {
        enum class Kind : std::uint8_t { click, type, press };
        Kind kind = Kind::press;
        int x = 0; // of a click, in the page, device-independent pixels
        int y = 0;
        std::string text; // what is typed, or the key that is pressed: "tab", "space", "enter" or "down"
    };
    std::vector<Deed> deeds;
};

// A site that is submitted by hand while the program records, and then played back.
struct Recording {
    std::vector<HandStep> steps;
    std::optional<std::size_t> replayed; // number of submissions when it is played back; as many as by hand
    std::string differs;                 // the rule that makes the second requests differ; empty: they do not
    // The question before the filling is asked, and answered when the page has this title; empty: not asked.
    std::string answer_at_title;
};

// An entry of the right-click menu, chosen at a place of the page in device-independent pixels.
struct MenuUse {
    int x = 0;
    int y = 0;
    std::string entry;
};

// A bar above the page, and its button that the user presses; empty: none.
struct BarUse {
    std::string name;
    std::string button;
};

// A site that means harm: what the program must do with it. Of the expectation above, the questions and the
// requests count too.
struct Hostile {
    std::string does; // in words; empty: the site is none of these
    // Page and form action of the record that the program has; empty: the start page, and "/take".
    std::string record_page;
    std::string record_action;
    bool auto_record = false;
    std::vector<Question> again; // each comes at least once, and any number of times
    // What must have been asked for before the first question is answered and the menu's entry chosen; may be
    // empty.
    std::string answer_at;
    std::optional<MenuUse> menu;
    std::vector<BarUse> bars;              // that come up above the page
    std::vector<std::string> values_at;    // where the user's values must come, and all that they may
    std::chrono::milliseconds deadline{0}; // of the page; 0: the program's own
};

// One practice site: a folder of pages with the file site.txt, whose format is told in practice/README.md.
struct Site {
    std::string name; // of the folder
    std::filesystem::path folder;

    std::string description;
    std::string softtype = "1=general";
    std::string pad = "PAD";
    std::int64_t referral = 0;
    std::string home = "/"; // path of the start page
    bool served = true;     // false: the address refuses every connection
    std::string left_out;   // why the tour does not play it; empty: it does
    Expectation expected;
    Recording recording; // with steps: the queue leaves the site out, it is recorded instead
    Hostile hostile;
    std::map<std::string, Behaviour, std::less<>> behaviours; // by path; "*" is every path

    // Both the path's own behaviour and that of "*"; the path's own goes first.
    [[nodiscard]] Behaviour behaviour(std::string_view path) const;
};

inline constexpr std::string_view site_file_name = "site.txt";

// Reads the text of a site.txt; `file` names it in errors. Throws SiteFileError.
Site parse_site(std::string_view name, std::string_view text, const std::filesystem::path& file);

// Every folder of `folder` that holds a site.txt, in the order of their names, with its pages looked through
// for placeholders that lead nowhere. Throws SiteFileError.
std::vector<Site> load_sites(const std::filesystem::path& folder);

} // namespace kestrune::practice
