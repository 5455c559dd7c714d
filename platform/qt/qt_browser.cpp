#include "platform/qt/qt_browser.h"

#include "platform/diagnostics.h"
#include "platform/qt/child_of.h"
#include "platform/qt/engine_address.h"
#include "platform/qt/engine_calls.h"
#include "platform/qt/engine_image.h"
#include "platform/qt/engine_navigations.h"
#include "platform/qt/engine_order.h"
#include "platform/qt/engine_page.h"
#include "platform/qt/engine_profile.h"
#include "platform/qt/engine_submission.h"
#include "platform/qt/engine_waits.h"
#include "platform/qt/menu_requests.h"
#include "platform/qt/page_comforts.h"
#include "platform/qt/qt_text.h"

#include <QAction>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>
#include <QWebEngineHistory>
#include <QWebEngineView>

#include <utility>

namespace kestrune {
namespace {

// A navigation whose request is not seen within this time makes none.
constexpr std::chrono::milliseconds request_time{300};

std::shared_ptr<EngineProfile> shared_profile() {
    static std::weak_ptr<EngineProfile> current;
    std::shared_ptr<EngineProfile> profile = current.lock();
    if (!profile) {
        profile = std::make_shared<EngineProfile>();
        current = profile;
    }
    return profile;
}

QString blank_page() { return QStringLiteral("about:blank"); }

} // namespace

// Members end in the reverse order: the page before its profile, the widget before its page.
class QtBrowser::Engine : public QObject, public EnginePageEvents {
public:
    Engine(QWidget& place, BrowserEvents& events, std::shared_ptr<EngineProfile> profile);
    ~Engine() override;
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    Engine(Engine&&) = delete;
    Engine& operator=(Engine&&) = delete;

    void navigate(std::string_view typed);
    void go_to(const QUrl& url);
    void go_back();
    void reload();

    void navigation_asked(const AskedNavigation& asked) override;
    void navigation_requested(const QUrl& url, bool redirect, bool top_level) override;
    QWebEnginePage* window_wanted() override;
    void heard(PageNotice notice) override;
    void process_ended() override { calls_->abandon(); }

    EnginePage& page() { return *page_; }
    PageCalls& calls() { return *calls_; }
    // The profile stays with it.
    std::shared_ptr<EngineWaits> waits() { return {profile_, &profile_->waits()}; }
    PageComforts& comforts() { return *comforts_; }
    QWebEngineView& view() { return *view_; }

private:
    void start(const QUrl& url);
    void start_reload();
    void began(const PageNotice& notice);
    void completed(const DocumentId& id, const std::string& url);
    void join(EventOrder::Place place, const AskedNavigation& asked);
    void announce(const QUrl& url, bool top_level);
    void announce_back();
    [[nodiscard]] bool can_go_back() const;

