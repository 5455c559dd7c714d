#pragma once

#include "platform/qt/engine_bridge.h"

#include <QUrl>
#include <QWebChannel>
#include <QWebEnginePage>

#include <chrono>
#include <memory>

class QAuthenticator;
class QWebEngineUrlRequestInterceptor;

namespace kestrune {

class PageRequests;

struct AskedNavigation {
    QUrl url;
    bool top_level = true;
    bool redirect = false;   // as the engine calls it, see NavigationWatch
    bool of_a_form = false;  // it submits a form
    bool of_the_page = true; // not the user's or the program's own; a form's submission always is the page's
};

// What a page reports to the adapter that owns it. Called from inside the engine.
class EnginePageEvents {
public:
    EnginePageEvents() = default;
    virtual ~EnginePageEvents() = default;
    EnginePageEvents(const EnginePageEvents&) = delete;
    EnginePageEvents& operator=(const EnginePageEvents&) = delete;
    EnginePageEvents(EnginePageEvents&&) = delete;
    EnginePageEvents& operator=(EnginePageEvents&&) = delete;

    // A navigation is asked for.
    virtual void navigation_asked(const AskedNavigation& asked) = 0;
    // Its request goes out.
    virtual void navigation_requested(const QUrl& url, bool redirect, bool top_level) = 0;
    // The page wants a window; null refuses it.
    virtual QWebEnginePage* window_wanted() = 0;
    virtual void heard(PageNotice notice) = 0;
    virtual void process_ended() = 0;
};

// A page of the engine with the program's script and channel in it. What a page asks for beyond showing
// itself is refused at once: a page whose question nobody answers would wait for ever.
class EnginePage : public QWebEnginePage {
public:
    EnginePage(QWebEngineProfile& profile, EnginePageEvents& events);
    ~EnginePage() override;
    EnginePage(const EnginePage&) = delete;
    EnginePage& operator=(const EnginePage&) = delete;
    EnginePage(EnginePage&&) = delete;
    EnginePage& operator=(EnginePage&&) = delete;

    // What the page asks for goes to `requests` until the page falls silent; without one it is refused.
    void serve(PageRequests* requests) { requests_ = requests; }
    // Whoever owns the page ends before it does: from here on nobody hears of it, and what it asks for is
    // refused.
    void fall_silent() {
        events_ = nullptr;
        requests_ = nullptr;
    }

    // Deletes the page, but not from under a call that the engine is making of it.
    static void end(std::unique_ptr<EnginePage> page);

    // Holds for documents that begin from now on.
    void set_straggler_time(std::chrono::milliseconds time);

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool top_level) override;
    QWebEnginePage* createWindow(WebWindowType type) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& former,
                            const QStringList& types) override;
    void javaScriptAlert(const QUrl& origin, const QString& text) override;
    bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
    bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& preset,
                          QString* result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& message, int line,
                                  const QString& source) override;

private:
    // For as long as a call of the engine lasts.
    class Call;

    void sign_in(const QUrl& url, QAuthenticator& authenticator, const QString& proxy);
    void refuse_requests();
    // Starts the page script in the top document when the engine has not.
    void make_up_for_a_missing_script();

    EnginePageEvents* events_; // null once nobody hears
    PageRequests* requests_ = nullptr;
    EngineBridge bridge_;
    QWebChannel channel_;
    std::unique_ptr<QWebEngineUrlRequestInterceptor> interceptor_;
    // What the page script seals its messages with from a frame to the top frame, and back. Of this page
    // alone.
    QString frame_key_;
    QString top_key_;
    QString script_;
    int calls_ = 0;
    bool ended_ = false;
    bool begun_ = false; // the page script has reported a document since one was last asked for
};

} // namespace kestrune
