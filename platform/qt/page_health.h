#pragma once

#include "platform/qt/page_bars.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWebEnginePage>

#include <chrono>
#include <functional>

namespace kestrune {

class EngineWaits;

// Watches whether the page's process lives and answers. One that has died is loaded again, at most twice
// between two visits; one that hangs is said to hang, and is ended when the page is to be left: the engine
// would load the next page of the same site in the very process that does not answer.
class PageHealth : public QObject {
public:
    static constexpr int most_reloads = 2;

    // `reload` loads the page again; it comes back to `leaving` only when the user asked for it.
    PageHealth(QWebEnginePage& page, PageBars& bars, QWidget& place, EngineWaits& waits,
               std::function<void(bool by_user)> reload);

    // The page gave a sign of life.
    void alive();
    // A document has taken over the top window: what the former one was asked is not answered any more.
    void began();
    // The user or the program leaves the page. True when the page's process has to be ended first: `go` is
    // called then, soon, and nothing is to be asked for before. A page that is found not to answer after that
    // is ended all the same, and `go` called once more.
    [[nodiscard]] bool leaving(std::function<void()> go);
    // The page that is being left does not let itself be left: it is ended, and `go` called once more.
    void make_way();
    // The load has come to an end without a new document.
    void stayed() { go_ = nullptr; }
    // The form on the page was sent: loading what came of it again would send it once more.
    void set_sent_form(bool sent) { sent_form_ = sent; }

    // False when the page has been asked for longer than a page needs.
    [[nodiscard]] bool answers() const;
    // Ends the page's process.
    void end_process();

    // How long a page may be busy before it is said to hang.
    void set_patience(std::chrono::milliseconds time);

private:
    void ask();
    void hangs();
    void end_for_leaving();
    void go();
    void process_ended(QWebEnginePage::RenderProcessTerminationStatus status);
    void say(const QString& name, const QString& heading, const QString& text, bool with_reload,
             const QString& other = QStringLiteral("Close"));
    void say_nothing();

    QWebEnginePage& page_;
    PageBars& bars_;
    QWidget& place_;
    EngineWaits& waits_;
    std::function<void(bool)> reload_;
    std::function<void()> go_; // leaves the page, for as long as it has not been left
    QPointer<PageBar> bar_;
    QTimer beat_;
    QElapsedTimer asked_; // valid while a question is not answered
    std::chrono::milliseconds patience_{};
    int visit_ = 0; // documents so far; an answer to the former one says nothing
    int reloads_ = 0;
    bool waits_on_ = false; // the user has read that the page hangs, and has not gone
    bool ended_by_us_ = false;
    bool makes_way_ = false; // it was ended because the page is to be left
    bool reload_due_ = false;
    bool dead_ = false;
    bool sent_form_ = false;
};

} // namespace kestrune
