#include "platform/qt/page_comforts.h"

#include "platform/qt/certificate_words.h"
#include "platform/qt/child_of.h"
#include "platform/qt/downloads.h"
#include "platform/qt/engine_profile.h"
#include "platform/qt/engine_waits.h"
#include "platform/qt/file_chooser.h"
#include "platform/qt/outside_links.h"
#include "platform/qt/page_bars.h"
#include "platform/qt/page_deadline.h"
#include "platform/qt/page_dialogs.h"
#include "platform/qt/page_health.h"
#include "platform/qt/page_tools.h"
#include "platform/qt/shown_words.h"

#include <QAction>
#include <QAuthenticator>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QPushButton>
#include <QWebEngineCertificateError>
#include <QWebEngineView>

#include <utility>

namespace kestrune {
namespace {

// The engine asks whether a page may be left as it asks a page's own question, with this text.
QString leave_question() {
    return QCoreApplication::translate(
        "QWebEnginePage",
        "Are you sure you want to leave this page? Changes that you made may not be saved.");
}

// What the page does within this time of a click or a key is the user's doing. In milliseconds.
constexpr qint64 time_of_an_act = 2000;

PageBars& add_bars(QWidget& place, QWidget& view) {
    auto& bars = child_of<PageBars>(place);
    QWidget::setTabOrder(view.previousInFocusChain(), &bars);
    if (auto* const column = qobject_cast<QBoxLayout*>(place.layout()))
        column->insertWidget(0, &bars);
    return bars;
}

} // namespace

struct PageComforts::Parts {
    Parts(PageComforts& owner, QWidget& place, QWebEngineView& view, EngineWaits& waits,
          const PageActions& actions)
        : bars(add_bars(place, view)),
          dialogs(bars, place, waits,
                  {[page = view.page()] { return page->url(); }, [&owner] { return owner.asked_for_; },
                   [this] { health.make_way(); }}),
          outside(bars),
          deadline([&owner] { owner.deadline_passed(); }, [page = view.page()] { return page->isLoading(); }),
          health(*view.page(), bars, place, waits,
                 [&actions](bool by_user) { (by_user ? actions.reload : actions.repeat)(); }),
          tools(place, view, bars) {}
    PageBars& bars; // owned by the place
    PageDialogs dialogs;
    OutsideLinks outside;
    PageDeadline deadline;
    PageHealth health;
    PageTools tools;
    QString host; // that the window shows
    QPointer<PageBar> certificate;
    QPointer<PageBar> late;
    QPointer<PageBar> send_again;
};

PageComforts::PageComforts(QWidget& place, QWebEngineView& view, QWebEnginePage& page, EngineProfile& profile,
                           PageActions actions)
    : place_(place), view_(view), page_(page), profile_(profile), actions_(std::move(actions)),
      parts_(std::make_unique<Parts>(*this, place, view, profile.waits(), actions_)) {
    connect(&place, &QObject::destroyed, this, [this] { parts_.reset(); });
    profile.downloads().add_place(page, parts_->bars);
    hear_certificates();
    connect(&page, &QWebEnginePage::loadFinished, this, [this](bool succeeded) {
        if (!parts_)
            return;
        // The end of a load that another one has taken the place of is told as well.
        if (page_.isLoading())
            return;
        parts_->deadline.load_ended();
        // A process that dies under a load ends that first.
        if (succeeded)
            parts_->health.stayed();
        // While a page is left its own load ends; it must not ask anew for that.
        if (!left_)
            parts_->dialogs.stayed();
    });
    connect(&page, &QWebEnginePage::renderProcessTerminated, this,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) {
                // Going to another site may end the former one's process.
                if (parts_ && status != QWebEnginePage::NormalTerminationStatus)
                    parts_->deadline.stop();
            });
    // The browser's own menu.
    for (const auto action : {QWebEnginePage::Back, QWebEnginePage::Forward, QWebEnginePage::Reload})
        connect(page.action(action), &QAction::triggered, this, [this] { acted(); });
    QCoreApplication::instance()->installEventFilter(this);
    view.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&view, &QWidget::customContextMenuRequested, this, [this](QPoint at) { show_menu(at); });
}

