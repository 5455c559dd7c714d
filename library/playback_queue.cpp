#include "library/playback_queue.h"

#include "platform/statement.h"

#include <array>
#include <utility>

namespace kestrune {
namespace {

std::string category_list(const QueueSwitches& switches) {
    const std::array<const MenuItem*, category_labels.size()> menus{
        &switches.mnuSelectGeneral,  &switches.mnuSelectGame,     &switches.mnuSelectDeveloper,
        &switches.mnuSelectBusiness, &switches.mnuSelectFreeware, &switches.mnuSelectSpecial};
    std::string list;
    for (std::size_t i = 0; i < menus.size(); ++i) {
        if (!menus[i]->Checked.get())
            continue;
        if (!list.empty())
            list += " or ";
        list += "softtype = " + SqlQuote(category_labels[i]);
    }
    return list;
}

std::optional<NextSite> first_site(SiteLibrary& library, std::string_view dbName, const std::string& where) {
    const auto rows = library.database().open(
        library.path(dbName), "select * from tblSubmitList where status = " + SqlQuote("N") + " and " +
                                  where + " order by referral desc, linkfound desc, softtype, description");
    if (rows->at_end())
        return std::nullopt;
    return NextSite{site_key(*rows), required_text(*rows, "url"), required_text(*rows, "description")};
}

} // namespace

std::string QueueFilter(const QueueSwitches& switches) {
    std::string filter;
    if (switches.mnuWithPAD.Checked.get())
        filter = PadFilter(true);
    if (switches.mnuNoPAD.Checked.get())
        filter = PadFilter(false);
    const std::string categories = category_list(switches);
    if (!categories.empty())
        filter += " and (" + categories + ")";
    return filter;
}

std::optional<NextSite> SelectNextSite(SiteLibrary& library, std::string_view dbName,
                                       const QueueSwitches& switches, StatusBar& StatusBar1) {
    std::optional<NextSite> next;
    run_database_step("SelectNextSite", [&] {
        const std::string where = QueueFilter(switches);
        next = first_site(library, dbName, where);
        const auto count = library.database().open(
            library.path(dbName),
            "select count(*) as cnt from tblSubmitList where status = " + SqlQuote("N") + " and " + where);
        const std::string suffix =
            switches.mnuWithPAD.Checked.get() ? " PAD Sites left" : " Non-PAD Sites left";
        if (!count->at_end())
            StatusBar1.set_text(3, required_text(*count, "cnt") + suffix);
    });
    return next;
}

} // namespace kestrune
