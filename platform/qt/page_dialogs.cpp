#include "platform/qt/page_dialogs.h"

#include "platform/qt/engine_waits.h"
#include "platform/qt/shown_words.h"

#include <QCheckBox>
#include <QEvent>
#include <QEventLoop>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

namespace kestrune {
namespace {

constexpr std::size_t most_messages = 20; // that wait to be read
constexpr int most_in_vain = 20;          // from a page that is being left

QString says(const QUrl& origin) { return shown_host(origin) + QStringLiteral(" says:"); }

bool same_address(const QUrl& one, const QUrl& other) {
    const auto kept = QUrl::RemoveFragment | QUrl::RemoveUserInfo;
    return one.adjusted(kept) == other.adjusted(kept);
}

} // namespace

// Outlives the dialogs when they end while it is open.
struct PageDialogs::Question {
    QEventLoop loop;
    bool yes = false;
};

PageDialogs::PageDialogs(PageBars& bars, QWidget& place, EngineWaits& waits, Page page)
    : bars_(bars), place_(place), waits_(waits), page_(std::move(page)) {
    place_.installEventFilter(this);
}

PageDialogs::~PageDialogs() { give_up(); }

void PageDialogs::alert(const QUrl& origin, const QString& text) {
    if (may_speak())
        tell(says(origin), text);
}

bool PageDialogs::confirm(const QUrl& origin, const QString& text) {
    if (!may_speak())
        return false;
    if (!may_ask()) {
        tell(says(origin), text + QStringLiteral("\n(Answered with Cancel, because the program was busy.)"));
        return false;
    }
    PageBar& bar = add_bar(QStringLiteral("PageConfirm"), says(origin), text);
    return ask(bar, origin, QStringLiteral("OK"), QStringLiteral("Cancel"));
}

std::optional<QString> PageDialogs::prompt(const QUrl& origin, const QString& text, const QString& preset) {
    if (!may_speak())
        return std::nullopt;
    if (!may_ask()) {
        tell(says(origin), text + QStringLiteral("\n(Answered with Cancel, because the program was busy.)"));
        return std::nullopt;
    }
    PageBar& bar = add_bar(QStringLiteral("PagePrompt"), says(origin), text);
    const QPointer<QLineEdit> field = &bar.add_field({}, QStringLiteral("Answer"));
    field->setText(preset);
    field->selectAll();
    if (!ask(bar, origin, QStringLiteral("OK"), QStringLiteral("Cancel")) || !field)
        return std::nullopt;
    return field->text();
}

std::optional<PageDialogs::SignIn> PageDialogs::sign_in(const QUrl& url, const QString& realm,
                                                        const QString& proxy) {
    const bool of_part = !same_address(url, page_.gone_to());
    // What is being left loads on; only the page gone to is worth a question then.
    if (of_part && (leaving_ || gave_up_))
        return std::nullopt;
    note_speaker();
    // It has not come yet, and answers for nothing that the former page has said.
    const bool newcomer = !of_part && shown_host(url) != speaker_;
    if (silenced_ && !newcomer)
        return std::nullopt;
    if (of_part && part_refused_) {
        tell_of_refused_parts();
        return std::nullopt;
    }
    if (!newcomer)
        ++spoken_;
    const QString heading = (proxy.isEmpty() ? shown_host(url) : QStringLiteral("The proxy ") + proxy) +
                            QStringLiteral(" asks you to sign in:");
    if (!may_ask()) {
        tell(heading, realm + QStringLiteral("\n(Answered with Cancel, because the program was busy.)"));
        return std::nullopt;
    }
    const bool open_line = proxy.isEmpty() && url.scheme() != QLatin1String("https");
    PageBar& bar = add_bar(
        QStringLiteral("SignIn"), heading,
        realm + (open_line ? QStringLiteral("\nWhat you enter can be read on its way there.") : QString()),
        newcomer);
    const QPointer<QLineEdit> user = &bar.add_field(QStringLiteral("Name:"), QStringLiteral("User"));
    const QPointer<QLineEdit> password =
        &bar.add_field(QStringLiteral("Password:"), QStringLiteral("Password"));
    password->setEchoMode(QLineEdit::Password);
    const QPointer<PageDialogs> self(this);
    const QUrl asker = proxy.isEmpty() ? url : QUrl();
    const bool agreed = ask(bar, asker, QStringLiteral("Sign in"), QStringLiteral("Cancel"));
    if (self && !agreed && !gave_up_)
        part_refused_ = part_refused_ || of_part;
    if (!agreed || !user || !password)
        return std::nullopt;
    return SignIn{user->text(), password->text()};
}

void PageDialogs::tell_of_refused_parts() {
    if (!std::exchange(told_refused_parts_, true))
        tell(QStringLiteral("More parts of this page ask you to sign in."),
             QStringLiteral(
                 "They were left out like the one that you refused. Reload the page to be asked again."));
}

bool PageDialogs::leave(const QUrl& origin) {
    note_speaker();
    if (leaving_ || silenced_ || !may_ask())
        return true;
    ++spoken_;
    PageBar& bar = add_bar(QStringLiteral("PageLeave"), says(origin),
                           QStringLiteral("Leave this page? What you entered there may not be kept."));
    const QPointer<PageDialogs> self(this);
    asks_to_stay_ = true;
    const bool agreed = ask(bar, origin, QStringLiteral("Leave"), QStringLiteral("Stay"));
    if (self)
        asks_to_stay_ = false;
    return agreed;
}

bool PageDialogs::leaving(std::function<void()> go) {
    gave_up_ = gave_up_ || question_ != nullptr;
    // While the engine asks whether to go to one place it takes no other.
    const bool later = question_ && asks_to_stay_;
    if (later)
        go_ = std::move(go);
    give_up();
    take_messages_away();
    spoken_ = 0;
    silenced_ = false;
    part_refused_ = false;
    told_refused_parts_ = false;
    leaving_ = true;
    spoken_in_vain_ = 0;
    return later;
}

void PageDialogs::take_messages_away() {
    messages_.clear();
    PageBars::remove(message_bar_);
    message_bar_.clear();
}

void PageDialogs::note_speaker() {
    // Not what the page's document says when it begins, which is heard later than its first question.
    const QString host = shown_host(page_.shown());
    if (std::exchange(speaker_, host) == host)
        return;
    spoken_ = 0;
    silenced_ = false;
    part_refused_ = false;
    told_refused_parts_ = false;
}

bool PageDialogs::may_speak() {
    note_speaker();
    // A page that speaks without end never comes to the point where it could be left.
    if ((leaving_ || gave_up_) && ++spoken_in_vain_ == most_in_vain) {
        gave_up_ = true;
        take_messages_away();
        page_.pestered();
    }
    if (silenced_ || gave_up_)
        return false;
    ++spoken_;
    return true;
}

bool PageDialogs::may_ask() const {
    return question_ == nullptr && place_.isVisible() && !waits_.open() && !waits_.program_busy();
}

void PageDialogs::tell(const QString& heading, const QString& text) {
    if (messages_.size() >= most_messages)
        return;
    messages_.push_back({heading, text});
    if (message_bar_) {
        // One may be silenced that stands there already, now that there is more than one.
        if (message_bar_->findChild<QCheckBox*>() == nullptr)
            add_silencer(*message_bar_);
    } else {
        show_next_message();
    }
}

void PageDialogs::show_next_message() {
    if (messages_.empty())
        return;
    message_bar_ = &add_bar(QStringLiteral("PageAlert"), messages_.front().heading, messages_.front().text);
    message_bar_->add_button(QStringLiteral("OK"), [this] { message_read(); });
}

void PageDialogs::message_read() {
    const bool had_keyboard = message_bar_ && message_bar_->isAncestorOf(place_.window()->focusWidget());
    PageBars::remove(message_bar_);
    message_bar_.clear();
    if (silenced_)
        messages_.clear();
    else
        messages_.pop_front();
    show_next_message();
    if (had_keyboard && message_bar_)
        message_bar_->take_focus();
}

PageBar& PageDialogs::add_bar(const QString& name, const QString& heading, const QString& text,
                              bool newcomer) {
    PageBar& bar = bars_.add(name);
    bar.set_heading(heading);
    bar.set_text(text);
    if (spoken_ >= 2 && !newcomer)
        add_silencer(bar);
    return bar;
}

void PageDialogs::add_silencer(PageBar& bar) {
    QCheckBox& silencer =
        bar.add_check(QStringLiteral("Let this page ask and say nothing more"), QStringLiteral("Silence"));
    connect(&silencer, &QCheckBox::toggled, this, [this, host = speaker_](bool on) {
        if (host == speaker_)
            silenced_ = on;
    });
}

bool PageDialogs::ask(PageBar& bar, const QUrl& asker, const QString& yes, const QString& no) {
    const auto question = std::make_shared<Question>();
    const QPointer<PageBar> shown(&bar);
    const QPointer<PageDialogs> self(this);
    question_ = question;
    bar.add_button(yes, [question] {
        question->yes = true;
        question->loop.quit();
    });
    bar.add_button(no, [question] { question->loop.quit(); });
    bars_.reveal(bar);
    if (shown_host(asker) == shown_host(page_.gone_to()) && !bars_.user_types())
        bar.take_focus();
    const EngineWaits::Open standing_still(waits_);
    question->loop.exec();
    PageBars::remove(shown);
    if (!self)
        return false;
    question_.reset();
    if (go_)
        QMetaObject::invokeMethod(this, std::exchange(go_, nullptr), Qt::QueuedConnection);
    return question->yes;
}

void PageDialogs::give_up() {
    if (!question_)
        return;
    question_->yes = false;
    question_->loop.quit();
}

bool PageDialogs::eventFilter(QObject* watched, QEvent* event) {
    // The window has gone behind another one, or for good.
    if (watched == &place_ && event->type() == QEvent::Hide)
        give_up();
    return false;
}

} // namespace kestrune
