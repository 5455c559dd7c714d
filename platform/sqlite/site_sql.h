#pragma once

#include "platform/database.h"
#include "platform/statement.h"

#include <string>
#include <vector>

namespace kestrune {

// A statement in SQLite's own words. Every select but the count has the row's number as its first column.
struct SiteSql {
    std::string indexed; // by way of the indexes of site_schema.h; empty when the planner finds its way alone
    std::string plain;   // the same rows in the same order from any database with the columns
    std::vector<DatabaseValue> values; // bound to either, from 1
    const char* table = nullptr;       // where rows are changed; null when they cannot be
};

SiteSql site_sql(const Statement& statement);

// The terms that say which sites are in which index and in which result; SQLite takes an index for a query
// only when they are spelt alike.
namespace site_terms {
inline constexpr const char* queued = "status = 'N' COLLATE NOCASE";
inline constexpr const char* with_pad = "pad = 'PAD' COLLATE NOCASE";
inline constexpr const char* without_pad = "pad <> 'PAD' COLLATE NOCASE";
} // namespace site_terms

} // namespace kestrune
