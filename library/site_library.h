#pragma once

#include "platform/database.h"
#include "platform/diagnostics.h"
#include "platform/files.h"
#include "platform/list_view.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune {

class LibraryBackup;

// File name of the site library, in the program's folder.
inline constexpr std::string_view site_library_name = "SubmitList.mdb";

// "'" + text + "'". Nothing in the text is escaped: a value that holds an apostrophe breaks its statement,
// and the operation that uses it fails like any other.
std::string SqlQuote(std::string_view text);

// The filter that picks the sites with PAD support, or those without (a site whose column is Null is
// neither).
std::string PadFilter(bool padEnabled);

// Runs a step that works on a database. An error ends the step where it happens, silently but for the
// diagnostic channel; what the step has reached by then stays.
template <typename Step>
void run_database_step(std::string_view name, const Step& step) {
    try {
        step();
    } catch (const DatabaseError& error) {
        diagnostics::report(name, error.what());
    }
}

// A column of the current row that must hold a value. Throw DatabaseError when it is Null, and the key also
// when it is no 32-bit number.
std::string required_text(const Recordset& row, std::string_view column);
std::int32_t site_key(const Recordset& row);

// The key of a site's entry in a list: "K" and the site's key in decimal.
std::string ListKey(std::int32_t padkey);

// The statement that lists the sites a filter lets through, by description.
std::string SiteListStatement(std::string_view filter);

// The library of sites, opened afresh and let go in every operation. No operation throws: an error ends it
// silently with what it had reached, false before the row was found and true from then on, even when the
// write itself failed.
class SiteLibrary {
public:
    // folder is the program's own; all three outlive the library.
    SiteLibrary(Database& database, const Files& files, std::string folder);

    // Replaces the entries of the list by the sites with (or without) PAD support, by description; counter
    // counts them. An error leaves the entries added so far. When the database cannot be opened, list and
    // counter stay as they are.
    void LoadSiteList(std::string_view dbName, ListView& listView, bool padEnabled, int& counter);

    // listKey: see ListKey. Text that is no such key is an error like any other.
    bool UpdateSiteRecord(std::string_view dbName, std::string_view listKey, std::string_view description,
                          std::string_view url, std::string_view status, std::string_view softtype,
                          std::string_view note);
    bool DeleteSiteRecord(std::string_view dbName, std::string_view listKey);

    // Of several rows with this address the first one that the engine returns is changed, no other.
    bool UpdateSubmitStatus(std::string_view dbName, std::string_view url, std::string_view status,
                            std::string_view note);
    // The one writer of the column; no part of this version calls it.
    bool SetLinkFound(std::string_view dbName, std::string_view url, int value);

    // From now on the database is copied before the first deletion of the run and before each reset. backup
    // outlives the library.
    void keep_backups(LibraryBackup& backup) { backup_ = &backup; }
    // What a reset does first.
    void back_up(std::string_view dbName);

    [[nodiscard]] Database& database() const { return database_; }
    // Full path of a database beside the program.
    [[nodiscard]] std::string path(std::string_view dbName) const { return files_.path(folder_, dbName); }

private:
    Database& database_;
    const Files& files_;
    std::string folder_;
    LibraryBackup* backup_ = nullptr; // not owned
};

} // namespace kestrune
