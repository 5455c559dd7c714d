#pragma once

#include "tests/desktop/wait_until.h"

#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <memory>

namespace kestrune {

// Waits until the page that is showing has been painted: before that the engine drops what
// the mouse and the keys do. A page with nothing to be read on it counts as painted only after half a second,
// so give it a word.
inline bool wait_until_painted(QWebEngineView& view) {
    // Counts the frames that the page has begun since it was first asked; in a world the page cannot see.
    constexpr auto painted_frames = R"((() => {
        if (self.kestruneFrames === undefined) {
            self.kestruneFrames = 0;
            const count = () => { if (++self.kestruneFrames < 100) requestAnimationFrame(count); };
            requestAnimationFrame(count);
        }
        return self.kestruneFrames;
    })())";
    // A frame goes through a short pipeline before it is on the widget.
    constexpr int enough_frames = 8;
    const auto frames = std::make_shared<int>(0);
    const auto under_way = std::make_shared<bool>(false);
    return wait_until([&] {
        if (!std::exchange(*under_way, true)) {
            view.page()->runJavaScript(QString::fromLatin1(painted_frames), QWebEngineScript::UserWorld,
                                       [frames, under_way](const QVariant& value) {
                                           *frames = value.toInt();
                                           *under_way = false;
                                       });
        }
        return *frames >= enough_frames;
    });
}

} // namespace kestrune