PageComforts::~PageComforts() = default;

bool PageComforts::leaving(std::function<void()> go) {
    if (!parts_)
        return false;
    const bool later = parts_->dialogs.leaving([this, go] {
        if (!parts_->health.leaving(go))
            go();
    });
    parts_->outside.leaving();
    parts_->tools.leaving();
    for (const auto& bar : {parts_->certificate, parts_->late, parts_->send_again})
        PageBars::remove(bar);
    cut_off_ = false;
    began_ = false;
    left_ = true;
    asked_by_post_ = false;
    parts_->deadline.visit();
    return later || parts_->health.leaving(std::move(go));
}

void PageComforts::reload_wanted(std::function<void()> reload) {
    if (!parts_ || !shown_by_post_) {
        reload();
        return;
    }
    if (parts_->send_again && !parts_->send_again->isHidden())
        return;
    PageBar& bar = parts_->bars.add(QStringLiteral("SendAgain"));
    parts_->send_again = &bar;
    bar.set_heading(QStringLiteral("Send the form again?"));
    bar.set_text(
        QStringLiteral("This page came of a form that was sent. Loading it again sends the form once more."));
    bar.add_answer(QStringLiteral("Send again"), std::move(reload));
    bar.add_answer(QStringLiteral("Cancel"));
    parts_->bars.reveal(bar);
    bar.take_focus();
}

void PageComforts::tell(const QString& heading, const QString& text) {
    if (parts_)
        parts_->bars.tell(QStringLiteral("Notice"), heading, text);
}

void PageComforts::show_menu(QPoint place) {
    if (parts_)
        parts_->tools.show_menu(place);
}

void PageComforts::acted() { acted_.start(); }

bool PageComforts::acted_just_now() const { return acted_.isValid() && acted_.elapsed() < time_of_an_act; }

void PageComforts::began(const DocumentId& document) {
    document_ = document;
    const bool gone_to = !std::exchange(began_, true);
    shown_by_post_ = asked_by_post_;
    if (!parts_)
        return;
    parts_->dialogs.arrived();
    const QString host = shown_host(page_.url());
    if (std::exchange(parts_->host, host) != host && gone_to)
        profile_.downloads().page_left(page_);
    if (gone_to)
        parts_->outside.forget_refusals();
    parts_->health.began();
    parts_->health.set_sent_form(shown_by_post_);
}

void PageComforts::completed(const DocumentId& document) {
    if (parts_ && document == document_)
        parts_->deadline.arrived();
}

void PageComforts::alive() {
    if (parts_)
        parts_->health.alive();
}

void PageComforts::set_deadline(std::chrono::milliseconds time) {
    if (parts_)
        parts_->deadline.set_time(time);
}

bool PageComforts::deadline_runs() const { return parts_ && parts_->deadline.running(); }

void PageComforts::set_patience(std::chrono::milliseconds time) {
    if (parts_)
        parts_->health.set_patience(time);
}

void PageComforts::deadline_passed() {
    if (profile_.waits().open()) {
        // The engine stands still for a question; that is not the page's time.
        parts_->deadline.visit();
        return;
    }
    const bool hangs = !parts_->health.answers();
    // Not the window's own Stop, which completes a document.
    page_.triggerAction(QWebEnginePage::Stop);
    cut_off_ = true;
    if (hangs)
        parts_->health.end_process();
    PageBars::remove(parts_->late);
    PageBar& bar = parts_->bars.add(QStringLiteral("PageLate"));
    parts_->late = &bar;
    bar.set_heading(QStringLiteral("This page took too long"));
    bar.set_text(hangs    ? QStringLiteral("A script of it did not end. The page was stopped.")
                 : began_ ? QStringLiteral("It was loading again and again, and was stopped.")
                          : QStringLiteral("The site did not answer in time."));
    if (!asked_by_post_)
        bar.add_answer(QStringLiteral("Try again"), [this] { actions_.open(asked_for_); });
    bar.add_answer(QStringLiteral("Close"));
}

