#pragma once

#include <QElapsedTimer>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>

#include <memory>
#include <utility>

namespace kestrune::drive {

// How far the painting of a page has come. Before a page has been painted the engine drops what the mouse and
// the keys do; one with nothing to be read on it (a page of frames) is painted only after half a second.
class Painting {
public:
    // Frames that a page with words has begun when the first of them has gone through the pipeline to the
    // widget, and the same of a page without.
    static constexpr int with_words = 8;
    static constexpr int without_words = 40;

    explicit Painting(QWebEnginePage& page) : page_(page) { told_->since.start(); }

    // Frames that the page has begun since it was first asked, as last heard; asks it again.
    int frames() {
        if (!std::exchange(told_->asked, true)) {
            page_.runJavaScript(QString::fromLatin1(count_frames), QWebEngineScript::UserWorld,
                                [told = told_](const QVariant& frames) {
                                    told->frames = frames.toInt();
                                    told->asked = false;
                                    told->since.start();
                                });
        }
        return told_->frames;
    }
    // The page has gone, or its process has.
    [[nodiscard]] bool silent() const { return told_->since.elapsed() > longest_silence; }

private:
    static constexpr qint64 longest_silence = 2000; // milliseconds
    // In a world that the page cannot see.
    static constexpr auto count_frames = R"((() => {
        if (self.kestruneFrames === undefined) {
            self.kestruneFrames = 0;
            const count = () => { if (++self.kestruneFrames < 100) requestAnimationFrame(count); };
            requestAnimationFrame(count);
        }
        return self.kestruneFrames;
    })())";
    struct Told {
        int frames = 0;
        bool asked = false;
        QElapsedTimer since;
    };

    QWebEnginePage& page_;
    std::shared_ptr<Told> told_ = std::make_shared<Told>();
};

} // namespace kestrune::drive
