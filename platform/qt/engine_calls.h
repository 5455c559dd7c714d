#pragma once

#include "platform/page.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <map>
#include <optional>

class QWebEnginePage;

namespace kestrune {

class EngineWaits;

// Calls of the page side in the top frame. The engine forgets a call when the page goes to another host or
// its process dies, so each has a clock: every call is answered exactly once.
class PageCalls : public QObject {
public:
    struct Answer {
        std::optional<PageDocument> image;
        // The document is gone. Without an image and not gone, it did not answer in time, or what it
        // answered cannot be read.
        bool gone = false;
    };
    using Receive = std::function<void(Answer)>;

    // Time in which the engine stands still is not counted.
    PageCalls(QWebEnginePage& page, std::chrono::milliseconds answer_time, const EngineWaits& waits)
        : page_(page), answer_time_(answer_time), waits_(waits) {}

    void fetch_image(const DocumentId& document, PageParts parts, Receive receive);
    // Runs code for its effect.
    void run(const QByteArray& code);

    // What the page side reports about a request under way.
    void arrived(quint32 request, const QString& image);
    void ready(quint32 request);

    // The documents asked are gone: what waits is answered so.
    void abandon();

    void set_answer_time(std::chrono::milliseconds time) { answer_time_ = time; }

private:
    struct Waiting {
        DocumentId document;
        PageParts parts;
        Receive receive;
    };
    void ask(quint32 request, const QByteArray& code);
    void start_clock(quint32 request);
    void settle(quint32 request, Answer answer);

    QWebEnginePage& page_;
    std::chrono::milliseconds answer_time_;
    const EngineWaits& waits_;
    std::map<quint32, Waiting> waiting_;
    quint32 next_request_ = 1;
};

// Fetches an image and waits for it, as PageCalls bounds it. The calls may end meanwhile, the waits may not.
// What the user does waits: its handler would run inside the one that asks.
std::optional<PageDocument> wait_for_image(PageCalls& calls, const DocumentId& document, PageParts parts,
                                           EngineWaits& waits);

} // namespace kestrune
