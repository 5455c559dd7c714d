#pragma once

#include "platform/control.h"
#include "platform/list_view.h"
#include "sessions/record_session.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Told when a button of the record lists is pressed while nothing is selected.
inline constexpr std::string_view nothing_selected = "Please select a record session from the list first!";

// A record with this name asks for a generated one: a new entry gets "Session" and a number, an entry that is
// there keeps the name it has.
inline constexpr std::string_view generated_name = "*sysgen*";

// What a window counts about its lists, and what its parent has to know.
struct RecordCounters {
    int glngNoOfPermanentRecord = 0;
    int glngNoOfPadRecord = 0;
    int glngNoOfNonPadRecord = 0;
    int temporary_records = 0;    // captured or bookmarked so far; only grows, so that names are never reused
    int generated_names = 0;      // names given for "*sysgen*" so far
    bool gbRecordChanged = false; // this window changed the permanent records
};

// The selected entry of any of the four lists.
struct SelectedEntry {
    bool found = false;
    std::string key;
    std::string text;                // name of a record, description of a site
    std::string url;                 // the "Url" or "url" sub-item
    std::vector<std::string> fields; // all sub-items, in the list's order
};
// list may be null, which is no selection.
[[nodiscard]] SelectedEntry ReadSelectedEntry(const ListView* list);

// Columns of the two record lists, and of the two site lists.
[[nodiscard]] std::vector<ListView::Column> RecordColumns();
[[nodiscard]] std::vector<ListView::Column> SiteColumns();

// The record behind an entry of a record list. `list` is the entry's own.
[[nodiscard]] RecordSession RecordOf(const ListView& list, const ListItem& item);
// The entry that stands for a record under a key.
[[nodiscard]] ListItem ItemOf(std::string key, RecordSession record);

// Adds a record under UrlToRecordKey of its address. False, and nothing is added, when that key is taken.
bool AddRecordToList(ListView& list, RecordSession record);

// Overwrites the entry with this key; a record named "*sysgen*" takes the entry's name. False when no entry
// has the key.
bool UpdateRecordInList(ListView& list, std::string_view key, RecordSession& record);

// Overwrites the entry with this key, or adds the record as a new one under the key of its address, named
// "Session" and the next number when it asks for a name. `record` holds the name used. True when the entry
// was there.
bool PutRecordInList(ListView& list, std::string_view key, RecordSession& record, RecordCounters& counters);

} // namespace kestrune
