#include "platform/qt/engine_page.h"

#include "platform/diagnostics.h"
#include "platform/qt/engine_address.h"
#include "platform/qt/page_requests.h"

#include <QAuthenticator>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QRandomGenerator>
#include <QVariant>
#include <QWebEngineCertificateError>
#include <QWebEngineFileSystemAccessRequest>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineProfile>
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
#include <QWebEngineQuotaRequest>
#endif
#include <QWebEngineRegisterProtocolHandlerRequest>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineUrlRequestInfo>
#include <QWebEngineUrlRequestInterceptor>
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
#include <QWebEngineDesktopMediaRequest>
#include <QWebEngineWebAuthUxRequest>
#endif
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
#include <QWebEnginePermission>
#endif

#include <array>
#include <functional>
#include <utility>

// The resource lies in a static library: without a reference the linker leaves it out. Outside every
// namespace, as the toolkit's macro wants it.
static void have_resources() { Q_INIT_RESOURCE(page_script); }

namespace kestrune {
namespace {

constexpr std::chrono::milliseconds default_straggler_time = std::chrono::seconds(10);
// A frame's share of the time that the whole image has.
constexpr std::chrono::milliseconds frame_answer_time = std::chrono::seconds(1);

QString script_name() { return QStringLiteral("kestrune"); }

class RequestWatch : public QWebEngineUrlRequestInterceptor {
public:
    RequestWatch(std::function<EnginePageEvents*()> events, std::function<PageRequests*()> requests)
        : events_(std::move(events)), requests_(std::move(requests)) {}

    void interceptRequest(QWebEngineUrlRequestInfo& info) override {
        const bool top_level = info.resourceType() == QWebEngineUrlRequestInfo::ResourceTypeMainFrame;
        if (!top_level && info.resourceType() != QWebEngineUrlRequestInfo::ResourceTypeSubFrame)
            return;
        if (PageRequests* const requests = requests_())
            requests->requesting(info.requestMethod(), top_level);
        const bool redirect = info.navigationType() == QWebEngineUrlRequestInfo::NavigationTypeRedirect;
        if (EnginePageEvents* const events = events_())
            events->navigation_requested(info.requestUrl(), redirect, top_level);
    }

private:
    std::function<EnginePageEvents*()> events_;
    std::function<PageRequests*()> requests_;
};

QString random_key() {
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(words.data()), sizeof words).toHex());
}

QString script_file(const QFileInfo& info) {
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly))
        qFatal("a page script is not in the program");
    return QString::fromUtf8(file.readAll());
}

// Each file evaluates to a function; the one of script.js takes the others by name.
QString page_script(const QJsonObject& config) {
    have_resources();
    const QDir folder(QStringLiteral(":/kestrune/page"));
    QString others;
    for (const QFileInfo& info : folder.entryInfoList({QStringLiteral("*.js")}, QDir::Files, QDir::Name)) {
        if (info.completeBaseName() != QLatin1String("script"))
            others += info.completeBaseName() + QLatin1Char(':') + script_file(info) + QLatin1Char(',');
    }
    return QStringLiteral("'use strict';") + script_file(QFileInfo(folder, QStringLiteral("script.js"))) +
           QStringLiteral("({") + others + QStringLiteral("},") +
           QString::fromUtf8(QJsonDocument(config).toJson(QJsonDocument::Compact)) + QStringLiteral(");");
}

} // namespace

