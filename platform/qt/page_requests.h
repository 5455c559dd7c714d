#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <QWebEnginePage>

#include <optional>

class QAuthenticator;

namespace kestrune {

// What a page asks of its window beyond showing itself. Called from inside the engine, which waits for each
// answer.
class PageRequests {
public:
    PageRequests() = default;
    virtual ~PageRequests() = default;
    PageRequests(const PageRequests&) = delete;
    PageRequests& operator=(const PageRequests&) = delete;
    PageRequests(PageRequests&&) = delete;
    PageRequests& operator=(PageRequests&&) = delete;

    virtual void page_alert(const QUrl& origin, const QString& text) = 0;
    virtual bool page_confirm(const QUrl& origin, const QString& text) = 0;
    virtual std::optional<QString> page_prompt(const QUrl& origin, const QString& text,
                                               const QString& preset) = 0;
    // A server asks who the user is, or the proxy of this name when it is not empty. An authenticator made
    // anew refuses.
    virtual void sign_in_wanted(const QUrl& url, QAuthenticator& authenticator, const QString& proxy) = 0;
    // The user chooses files to be sent, once nothing else is asked of him; empty when none. The page asks
    // only when its user pressed a field of its, so unlike a question it is not answered for him.
    virtual QStringList files_wanted(QWebEnginePage::FileSelectionMode mode, const QStringList& types) = 0;
    // Whether the navigation may start at all.
    virtual bool may_navigate(const QUrl& url, QWebEnginePage::NavigationType type, bool top_level) = 0;
    // The request of a navigation goes out, by this method.
    virtual void requesting(const QByteArray& method, bool top_level) = 0;
    // An address that is not for the engine was refused; the user's own, or a page's.
    virtual void address_refused(const QUrl& url, bool by_user) = 0;
};

} // namespace kestrune
