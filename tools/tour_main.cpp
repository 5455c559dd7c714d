#include "platform/qt/qt_desktop.h"
#include "tools/tour/recording.h"
#include "tools/tour/report.h"
#include "tools/tour/tour.h"

#include <QTemporaryDir>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;
using kestrune::tour::Replayed;
using kestrune::tour::Visit;

constexpr std::string_view help =
    R"(Usage: kestrune-tour [--fidelity FILE] [OUTPUT]

Plays the practice sites through the program's real window and writes OUTPUT/index.html (build/tour
without it) with a picture and a line of result for each. Needs a display, a virtual one will do, or
QT_QPA_PLATFORM=offscreen. Exits with 1 when a site did not do what its file says.

  --fidelity FILE   only submits the practice forms by hand and plays them back, and writes the table of
                    what was sent both times to FILE
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

// Without a file no table is written.
bool play_recorded(kestrune::UserInterface& ui, const fs::path& file) {
    kestrune::practice::PracticeServer server(kestrune::practice::load_sites(KESTRUNE_PRACTICE_SITES));
    const QTemporaryDir folder;
    if (!folder.isValid())
        throw std::runtime_error("cannot make a temporary program folder");
    kestrune::tour::RecordingTour tour(ui, server, folder.path().toStdString());
    bool fine = true;
    tour.visited = [&fine](const Replayed& visit) {
        std::cout << (visit.problems.empty() ? "ok      " : "FAILED  ") << visit.site->name << ": "
                  << (visit.same() ? "the same" : "not the same") << '\n';
        for (const auto& request : visit.by_hand)
            std::cout << "        by hand     " << request.target << ' ' << request.body << '\n';
        for (const auto& request : visit.replayed)
            std::cout << "        played back " << request.target << ' ' << request.body << '\n';
        for (const std::string& problem : visit.problems)
            std::cout << "        " << problem << '\n';
        std::cout.flush();
        fine = fine && visit.problems.empty();
    };
    const auto& visits = tour.play();
    if (file.empty())
        return fine;
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << kestrune::tour::fidelity_table(visits);
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.string());
    return fine;
}

} // namespace

int main(int argc, char** argv) {
    fs::path fidelity;
    fs::path output = KESTRUNE_TOUR_OUTPUT;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--fidelity" && i + 1 < argc) {
            fidelity = argv[++i];
        } else if (word.starts_with("-")) {
            std::cout << help;
            return word == "--help" ? 0 : 2;
        } else {
            output = word;
        }
    }
    kestrune::QtDesktop desktop(argc, argv);
    try {
        if (!fidelity.empty())
            return play_recorded(desktop.user_interface(), fidelity) ? 0 : 1;
        const int played = play(desktop.user_interface(), output);
        return play_recorded(desktop.user_interface(), {}) ? played : 1;
    } catch (const std::exception& error) {
        std::cerr << "kestrune-tour: " << error.what() << '\n';
        return 1;
    }
}
