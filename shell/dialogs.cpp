#include "shell/dialogs.h"

#include "shell/version.h"

#include <utility>

namespace kestrune {
namespace {

constexpr int about_width = 6600;
constexpr int about_height = 3600;
constexpr int report_width = 13500;
constexpr int report_height = 7500;
constexpr int open_address_width = 9000;
constexpr int open_address_height = 1800;

} // namespace

FrmAbout::FrmAbout(const std::string& engine, std::function<void()> forget)
    : Form("frmAbout", "About Kestrune") {
    lblVersion.Caption =
        "Kestrune " + std::string(program_version) + "\nSubmits your program to many download sites.";
    lblEngine.Caption = engine;
    lblLicence.Caption = "Free software under the MIT licence, without any warranty.";
    Width = about_width;
    Height = about_height;
    Rows = {{"Version:", &lblVersion}, {"Browser engine:", &lblEngine}, {"Licence:", &lblLicence}};
    Buttons = {&cmdForget, &cmdOK};
    Default = &cmdOK;
    Cancel = &cmdOK;
    FirstFocus = &cmdOK;
    cmdForget.Click = std::move(forget);
    cmdOK.Click = [this] { Hide(); };
}

FrmOpenAddress::FrmOpenAddress(const std::string& address) : Form("frmOpenAddress", "Open address") {
    txtAddress.Text = address;
    Width = open_address_width;
    Height = open_address_height;
    Rows = {{"Address:", &txtAddress}};
    Buttons = {&cmdOpen, &cmdCancel};
    Default = &cmdOpen;
    Cancel = &cmdCancel;
    FirstFocus = &txtAddress;
    cmdOpen.Click = [this] {
        bSaved = true;
        Hide();
    };
    cmdCancel.Click = [this] { Hide(); };
}

FrmFillReport::FrmFillReport(const std::string& report)
    : Form("frmFillReport", "What the last Multi-input did") {
    txtReport.Text = report;
    txtReport.Locked = true;
    txtReport.AccessibleName = "Fields of the form";
    Width = report_width;
    Height = report_height;
    Rows = {{"", &txtReport}};
    Buttons = {&cmdOK};
    Default = &cmdOK;
    Cancel = &cmdOK;
    FirstFocus = &cmdOK;
    cmdOK.Click = [this] { Hide(); };
}

} // namespace kestrune
