#pragma once

#include "platform/qt/page_bars.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

namespace kestrune {

// Links that lead out of the web: to the mail program and other programs of the user's. Each is asked about,
// in the place of the page that has it.
class OutsideLinks : public QObject {
public:
    explicit OutsideLinks(PageBars& bars) : bars_(bars) {}

    // Whether another program could have something to do with the address. Never with those that name files,
    // scripts, or what is inside the engine.
    static bool leads_outside(const QUrl& url);

    // Asks, and opens the address when the user agrees. One question at a time; whoever is refused twice is
    // not heard again until `forget_refusals`.
    void wanted(const QUrl& url, const QString& asker);
    // The page is left: its question is taken away. What it still asks for counts as its own.
    void leaving();
    // Somebody else may ask: the page that the user went to, or the user.
    void forget_refusals() { refused_ = 0; }

private:
    PageBars& bars_;
    QPointer<PageBar> bar_;
    int refused_ = 0;
};

} // namespace kestrune