class EnginePage::Call {
public:
    explicit Call(EnginePage& page) : page_(page) { ++page_.calls_; }
    ~Call() {
        // Not before: an event loop inside the call would delete it there and then.
        if (--page_.calls_ == 0 && page_.ended_)
            page_.deleteLater();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    Call(Call&&) = delete;
    Call& operator=(Call&&) = delete;

private:
    EnginePage& page_;
};

EnginePage::EnginePage(QWebEngineProfile& profile, EnginePageEvents& events)
    : QWebEnginePage(&profile), events_(&events), bridge_([this](PageNotice notice) {
          begun_ = begun_ || notice.kind == PageNotice::Kind::begin;
          if (events_ != nullptr)
              events_->heard(std::move(notice));
      }),
      interceptor_(std::make_unique<RequestWatch>([this] { return events_; }, [this] { return requests_; })),
      frame_key_(random_key()), top_key_(random_key()) {
    channel_.registerObject(script_name(), &bridge_);
    setWebChannel(&channel_, QWebEngineScript::ApplicationWorld);
    setUrlRequestInterceptor(interceptor_.get());
    set_straggler_time(default_straggler_time);
    refuse_requests();
    connect(this, &QWebEnginePage::authenticationRequired, this,
            [this](const QUrl& url, QAuthenticator* authenticator) { sign_in(url, *authenticator, {}); });
    connect(this, &QWebEnginePage::proxyAuthenticationRequired, this,
            [this](const QUrl& url, QAuthenticator* authenticator, const QString& proxy) {
                sign_in(url, *authenticator, proxy);
            });
    connect(this, &QWebEnginePage::loadProgress, this, [this] { make_up_for_a_missing_script(); });
    connect(this, &QWebEnginePage::loadFinished, this, [this] { make_up_for_a_missing_script(); });
    connect(this, &QWebEnginePage::renderProcessTerminated, this,
            [this](RenderProcessTerminationStatus status, int code) {
                diagnostics::report("page process ended",
                                    std::to_string(status) + ", code " + std::to_string(code));
                if (events_ != nullptr)
                    events_->process_ended();
            });
}

EnginePage::~EnginePage() {
    setUrlRequestInterceptor(nullptr);
    setWebChannel(nullptr);
}

void EnginePage::end(std::unique_ptr<EnginePage> page) {
    if (page->calls_ == 0)
        return;
    page->ended_ = true;
    (void)page.release(); // deleted by the last call
}

void EnginePage::set_straggler_time(std::chrono::milliseconds time) {
    const QJsonObject config{{QStringLiteral("up"), frame_key_},
                             {QStringLiteral("down"), top_key_},
                             {QStringLiteral("straggler"), static_cast<qint64>(time.count())},
                             {QStringLiteral("answer"), static_cast<qint64>(frame_answer_time.count())}};
    QWebEngineScript script;
    script.setName(script_name());
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setRunsOnSubFrames(true);
    script_ = page_script(config);
    script.setSourceCode(script_);
    for (const QWebEngineScript& former : scripts().find(script_name()))
        scripts().remove(former);
    scripts().insert(script);
}

// Now and then the engine forgets the scripts of a page, mostly when a page of another site follows one that
// was still loading on a busy machine; without this nothing of such a document would ever be heard. The empty
// document that a new page starts with has none by rights. An element of the page's can be found under the
// script's name as well, but not as a property of the world itself.
void EnginePage::make_up_for_a_missing_script() {
    if (begun_)
        return;
    runJavaScript(QStringLiteral("!Object.hasOwn(globalThis, 'kestrune') && location.protocol !== 'about:'"),
                  QWebEngineScript::ApplicationWorld,
                  [self = QPointer<EnginePage>(this)](const QVariant& missing) {
                      if (self && missing.toBool())
                          self->runJavaScript(self->script_, QWebEngineScript::ApplicationWorld);
                  });
}

bool EnginePage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool top_level) {
    const bool visitable = may_be_visited(url);
    if (!visitable || (requests_ != nullptr && !requests_->may_navigate(url, type, top_level))) {
        diagnostics::report("address refused", url.toString().toStdString());
        if (!visitable && requests_ != nullptr)
            requests_->address_refused(url, type == NavigationTypeTyped);
        return false;
    }
    const bool by_hand =
        type == NavigationTypeTyped || type == NavigationTypeBackForward || type == NavigationTypeReload;
    if (events_ != nullptr) {
        events_->navigation_asked({.url = url,
                                   .top_level = top_level,
                                   .redirect = type == NavigationTypeRedirect,
                                   .of_a_form = type == NavigationTypeFormSubmitted,
                                   .of_the_page = !by_hand});
    }
    if (top_level)
        begun_ = false;
    return true;
}

QWebEnginePage* EnginePage::createWindow(WebWindowType) {
    const Call call(*this);
    return events_ != nullptr ? events_->window_wanted() : nullptr;
}

QStringList EnginePage::chooseFiles(FileSelectionMode mode, const QStringList& /*former*/,
                                    const QStringList& types) {
    const Call call(*this);
    return requests_ != nullptr ? requests_->files_wanted(mode, types) : QStringList();
}

void EnginePage::javaScriptAlert(const QUrl& origin, const QString& text) {
    if (requests_ != nullptr)
        requests_->page_alert(origin, text);
}

bool EnginePage::javaScriptConfirm(const QUrl& origin, const QString& text) {
    const Call call(*this);
    return requests_ != nullptr && requests_->page_confirm(origin, text);
}

bool EnginePage::javaScriptPrompt(const QUrl& origin, const QString& text, const QString& preset,
                                  QString* result) {
    const Call call(*this);
    const auto answer = requests_ != nullptr ? requests_->page_prompt(origin, text, preset) : std::nullopt;
    *result = answer.value_or(QString());
    return answer.has_value();
}

void EnginePage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message, int line,
                                          const QString& source) {
    diagnostics::report(
        "page console",
        (source + QLatin1Char(':') + QString::number(line) + QLatin1Char(' ') + message).toStdString());
}

void EnginePage::sign_in(const QUrl& url, QAuthenticator& authenticator, const QString& proxy) {
    const Call call(*this);
    if (requests_ != nullptr)
        requests_->sign_in_wanted(url, authenticator, proxy);
    else
        authenticator = QAuthenticator();
}

void EnginePage::refuse_requests() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    connect(this, &QWebEnginePage::desktopMediaRequested, this,
            [](const QWebEngineDesktopMediaRequest& request) { request.cancel(); });
    connect(this, &QWebEnginePage::webAuthUxRequested, this,
            [](QWebEngineWebAuthUxRequest* request) { request->cancel(); });
#endif
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
    connect(this, &QWebEnginePage::quotaRequested, this,
            [](QWebEngineQuotaRequest request) { request.reject(); });
#endif
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    connect(this, &QWebEnginePage::permissionRequested, this,
            [](QWebEnginePermission permission) { permission.deny(); });
#else
    connect(this, &QWebEnginePage::featurePermissionRequested, this,
            [this](const QUrl& origin, QWebEnginePage::Feature feature) {
                setFeaturePermission(origin, feature, QWebEnginePage::PermissionDeniedByUser);
            });
#endif
    connect(this, &QWebEnginePage::certificateError, this, [](QWebEngineCertificateError error) {
        diagnostics::report("certificate refused", error.url().toString().toStdString());
        error.rejectCertificate();
    });
    connect(this, &QWebEnginePage::fullScreenRequested, this,
            [](QWebEngineFullScreenRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::registerProtocolHandlerRequested, this,
            [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::fileSystemAccessRequested, this,
            [](QWebEngineFileSystemAccessRequest request) { request.reject(); });
}

} // namespace kestrune
