#include "platform/database.h"
#include "platform/disk/disk_files.h"
#include "platform/sqlite/site_schema.h"
#include "tools/site_csv.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

// Exit codes: 0 the library is there, 1 it is not, 2 wrong arguments.
int seed(const std::string& list, const std::string& library) {
    const kestrune::DiskFiles files;
    // It holds what the user has done so far.
    if (files.file_exists(library))
        return 0;
    const auto text = files.read(list);
    if (!text) {
        std::fprintf(stderr, "cannot read %s\n", list.c_str());
        return 1;
    }
    const std::vector<kestrune::SiteRow> sites = kestrune::read_site_csv(*text);
    kestrune::create_site_library(library, sites);
    std::printf("%s: %zu sites\n", library.c_str(), sites.size());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() != 3) {
        std::fprintf(stderr,
                     "usage: kestrune-seed sites.csv SubmitList.mdb\n"
                     "makes a site library of a list of sites; a library that is there is left alone\n");
        return 2;
    }
    try {
        return seed(arguments[1], arguments[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", arguments[1].c_str(), error.what());
        return 1;
    }
}
