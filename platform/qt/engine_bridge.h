#pragma once

#include "platform/page.h"
#include "platform/qt/engine_submission.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

namespace kestrune {

// What the top frame's script reports; described on top of page/script.js.
struct PageNotice {
    enum class Kind { begin, frame, complete, image, ready, submit, menu };
    Kind kind = Kind::begin;
    DocumentId id;
    std::string url;
    bool error = false;
    quint32 request = 0;
    QString text;
    std::uint32_t element = 0;                     // of "menu"
    std::optional<FormSubmission> submission = {}; // of "submit", always
    double x = 0;                                  // CSS pixels
    double y = 0;
};

// Nothing when the text is no report.
std::optional<PageNotice> read_notice(const QString& json);

// The one object on the web channel. It exists in the isolated world only; page code cannot call it.
class EngineBridge : public QObject {
    Q_OBJECT

public:
    explicit EngineBridge(std::function<void(PageNotice)> heard) : heard_(std::move(heard)) {}

    Q_INVOKABLE void post(const QString& json);

private:
    std::function<void(PageNotice)> heard_;
};

} // namespace kestrune
