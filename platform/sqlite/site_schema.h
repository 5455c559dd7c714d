#pragma once

#include "platform/site_row.h"

#include <string>
#include <vector>

namespace kestrune {

// Creates a site library with these rows. It comes into being whole or not at all, and a file that is there
// already is never touched. Throws DatabaseError.
void create_site_library(const std::string& path, const std::vector<SiteRow>& rows);

class SqliteConnection;

// Gives a table tblSubmitList, or referral2, that has the program's columns the indexes below. Throws
// DatabaseError.
void create_site_indexes(SqliteConnection& database);
void create_referral_indexes(SqliteConnection& database);

// Indexes of a site library that its statements name. A library works without them, slower.
namespace site_index {
inline constexpr const char* queue_with_pad = "queue_with_pad";
inline constexpr const char* queue_without_pad = "queue_without_pad";
inline constexpr const char* category_queue_with_pad = "category_queue_with_pad";
inline constexpr const char* category_queue_without_pad = "category_queue_without_pad";
inline constexpr const char* count_with_pad = "count_with_pad";
inline constexpr const char* count_without_pad = "count_without_pad";
inline constexpr const char* list_with_pad = "list_with_pad";
inline constexpr const char* list_without_pad = "list_without_pad";
} // namespace site_index

} // namespace kestrune
