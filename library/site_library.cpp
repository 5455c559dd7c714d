#include "library/site_library.h"

#include "library/library_backup.h"

#include <charconv>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

namespace kestrune {
namespace {

std::int32_t key_of(std::string_view listKey) {
    std::int32_t key = 0;
    const char* const end = listKey.data() + listKey.size();
    if (listKey.size() < 2)
        throw DatabaseError("no key of a site");
    const auto [last, error] = std::from_chars(listKey.data() + 1, end, key);
    if (error != std::errc{} || last != end)
        throw DatabaseError("no key of a site: " + std::string(listKey));
    return key;
}

std::string by_key(std::int32_t key) {
    return "select * from tblSubmitList where padkey = " + std::to_string(key);
}

std::string by_url(std::string_view url) {
    return "select * from tblSubmitList where url = " + SqlQuote(url);
}

ListItem site_entry(const Recordset& row) {
    ListItem entry;
    entry.Text = required_text(row, "description");
    entry.Key = ListKey(site_key(row));
    entry.SubItems.reserve(4);
    entry.SubItems.push_back(required_text(row, "url"));
    entry.SubItems.push_back(required_text(row, "status"));
    entry.SubItems.push_back(row.text("softtype").value_or(""));
    entry.SubItems.push_back(row.text("note").value_or(""));
    return entry;
}

} // namespace

std::string SqlQuote(std::string_view text) { return std::string("'").append(text).append("'"); }

std::string PadFilter(bool padEnabled) { return (padEnabled ? "PAD = " : "PAD <> ") + SqlQuote("PAD"); }

std::string required_text(const Recordset& row, std::string_view column) {
    auto text = row.text(column);
    if (!text)
        throw DatabaseError("Null where a value is required: " + std::string(column));
    return std::move(*text);
}

std::int32_t site_key(const Recordset& row) {
    const auto key = row.number("padkey");
    if (!key || *key < std::numeric_limits<std::int32_t>::min() ||
        *key > std::numeric_limits<std::int32_t>::max())
        throw DatabaseError("a site without a 32-bit key");
    return static_cast<std::int32_t>(*key);
}

std::string ListKey(std::int32_t padkey) { return std::string("K").append(std::to_string(padkey)); }

std::string SiteListStatement(std::string_view filter) {
    return "select * from tblSubmitList where " + std::string(filter) + " order by description";
}

SiteLibrary::SiteLibrary(Database& database, const Files& files, std::string folder)
    : database_(database), files_(files), folder_(std::move(folder)) {}

void SiteLibrary::LoadSiteList(std::string_view dbName, ListView& listView, bool padEnabled, int& counter) {
    run_database_step("LoadSiteList", [&] {
        const auto rows = database_.open(path(dbName), SiteListStatement(PadFilter(padEnabled)));
        const ListView::Bulk filling{listView};
        counter = 0;
        listView.clear();
        for (; !rows->at_end(); rows->move_next()) {
            if (!listView.add(site_entry(*rows)))
                throw DatabaseError("two sites with the same key");
            ++counter;
        }
    });
}

bool SiteLibrary::UpdateSiteRecord(std::string_view dbName, std::string_view listKey,
                                   std::string_view description, std::string_view url,
                                   std::string_view status, std::string_view softtype,
                                   std::string_view note) {
    bool found = false;
    run_database_step("UpdateSiteRecord", [&] {
        const auto row = database_.open(path(dbName), by_key(key_of(listKey)));
        if (row->at_end())
            return;
        found = true;
        row->set("description", std::string(description));
        row->set("url", std::string(url));
        row->set("status", std::string(status));
        row->set("softtype", std::string(softtype));
        row->set("note", std::string(note));
        row->update();
    });
    return found;
}

void SiteLibrary::back_up(std::string_view dbName) {
    if (backup_ != nullptr)
        backup_->BackUp(dbName);
}

bool SiteLibrary::DeleteSiteRecord(std::string_view dbName, std::string_view listKey) {
    if (backup_ != nullptr)
        backup_->BackUpBeforeDelete(dbName);
    bool found = false;
    run_database_step("DeleteSiteRecord", [&] {
        const auto row = database_.open(path(dbName), by_key(key_of(listKey)));
        if (row->at_end())
            return;
        found = true;
        row->delete_current();
    });
    return found;
}

bool SiteLibrary::UpdateSubmitStatus(std::string_view dbName, std::string_view url, std::string_view status,
                                     std::string_view note) {
    bool found = false;
    run_database_step("UpdateSubmitStatus", [&] {
        const auto row = database_.open(path(dbName), by_url(url));
        if (row->at_end())
            return;
        found = true;
        row->set("status", std::string(status));
        row->set("note", std::string(note));
        row->update();
    });
    return found;
}

bool SiteLibrary::SetLinkFound(std::string_view dbName, std::string_view url, int value) {
    bool found = false;
    run_database_step("SetLinkFound", [&] {
        const auto row = database_.open(path(dbName), by_url(url));
        if (row->at_end())
            return;
        found = true;
        row->set("linkfound", std::int64_t{value});
        row->update();
    });
    return found;
}

} // namespace kestrune
