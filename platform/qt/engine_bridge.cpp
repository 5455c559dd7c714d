#include "platform/qt/engine_bridge.h"

#include "platform/diagnostics.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <utility>

namespace kestrune {
namespace {

constexpr qsizetype longest_notice = 32 << 20; // characters; an address alone may have two million

constexpr std::array<std::pair<const char*, PageNotice::Kind>, 7> kinds = {{
    {"begin", PageNotice::Kind::begin},
    {"frame", PageNotice::Kind::frame},
    {"complete", PageNotice::Kind::complete},
    {"image", PageNotice::Kind::image},
    {"ready", PageNotice::Kind::ready},
    {"submit", PageNotice::Kind::submit},
    {"menu", PageNotice::Kind::menu},
}};

std::optional<PageNotice::Kind> kind_of(const QString& name) {
    for (const auto& [known, kind] : kinds) {
        if (name == QLatin1String(known))
            return kind;
    }
    return std::nullopt;
}

} // namespace

std::optional<PageNotice> read_notice(const QString& json) {
    if (json.size() > longest_notice)
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(json.toUtf8()).object();
    const std::optional<PageNotice::Kind> kind = kind_of(object[u"event"].toString());
    if (!kind)
        return std::nullopt;
    PageNotice notice;
    notice.kind = *kind;
    notice.id = object[u"id"].toString().toStdString();
    notice.url = object[u"url"].toString().toStdString();
    notice.error = object[u"error"].toBool();
    notice.request = static_cast<quint32>(object[u"request"].toInteger());
    notice.text = object[u"text"].toString();
    if (notice.kind == PageNotice::Kind::submit) {
        notice.submission = read_submission(object);
        if (!notice.submission)
            return std::nullopt;
    }
    notice.element = static_cast<std::uint32_t>(object[u"element"].toInteger());
    notice.x = object[u"x"].toDouble();
    notice.y = object[u"y"].toDouble();
    return notice;
}

void EngineBridge::post(const QString& json) {
    if (std::optional<PageNotice> notice = read_notice(json))
        heard_(std::move(*notice));
    else
        diagnostics::report("page side", "a report that is none");
}

} // namespace kestrune
