#pragma once

#include "platform/page.h"
#include "platform/qt/page_requests.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>

#include <chrono>
#include <functional>
#include <memory>

class QWebEngineView;
class QWidget;

namespace kestrune {

class EngineProfile;

// How the page is moved on.
struct PageActions {
    std::function<void()> reload; // as the user asks for it
    std::function<void()> repeat; // the same without the user
    std::function<void(const QUrl&)> open;
};

// What a user expects of a browser window around its page: the page's dialogs, sign-ins, uploads, downloads,
// warnings. Each has a file of its own; this ties them to one page.
class PageComforts : public QObject, public PageRequests {
public:
    // The view is a child of `place` already; the page and the profile outlive the comforts. When the place
    // ends first, every request is answered in the way that does least.
    PageComforts(QWidget& place, QWebEngineView& view, QWebEnginePage& page, EngineProfile& profile,
                 PageActions actions);
    ~PageComforts() override;
    PageComforts(const PageComforts&) = delete;
    PageComforts& operator=(const PageComforts&) = delete;
    PageComforts(PageComforts&&) = delete;
    PageComforts& operator=(PageComforts&&) = delete;

    // The user or the program leaves the page from outside it. True when what shows it has to be ended first:
    // `go` is called then, soon.
    [[nodiscard]] bool leaving(std::function<void()> go);
    // Calls `reload`, after asking where that sends a form once more.
    void reload_wanted(std::function<void()> reload);
    // A word of the program's own above the page, until it is read.
    void tell(const QString& heading, const QString& text);
    // The browser's own context menu; `place` in the view.
    void show_menu(QPoint place);
    // The program clicks something on the page, for the user.
    void acted();
    // A document has taken over the top window.
    void began(const DocumentId& document);
    void completed(const DocumentId& document);
    // Any sign of life of the page.
    void alive();
    // For all pages, of what they do from now on.
    void set_deadline(std::chrono::milliseconds time);
    [[nodiscard]] bool deadline_runs() const;
    void set_patience(std::chrono::milliseconds time); // with a page that does not answer

    void page_alert(const QUrl& origin, const QString& text) override;
    bool page_confirm(const QUrl& origin, const QString& text) override;
    std::optional<QString> page_prompt(const QUrl& origin, const QString& text,
                                       const QString& preset) override;
    void sign_in_wanted(const QUrl& url, QAuthenticator& authenticator, const QString& proxy) override;
    QStringList files_wanted(QWebEnginePage::FileSelectionMode mode, const QStringList& types) override;
    bool may_navigate(const QUrl& url, QWebEnginePage::NavigationType type, bool top_level) override;
    void requesting(const QByteArray& method, bool top_level) override;
    void address_refused(const QUrl& url, bool by_user) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Parts;
    void hear_certificates();
    void deadline_passed();
    [[nodiscard]] bool acted_just_now() const;

    QWidget& place_;
    QWebEngineView& view_;
    QWebEnginePage& page_;
    EngineProfile& profile_;
    PageActions actions_;
    DocumentId document_;  // of the top window
    QElapsedTimer acted_;  // since the user did something on the page
    bool cut_off_ = false; // the page may not go elsewhere by itself
    bool began_ = false;   // since the page was left, a document has come
    bool left_ = false;    // from outside; what goes where has not come up yet
    bool asked_by_post_ = false;
    bool shown_by_post_ = false;
    QUrl asked_for_;               // address that the top window goes to
    std::unique_ptr<Parts> parts_; // null once the place is gone
};

} // namespace kestrune
