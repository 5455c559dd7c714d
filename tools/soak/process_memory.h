#pragma once

#include <cstddef>

namespace kestrune::soak {

// What this process and all below it use, in KiB: memory shared by several of them is counted once, in parts
// (the kernel's proportional set size). Files that are mapped do not count, because how much of them is whose
// depends on what other programs run. Processes that end meanwhile count nothing.
struct Usage {
    std::size_t program_kib = 0; // this process
    std::size_t engine_kib = 0;  // its children, theirs ...
    std::size_t processes = 0;   // this one included
};
Usage measure();

} // namespace kestrune::soak
