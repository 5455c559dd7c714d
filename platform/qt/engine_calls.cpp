#include "platform/qt/engine_calls.h"

#include "platform/qt/engine_image.h"
#include "platform/qt/engine_waits.h"

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
    answer.image = read_image(image, found->second.document, found->second.parts);
    answer.gone = !answer.image;
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

void PageCalls::ask(quint32 request, const QByteArray& code) {
    page_.runJavaScript(QString::fromUtf8(code), QWebEngineScript::ApplicationWorld,
                        [self = QPointer<PageCalls>(this), request](const QVariant& answer) {
                            const QString text = answer.toString();
                            const bool later = answer.isValid() && text.isEmpty();
                            if (self && !later)
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

} // namespace kestrune
