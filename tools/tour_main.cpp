#include "platform/qt/qt_desktop.h"
#include "tools/tour/report.h"
#include "tools/tour/tour.h"

#include <QTemporaryDir>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;
using kestrune::tour::Visit;

constexpr std::string_view help =
    R"(Usage: kestrune-tour [OUTPUT]

Plays the practice sites through the program's real window and writes OUTPUT/index.html (build/tour
without it) with a picture and a line of result for each. Needs a display, a virtual one will do, or
QT_QPA_PLATFORM=offscreen. Exits with 1 when a site did not do what its file says.
)";

int play(kestrune::UserInterface& ui, const fs::path& output) {
    fs::create_directories(output);
    for (const auto& old : fs::directory_iterator(output)) {
        if (old.path().extension() == ".png" || old.path().filename() == "index.html")
            fs::remove(old.path());
    }
    kestrune::practice::PracticeServer server(kestrune::practice::load_sites(KESTRUNE_PRACTICE_SITES));
    const QTemporaryDir folder;
    if (!folder.isValid())
        throw std::runtime_error("cannot make a temporary program folder");

    kestrune::tour::Tour tour(ui, server, folder.path().toStdString(), output);
    tour.visited = [](const Visit& visit) { std::cout << kestrune::tour::summary_line(visit) << std::endl; };
    const auto& visits = tour.play();
    kestrune::tour::write_index(output, visits, server.sites());
    const auto failed =
        std::ranges::count_if(visits, [](const Visit& visit) { return !visit.problems.empty(); });
    std::cout << visits.size() << " visits, " << failed << " failed; pictures in "
              << (output / "index.html").string() << '\n';
    return failed == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]).starts_with("-")) {
            std::cout << help;
            return std::string_view(argv[i]) == "--help" ? 0 : 2;
        }
    }
    const fs::path output = argc > 1 ? fs::path(argv[1]) : fs::path(KESTRUNE_TOUR_OUTPUT);
    kestrune::QtDesktop desktop(argc, argv);
    try {
        return play(desktop.user_interface(), output);
    } catch (const std::exception& error) {
        std::cerr << "kestrune-tour: " << error.what() << '\n';
        return 1;
    }
}