bool PageComforts::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::KeyPress)
        return false;
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (parts_ && widget != nullptr && view_.isAncestorOf(widget))
        acted();
    return false;
}

void PageComforts::page_alert(const QUrl& origin, const QString& text) {
    if (parts_)
        parts_->dialogs.alert(origin, text);
}

bool PageComforts::page_confirm(const QUrl& origin, const QString& text) {
    if (text == leave_question())
        return !parts_ || parts_->dialogs.leave(origin);
    return parts_ && parts_->dialogs.confirm(origin, text);
}

std::optional<QString> PageComforts::page_prompt(const QUrl& origin, const QString& text,
                                                 const QString& preset) {
    return parts_ ? parts_->dialogs.prompt(origin, text, preset) : std::nullopt;
}

QStringList PageComforts::files_wanted(QWebEnginePage::FileSelectionMode mode, const QStringList& types) {
    EngineWaits& waits = profile_.waits();
    const QPointer<PageComforts> self(this);
    if (waits.open() || !waits.wait_for_questions() || !self || !parts_ || !place_.isVisible())
        return {};
    const EngineWaits::Open standing_still(waits);
    return choose_files(place_, mode, types);
}

bool PageComforts::may_navigate(const QUrl& url, QWebEnginePage::NavigationType type, bool top_level) {
    const bool left = top_level && std::exchange(left_, false);
    // A script's way through the history looks like the user's.
    const bool of_page =
        type == QWebEnginePage::NavigationTypeBackForward
            ? !left
            : type != QWebEnginePage::NavigationTypeTyped && type != QWebEnginePage::NavigationTypeReload;
    // The engine keeps pages of the network from local files; this is the second lock.
    if (of_page && url.isLocalFile() && !page_.url().isLocalFile())
        return false;
    if (!top_level)
        return true;
    if (of_page && parts_) {
        if (acted_just_now()) {
            cut_off_ = false;
            parts_->deadline.visit();
        } else if (cut_off_) {
            return false;
        } else {
            parts_->deadline.navigates();
        }
    } else if (parts_) {
        // What the former page still had to say about its own load is no end of this one.
        parts_->deadline.navigates();
    }
    asked_for_ = url;
    return true;
}

void PageComforts::requesting(const QByteArray& method, bool top_level) {
    if (top_level)
        asked_by_post_ = method == "POST";
}

void PageComforts::address_refused(const QUrl& url, bool by_user) {
    if (!parts_)
        return;
    if (by_user)
        parts_->outside.forget_refusals();
    parts_->outside.wanted(url, shown_host(page_.url()));
}

void PageComforts::sign_in_wanted(const QUrl& url, QAuthenticator& authenticator, const QString& proxy) {
    const auto given = parts_ ? parts_->dialogs.sign_in(url, authenticator.realm(), proxy) : std::nullopt;
    if (!given) {
        authenticator = QAuthenticator(); // what the engine takes for a refusal
        return;
    }
    authenticator.setUser(given->user);
    authenticator.setPassword(given->password);
}

void PageComforts::hear_certificates() {
    connect(&page_, &QWebEnginePage::certificateError, this, [this](const QWebEngineCertificateError& error) {
        // Of a part of the page (a picture, a frame): it is left out, and the page works without it.
        if (!parts_ || error.url().host() != asked_for_.host() || error.url().port() != asked_for_.port())
            return;
        PageBars::remove(parts_->certificate);
        parts_->certificate =
            &parts_->bars.tell(QStringLiteral("CertificateError"), QStringLiteral("This page is not safe"),
                               certificate_words(error.type(), shown_host(error.url()), error.description()));
    });
}

} // namespace kestrune
