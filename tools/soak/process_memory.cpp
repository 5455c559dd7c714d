#include "tools/soak/process_memory.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <unistd.h>

namespace kestrune::soak {
namespace {

namespace fs = std::filesystem;

std::optional<int> number(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return {};
    return value;
}

// The parent is the second word after the name, which stands in brackets and may hold anything.
std::optional<int> parent_of(const fs::path& process) {
    std::ifstream file(process / "stat");
    std::string line;
    if (!std::getline(file, line))
        return {};
    const auto name_end = line.rfind(')');
    if (name_end == std::string::npos || name_end + 4 >= line.size())
        return {};
    const std::string_view rest = std::string_view(line).substr(name_end + 4);
    return number(rest.substr(0, rest.find(' ')));
}

std::size_t proportional_kib(const fs::path& process) {
    std::ifstream file(process / "smaps_rollup");
    std::size_t sum = 0;
    std::string word;
    while (file >> word) {
        std::size_t value = 0;
        if ((word == "Pss_Anon:" || word == "Pss_Shmem:") && file >> value)
            sum += value;
    }
    return sum;
}

std::multimap<int, int> children_by_parent() {
    std::multimap<int, int> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const auto process = number(entry.path().filename().string());
        if (!process)
            continue;
        if (const auto parent = parent_of(entry.path()))
            found.emplace(*parent, *process);
    }
    return found;
}

void add_below(int parent, const std::multimap<int, int>& children, Usage& usage) {
    const auto [first, last] = children.equal_range(parent);
    for (auto child = first; child != last; ++child) {
        ++usage.processes;
        usage.engine_kib += proportional_kib(fs::path("/proc") / std::to_string(child->second));
        add_below(child->second, children, usage);
    }
}

} // namespace

Usage measure() {
    Usage usage;
    usage.processes = 1;
    usage.program_kib = proportional_kib("/proc/self");
    add_below(::getpid(), children_by_parent(), usage);
    return usage;
}

} // namespace kestrune::soak
