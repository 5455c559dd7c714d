#include "platform/qt/engine_submission.h"

#include "platform/qt/engine_image.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace kestrune {
namespace {

// More than a person has under way at once; a page may report what never becomes a navigation.
constexpr std::size_t most_kept = 16;

// The engine's own address of a GET form holds what is sent.
bool leads_to(const FormSubmission& submission, const QUrl& url) {
    QUrl::FormattingOptions left_out = QUrl::RemoveFragment;
    if (!submission.post)
        left_out |= QUrl::RemoveQuery;
    return submission.url.matches(url, left_out);
}

bool same_form(const FormSubmission& a, const FormSubmission& b) {
    return a.submitted.id == b.submitted.id && a.form == b.form;
}

} // namespace

std::optional<FormSubmission> read_submission(const QJsonObject& report) {
    FormSubmission submission;
    submission.form = static_cast<quint32>(report[u"form"].toInteger());
    submission.url = QUrl::fromEncoded(report[u"url"].toString().toUtf8());
    submission.post = report[u"post"].toBool();
    submission.frame = text_of(report[u"frame"]);
    submission.postdata = report[u"data"].toString().toLatin1().toStdString();
    submission.headers = text_of(report[u"headers"]);
    submission.submitted.id = text_of(report[u"id"]);
    if (submission.submitted.id.empty() || !submission.url.isValid())
        return std::nullopt;
    if (auto image = read_image(report[u"image"].toObject(), submission.submitted.id, {false, true}))
        submission.submitted = std::move(*image);
    return submission;
}

void SubmissionJoin::reported(FormSubmission submission) {
    const auto waiting = std::find_if(waiting_.begin(), waiting_.end(),
                                      [&](const Waiting& one) { return leads_to(submission, one.url); });
    if (waiting != waiting_.end()) {
        const Receive receive = std::move(waiting->receive);
        waiting_.erase(waiting);
        receive(std::move(submission));
        return;
    }
    kept_.remove_if([&](const Kept& one) { return same_form(one.submission, submission); });
    kept_.push_front({next_number_++, std::move(submission)});
    if (kept_.size() > most_kept)
        kept_.pop_back();
    QTimer::singleShot(keeping_time, this, [this, number = kept_.front().number] {
        kept_.remove_if([number](const Kept& one) { return one.number == number; });
    });
}

void SubmissionJoin::asked(const QUrl& url, bool of_a_form, Receive receive) {
    const auto kept = std::find_if(kept_.begin(), kept_.end(),
                                   [&](const Kept& one) { return leads_to(one.submission, url); });
    if (kept != kept_.end()) {
        FormSubmission submission = std::move(kept->submission);
        kept_.erase(kept);
        receive(std::move(submission));
        return;
    }
    if (!of_a_form) {
        receive(std::nullopt);
        return;
    }
    waiting_.push_back({next_number_++, url, std::move(receive)});
    QTimer::singleShot(waiting_time, this, [this, number = waiting_.back().number] {
        const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                        [number](const Waiting& one) { return one.number == number; });
        if (found == waiting_.end())
            return;
        const Receive given_up = std::move(found->receive);
        waiting_.erase(found);
        given_up(std::nullopt);
    });
}

} // namespace kestrune
