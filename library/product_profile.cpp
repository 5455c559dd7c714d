#include "library/product_profile.h"

#include "platform/code_page.h"
#include "platform/decoding.h"
#include "platform/text_file.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace kestrune {
namespace {

constexpr int dialog_width = 10800;
constexpr int dialog_height = 9600;

using F = FrmPreference;

// The blanks in Contact_First_Name and the lower case of company_name are what files in use have.
constexpr std::array<ProfileField, profile_field_count> fields{{
    {"Pad", &F::txtPADUrl, "Application_XML_File_URL", "PAD file address:"},
    {"Home", &F::txtHomeUrl, "Company_WebSite_URL", "Company web site:", 120, LimitOf::address},
    {"Program_Name", &F::txtProgramName, "Program_Name", "Program name:", 40},
    {"Author_Email", &F::txtAuthorEmail, "Author_Email", "Author's e-mail:", 115},
    {"Application_Info_URL", &F::txtAppInfoUrl, "Application_Info_URL", "Program's web page:", 120,
     LimitOf::address},
    {"company_name", &F::txtCompanyName, "company_name", "Company name:", 40},
    {"Char_Desc_80", &F::txtShortDesc, "Char_Desc_80", "Short description:", 80},
    {"Char_Desc_450", &F::txtLongDesc, "Char_Desc_450", "Long description:", 450},
    {"Program_Version", &F::txtProgramVersion, "Program_Version", "Version:", 15},
    {"Primary_Download_URL", &F::txtDownloadUrl, "Primary_Download_URL", "Download address:", 120,
     LimitOf::address},
    {"Contact_First_Name ", &F::txtFirstName, "Contact_First_Name", "Contact's first name:", 30},
    {"Contact_Last_Name", &F::txtLastName, "Contact_Last_Name", "Contact's last name:", 30},
    {"File_Size_Bytes", &F::txtSizeBytes, "File_Size_Bytes", "Download size in bytes:", 16},
    {"File_Size_K", &F::txtSizeKbytes, "File_Size_K", "Download size in KB:", 12},
    {"Application_Screenshot_URL", &F::txtScreenUrl, "Application_Screenshot_URL", "Screenshot address:"},
    {"Keywords", &F::txtKeywords, "Keywords", "Keywords:", 250},
    {"ShareItProdId", &F::txtShareItProdId, "", "ShareIt product number:"},
    {"RegNowProdId", &F::txtRegNowProdId, "", "RegNow product number:"},
    {"eSellProdId", &F::txteSellProdId, "", "eSell product number:"},
    {"Program_Specific_Category", &F::txtL1Keyword, "Program_Specific_Category", "Main category:"},
    {"Program_Categories", &F::txtL2Keyword, "Program_Categories", "Detailed category:"},
    {"Requirement", &F::txtRequirement, "", "System requirements:", 100},
    {"Program_Release_Year", &F::txtRelYear, "Program_Release_Year", "Release year:", 4},
    {"Program_Release_Month", &F::txtRelMonth, "Program_Release_Month", "Release month:", 2},
    {"Program_Release_Day", &F::txtRelDay, "Program_Release_Day", "Release day:", 2},
    {"Program_Cost_Dollars", &F::txtPrice, "Program_Cost_Dollars", "Price in US dollars:"},
    {"Program_Type", &F::txtProgramType, "Program_Type", "Licence type:"},
}};

struct DialogRow {
    std::string_view group;
    TextBox F::*box;
};

constexpr std::array<DialogRow, profile_field_count> dialog_rows{{
    {"Program", &F::txtProgramName},
    {"Program", &F::txtProgramVersion},
    {"Program", &F::txtProgramType},
    {"Program", &F::txtPrice},
    {"Program", &F::txtL1Keyword},
    {"Program", &F::txtL2Keyword},
    {"Program", &F::txtRequirement},
    {"Descriptions", &F::txtShortDesc},
    {"Descriptions", &F::txtLongDesc},
    {"Descriptions", &F::txtKeywords},
    {"Web addresses", &F::txtAppInfoUrl},
    {"Web addresses", &F::txtDownloadUrl},
    {"Web addresses", &F::txtScreenUrl},
    {"Web addresses", &F::txtPADUrl},
    {"Web addresses", &F::txtHomeUrl},
    {"Author", &F::txtCompanyName},
    {"Author", &F::txtFirstName},
    {"Author", &F::txtLastName},
    {"Author", &F::txtAuthorEmail},
    {"Download and release", &F::txtSizeBytes},
    {"Download and release", &F::txtSizeKbytes},
    {"Download and release", &F::txtRelYear},
    {"Download and release", &F::txtRelMonth},
    {"Download and release", &F::txtRelDay},
    {"Shop numbers", &F::txtShareItProdId},
    {"Shop numbers", &F::txtRegNowProdId},
    {"Shop numbers", &F::txteSellProdId},
}};

constexpr std::string_view introduction =
    "These texts are typed into submission forms. \"Retrieve PAD\" takes them from your program's PAD file.";
constexpr std::string_view list_hint =
    "Chooses in drop-down lists: the first option that holds it. \"|\" parts alternatives, \"&\" words.";

const ProfileField& field_of(TextBox F::*box) {
    for (const ProfileField& field : fields) {
        if (field.box == box)
            return field;
    }
    return fields.front();
}

int characters_in(std::string_view text) {
    int count = 0;
    for (std::size_t at = 0; at < text.size(); at += character_length(text, at))
        ++count;
    return count;
}

std::string_view counted_part(std::string_view text, LimitOf limit_of) {
    constexpr std::string_view separator = "://";
    const std::size_t at = limit_of == LimitOf::address ? text.find(separator) : std::string_view::npos;
    return at == std::string_view::npos ? text : text.substr(at + separator.size());
}

std::string last_part(std::string_view path) {
    const std::size_t slash = path.find_last_of("/\\");
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

bool only_blanks(std::string_view text) { return text.find_first_not_of(' ') == std::string_view::npos; }

} // namespace

const std::array<ProfileField, profile_field_count>& ProfileFields() { return fields; }

FrmPreference::FrmPreference(UserInterface& ui, const Files& files)
    : Form("frmPreference", "Setting"), ui_(ui), files_(files) {
    Width = dialog_width;
    Height = dialog_height;
    add_rows();
    for (const ProfileField& field : fields)
        (this->*field.box).AccessibleName = field.label.substr(0, field.label.size() - 1);
    Buttons = {&cmdPad, &cmdUndoPad, &cmdSave, &cmdCancel};
    Default = &cmdSave;
    Cancel = &cmdCancel;
    FirstFocus = &txtProgramName;
    cmdUndoPad.Shortcut = "Ctrl+Z";
    cmdPad.Click = [this] { cmdPad_Click(); };
    cmdUndoPad.Click = [this] { cmdUndoPad_Click(); };
    cmdSave.Click = [this] {
        bSaved = true;
        Hide();
    };
    cmdCancel.Click = [this] { Hide(); };
    prepare();
}

void FrmPreference::add_rows() {
    Rows.push_back({"", &lblImport});
    for (const DialogRow& row : dialog_rows) {
        const ProfileField& field = field_of(row.box);
        TextBox& box = this->*row.box;
        Rows.push_back({std::string(field.label), &box, std::string(row.group)});
        if (field.limit > 0) {
            add_hint(box, "");
            box.Follow = [this, &field] { count_characters(field); };
            count_characters(field);
        }
    }
    for (TextBox* const box : {&txtL1Keyword, &txtL2Keyword, &txtProgramType})
        add_hint(*box, std::string(list_hint));
}

void FrmPreference::add_hint(TextBox& box, std::string caption) {
    const auto row =
        std::find_if(Rows.begin(), Rows.end(), [&box](const Row& one) { return one.Field == &box; });
    if (row != Rows.end())
        row->Hint =
            hints_.emplace_back(std::make_unique<Label>(box.Name + ".Hint", std::move(caption))).get();
}

void FrmPreference::count_characters(const ProfileField& field) {
    const TextBox& box = this->*field.box;
    const int count = characters_in(counted_part(box.Text.get(), field.limit_of));
    std::string caption = std::to_string(count) + " of " + std::to_string(field.limit) + " characters";
    if (field.limit_of == LimitOf::address)
        caption += " after \"://\"";
    if (count > field.limit)
        caption += ", " + std::to_string(count - field.limit) + " too many";
    for (const auto& hint : hints_) {
        if (hint->Name == box.Name + ".Hint")
            hint->Caption = caption;
    }
}

void FrmPreference::prepare() {
    bSaved = false;
    lblImport.Caption = std::string(introduction);
    cmdUndoPad.Enabled = !before_imports_.empty();
}

void FrmPreference::forget_imports() {
    before_imports_.clear();
    cmdUndoPad.Enabled = false;
}

FrmPreference::Texts FrmPreference::texts() const {
    Texts all;
    for (std::size_t i = 0; i < fields.size(); ++i)
        all[i] = (this->*fields[i].box).Text.get();
    return all;
}

void FrmPreference::cmdPad_Click() {
    const std::string path = ui_.OpenFileDialog("PAD File|*.xml");
    if (only_blanks(path))
        return;
    if (!files_.file_exists(path)) {
        ui_.MessageBox("File not found!");
        return;
    }
    const auto bytes = files_.read(path);
    if (!bytes || bytes->empty()) {
        ui_.MessageBox("File cannot be read!");
        return;
    }
    import(decode_xml(*bytes), last_part(path));
}

void FrmPreference::import(std::string_view text, std::string_view file_name) {
    before_imports_.push_back(texts());
    int found = 0;
    for (const ProfileField& field : fields) {
        std::string value = field.pad_tag.empty() ? std::string() : GetTagValue(text, field.pad_tag);
        found += value.empty() ? 0 : 1;
        (this->*field.box).Text = std::move(value);
    }
    cmdUndoPad.Enabled = true;
    lblImport.Caption = (found == 0 ? "No PAD text was found" : std::to_string(found) + " texts were found") +
                        " in " + std::string(file_name) +
                        ". \"Undo import\" brings back what stood here before.";
}

void FrmPreference::cmdUndoPad_Click() {
    if (before_imports_.empty())
        return;
    Texts earlier = std::move(before_imports_.back());
    before_imports_.pop_back();
    for (std::size_t i = 0; i < fields.size(); ++i)
        (this->*fields[i].box).Text = std::move(earlier[i]);
    cmdUndoPad.Enabled = !before_imports_.empty();
    lblImport.Caption = "The texts stand as they did before the import.";
}

std::string BuildProfileXml(const FrmPreference& profile) {
    std::string text = "<?xml version=\"1.0\"?>\r\n<Kestrune>\r\n    <Type>Preference</Type>\r\n";
    for (const ProfileField& field : fields) {
        text.append("    <").append(field.element).append(">");
        text.append((profile.*field.box).Text.get());
        text.append("</").append(field.element).append(">\r\n");
    }
    return text.append("</Kestrune>");
}

void ReadProfileXml(std::string_view text, FrmPreference& profile) {
    for (const ProfileField& field : fields)
        (profile.*field.box).Text = GetXmlTag(text, field.element);
}

std::string GetTagValue(std::string_view text, std::string_view tag) { return GetXmlTag(text, tag); }

void mnuSetting_Click(FrmPreference& profile, UserInterface& ui, StatusBar& status,
                      const std::function<void(std::string_view text)>& write) {
    profile.prepare();
    ui.ShowModal(profile);
    if (!profile.bSaved) {
        status.set_text(1, "");
        return;
    }
    write(BuildProfileXml(profile));
    profile.forget_imports();
    status.set_text(1, "Setting is updated");
}

} // namespace kestrune
