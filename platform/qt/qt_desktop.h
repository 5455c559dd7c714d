#pragma once

#include "platform/user_interface.h"

#include <memory>
#include <string>

namespace kestrune {

// The toolkit, set up as this program uses it: look, names, icon, and where diagnostics go. One for each
// process, made first in main() and gone last.
class QtDesktop {
public:
    // Both arguments must outlive the desktop.
    QtDesktop(int& argument_count, char** arguments);
    ~QtDesktop();
    QtDesktop(const QtDesktop&) = delete;
    QtDesktop& operator=(const QtDesktop&) = delete;
    QtDesktop(QtDesktop&&) = delete;
    QtDesktop& operator=(QtDesktop&&) = delete;

    [[nodiscard]] UserInterface& user_interface();

    // Where what sites store is kept; to be said before there are windows.
    void keep_site_data_in(const std::string& folder);

    // Serves events until the program ends; the exit code.
    int run();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace kestrune
