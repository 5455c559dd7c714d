#pragma once

#include "platform/control.h"
#include "platform/files.h"
#include "platform/form.h"
#include "platform/user_interface.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

class FrmPreference;

// What a limit on the length of a text counts.
enum class LimitOf : std::uint8_t { text, address }; // an address counts from behind its "://"

// One field of the product profile.
struct ProfileField {
    std::string_view element; // tag in the profile's file, exactly as it is written there
    TextBox FrmPreference::*box;
    std::string_view pad_tag; // where a PAD file has the value; "" when it has none
    std::string_view label;   // in the dialog
    int limit = 0;            // most characters that PAD allows, 0 where it sets no number
    LimitOf limit_of = LimitOf::text;
};

inline constexpr std::size_t profile_field_count = 27;
// In the order of the profile's file.
[[nodiscard]] const std::array<ProfileField, profile_field_count>& ProfileFields();

// The dialog "Setting". Loaded and mostly hidden, it is at the same time the product profile of the running
// program: form filling reads the boxes, and whatever stands in them counts, saved or not.
class FrmPreference : public Form {
public:
    // Both outlive the dialog.
    FrmPreference(UserInterface& ui, const Files& files);

    TextBox txtPADUrl{"txtPADUrl"};
    TextBox txtHomeUrl{"txtHomeUrl"};
    TextBox txtProgramName{"txtProgramName"};
    TextBox txtAuthorEmail{"txtAuthorEmail"};
    TextBox txtAppInfoUrl{"txtAppInfoUrl"};
    TextBox txtCompanyName{"txtCompanyName"};
    TextBox txtShortDesc{"txtShortDesc", true};
    TextBox txtLongDesc{"txtLongDesc", true};
    TextBox txtProgramVersion{"txtProgramVersion"};
    TextBox txtDownloadUrl{"txtDownloadUrl"};
    TextBox txtFirstName{"txtFirstName"};
    TextBox txtLastName{"txtLastName"};
    TextBox txtSizeBytes{"txtSizeBytes"};
    TextBox txtSizeKbytes{"txtSizeKbytes"};
    TextBox txtScreenUrl{"txtScreenUrl"};
    TextBox txtKeywords{"txtKeywords", true};
    TextBox txtShareItProdId{"txtShareItProdId"};
    TextBox txtRegNowProdId{"txtRegNowProdId"};
    TextBox txteSellProdId{"txteSellProdId"};
    TextBox txtL1Keyword{"txtL1Keyword"};
    TextBox txtL2Keyword{"txtL2Keyword"};
    TextBox txtRequirement{"txtRequirement", true};
    TextBox txtRelYear{"txtRelYear"};
    TextBox txtRelMonth{"txtRelMonth"};
    TextBox txtRelDay{"txtRelDay"};
    TextBox txtPrice{"txtPrice"};
    TextBox txtProgramType{"txtProgramType"};

    Button cmdPad{"cmdPad", "Retrieve PAD"};
    Button cmdUndoPad{"cmdUndoPad", "Undo import"};
    Button cmdSave{"cmdSave", "Save"};
    Button cmdCancel{"cmdCancel", "Cancel"};

    // Set when the dialog was left by Save.
    bool bSaved = false;

    // Lets the user pick a PAD file and fills every box from it; boxes that PAD knows nothing of are emptied.
    // A file that is missing or cannot be read is told of and changes nothing.
    void cmdPad_Click();
    // Puts all boxes back as they were before the last import. Imports can be undone one after the other
    // until the profile is saved.
    void cmdUndoPad_Click();

    // Prepares the dialog for being shown.
    void prepare();
    // The profile has been saved: imports so far are final.
    void forget_imports();

private:
    using Texts = std::array<std::string, profile_field_count>;

    void add_rows();
    void add_hint(TextBox& box, std::string caption);
    void count_characters(const ProfileField& field);
    [[nodiscard]] Texts texts() const;
    void import(std::string_view text, std::string_view file_name);

    UserInterface& ui_;
    const Files& files_;
    Label lblImport{"lblImport", ""};
    std::vector<std::unique_ptr<Label>> hints_;
    std::vector<Texts> before_imports_;
};

// Text of the profile's file, which ends without a line break. Values stand as they are.
[[nodiscard]] std::string BuildProfileXml(const FrmPreference& profile);

// Sets every box from the text of a profile's file; what is missing there becomes "".
void ReadProfileXml(std::string_view text, FrmPreference& profile);

// The text between the first <tag> and the </tag> after it, in any letter case, as it stands: entities and
// CDATA marks included. "" when either is missing; a tag with attributes or blanks inside is not found.
[[nodiscard]] std::string GetTagValue(std::string_view text, std::string_view tag);

// Menu entry "Setting": shows the dialog, which the caller has placed. Save hands the profile's text to
// `write`; after Cancel the boxes keep what the user left in them.
void mnuSetting_Click(FrmPreference& profile, UserInterface& ui, StatusBar& status,
                      const std::function<void(std::string_view text)>& write);

} // namespace kestrune
