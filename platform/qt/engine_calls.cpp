#include "platform/qt/engine_calls.h"

#include "platform/qt/engine_image.h"
#include "platform/qt/engine_waits.h"

#include <QEventLoop>
#include <QPointer>
#include <QTimer>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>

#include <utility>

namespace kestrune {

void PageCalls::fetch_image(const DocumentId& document, PageParts parts, Receive receive) {
    const quint32 request = next_request_++;
    waiting_[request] = {document, parts, std::move(receive)};
    start_clock(request);
    const QByteArray wanted = QByteArray("{links:") + (parts.links ? "true" : "false") +
                              ",forms:" + (parts.forms ? "true" : "false") +
                              ",labels:" + (parts.labels ? "true" : "false") + "}";
    ask(request,
        "kestrune.image(" + quoted(document) + "," + wanted + "," + QByteArray::number(request) + ")");
}

void PageCalls::run(const QByteArray& code) {
    page_.runJavaScript(QString::fromUtf8(code), QWebEngineScript::ApplicationWorld);
}

void PageCalls::arrived(quint32 request, const QString& image) {
    const auto found = waiting_.find(request);
    if (found == waiting_.end())
        return;
    Answer answer;
    answer.gone = image == QLatin1String("null");
    if (!answer.gone)
        answer.image = read_image(image, found->second.document, found->second.parts);
    settle(request, std::move(answer));
}

void PageCalls::ready(quint32 request) {
    if (waiting_.contains(request))
        ask(request, "kestrune.take(" + QByteArray::number(request) + ")");
}

void PageCalls::abandon() {
    for (const auto& [request, waiting] : std::exchange(waiting_, {}))
        waiting.receive({std::nullopt, true});
}

// A document without the page side in it is not the one that was asked. An answer without a value is none
// of the page side's: the next document to begin, or the clock, tells what it meant.
void PageCalls::ask(quint32 request, const QByteArray& code) {
    const QByteArray guarded =
        "(() => { try { return Object.hasOwn(globalThis, 'kestrune') && kestrune.image ? " + code +
        " : 'null'; } catch (error) { return 'unreadable'; } })()";
    page_.runJavaScript(QString::fromUtf8(guarded), QWebEngineScript::ApplicationWorld,
                        [self = QPointer<PageCalls>(this), request](const QVariant& answer) {
                            const QString text = answer.toString();
                            if (self && !text.isEmpty())
                                self->arrived(request, text);
                        });
}

void PageCalls::start_clock(quint32 request) {
    QTimer::singleShot(answer_time_, this, [this, request] {
        if (waits_.open())
            start_clock(request);
        else
            settle(request, {});
    });
}

void PageCalls::settle(quint32 request, Answer answer) {
    const auto found = waiting_.find(request);
    if (found == waiting_.end())
        return;
    const Receive receive = std::move(found->second.receive);
    waiting_.erase(found);
    receive(std::move(answer));
}

std::optional<PageDocument> wait_for_image(PageCalls& calls, const DocumentId& document, PageParts parts,
                                           EngineWaits& waits) {
    struct Result {
        std::optional<PageDocument> image;
        bool done = false;
    };
    // The calls can end while this waits; what the answer writes to must not.
    const auto result = std::make_shared<Result>();
    QEventLoop loop;
    const QPointer<QEventLoop> waiting(&loop);
    calls.fetch_image(document, parts, [result, waiting](PageCalls::Answer answer) {
        result->image = std::move(answer.image);
        result->done = true;
        if (waiting)
            waiting->quit();
    });
    // Asked for from inside a posted event, the loop would sleep on the engine's own events posted behind it.
    loop.wakeUp();
    const EngineWaits::ForPage waiting_for_page(waits);
    if (!result->done)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    return std::move(result->image);
}

} // namespace kestrune
