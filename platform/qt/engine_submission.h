#pragma once

#include "platform/page.h"

#include <QJsonObject>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>

namespace kestrune {

// What the page side reports of a form that is about to be sent. The engine tells of the navigation itself,
// but neither its data nor where it came from.
struct FormSubmission {
    quint32 form = 0; // number of the form in its document
    QUrl url;         // of a GET form without what is sent
    bool post = false;
    std::string frame;
    std::string postdata;
    std::string headers;
    PageDocument submitted;
};

// Nothing when the report is none; see page/submission.js.
std::optional<FormSubmission> read_submission(const QJsonObject& report);

// Brings the reports and the navigations together. Either can come first; a report may lead to no navigation,
// and a navigation may lack its report.
class SubmissionJoin : public QObject {
public:
    // A navigation waits this long for its report, which left the page together with it.
    static constexpr std::chrono::milliseconds waiting_time{500};
    // A report is kept this long for a navigation that the page's own work may hold up.
    static constexpr std::chrono::milliseconds keeping_time{10000};

    using Receive = std::function<void(std::optional<FormSubmission>)>;

    void reported(FormSubmission submission);
    // A navigation has been asked for. `receive` is called once, at once unless the engine says that a form
    // is being submitted and the report has yet to come.
    void asked(const QUrl& url, bool of_a_form, Receive receive);

private:
    struct Kept {
        std::uint64_t number = 0;
        FormSubmission submission;
    };
    struct Waiting {
        std::uint64_t number = 0;
        QUrl url;
        Receive receive;
    };

    std::list<Kept> kept_; // the latest first
    std::list<Waiting> waiting_;
    std::uint64_t next_number_ = 1;
};

} // namespace kestrune
