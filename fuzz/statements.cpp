#include "fuzz/targets.h"

#include "platform/database.h"
#include "platform/statement.h"

#include <type_traits>

namespace kestrune::fuzz {
namespace {

std::string spelled(const SiteFilter& filter) {
    std::string text = filter.pad ? "PAD = 'PAD'" : "PAD <> 'PAD'";
    for (std::size_t i = 0; i < filter.categories.size(); ++i)
        text += (i == 0 ? " and (softtype = '" : " or softtype = '") + filter.categories[i] + "'";
    return filter.categories.empty() ? text : text + ")";
}

std::string spelled(const Statement& statement) {
    const std::string sites = "select * from tblSubmitList ";
    return std::visit(
        [&sites](const auto& shape) -> std::string {
            using Shape = std::decay_t<decltype(shape)>;
            if constexpr (std::is_same_v<Shape, SiteByKey>)
                return sites + "where padkey = " + std::to_string(shape.padkey);
            else if constexpr (std::is_same_v<Shape, SitesByUrl>)
                return sites + "where url = '" + shape.url + "'";
            else if constexpr (std::is_same_v<Shape, SiteList>)
                return sites + "where " + spelled(shape.filter) + " order by description";
            else if constexpr (std::is_same_v<Shape, SiteQueue>)
                return sites + "where status = 'N' and " + spelled(shape.filter) +
                       " order by referral desc, linkfound desc, softtype, description";
            else if constexpr (std::is_same_v<Shape, SiteQueueCount>)
                return "select count(*) as cnt from tblSubmitList where status = 'N' and " +
                       spelled(shape.filter);
            else if constexpr (std::is_same_v<Shape, AllSites>)
                return sites + "order by url";
            else
                return "select * from referral2 where url = '" + shape.url + "' or url = '" +
                       shape.alternative + "'";
        },
        statement);
}

} // namespace

void read_statements(std::string_view input) {
    Statement statement;
    try {
        statement = parse_statement(input);
    } catch (const DatabaseError&) {
        return;
    }
    const std::string text = spelled(statement);
    require(parse_statement(text) == statement, "a statement spelled out reads as itself");
    // Leading zeros of a key are the only other spelling.
    if (!std::holds_alternative<SiteByKey>(statement))
        require(text == input, "a text that is read holds its values and nothing else");
}

} // namespace kestrune::fuzz
