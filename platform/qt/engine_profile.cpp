#include "platform/qt/engine_profile.h"

#include "platform/diagnostics.h"
#include "platform/qt/own_pages.h"

#include <QString>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

namespace kestrune {
namespace {

std::unique_ptr<QWebEngineProfile> make_profile(const std::filesystem::path& folder) {
    if (folder.empty())
        return std::make_unique<QWebEngineProfile>();
    auto profile = std::make_unique<QWebEngineProfile>(QStringLiteral("kestrune"));
    const QString place = QString::fromStdU16String(folder.u16string());
    profile->setPersistentStoragePath(place + QStringLiteral("/site data"));
    profile->setCachePath(place + QStringLiteral("/cache"));
    return profile;
}

// The pages are strangers' pages. What the job does not need is off.
void restrict(QWebEngineSettings& settings) {
    using Settings = QWebEngineSettings;
    // A page that was opened from a disk must not read other files or send them away.
    settings.setAttribute(Settings::LocalContentCanAccessFileUrls, false);
    settings.setAttribute(Settings::LocalContentCanAccessRemoteUrls, false);
    // No site needs the clipboard to take a form; it may hold a password.
    settings.setAttribute(Settings::JavascriptCanAccessClipboard, false);
    settings.setAttribute(Settings::JavascriptCanPaste, false);
    // Code from outside the engine, and viewers that hide the page from the program.
    settings.setAttribute(Settings::PluginsEnabled, false);
    settings.setAttribute(Settings::PdfViewerEnabled, false);
    // A full-screen page could draw a false window of the program.
    settings.setAttribute(Settings::FullScreenSupportEnabled, false);
    settings.setAttribute(Settings::ScreenCaptureEnabled, false);
    // Would show which addresses the machine has in its own network.
    settings.setAttribute(Settings::WebRTCPublicInterfacesOnly, true);
    settings.setAttribute(Settings::AllowGeolocationOnInsecureOrigins, false);
    settings.setAttribute(Settings::AllowRunningInsecureContent, false);
    // Loads what nobody asked for.
    settings.setAttribute(Settings::DnsPrefetchEnabled, false);
    settings.setAttribute(Settings::HyperlinkAuditingEnabled, false);
    // A page must not start another program.
    settings.setUnknownUrlSchemePolicy(Settings::DisallowUnknownUrlSchemes);
    // Whether a window may open is asked of the user, so the engine must let the request through.
    settings.setAttribute(Settings::JavascriptCanOpenWindows, true);
}

} // namespace

EngineProfile::EngineProfile(const std::filesystem::path& folder) : profile_(make_profile(folder)) {
    restrict(*profile_->settings());
    profile_->installUrlSchemeHandler(OwnPages::scheme, new OwnPages(profile_.get())); // owned by the profile
    QObject::connect(profile_.get(), &QWebEngineProfile::downloadRequested,
                     [](QWebEngineDownloadRequest* download) {
                         diagnostics::report("download refused", download->url().toString().toStdString());
                         download->cancel();
                     });
}

EngineProfile::~EngineProfile() = default;

} // namespace kestrune
