#include "platform/statement.h"

#include "platform/database.h"

#include <charconv>
#include <optional>
#include <system_error>
#include <utility>

namespace kestrune {
namespace {

// Takes a text apart from its front. What does not match is left where it is.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool at_end() const { return rest_.empty(); }

    bool take(std::string_view literal) {
        if (!rest_.starts_with(literal))
            return false;
        rest_.remove_prefix(literal.size());
        return true;
    }

    std::optional<std::string> take_quoted() {
        if (!rest_.starts_with('\''))
            return std::nullopt;
        const auto end = rest_.find('\'', 1);
        if (end == std::string_view::npos)
            return std::nullopt;
        std::string value{rest_.substr(1, end - 1)};
        rest_.remove_prefix(end + 1);
        return value;
    }

    std::optional<std::int32_t> take_number() {
        std::int32_t value = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        if (error != std::errc{})
            return std::nullopt;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return value;
    }

private:
    std::string_view rest_;
};

// The categories stand in the order of their labels, so each at most once.
std::optional<std::vector<std::string>> read_categories(Reader& reader) {
    std::vector<std::string> categories;
    for (const std::string_view label : category_labels) {
        Reader ahead = reader;
        const bool more = categories.empty() || ahead.take(" or ");
        if (!more || !ahead.take("softtype = ") || ahead.take_quoted() != label)
            continue;
        reader = ahead;
        categories.emplace_back(label);
    }
    if (categories.empty() || !reader.take(")"))
        return std::nullopt;
    return categories;
}

std::optional<SiteFilter> read_filter(Reader& reader) {
    SiteFilter filter;
    if (reader.take("PAD <> 'PAD'"))
        filter.pad = false;
    else if (!reader.take("PAD = 'PAD'"))
        return std::nullopt;
    if (!reader.take(" and ("))
        return filter;
    auto categories = read_categories(reader);
    if (!categories)
        return std::nullopt;
    filter.categories = std::move(*categories);
    return filter;
}

std::optional<Statement> read_site_rows(Reader& reader) {
    if (reader.take("where padkey = ")) {
        if (const auto key = reader.take_number())
            return SiteByKey{*key};
        return std::nullopt;
    }
    if (reader.take("where url = ")) {
        if (auto url = reader.take_quoted())
            return SitesByUrl{std::move(*url)};
        return std::nullopt;
    }
    if (reader.take("where status = 'N' and ")) {
        auto filter = read_filter(reader);
        if (filter && reader.take(" order by referral desc, linkfound desc, softtype, description"))
            return SiteQueue{std::move(*filter)};
        return std::nullopt;
    }
    if (reader.take("where ")) {
        auto filter = read_filter(reader);
        if (filter && reader.take(" order by description"))
            return SiteList{std::move(*filter)};
        return std::nullopt;
    }
    if (reader.take("order by url"))
        return AllSites{};
    return std::nullopt;
}

std::optional<Statement> read_referrals(Reader& reader) {
    auto url = reader.take_quoted();
    if (!url || !reader.take(" or url = "))
        return std::nullopt;
    auto alternative = reader.take_quoted();
    if (!alternative)
        return std::nullopt;
    return ReferralsByUrl{std::move(*url), std::move(*alternative)};
}

std::optional<Statement> read_statement(Reader& reader) {
    if (reader.take("select * from tblSubmitList "))
        return read_site_rows(reader);
    if (reader.take("select count(*) as cnt from tblSubmitList where status = 'N' and ")) {
        if (auto filter = read_filter(reader))
            return SiteQueueCount{std::move(*filter)};
        return std::nullopt;
    }
    if (reader.take("select * from referral2 where url = "))
        return read_referrals(reader);
    return std::nullopt;
}

} // namespace

Statement parse_statement(std::string_view text) {
    Reader reader{text};
    auto statement = read_statement(reader);
    if (!statement || !reader.at_end())
        throw DatabaseError("a statement of no known shape: " + std::string(text));
    return std::move(*statement);
}

} // namespace kestrune
