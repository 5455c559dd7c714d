#include "platform/qt/outside_links.h"

#include "platform/qt/own_pages.h"

#include <QDesktopServices>
#include <QPushButton>

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

constexpr qsizetype longest_address = 2000;
constexpr int most_refusals = 2;

// Never handed on.
constexpr std::array inside = {
    // the engine's own, and what carries its text in itself
    "about", "blob", "chrome", "data", "devtools", "file", "filesystem", "http", "https", "jar", "javascript",
    "livescript", "qrc", "res", "resource", "vbscript", "view-source", "ws", "wss", OwnPages::scheme,
    // what desktops take for a folder: a file in it, which may be a program, opens with its address
    "activities", "admin", "afc", "afp", "applications", "application", "archive", "ar", "baloosearch",
    "bluetooth", "bookmarks", "burn", "camera", "cdda", "computer", "desktop", "devices", "dns-sd", "fd",
    "filenamesearch", "fish", "floppy", "fonts", "ftp", "ftps", "gdrive", "google-drive", "gphoto2", "iso",
    "kdeconnect", "local", "mtp", "network", "nfs", "obexftp", "onedrive", "programs", "rar", "recent",
    "recentdocuments", "recentlyused", "remote", "search", "sftp", "smb", "starred", "svn", "tags", "tar",
    "timeline", "trash", "webdav", "webdavs", "x-nautilus-desktop", "zip",
    // what runs a command, changes a setting, or opens a terminal or another machine
    "cgi", "finger", "ghelp", "help", "info", "itms-services", "man", "perldoc", "rdp", "rlogin", "settings",
    "shell", "ssh", "systemsettings", "telnet", "thumbnail", "tn3270", "vnc", "x-man-page"};
constexpr std::array inside_families = {"apt", "chrome-", "dav", "kio", "ms-", "search-", "smb", "x-apple"};

// What every desktop has a program for, whose job it is to be addressed by strangers.
constexpr std::array familiar = {"callto", "geo",  "irc", "ircs",  "magnet", "mailto", "news", "nntp",
                                 "sip",    "sips", "sms", "snews", "tel",    "webcal", "xmpp"};

bool is_familiar(const QString& scheme) {
    return std::any_of(familiar.begin(), familiar.end(),
                       [&scheme](const char* name) { return scheme == QLatin1String(name); });
}

} // namespace

bool OutsideLinks::leads_outside(const QUrl& url) {
    const QString scheme = url.scheme();
    const auto is = [&scheme](const char* name) { return scheme == QLatin1String(name); };
    const auto begins = [&scheme](const char* start) { return scheme.startsWith(QLatin1String(start)); };
    return url.isValid() && !scheme.isEmpty() && url.toEncoded().size() <= longest_address &&
           std::none_of(inside.begin(), inside.end(), is) &&
           std::none_of(inside_families.begin(), inside_families.end(), begins);
}

void OutsideLinks::wanted(const QUrl& url, const QString& asker) {
    if (bar_ || refused_ >= most_refusals || !leads_outside(url))
        return;
    bar_ = &bars_.add(QStringLiteral("OutsideLink"));
    bar_->set_heading(asker + QStringLiteral(" wants to open another program:"));
    const QString warning =
        is_familiar(url.scheme())
            ? QString()
            : QStringLiteral("Open it only if you know which program is behind \"%1:\", and "
                             "that it may be told things by strangers.\n")
                  .arg(url.scheme());
    bar_->set_text(warning + url.toString(QUrl::FullyEncoded));
    bar_->add_answer(QStringLiteral("Open"), [this, url] {
        bar_.clear();
        QDesktopServices::openUrl(url);
    });
    bar_->add_answer(QStringLiteral("Do not open"), [this] {
        bar_.clear();
        ++refused_;
    });
}

void OutsideLinks::leaving() {
    PageBars::remove(bar_);
    bar_.clear();
}

} // namespace kestrune
