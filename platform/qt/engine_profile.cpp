#include "platform/qt/engine_profile.h"

#include "platform/qt/downloads.h"
#include "platform/qt/engine_waits.h"
#include "platform/qt/own_pages.h"
#include "platform/qt/site_data.h"

#include <QString>
#include <QTemporaryDir>
#include <QWebEngineCookieStore>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

namespace kestrune {
namespace {

std::unique_ptr<SiteData> take_site_data(const std::filesystem::path& folder) {
    if (folder.empty())
        return nullptr;
    auto data = std::make_unique<SiteData>(folder);
    return data->taken() ? std::move(data) : nullptr;
}

std::unique_ptr<QWebEngineProfile> make_profile(const SiteData* kept) {
    if (kept == nullptr)
        return std::make_unique<QWebEngineProfile>();
    auto profile = std::make_unique<QWebEngineProfile>(QStringLiteral("kestrune"));
    profile->setPersistentStoragePath(kept->storage());
    profile->setCachePath(kept->cache());
    profile->setHttpCacheType(QWebEngineProfile::DiskHttpCache);
    profile->setHttpCacheMaximumSize(EngineProfile::largest_cache);
    // Author areas often sign in with a cookie that ends with the browser; their user comes back every day.
    profile->setPersistentCookiesPolicy(QWebEngineProfile::ForcePersistentCookies);
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
    // So that the page is asked about each (EnginePage), which refuses them all to the engine: another
    // program is started by OutsideLinks, and only when the user agrees.
    settings.setUnknownUrlSchemePolicy(Settings::AllowAllUnknownUrlSchemes);
    // Whether a window may open is asked of the user, so the engine must let the request through.
    settings.setAttribute(Settings::JavascriptCanOpenWindows, true);
}

} // namespace

EngineProfile::EngineProfile(const std::filesystem::path& folder)
    : site_data_(take_site_data(folder)), waits_(std::make_unique<EngineWaits>()),
      profile_(make_profile(site_data_.get())) {
    restrict(*profile_->settings());
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    // What is refused is refused anew each time; nothing of it is kept beside the cookies.
    profile_->setPersistentPermissionsPolicy(QWebEngineProfile::PersistentPermissionsPolicy::AskEveryTime);
#endif
    profile_->installUrlSchemeHandler(OwnPages::scheme, new OwnPages(profile_.get())); // owned by the profile
    if (!site_data_)
        temporary_ = std::make_unique<QTemporaryDir>();
    downloads_ = std::make_unique<Downloads>(site_data_ ? site_data_->downloads() : temporary_->path());
    QObject::connect(profile_.get(), &QWebEngineProfile::downloadRequested, downloads_.get(),
                     [this](QWebEngineDownloadRequest* item) { downloads_->requested(*item); });
}

EngineProfile::~EngineProfile() = default;

void EngineProfile::forget_sites() {
    profile_->cookieStore()->deleteAllCookies();
    // Not the cache: the engine clears it in its own time, loads nothing that is asked for meanwhile, and
    // before 6.7 does not say when that time is over.
    profile_->clearAllVisitedLinks();
    if (site_data_)
        site_data_->forget_at_next_start();
}

} // namespace kestrune
