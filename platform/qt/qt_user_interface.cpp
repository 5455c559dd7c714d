#include "platform/qt/qt_user_interface.h"

#include "platform/qt/accessibility.h"
#include "platform/qt/engine_age.h"
#include "platform/qt/engine_profile.h"
#include "platform/qt/menu_requests.h"
#include "platform/qt/qt_browser.h"
#include "platform/qt/qt_dialog.h"
#include "platform/qt/qt_message_box.h"
#include "platform/qt/qt_text.h"
#include "platform/qt/qt_window.h"
#include "platform/qt/stand_above.h"
#include "platform/qt/start_notices.h"
#include "platform/qt/twips.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCursor>
#include <QDate>
#include <QFileDialog>
#include <QMenu>
#include <QScreen>
#include <QThread>
#include <QWindow>
#include <QtWebEngineCore/qtwebenginecoreglobal.h>

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

// A window is asked to go from its own event handlers, so it goes once they are through.
struct GoLater {
    void operator()(QtWindow* window) const {
        window->release();
        window->deleteLater();
    }
};

class OpenWindow {
protected:
    explicit OpenWindow(WindowForm& form) : window_(std::make_unique<QtWindow>(form).release()) {}
    ~OpenWindow() = default;
    OpenWindow(const OpenWindow&) = delete;
    OpenWindow& operator=(const OpenWindow&) = delete;
    OpenWindow(OpenWindow&&) = delete;
    OpenWindow& operator=(OpenWindow&&) = delete;

    std::unique_ptr<QtWindow, GoLater> window_;
};

// A browser with its window around it: the page goes first, the window after it.
class WindowBrowser final : private OpenWindow, public QtBrowser {
public:
    WindowBrowser(WindowForm& form, BrowserEvents& events, std::shared_ptr<EngineProfile> profile)
        : OpenWindow(form), QtBrowser(window_->page_area(), events, std::move(profile)) {
        window_->order_tabs();
    }
    [[nodiscard]] QtWindow& window() const { return *window_; }
};

// "description|pattern;pattern" as the toolkit spells it. Several such pairs follow each other.
QStringList name_filters(std::string_view filter) {
    const QStringList parts = to_qt(filter).split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString patterns = QString(parts[i + 1]).replace(u';', u' ');
        QString description = parts[i];
        const qsizetype bracket = description.lastIndexOf(u'(');
        if (bracket > 0)
            description.truncate(bracket);
        filters << QStringLiteral("%1 (%2)").arg(description.trimmed(), patterns);
    }
    return filters;
}

} // namespace

// A stretch of time in which events are served from within a handler.
class QtUserInterface::Nested {
public:
    explicit Nested(QtUserInterface& owner) : owner_(owner) { ++owner_.nested_; }
    ~Nested() {
        if (--owner_.nested_ == 0)
            owner_.wake();
    }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;
    Nested(Nested&&) = delete;
    Nested& operator=(Nested&&) = delete;

private:
    QtUserInterface& owner_;
};

QtUserInterface::QtUserInterface() {
    install_accessibility();
    // Whoever else makes handlers wait in an event loop does not tell us when that loop ends, but the
    // outermost loop does tell when it has nothing left to do.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &context_,
                     [this] { wake(); });
}

QtUserInterface::~QtUserInterface() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

Answer QtUserInterface::MessageBox(std::string_view text, Buttons buttons, std::string_view title) {
    const Nested nested{*this};
    QtMessageBox box(text, buttons, title);
    stand_above_window(box);
    return box.ask();
}

void QtUserInterface::ShowModal(Form& form) {
    const Nested nested{*this};
    QtDialog dialog(form);
    stand_above_window(dialog);
    dialog.show_modal();
}

void QtUserInterface::PopupMenu(const MenuItem& menu) {
    const Nested nested{*this};
    for (const QPointer<QtWindow>& window : windows_) {
        QMenu* const shown = window.isNull() ? nullptr : window->shown_menu(menu);
        if (shown == nullptr)
            continue;
        const auto* const requests = window->findChild<MenuRequests*>();
        const auto asked = requests == nullptr ? std::nullopt : requests->menu_place();
        shown->exec(asked.value_or(QCursor::pos()));
        return; // the windows are not the same any more
    }
}

