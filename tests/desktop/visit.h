#pragma once

#include <string>

namespace kestrune {

class QtDesktop;

// One run of the program in a process of its own: opens an address and ends when its document has completed.
// With `forget` it forgets the sites' data before it ends. 0 when all went well.
int visit(QtDesktop& desktop, const std::string& folder, const std::string& url, bool forget);

} // namespace kestrune
