#include "tests/desktop/visit.h"

#include "platform/disk/disk_files.h"
#include "platform/qt/qt_desktop.h"
#include "platform/sqlite/sqlite_database.h"
#include "shell/browser_window.h"
#include "shell/program.h"
#include "tests/desktop/wait_until.h"

namespace kestrune {

int visit(QtDesktop& desktop, const std::string& folder, const std::string& url, bool forget) {
    desktop.keep_site_data_in(folder);
    DiskFiles files;
    SqliteDatabase database;
    Program program{desktop.user_interface(), files, database, folder};
    BrowserWindow& window = program.start();
    window.browser().Navigate(url);
    bool done = wait_until([&] { return window.strCurDocUrl == url; });
    if (forget) {
        desktop.user_interface().forget_sites();
        // Comes back once the engine has heard it.
        window.browser().Navigate(url + "?after");
        done = done && wait_until([&] { return window.strCurDocUrl == url + "?after"; });
    }
    window.Unload();
    desktop.run();
    return done ? 0 : 1;
}

} // namespace kestrune
