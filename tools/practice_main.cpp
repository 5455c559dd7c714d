#include "tools/practice/practice_server.h"

#include <charconv>
#include <csignal>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using kestrune::practice::PracticeServer;

constexpr std::string_view help =
    R"(Usage: kestrune-practice [--port PORT] [--check] [FOLDER]

Serves the practice sites in FOLDER (practice/sites of the source tree without one) on this
machine alone, each at a loopback address of its own, and prints the addresses. Ends with Ctrl+C.

  --port PORT   the port of every site, 8127 without it; 0 chooses a free one
  --check       reads the sites, says what is wrong with them and ends
  --help        this text
)";

struct Arguments {
    std::string folder = KESTRUNE_PRACTICE_SITES;
    int port = PracticeServer::default_port;
    bool check = false;
    bool help = false;
};

std::optional<int> port_number(std::string_view text) {
    int port = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), port);
    if (text.empty() || parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || port < 0 ||
        port > 65535)
        return {};
    return port;
}

// Nothing when the arguments make no sense; why is then on the standard error.
std::optional<Arguments> read_arguments(const std::vector<std::string_view>& words) {
    Arguments arguments;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words.at(i);
        if (word == "--help" || word == "-h") {
            arguments.help = true;
        } else if (word == "--check") {
            arguments.check = true;
        } else if (word == "--port") {
            const auto port = port_number(i + 1 < words.size() ? words.at(++i) : "");
            if (!port) {
                std::cerr << "kestrune-practice: --port wants a number from 0 to 65535\n";
                return {};
            }
            arguments.port = *port;
        } else if (word.starts_with('-')) {
            std::cerr << "kestrune-practice: unknown option " << word << "; --help lists them\n";
            return {};
        } else {
            arguments.folder = word;
        }
    }
    return arguments;
}

// The end signals are blocked in every thread and fetched here, so that no handler runs between two
// instructions.
void wait_for_end(const sigset_t& signals) {
    int signal = 0;
    sigwait(&signals, &signal);
}

int serve(const Arguments& arguments) {
    auto sites = kestrune::practice::load_sites(arguments.folder);
    if (arguments.check) {
        std::cout << sites.size() << " sites, nothing wrong with them\n";
        return 0;
    }
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    PracticeServer server(std::move(sites), arguments.port);
    for (const auto& site : server.sites())
        std::cout << server.home(site.name) << "  " << site.name
                  << (site.served ? "" : " (refuses connections)") << '\n';
    std::cout << "Ends with Ctrl+C." << std::endl;
    wait_for_end(signals);
    server.stop();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const auto arguments = read_arguments({argv + 1, argv + argc});
    if (!arguments)
        return 2;
    if (arguments->help) {
        std::cout << help;
        return 0;
    }
    try {
        return serve(*arguments);
    } catch (const std::exception& error) {
        std::cerr << "kestrune-practice: " << error.what() << '\n';
        return 1;
    }
}
