#include "app/library_start.h"
#include "platform/disk/disk_files.h"
#include "platform/qt/progress_window.h"
#include "platform/qt/qt_desktop.h"
#include "platform/sqlite/sqlite_database.h"
#include "shell/program.h"

namespace {

// False when the user would rather not wait: the databases are then as they were, and the program ends.
bool finish(kestrune::LibraryStart& library) {
    kestrune::ProgressWindow window{{"Converting your library",
                                     "What was made with Access is converted once, so that Kestrune can work "
                                     "with it. The original stays beside it, untouched.",
                                     "Quit"}};
    return library.finish(
        [&window](kestrune::JetProgress rows) { return window.show(rows.done, rows.total); });
}

} // namespace

// Picks the implementations of the platform and starts the program on them; nothing else happens here.
int main(int argc, char* argv[]) {
    // First of all: conversions run in copies of this process, which must not have threads yet.
    kestrune::LibraryStart library;
    kestrune::QtDesktop desktop{argc, argv};
    if (!finish(library))
        return 0;
    desktop.keep_site_data_in(library.folder());
    kestrune::DiskFiles files;
    kestrune::SqliteDatabase database;
    kestrune::Program program{desktop.user_interface(), files, database, library.folder()};
    program.start();
    return desktop.run();
}
