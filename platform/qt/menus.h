#pragma once

#include "platform/menu.h"
#include "platform/qt/bindings.h"

#include <QMenuBar>

namespace kestrune {

// Puts the menus on the bar and keeps them true to their items. Captions are literal; a choice by the user
// reaches the item, and the check mark shown is always the item's own.
void add_menus(QMenuBar& bar, const std::vector<MenuItem*>& titles, Bindings& bindings);

} // namespace kestrune
