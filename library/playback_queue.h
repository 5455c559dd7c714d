#pragma once

#include "library/site_library.h"
#include "platform/control.h"
#include "platform/menu.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune {

// The menu entries that select which sites are in the queue.
struct QueueSwitches {
    const MenuItem& mnuWithPAD;
    const MenuItem& mnuNoPAD;
    const MenuItem& mnuSelectGeneral;
    const MenuItem& mnuSelectGame;
    const MenuItem& mnuSelectDeveloper;
    const MenuItem& mnuSelectBusiness;
    const MenuItem& mnuSelectFreeware;
    const MenuItem& mnuSelectSpecial;
};

// The filter that the checked entries stand for. With both PAD entries checked the sites without PAD support
// are meant; with neither there is no PAD part, and the statement made of it finds no site. No category
// checked means every category, Null included; with any checked, Null is left out.
std::string QueueFilter(const QueueSwitches& switches);

struct NextSite {
    std::int32_t padkey = 0;
    std::string url;
    std::string description;
    friend bool operator==(const NextSite&, const NextSite&) = default;
};

// The first site of the queue, which is read from the database at each call; nothing when the queue is empty
// or the database fails. Shows in panel 3 of the status bar how many sites are left, that one included; the
// panel keeps its text when they cannot be counted.
std::optional<NextSite> SelectNextSite(SiteLibrary& library, std::string_view dbName,
                                       const QueueSwitches& switches, StatusBar& StatusBar1);

} // namespace kestrune
