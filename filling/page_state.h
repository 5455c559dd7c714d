#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// What a window knows of the forms on the pages it has shown: for each "<form " tag the page it stood on and
// its action as written, or the marker below for a page made of frames. It grows from page to page until a
// site is opened or a capture has used an entry; a new page alone does not empty it.
struct FormTable {
    static constexpr std::string_view frame_marker = "*frame*";

    int lngFormCount = 0;
    // Entries below lngFormCount count; what stands behind them is left over.
    std::vector<std::string> astrFormPageUrl;
    std::vector<std::string> astrFormAction;

    void append(std::string_view page_url, std::string_view action) {
        const auto used = static_cast<std::size_t>(lngFormCount);
        astrFormPageUrl.resize(used);
        astrFormAction.resize(used);
        astrFormPageUrl.emplace_back(page_url);
        astrFormAction.emplace_back(action);
        ++lngFormCount;
    }
};

// The state of page processing in one window.
struct PageState : FormTable {
    std::string gstrCurMode;    // "Playback" while a site is played; anything else is ordinary browsing
    std::string strLastUrl;     // address of the last document processed
    std::string strCurDocUrl;   // address of the document that completed last
    bool bFindLinkFlag = false; // the search for the site's submission link is armed
    bool bAutoFillFlag = false; // a form replay is still pending for this site; read by the capture alone
};

inline constexpr std::string_view playback_mode = "Playback";

} // namespace kestrune
