#pragma once

#include <functional>
#include <string_view>

namespace kestrune::diagnostics {

// Where swallowed errors are reported, for developers; nothing of it reaches the user. Silent until a sink is
// set; the desktop sends it to its own logging.
using Sink = std::function<void(std::string_view what, std::string_view why)>;
void set_sink(Sink sink);
void report(std::string_view what, std::string_view why);

} // namespace kestrune::diagnostics
