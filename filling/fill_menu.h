#pragma once

#include "filling/live_page.h"
#include "filling/pad_matcher.h"
#include "library/product_profile.h"
#include "platform/menu.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// One text of the profile that the right-click menu offers.
struct FillEntry {
    std::string_view name; // of the menu item
    std::int32_t index = 0;
    TextBox FrmPreference::*box = nullptr;
    std::string_view caption;
};
// In the order of the indexes, 1 to 25.
[[nodiscard]] const std::vector<FillEntry>& FillEntries();

inline constexpr std::int32_t fill_nothing = 0; // the menu was dismissed
inline constexpr std::int32_t fill_category = 24;
inline constexpr std::int32_t fill_program_type = 25;
inline constexpr std::int32_t fill_all = 99;

// The entries of a window's right-click menu.
struct FillMenu {
    MenuItem mnuProduct{"mnuProduct", "Single-input"};
    MenuItem mnuAll{"mnuAll", "Multi-input"};
    std::vector<std::unique_ptr<MenuItem>> product_items; // those of mnuProduct

    FillMenu();

    // What choosing an entry does: gets its index.
    std::function<void(std::int32_t index)> on_choice;

    // Puts the present texts of the profile into the captions, shortened.
    void show_values(const FrmPreference& profile);
};

// What the image must hold for the entry to be carried out.
[[nodiscard]] PageParts parts_for_entry(std::int32_t glngMnuIdx);

// Carries out the chosen entry on the page's own document. fill_all fills the form of the active element and
// returns what was decided; every other entry goes into the active element, also when its text is empty: a
// drop-down list takes only a category or a licence type, as the first option that fits. An element that the
// user cannot type into takes nothing.
std::optional<FillReport> FillFromMenu(LivePage& page, const FrmPreference& profile, std::int32_t glngMnuIdx);

// The report for people, one line for each field.
[[nodiscard]] std::string FillReportText(const FillReport& report);

} // namespace kestrune
