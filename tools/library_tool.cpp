#include "platform/disk/program_folder.h"
#include "tools/library/commands.h"

#include <array>
#include <csignal>
#include <ctime>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

volatile std::sig_atomic_t interrupted = 0;

void note_interrupt(int /*signal*/) {
    interrupted = 1;
    // A second one ends the tool where it stands.
    std::signal(SIGINT, SIG_DFL);
}

std::string today() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d", &local);
    return text.data();
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGINT, note_interrupt);
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const kestrune::ToolSurroundings here{std::cout,
                                          std::cerr,
                                          kestrune::program_folder(),
                                          today(),
                                          [] { return interrupted != 0; },
                                          ::isatty(STDERR_FILENO) != 0};
    return static_cast<int>(kestrune::run_library_tool(arguments, here));
}
