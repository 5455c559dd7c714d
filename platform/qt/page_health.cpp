#include "platform/qt/page_health.h"

#include "platform/diagnostics.h"
#include "platform/qt/engine_waits.h"

#include <QPushButton>
#include <QWebEngineScript>

#include <csignal>
#include <utility>

namespace kestrune {
namespace {

constexpr std::chrono::milliseconds default_patience = std::chrono::seconds(10);

} // namespace

PageHealth::PageHealth(QWebEnginePage& page, PageBars& bars, QWidget& place, EngineWaits& waits,
                       std::function<void(bool)> reload)
    : page_(page), bars_(bars), place_(place), waits_(waits), reload_(std::move(reload)) {
    connect(&beat_, &QTimer::timeout, this, [this] { ask(); });
    set_patience(default_patience);
    beat_.start();
    connect(&page, &QWebEnginePage::renderProcessTerminated, this,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) { process_ended(status); });
}

void PageHealth::set_patience(std::chrono::milliseconds time) {
    patience_ = time;
    beat_.setInterval(time / 5);
}

bool PageHealth::answers() const { return !asked_.isValid() || asked_.elapsed() < beat_.interval(); }

void PageHealth::alive() {
    asked_.invalidate();
    waits_on_ = false;
    if (bar_ && bar_->objectName() == QLatin1String("PageHangs"))
        say_nothing();
}

void PageHealth::began() {
    ++visit_;
    dead_ = false;
    go_ = nullptr;
    waits_on_ = false;
    asked_.invalidate();
    // What was said of a document is gone with it, but a reload of our own is not yet past.
    if (bar_ && bar_->objectName() != QLatin1String("PageCrashed"))
        say_nothing();
}

void PageHealth::ask() {
    if (dead_ || !place_.isVisible())
        return;
    if (waits_.open()) {
        // The engine stands still; nobody could answer.
        if (asked_.isValid())
            asked_.restart();
        return;
    }
    if (asked_.isValid()) {
        // The timer of `leaving` may have looked a moment too early.
        if (!answers())
            make_way();
        if (asked_.elapsed() >= patience_.count() && !bar_ && !waits_on_)
            hangs();
        return;
    }
    asked_.start();
    page_.runJavaScript(QStringLiteral("1"), QWebEngineScript::ApplicationWorld,
                        [self = QPointer<PageHealth>(this), visit = visit_](const QVariant&) {
                            if (self && self->visit_ == visit)
                                self->alive();
                        });
}

void PageHealth::hangs() {
    say(QStringLiteral("PageHangs"), QStringLiteral("This page does not answer"),
        QStringLiteral("One of its scripts may run without end. Going to another page ends it."), true,
        QStringLiteral("Wait"));
}

bool PageHealth::leaving(std::function<void()> go) {
    reloads_ = 0;
    sent_form_ = false;
    reload_due_ = false;
    say_nothing();
    go_ = std::move(go);
    if (dead_)
        return false;
    if (!answers()) {
        end_for_leaving();
        return true;
    }
    ask();
    QTimer::singleShot(beat_.interval(), this, [this] {
        if (!answers())
            make_way();
    });
    return false;
}

void PageHealth::make_way() {
    if (go_ && !makes_way_)
        end_for_leaving();
}

void PageHealth::end_for_leaving() {
    makes_way_ = true;
    end_process();
    // Its end may not be told of.
    QTimer::singleShot(beat_.interval() / 2, this, [this] {
        if (makes_way_)
            go();
    });
}

void PageHealth::go() {
    ended_by_us_ = false;
    makes_way_ = false;
    const auto call = std::exchange(go_, nullptr);
    if (!call)
        return;
    // The engine takes an address that it is already on its way to for the same request.
    page_.triggerAction(QWebEnginePage::Stop);
    call();
}

void PageHealth::end_process() {
    const qint64 process = page_.renderProcessPid();
    if (process <= 0)
        return;
    ended_by_us_ = true;
    asked_.invalidate();
    ::kill(static_cast<pid_t>(process), SIGKILL);
}

void PageHealth::process_ended(QWebEnginePage::RenderProcessTerminationStatus status) {
    asked_.invalidate();
    const bool by_us = std::exchange(ended_by_us_, false);
    if (status == QWebEnginePage::NormalTerminationStatus)
        return;
    dead_ = true;
    if (go_) {
        // What was asked for before is lost with the process.
        // Not from inside the engine's own signal.
        QTimer::singleShot(0, this, [this] { go(); });
        return;
    }
    if (by_us)
        return;
    if (!sent_form_ && reloads_ < most_reloads) {
        ++reloads_;
        say(QStringLiteral("PageCrashed"), QStringLiteral("This page has broken down"),
            QStringLiteral("It was loaded again."), false);
        reload_due_ = true;
        QTimer::singleShot(0, this, [this] {
            if (std::exchange(reload_due_, false))
                reload_(false);
        });
        return;
    }
    say(QStringLiteral("PageCrashed"), QStringLiteral("This page has broken down"),
        sent_form_
            ? QStringLiteral("It came of a form that was sent; loading it again sends the form once more.")
            : QStringLiteral("It did so again after it was loaded again."),
        true);
}

void PageHealth::say(const QString& name, const QString& heading, const QString& text, bool with_reload,
                     const QString& other) {
    say_nothing();
    PageBar& bar = bars_.add(name);
    bar_ = &bar;
    bar.set_heading(heading);
    bar.set_text(text);
    if (with_reload)
        bar.add_button(QStringLiteral("Reload"), [this] { reload_(true); });
    bar.add_button(other, [this] {
        waits_on_ = true;
        say_nothing();
    });
}

void PageHealth::say_nothing() {
    PageBars::remove(bar_);
    bar_.clear();
}

} // namespace kestrune
