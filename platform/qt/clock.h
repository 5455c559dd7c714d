#pragma once

#include <chrono>
#include <functional>

namespace kestrune {

// What time it is, given from outside so that tests need not wait.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

} // namespace kestrune
