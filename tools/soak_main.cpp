#include "platform/diagnostics.h"
#include "platform/qt/qt_desktop.h"
#include "tools/soak/soak.h"

#include <QTemporaryDir>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <exception>
#include <iomanip>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using kestrune::soak::Alive;
using kestrune::soak::Counts;

constexpr std::string_view help =
    R"(Usage: kestrune-soak [VISITS]

Plays that many sites (1000 without it) in a row through the program's real window, with pop-ups, page dialogs and
dying page processes among them, and tells what stays behind: windows, pages, widgets, memory. Needs a display, a
virtual one will do, or QT_QPA_PLATFORM=offscreen. Exits with 1 when a visit did not come to its end, when anything
stays behind, or when an error was swallowed that nothing explains.
)";

constexpr std::size_t sample_every = 10;
// The engine fills its caches first.
constexpr std::size_t settled_after = 100;
constexpr double allowed_growth = 0.10;

struct Sample {
    std::size_t visits = 0;
    Alive alive;
};

std::size_t total_kib(const Sample& sample) {
    return sample.alive.memory.program_kib + sample.alive.memory.engine_kib;
}

void print(const Sample& sample, const Counts& counts) {
    std::cout << std::setw(6) << sample.visits << std::setw(9) << sample.alive.windows << std::setw(7)
              << sample.alive.pages << std::setw(9) << sample.alive.widgets << std::setw(11)
              << sample.alive.memory.processes << std::setw(13) << sample.alive.memory.program_kib / 1024
              << std::setw(12) << sample.alive.memory.engine_kib / 1024 << std::setw(9) << counts.pop_ups
              << std::setw(9) << counts.crashes << std::setw(11) << counts.questions << std::endl;
}

// Median of what a stretch of visits used, since single moments catch the engine between two pages.
std::size_t median_kib(const std::vector<Sample>& samples, std::size_t from, std::size_t to) {
    std::vector<std::size_t> values;
    for (const Sample& sample : samples) {
        if (sample.visits > from && sample.visits <= to)
            values.push_back(total_kib(sample));
    }
    if (values.empty())
        return 0;
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values.at(values.size() / 2);
}

bool judge_memory(const std::vector<Sample>& samples, std::size_t visits) {
    if (visits < 3 * settled_after) {
        std::cout << "too few visits to tell growth\n";
        return true;
    }
    const auto first = static_cast<double>(median_kib(samples, settled_after, 2 * settled_after));
    const auto last = static_cast<double>(median_kib(samples, visits - settled_after, visits));
    const double growth = last / first - 1;
    std::cout << "memory: median " << first / 1024 << " MiB in visits " << settled_after + 1 << " to "
              << 2 * settled_after << ", " << last / 1024 << " MiB in the last " << settled_after << ": "
              << std::showpos << growth * 100 << std::noshowpos << " %\n";
    return growth < allowed_growth;
}

bool judge_objects(const std::vector<Sample>& samples) {
    const Alive& first = samples.front().alive;
    const Alive& last = samples.back().alive;
    std::cout << "left behind: " << last.windows - 1 << " windows, " << last.pages - 1 << " pages, "
              << last.profiles - 1 << " profiles, "
              << (last.widgets > first.widgets ? last.widgets - first.widgets : 0)
              << " widgets more than after the first " << sample_every << " visits\n";
    return last.windows == 1 && last.pages == 1 && last.profiles == 1 && last.widgets <= first.widgets;
}

int soak(kestrune::UserInterface& ui, std::size_t visits) {
    kestrune::practice::PracticeServer server(kestrune::practice::load_sites(KESTRUNE_SOAK_SITES));
    const QTemporaryDir folder;
    if (!folder.isValid())
        throw std::runtime_error("cannot make a temporary program folder");
    std::map<std::string, std::size_t, std::less<>> swallowed;
    kestrune::diagnostics::set_sink(
        [&](std::string_view what, std::string_view /*why*/) { ++swallowed[std::string(what)]; });
    kestrune::soak::Soak run(ui, server, folder.path().toStdString(), visits);
    std::vector<Sample> samples;
    std::cout << "visits  windows  pages  widgets  processes  program MiB  engine MiB  pop-ups  crashes  "
                 "questions\n";
    std::size_t told = 0;
    run.visited = [&](const Counts& counts) {
        for (; told < counts.problems.size(); ++told)
            std::cout << "problem: " << counts.problems.at(told) << std::endl;
        if (counts.visits % sample_every != 0)
            return;
        samples.push_back({counts.visits, run.alive()});
        if (counts.visits % (5 * sample_every) == 0)
            print(samples.back(), counts);
    };
    const auto begin = std::chrono::steady_clock::now();
    const Counts& counts = run.play();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    std::cout << visits << " visits in " << time.count() << " s\n";
    std::cout << counts.problems.size() << " problems\n";
    for (const auto& [what, times] : swallowed)
        std::cout << "reported to the log: " << what << ", " << times << " times\n";
    kestrune::diagnostics::set_sink(nullptr);
    bool fine = counts.problems.empty() && !swallowed.contains("a handler ended early");
    if (!samples.empty())
        fine = judge_objects(samples) && fine;
    return judge_memory(samples, visits) && fine ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t visits = 1000;
    if (argc > 1) {
        const std::string_view given = argv[1];
        const auto [end, error] = std::from_chars(given.data(), given.data() + given.size(), visits);
        if (error != std::errc() || end != given.data() + given.size() || visits == 0) {
            std::cout << help;
            return given == "--help" ? 0 : 2;
        }
    }
    kestrune::QtDesktop desktop(argc, argv);
    try {
        return soak(desktop.user_interface(), visits);
    } catch (const std::exception& error) {
        std::cerr << "kestrune-soak: " << error.what() << '\n';
        return 1;
    }
}
