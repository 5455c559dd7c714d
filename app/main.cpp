#include "platform/disk/disk_files.h"
#include "platform/disk/program_folder.h"
#include "platform/qt/qt_desktop.h"
#include "platform/sqlite/sqlite_database.h"
#include "shell/program.h"

// Picks the implementations of the platform and starts the program on them; nothing else happens here.
int main(int argc, char* argv[]) {
    kestrune::QtDesktop desktop{argc, argv};
    kestrune::DiskFiles files;
    kestrune::SqliteDatabase database;
    kestrune::Program program{desktop.user_interface(), files, database, kestrune::program_folder()};
    program.start();
    return desktop.run();
}
