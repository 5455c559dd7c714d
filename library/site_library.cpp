#include "library/site_library.h"

#include <utility>

namespace kestrune {

std::string SqlQuote(std::string_view text) { return "'" + std::string(text) + "'"; }

std::string PadFilter(bool padEnabled) { return (padEnabled ? "PAD = " : "PAD <> ") + SqlQuote("PAD"); }

SiteLibrary::SiteLibrary(Database& database, const Files& files, std::string folder)
    : database_(database), files_(files), folder_(std::move(folder)) {}

void SiteLibrary::LoadSiteList(std::string_view /*dbName*/, ListView& /*listView*/, bool /*padEnabled*/,
                               int& /*counter*/) {}

bool SiteLibrary::DeleteSiteRecord(std::string_view /*dbName*/, std::string_view /*listKey*/) {
    return false;
}

} // namespace kestrune
