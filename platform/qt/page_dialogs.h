#pragma once

#include "platform/qt/page_bars.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace kestrune {

class EngineWaits;

// The dialogs that pages open: messages, questions, prompts and sign-ins, shown in the page's place.
//
// A message keeps neither its page nor the program waiting: it stands there until it is read. A question
// needs an answer, so its page waits, and the engine with it; therefore it is asked only of a user who can
// see it and while the program is in the middle of nothing, and it is given up as soon as the page is to be
// left. Otherwise it is answered at once in the way that does least, and said so. From the second dialog on
// the user can silence a page; its host stays silent until another one speaks.
//
// Of the sign-ins that parts of a page need (pictures, frames) the first one that is refused answers for all.
//
// A question takes the keyboard only for the host that the window shows, and never from a user who is typing;
// otherwise a password meant for the page would end in its bar.
class PageDialogs : public QObject {
public:
    struct SignIn {
        QString user;
        QString password;
    };

    struct Page {
        std::function<QUrl()> shown;   // address of the document in the top window
        std::function<QUrl()> gone_to; // address that the top window goes to, or went to last
        // A page that is being left keeps asking, and has to be ended. Called from inside the engine.
        std::function<void()> pestered;
    };
    // All outlive the dialogs; `place` is where the page is shown.
    PageDialogs(PageBars& bars, QWidget& place, EngineWaits& waits, Page page);
    ~PageDialogs() override;
    PageDialogs(const PageDialogs&) = delete;
    PageDialogs& operator=(const PageDialogs&) = delete;
    PageDialogs(PageDialogs&&) = delete;
    PageDialogs& operator=(PageDialogs&&) = delete;

    void alert(const QUrl& origin, const QString& text);
    bool confirm(const QUrl& origin, const QString& text);
    std::optional<QString> prompt(const QUrl& origin, const QString& text, const QString& preset);
    // `realm` in the site's own words; `proxy` when a proxy asks, not the site.
    std::optional<SignIn> sign_in(const QUrl& url, const QString& realm, const QString& proxy = {});
    // Whether a page that would rather not be left is left.
    bool leave(const QUrl& origin);

    // The user or the program leaves the page: what it asks is given up, what it says is taken away, and
    // whoever comes next may speak again. A page that asks whether it may be left is not heard until
    // `arrived`. True when nothing is to be asked for before the engine has heard that its own question,
    // whether the page may be left, is given up: `go` is called then, soon.
    bool leaving(std::function<void()> go = {});
    void stayed() { leaving_ = false; }
    void arrived() {
        leaving_ = false;
        gave_up_ = false;
        spoken_in_vain_ = 0;
    }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Question;
    struct Message {
        QString heading;
        QString text;
    };

    // Whoever is silent is so no longer when another host has come in its place.
    void note_speaker();
    // Whether a page may say anything now; counts it.
    bool may_speak();
    [[nodiscard]] bool may_ask() const;
    void tell(const QString& heading, const QString& text);
    void tell_of_refused_parts();
    void show_next_message();
    void message_read();
    PageBar& add_bar(const QString& name, const QString& heading, const QString& text, bool newcomer = false);
    void add_silencer(PageBar& bar);
    // Waits for the answer: whether the first button was pressed. False also when nobody is left to ask.
    // `asker` is of whom the user is asked.
    bool ask(PageBar& bar, const QUrl& asker, const QString& yes, const QString& no);
    void give_up();
    void take_messages_away();

    PageBars& bars_;
    QWidget& place_;
    EngineWaits& waits_;
    std::deque<Message> messages_;
    QPointer<PageBar> message_bar_;
    std::shared_ptr<Question> question_;
    Page page_;
    std::function<void()> go_;  // leaves the page, once its question is given up
    bool asks_to_stay_ = false; // the open question is whether the page may be left
    QString speaker_;           // host whose page spoke last
    int spoken_ = 0;
    int spoken_in_vain_ = 0; // since it is being left
    bool silenced_ = false;
    bool part_refused_ = false;       // a sign-in for a part of the page
    bool told_refused_parts_ = false; // that the others were refused with it
    bool leaving_ = false;
    bool gave_up_ = false; // its question, because it is being left; it may ask again and again
};

} // namespace kestrune
