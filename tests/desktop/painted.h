#pragma once

#include "tests/desktop/wait_until.h"
#include "tools/tour/painted.h"

#include <QWebEngineView>

namespace kestrune {

// Waits until the page that is showing, which has a word on it, has been painted; see drive::Painting.
inline bool wait_until_painted(QWebEngineView& view) {
    drive::Painting painting(*view.page());
    return wait_until([&] { return painting.frames() >= drive::Painting::with_words; });
}

} // namespace kestrune
