#pragma once

#include <cmath>

namespace kestrune {

inline constexpr int twips_per_pixel = 15;

// Device-independent pixels, rounded to the nearest.
inline int to_pixels(int twips) {
    return static_cast<int>(std::lround(static_cast<double>(twips) / twips_per_pixel));
}
constexpr int to_twips(int pixels) { return pixels * twips_per_pixel; }

} // namespace kestrune
