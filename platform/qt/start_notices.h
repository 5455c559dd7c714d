#pragma once

#include <QString>

#include <utility>
#include <vector>

namespace kestrune {

class SiteData;

// What the user is told above the first page when the program starts, heading and text of each: that the
// sandbox is off, every time; how old the engine is, once for each version of it. `data` remembers what has
// been told; without one it is told again.
std::vector<std::pair<QString, QString>> start_notices(SiteData* data);

} // namespace kestrune
