#include "filling/fill_menu.h"

#include "platform/code_page.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

using F = FrmPreference;

constexpr std::size_t longest_value = 40; // characters shown

// On one line, at most so many characters of it.
std::string shortened(std::string_view text) {
    std::string shown;
    std::size_t characters = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = character_length(text, at);
        const bool blank = static_cast<unsigned char>(text[at]) <= ' ';
        if (!blank || (!shown.empty() && shown.back() != ' ')) {
            if (characters == longest_value)
                return shown + "...";
            shown += blank ? std::string_view(" ") : text.substr(at, length);
            ++characters;
        }
        at += length;
    }
    while (!shown.empty() && shown.back() == ' ')
        shown.pop_back();
    return shown;
}

bool takes_text(const PageElement& element) {
    constexpr std::array<std::string_view, 3> types{"text", "textarea", "password"};
    return std::find(types.begin(), types.end(), lower_case(element.type)) != types.end();
}

void fill_active(LivePage& page, const FrmPreference& profile, const FillEntry& entry) {
    PageElement& field = page.document()->active_element;
    const std::string& value = (profile.*entry.box).Text.get();
    if (field.locked)
        return;
    if (lower_case(field.type) == "select-one") {
        const bool for_lists = entry.index == fill_category || entry.index == fill_program_type;
        if (for_lists && SelectOptionByPattern(page, field, value))
            page.note({PageEdit::Kind::focus, field.ref});
    } else if (takes_text(field)) {
        page.note({PageEdit::Kind::focus, field.ref});
        page.set_value(field, value);
    }
}

std::string line_of(const FieldReport& field) {
    const std::string name = field.name.empty() ? "(no name)" : shortened(field.name);
    const std::string label =
        field.label.empty() ? "no label" : "\"" + shortened(field.label) + "\" (" + field.label_from + ")";
    const std::string row = field.locked            ? "the page lets nobody write there"
                            : field.pattern.empty() ? "no row of the table matches"
                                                    : field.pattern;
    const std::string value = field.written ? "\"" + shortened(field.value) + "\"" : "left as it is";
    return name + ": " + label + " - " + row + " - " + value;
}

} // namespace

const std::vector<FillEntry>& FillEntries() {
    static const std::vector<FillEntry> entries{
        {"mnuPadUrl", 1, &F::txtPADUrl, "PAD file address"},
        {"mnuProgramName", 2, &F::txtProgramName, "Program name"},
        {"mnuAuthorEmail", 3, &F::txtAuthorEmail, "Author's e-mail"},
        {"mnuAppInfoUrl", 4, &F::txtAppInfoUrl, "Program's web page"},
        {"mnuCompanyName", 5, &F::txtCompanyName, "Company name"},
        {"mnuShortDesc", 6, &F::txtShortDesc, "Short description"},
        {"mnuLongDesc", 7, &F::txtLongDesc, "Long description"},
        {"mnuProgramVersion", 8, &F::txtProgramVersion, "Version"},
        {"mnuDownloadUrl", 9, &F::txtDownloadUrl, "Download address"},
        {"mnuFirstName", 10, &F::txtFirstName, "Contact's first name"},
        {"mnuLastName", 11, &F::txtLastName, "Contact's last name"},
        {"mnuSizeBytes", 12, &F::txtSizeBytes, "Download size in bytes"},
        {"mnuSizeKbytes", 13, &F::txtSizeKbytes, "Download size in KB"},
        {"mnuScreenUrl", 14, &F::txtScreenUrl, "Screenshot address"},
        {"mnuKeywords", 15, &F::txtKeywords, "Keywords"},
        {"mnuShareItProdId", 16, &F::txtShareItProdId, "ShareIt product number"},
        {"mnuRegNowProdId", 17, &F::txtRegNowProdId, "RegNow product number"},
        {"mnueSellProdId", 18, &F::txteSellProdId, "eSell product number"},
        {"mnuRequirement", 19, &F::txtRequirement, "System requirements"},
        {"mnuProgram_Release_Year", 20, &F::txtRelYear, "Release year"},
        {"mnuProgram_Release_Month", 21, &F::txtRelMonth, "Release month"},
        {"mnuProgram_Release_Day", 22, &F::txtRelDay, "Release day"},
        {"mnuPrice", 23, &F::txtPrice, "Price in US dollars"},
        {"mnuCategory", fill_category, &F::txtL2Keyword, "Category, also in a list"},
        {"mnuProgramType", fill_program_type, &F::txtProgramType, "Licence type, also in a list"},
    };
    return entries;
}

FillMenu::FillMenu() {
    for (const FillEntry& entry : FillEntries()) {
        auto& item = product_items.emplace_back(
            std::make_unique<MenuItem>(std::string(entry.name), std::string(entry.caption)));
        item->Click = [this, index = entry.index] {
            if (on_choice)
                on_choice(index);
        };
        mnuProduct.Items.push_back(item.get());
    }
    mnuAll.Click = [this] {
        if (on_choice)
            on_choice(fill_all);
    };
}

void FillMenu::show_values(const FrmPreference& profile) {
    const auto& entries = FillEntries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string value = shortened((profile.*entries[i].box).Text.get());
        product_items[i]->Caption =
            std::string(entries[i].caption) + ": " + (value.empty() ? "(empty)" : value);
    }
}

PageParts parts_for_entry(std::int32_t glngMnuIdx) {
    return {.links = false, .forms = true, .labels = glngMnuIdx == fill_all};
}

std::optional<FillReport> FillFromMenu(LivePage& page, const FrmPreference& profile,
                                       std::int32_t glngMnuIdx) {
    if (page.document() == nullptr || glngMnuIdx == fill_nothing)
        return std::nullopt;
    const ElementRef active = page.document()->active_element.ref;
    if (glngMnuIdx == fill_all) {
        FillReport report = FillAllFields(page, profile);
        // Pages that follow the focus while they are filled must not keep it elsewhere.
        if (!report.empty())
            page.note({PageEdit::Kind::focus, active});
        return report;
    }
    const auto& entries = FillEntries();
    const auto entry = std::find_if(entries.begin(), entries.end(), [glngMnuIdx](const FillEntry& candidate) {
        return candidate.index == glngMnuIdx;
    });
    if (entry != entries.end() && active.element != 0)
        fill_active(page, profile, *entry);
    return std::nullopt;
}

std::string FillReportText(const FillReport& report) {
    std::string text;
    for (const FieldReport& field : report)
        text += line_of(field) + "\n";
    return text;
}

} // namespace kestrune
