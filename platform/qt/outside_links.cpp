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

} // namespace

bool OutsideLinks::leads_outside(const QUrl& url) {
    // What some desktops hand to a program that opens or runs files stands here as well.
    static constexpr std::array inside = {"http",
                                          "https",
                                          "file",
                                          "ftp",
                                          "data",
                                          "blob",
                                          "about",
                                          "javascript",
                                          "ws",
                                          "wss",
                                          "filesystem",
                                          "chrome",
                                          "devtools",
                                          "qrc",
                                          "vbscript",
                                          "view-source",
                                          "shell",
                                          "chrome-error",
                                          "chrome-extension",
                                          "chrome-untrusted",
                                          "search-ms",
                                          "ms-msdt",
                                          "jar",
                                          "smb",
                                          "local",
                                          "desktop",
                                          "application",
                                          "nfs",
                                          "sftp",
                                          "admin",
                                          "trash",
                                          "recent",
                                          "res",
                                          OwnPages::scheme};
    const QString scheme = url.scheme();
    return url.isValid() && !scheme.isEmpty() && url.toEncoded().size() <= longest_address &&
           std::none_of(inside.begin(), inside.end(),
                        [&scheme](const char* name) { return scheme == QLatin1String(name); });
}

void OutsideLinks::wanted(const QUrl& url, const QString& asker) {
    if (bar_ || refused_ >= most_refusals || !leads_outside(url))
        return;
    bar_ = &bars_.add(QStringLiteral("OutsideLink"));
    bar_->set_heading(asker + QStringLiteral(" wants to open another program:"));
    bar_->set_text(url.toString(QUrl::FullyEncoded));
    bar_->add_button(QStringLiteral("Open"), [this, url] {
        PageBars::remove(bar_);
        bar_.clear();
        QDesktopServices::openUrl(url);
    });
    bar_->add_button(QStringLiteral("Do not open"), [this] {
        PageBars::remove(bar_);
        bar_.clear();
        ++refused_;
    });
}

void OutsideLinks::leaving() {
    PageBars::remove(bar_);
    bar_.clear();
}

} // namespace kestrune
