#pragma once

#include "platform/control.h"
#include "platform/form.h"

#include <functional>
#include <string>

namespace kestrune {

// Help, "About": version, engine and licence, and the place where a user looks for what sites have stored.
class FrmAbout : public Form {
public:
    // engine: the engine's description, one or more lines. forget: the user wants the sites forgotten.
    FrmAbout(const std::string& engine, std::function<void()> forget);

private:
    Label lblVersion{"lblVersion", ""};
    Label lblEngine{"lblEngine", ""};
    Label lblLicence{"lblLicence", ""};
    Button cmdForget{"cmdForget", "Forget site data..."};
    Button cmdOK{"cmdOK", "OK"};
};

// Asks for an address to browse to. `bSaved` tells whether the user confirmed it.
class FrmOpenAddress : public Form {
public:
    explicit FrmOpenAddress(const std::string& address);

    TextBox txtAddress{"txtAddress"};
    bool bSaved = false;

private:
    Button cmdOpen{"cmdOpen", "Open"};
    Button cmdCancel{"cmdCancel", "Cancel"};
};

// F8: what the last "Multi-input" did to each field.
class FrmFillReport : public Form {
public:
    explicit FrmFillReport(const std::string& report);

private:
    TextBox txtReport{"txtReport", true};
    Button cmdOK{"cmdOK", "OK"};
};

} // namespace kestrune
