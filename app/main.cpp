#include "app/library_start.h"
#include "platform/disk/disk_files.h"
#include "platform/qt/qt_desktop.h"
#include "platform/sqlite/sqlite_database.h"
#include "shell/program.h"

// Picks the implementations of the platform and starts the program on them; nothing else happens here.
int main(int argc, char* argv[]) {
    // First of all: conversions run in copies of this process, which must not have threads yet.
    kestrune::LibraryStart library;
    kestrune::QtDesktop desktop{argc, argv};
    library.finish();
    kestrune::DiskFiles files;
    kestrune::SqliteDatabase database;
    kestrune::Program program{desktop.user_interface(), files, database, library.folder()};
    program.start();
    return desktop.run();
}
