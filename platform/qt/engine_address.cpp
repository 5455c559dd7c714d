#include "platform/qt/engine_address.h"

#include "platform/qt/own_pages.h"

#include <QString>

#include <algorithm>
#include <array>

namespace kestrune {
namespace {

// "localhost:8080" and "example.com:80/x" name a port, not a scheme.
bool has_scheme(const QString& text) {
    const qsizetype colon = text.indexOf(u':');
    if (colon <= 0 || !text.front().isLetter())
        return false;
    const auto in_scheme = [](QChar c) {
        return c.isLetterOrNumber() || c == u'+' || c == u'-' || c == u'.';
    };
    if (!std::all_of(text.begin(), text.begin() + colon, in_scheme))
        return false;
    qsizetype after = colon + 1;
    while (after < text.size() && text[after].isDigit())
        ++after;
    const bool port =
        after > colon + 1 && (after == text.size() || text[after] == u'/' || text[after] == u'?');
    return !port;
}

bool is_blank_page(const QUrl& url) {
    return url.scheme() == QLatin1String("about") && url.path() == QLatin1String("blank");
}

} // namespace

std::optional<QUrl> typed_address(std::string_view typed) {
    const QString text = QString::fromUtf8(typed.data(), static_cast<qsizetype>(typed.size())).trimmed();
    if (text.isEmpty())
        return std::nullopt;
    const QUrl url(has_scheme(text) ? text : QStringLiteral("http://") + text, QUrl::TolerantMode);
    if (!url.isValid())
        return std::nullopt;
    const QString scheme = url.scheme();
    if (scheme == QLatin1String("http") || scheme == QLatin1String("https"))
        return url.host().isEmpty() ? std::nullopt : std::optional(url);
    if (is_blank_page(url) || scheme == QLatin1String("file") || scheme == QLatin1String(OwnPages::scheme))
        return url;
    return std::nullopt;
}

bool may_be_visited(const QUrl& url) {
    static constexpr std::array schemes = {"http", "https", "file",          "data",
                                           "blob", "about", OwnPages::scheme};
    const QString scheme = url.scheme();
    return std::any_of(schemes.begin(), schemes.end(),
                       [&scheme](const char* allowed) { return scheme == QLatin1String(allowed); });
}

} // namespace kestrune
