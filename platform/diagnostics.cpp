#include "platform/diagnostics.h"

#include <utility>

namespace kestrune::diagnostics {
namespace {

Sink& current_sink() {
    static Sink sink;
    return sink;
}

} // namespace

void set_sink(Sink sink) { current_sink() = std::move(sink); }

void report(std::string_view what, std::string_view why) {
    if (current_sink())
        current_sink()(what, why);
}

} // namespace kestrune::diagnostics
