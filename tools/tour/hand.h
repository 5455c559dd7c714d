#pragma once

#include "tools/practice/site.h"

#include <vector>

class QWidget;

namespace kestrune::tour {

// Does with the page's widget, by mouse and keyboard, what a user does. The page has been painted and has the
// keyboard.
void do_deeds(QWidget& page, const std::vector<practice::HandStep::Deed>& deeds);

} // namespace kestrune::tour