    BrowserEvents& events_;
    std::shared_ptr<EngineProfile> profile_;
    EventOrder order_;
    NavigationWatch navigations_;
    SubmissionJoin submissions_;
    std::unique_ptr<EnginePage> page_;
    std::unique_ptr<PageCalls> calls_;
    QPointer<QWebEngineView> view_; // its parent may have deleted it before
    QPointer<MenuRequests> menus_;  // likewise
    std::unique_ptr<PageComforts> comforts_;
    std::optional<bool> back_announced_;
    bool blank_announced_ = false;
};

QtBrowser::Engine::Engine(QWidget& place, BrowserEvents& events, std::shared_ptr<EngineProfile> profile)
    : events_(events), profile_(std::move(profile)),
      page_(std::make_unique<EnginePage>(profile_->engine(), *this)),
      calls_(std::make_unique<PageCalls>(*page_, QtBrowser::answer_time, profile_->waits())),
      view_(new QWebEngineView(&place)) {
    page_->set_straggler_time(QtBrowser::straggler_time);
    view_->setPage(page_.get());
    if (place.layout() == nullptr) {
        auto layout = std::make_unique<QVBoxLayout>();
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        place.setLayout(layout.release());
    }
    place.layout()->addWidget(view_);
    // What stands above and below the page takes no more room than it needs.
    if (auto* const column = qobject_cast<QBoxLayout*>(place.layout()))
        column->setStretchFactor(view_, 1);
    menus_ = &child_of<MenuRequests>(place, *view_,
                                     [this](const ElementRef& field) { return events_.ContextMenu(field); });
    comforts_ = std::make_unique<PageComforts>(place, *view_, *page_, *profile_,
                                               PageActions{[this] { reload(); }, [this] { start_reload(); },
                                                           [this](const QUrl& url) { go_to(url); }});
    page_->serve(comforts_.get());
    connect(page_.get(), &QWebEnginePage::urlChanged, this, [this] { announce_back(); });
    connect(page_.get(), &QWebEnginePage::loadFinished, this, [this] { announce_back(); });
    // The engine's own commands stop a load as well (its context menu).
    connect(page_->action(QWebEnginePage::Stop), &QAction::triggered, this,
            [this] { calls_->run("kestrune.stop()"); });
    connect(page_.get(), &QWebEnginePage::windowCloseRequested, this,
            [this] { order_.add([this] { events_.WindowClosing(); }); });
    announce_back();
}

QtBrowser::Engine::~Engine() {
    calls_->abandon();
    delete menus_.data();
    page_->fall_silent();
    comforts_.reset();
    delete view_.data();
    // It may outlive the browser, by the call that the engine is inside of.
    connect(page_.get(), &QObject::destroyed, page_.get(), [kept = profile_] {});
    EnginePage::end(std::move(page_));
}

void QtBrowser::Engine::navigate(std::string_view typed) {
    const std::optional<QUrl> url = typed_address(typed);
    if (!url) {
        diagnostics::report("no address", typed);
        return;
    }
    go_to(*url);
}

void QtBrowser::Engine::go_to(const QUrl& url) {
    if (!comforts_->leaving([this, url] { start(url); }))
        start(url);
}

void QtBrowser::Engine::start(const QUrl& url) {
    if (url.scheme() == QLatin1String("about")) {
        // The engine does not ask about this one.
        blank_announced_ = true;
        announce(url, true);
    } else {
        navigations_.expect();
    }
    page_->setUrl(url);
}

void QtBrowser::Engine::go_back() {
    if (!can_go_back())
        return;
    const auto back = [this] {
        navigations_.expect();
        page_->triggerAction(QWebEnginePage::Back);
    };
    if (!comforts_->leaving(back))
        back();
}

void QtBrowser::Engine::reload() {
    comforts_->reload_wanted([this] {
        if (!comforts_->leaving([this] { start_reload(); }))
            start_reload();
    });
}

void QtBrowser::Engine::start_reload() {
    navigations_.expect();
    page_->triggerAction(QWebEnginePage::Reload);
}

void QtBrowser::Engine::navigation_asked(const AskedNavigation& asked) {
    const EventOrder::Place place = order_.keep();
    navigations_.asked(asked.url, asked.redirect, asked.top_level, [this, place, asked](bool announced) {
        if (announced)
            join(place, asked);
        else
            order_.drop(place);
    });
    if (const std::uint64_t number = navigations_.undecided())
        QTimer::singleShot(request_time, this, [this, number] { navigations_.no_request(number); });
}

void QtBrowser::Engine::join(EventOrder::Place place, const AskedNavigation& asked) {
    const auto announce = [this, place, asked](std::optional<FormSubmission> submission) {
        NavigateEvent event;
        event.top_level = asked.top_level;
        event.url = asked.url.toString(QUrl::FullyEncoded).toStdString();
        if (submission) {
            event.frame_name = std::move(submission->frame);
            event.postdata = std::move(submission->postdata);
            event.headers = std::move(submission->headers);
            event.submitted = std::move(submission->submitted);
        }
        order_.fill(
            place, [this, event = std::move(event)]() mutable { events_.BeforeNavigate2(std::move(event)); });
    };
    if (asked.of_the_page)
        submissions_.asked(asked.url, asked.of_a_form, announce);
    else
        announce(std::nullopt);
}

void QtBrowser::Engine::navigation_requested(const QUrl& url, bool redirect, bool top_level) {
    navigations_.requested(url, redirect, top_level);
}

QWebEnginePage* QtBrowser::Engine::window_wanted() {
    const QPointer<Engine> self(this);
    const std::shared_ptr<EngineProfile> kept = profile_;
    const bool may_ask = kept->waits().wait_for_questions();
    if (!self)
        return nullptr;
    const EngineWaits::Open standing_still(kept->waits());
    Browser* const browser = may_ask ? events_.NewWindow2() : nullptr;
    if (!self)
        return nullptr;
    auto* const chosen = dynamic_cast<QtBrowser*>(browser);
    if (chosen == nullptr || chosen->engine_->page_->profile() != page_->profile())
        return nullptr;
    return chosen->engine_->page_.get();
}

void QtBrowser::Engine::heard(PageNotice notice) {
    comforts_->alive();
    switch (notice.kind) {
    case PageNotice::Kind::begin:
        began(notice);
        break;
    case PageNotice::Kind::frame:
        navigations_.began(false);
        break;
    case PageNotice::Kind::complete:
        completed(notice.id, notice.url);
        break;
    case PageNotice::Kind::image:
        calls_->arrived(notice.request, notice.text);
        break;
    case PageNotice::Kind::ready:
        calls_->ready(notice.request);
        break;
    case PageNotice::Kind::submit:
        submissions_.reported(std::move(*notice.submission));
        break;
    case PageNotice::Kind::menu:
        if (menus_)
            menus_->answered(notice);
        break;
    }
}

void QtBrowser::Engine::began(const PageNotice& notice) {
    navigations_.began(true);
    comforts_->began(notice.id);
    calls_->abandon();
    const bool announced = std::exchange(blank_announced_, false);
    if (!notice.error && !announced && notice.url == blank_page().toStdString())
        announce(QUrl(blank_page()), true);
    announce_back();
}

void QtBrowser::Engine::completed(const DocumentId& id, const std::string& url) {
    comforts_->completed(id);
    const EventOrder::Place place = order_.keep();
    calls_->fetch_image(id, events_.wanted_parts(), [this, place, id, url](PageCalls::Answer answer) {
        if (answer.gone) {
            order_.drop(place);
            return;
        }
        PageDocument image;
        image.id = id;
        image.url = url;
        if (answer.image)
            image = std::move(*answer.image);
        order_.fill(place, [this, image = std::move(image)]() mutable {
            events_.DocumentComplete(std::move(image));
        });
    });
}

void QtBrowser::Engine::announce(const QUrl& url, bool top_level) {
    NavigateEvent event;
    event.top_level = top_level;
    event.url = url.toString(QUrl::FullyEncoded).toStdString();
    order_.add([this, event] { events_.BeforeNavigate2(event); });
}

void QtBrowser::Engine::announce_back() {
    const bool now = can_go_back();
    if (back_announced_ == now)
        return;
    back_announced_ = now;
    order_.add([this, now] { events_.CommandStateChange(BrowserEvents::navigate_back, now); });
}

// Every window starts with about:blank, which is no page to go back to.
bool QtBrowser::Engine::can_go_back() const {
    QWebEngineHistory& history = *page_->history();
    const int current = history.currentItemIndex();
    if (!history.canGoBack())
        return false;
    return current > 1 || history.itemAt(0).url() != QUrl(blank_page());
}

QtBrowser::QtBrowser(QWidget& place, BrowserEvents& events, std::shared_ptr<EngineProfile> profile)
    : engine_(std::make_unique<Engine>(place, events, std::move(profile))) {}

QtBrowser::QtBrowser(QWidget& place, BrowserEvents& events) : QtBrowser(place, events, shared_profile()) {}

QtBrowser::~QtBrowser() = default;

void QtBrowser::Navigate(std::string_view url) { engine_->navigate(url); }

void QtBrowser::GoBack() { engine_->go_back(); }

void QtBrowser::Reload() { engine_->reload(); }

void QtBrowser::Stop() {
    engine_->page().triggerAction(QWebEnginePage::Stop);
    engine_->calls().run("kestrune.stop()");
}

std::string QtBrowser::LocationURL() const {
    const QUrl url = engine_->page().history()->currentItem().url();
    return url.isEmpty() ? blank_page().toStdString() : url.toString(QUrl::FullyEncoded).toStdString();
}

std::optional<PageDocument> QtBrowser::take_image(const DocumentId& document, PageParts parts) {
    const std::shared_ptr<EngineWaits> waits = engine_->waits();
    return wait_for_image(engine_->calls(), document, parts, *waits);
}

void QtBrowser::apply(const std::vector<PageEdit>& edits) {
    if (edits.empty())
        return;
    engine_->comforts().acted();
    engine_->calls().run("kestrune.apply(" + write_edits(edits) + ")");
}

void QtBrowser::set_straggler_time(std::chrono::milliseconds time) {
    engine_->page().set_straggler_time(time);
}

void QtBrowser::set_answer_time(std::chrono::milliseconds time) { engine_->calls().set_answer_time(time); }

void QtBrowser::set_page_deadline(std::chrono::milliseconds time) { engine_->comforts().set_deadline(time); }

bool QtBrowser::deadline_runs() const { return engine_->comforts().deadline_runs(); }

void QtBrowser::set_hang_time(std::chrono::milliseconds time) { engine_->comforts().set_patience(time); }

void QtBrowser::tell(const std::string& heading, const std::string& text) {
    engine_->comforts().tell(to_qt(heading), to_qt(text));
}

QWebEngineView& QtBrowser::view() const { return engine_->view(); }

} // namespace kestrune
