#include "tools/library/library_check.h"

#include "platform/site_address.h"
#include "platform/statement.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace kestrune {
namespace {

class Check {
public:
    explicit Check(const LibraryFile& library)
        : padkey_(library.column("padkey")), url_(library.column("url")),
          description_(library.column("description")), status_(library.column("status")),
          softtype_(library.column("softtype")), pad_(library.column("pad")) {}

    void look_at(const LibraryRow& row) {
        name_ = "site " + row.values[padkey_].value_or("without a key");
        if (row.values[url_])
            name_ += " (" + *row.values[url_] + ")";
        required(row, padkey_, "padkey");
        required(row, url_, "url");
        required(row, description_, "description");
        required(row, status_, "status");
        look_at_key(row);
        look_at_address(row);
        look_at_labels(row);
    }

    std::vector<std::string> problems;

private:
    void say(std::string_view what) { problems.push_back(std::string(name_).append(": ").append(what)); }

    void required(const LibraryRow& row, std::size_t column, std::string_view name) {
        if (!row.values[column])
            say(std::string("no ").append(name).append(" (Null)"));
    }
    void look_at_key(const LibraryRow& row) {
        const auto& key = row.values[padkey_];
        if (key && !keys_.emplace(*key, name_).second)
            say("the same key as " + keys_.at(*key));
    }
    void look_at_address(const LibraryRow& row) {
        const auto& url = row.values[url_];
        if (!url)
            return;
        if (const std::string problem = site_address_problem(*url); !problem.empty())
            say(problem);
        const auto [first, is_new] = addresses_.emplace(site_address_key(*url), name_);
        if (!is_new)
            say("the same address as " + first->second);
    }
    void look_at_labels(const LibraryRow& row) {
        const auto& status = row.values[status_];
        if (status && *status != "N" && *status != "Y" && *status != "P")
            say("unknown status \"" + *status + "\"");
        const auto& category = row.values[softtype_];
        if (category && !category->empty() &&
            std::find(category_labels.begin(), category_labels.end(), *category) == category_labels.end())
            say("unknown category \"" + *category + "\"");
        if (!row.values[pad_])
            say("in neither list, for pad is Null");
    }

    std::size_t padkey_;
    std::size_t url_;
    std::size_t description_;
    std::size_t status_;
    std::size_t softtype_;
    std::size_t pad_;
    std::string name_;
    std::unordered_map<std::string, std::string> keys_;
    std::unordered_map<std::string, std::string> addresses_;
};

} // namespace

std::vector<std::string> check_library(const LibraryFile& library) {
    Check check{library};
    for (const std::string& damage : library.damages())
        check.problems.push_back("the file: " + damage);
    library.for_each([&check](const LibraryRow& row) { check.look_at(row); });
    return std::move(check.problems);
}

} // namespace kestrune