std::string QtUserInterface::OpenFileDialog(std::string_view filter) {
    const Nested nested{*this};
    QFileDialog dialog;
    dialog.setObjectName(QStringLiteral("OpenFileDialog"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    // A name that was typed is handed over as it is: whoever asked says what is wrong with it.
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(name_filters(filter));
    stand_above_window(dialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return from_qt(dialog.selectedFiles().first());
}

ScreenSize QtUserInterface::screen() const {
    const QSize size = QGuiApplication::primaryScreen()->size();
    return {to_twips(size.width()), to_twips(size.height())};
}

std::unique_ptr<Browser> QtUserInterface::open_window(WindowForm& form, BrowserEvents& events) {
    auto browser = std::make_unique<WindowBrowser>(form, events, profile());
    std::erase_if(windows_, [](const QPointer<QtWindow>& window) { return window.isNull(); });
    windows_.emplace_back(&browser->window());
    // A program that keeps nothing is none that somebody starts.
    if (!std::exchange(started_, true) && !site_data_folder_.empty()) {
        for (const auto& [heading, text] : start_notices(profile()->site_data()))
            browser->tell(from_qt(heading), from_qt(text));
    }
    return browser;
}

const std::shared_ptr<EngineProfile>& QtUserInterface::profile() {
    if (!profile_)
        profile_ = std::make_shared<EngineProfile>(site_data_folder_);
    return profile_;
}

void QtUserInterface::forget_sites() { profile()->forget_sites(); }

void QtUserInterface::DoEvents() {
    const Nested nested{*this};
    QCoreApplication::processEvents();
}

void QtUserInterface::call_later(std::function<void()> call) {
    later_.push_back(std::move(call));
    wake();
}

bool QtUserInterface::handler_on_stack() const {
    return nested_ > 0 || QThread::currentThread()->loopLevel() > 1;
}

void QtUserInterface::wake() {
    if (woken_ || later_.empty() || handler_on_stack())
        return;
    woken_ = true;
    QMetaObject::invokeMethod(
        &context_, [this] { run_calls(); }, Qt::QueuedConnection);
}

void QtUserInterface::run_calls() {
    woken_ = false;
    if (handler_on_stack())
        return;
    // What these calls put off waits for the next round.
    for (std::size_t count = later_.size(); count > 0 && !later_.empty(); --count) {
        const auto call = std::move(later_.front());
        later_.pop_front();
        call();
    }
}

void QtUserInterface::EndProgram() {
    // Not quit(): that asks the windows first, and they would ask the user.
    if (QThread::currentThread()->loopLevel() > 0)
        QCoreApplication::exit(0);
    else
        QMetaObject::invokeMethod(
            &context_, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
}

std::string QtUserInterface::engine_version() const {
    const QString sandbox = sandbox_words();
    const QString fixes = QString::fromLatin1(qWebEngineChromiumSecurityPatchVersion());
    return std::string("Qt WebEngine ") + qWebEngineVersion() + "\nBased on Chromium " +
           qWebEngineChromiumVersion() + "\nSecurity fixes up to Chromium " +
           qWebEngineChromiumSecurityPatchVersion() + "\n\n" +
           from_qt(engine_age_words(fixes, QDate::currentDate())) +
           (sandbox.isEmpty() ? std::string() : "\n\n" + from_qt(sandbox));
}

QtWindow* QtUserInterface::shown_window() const {
    const auto shown = std::find_if(windows_.rbegin(), windows_.rend(), [](const QPointer<QtWindow>& window) {
        return !window.isNull() && window->isVisible();
    });
    return shown == windows_.rend() ? nullptr : shown->data();
}

// Who asks is not told, but only one window is ever seen, and while a dialog is open nothing else asks.
void QtUserInterface::stand_above_window(QDialog& dialog) const {
    const QWidget* above = QApplication::activeModalWidget();
    if (above == nullptr)
        above = shown_window();
    if (above != nullptr)
        stand_above(dialog, *above);
}

} // namespace kestrune
