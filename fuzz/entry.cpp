#include "fuzz/targets.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// A broken rule leaves as an exception, which the fuzzer takes for the crash that it is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto target = [] {
        const auto& all = kestrune::fuzz::targets();
        return *std::find_if(all.begin(), all.end(), [](const kestrune::fuzz::Target& candidate) {
            return candidate.name == KESTRUNE_FUZZ_TARGET;
        });
    }();
    target.run({reinterpret_cast<const char*>(data), size});
    return 0;
}
