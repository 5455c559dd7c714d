#include "tools/tour/tour.h"

#include "platform/qt/qt_browser.h"

namespace kestrune::tour {
namespace {

using practice::Question;

constexpr std::string_view no_site_left = "No shareware/freeware site found";

std::string option_of(const std::string& mark) {
    if (mark == "Y")
        return "optSubmit(0)";
    return mark == "P" ? "optSubmit(1)" : "optSubmit(2)";
}

} // namespace

void Tour::answer(QDialog& dialog) {
    if (dialog.objectName() == QLatin1String("frmNote")) {
        mark_outcome(dialog);
        return;
    }
    if (dialog.objectName() != QLatin1String("MessageBox"))
        throw drive::DriveError("nobody expected the dialog " + dialog.objectName().toStdString());
    if (drive::Driver::text(dialog, "Text") == no_site_left) {
        nothing_left_ = true;
        driver_.answer(dialog, "OK");
        return;
    }
    Visit* const visit = current();
    if (visit == nullptr)
        throw drive::DriveError("a question before any site was opened");
    answer_question(dialog, *visit);
}

void Tour::answer_question(QDialog& dialog, Visit& visit) {
    const Question asked{"", dialog.windowTitle().toStdString(), drive::Driver::text(dialog, "Text")};
    const auto& questions = visit.site->expected.questions;
    if (questions_asked_ >= questions.size()) {
        visit.problems.push_back("unexpected question \"" + asked.title + "\": " + asked.text);
        driver_.answer(dialog, "No");
        return;
    }
    const Question& wanted = questions.at(questions_asked_);
    if (asked.title != wanted.title || asked.text != wanted.text)
        visit.problems.push_back("asked \"" + asked.title + "\": " + asked.text + " instead of \"" +
                                 wanted.title + "\": " + wanted.text);
    wait_until_painted();
    take_picture(visit, "question-" + std::to_string(questions_asked_ + 1), "Answered with " + wanted.answer);
    if (questions_asked_ == 0)
        hold_answer(visit);
    visit.deeds.push_back("asked \"" + asked.title + "\": " + wanted.answer);
    ++questions_asked_;
    driver_.answer(dialog, wanted.answer);
}

void Tour::hold_answer(const Visit& visit) {
    const practice::Expectation& expected = visit.site->expected;
    if (!expected.release.empty())
        server_.release(visit.site->name, expected.release);
    if (expected.answer_after.empty())
        return;
    const std::string address = server_.address(visit.site->name, expected.answer_after);
    drive::wait_for("the page to move on to " + address + " while the question is open",
                    [&] { return ui_.completed(address); });
}

void Tour::mark_outcome(QDialog& dialog) {
    Visit* const visit = current();
    if (!std::exchange(marking_, false) || visit == nullptr)
        throw drive::DriveError("the outcome was asked for when no site was to be marked");
    if (already_marked_) {
        driver_.press(dialog, "cmdCancel");
        return;
    }
    const std::string url = server_.home(visit->site->name);
    if (const std::string shown = drive::Driver::text(dialog, "txtSiteUrl"); shown != url)
        visit->problems.push_back("the outcome dialog shows the address " + shown);
    if (const std::string shown = drive::Driver::text(dialog, "txtSiteDesc");
        shown != visit->site->description)
        visit->problems.push_back("the outcome dialog shows the description " + shown);
    const std::string mark = visit->mark();
    if (mark != "cancel")
        driver_.press(dialog, option_of(mark));
    if (!visit->site->expected.note.empty())
        driver_.type(dialog, "txtNote", visit->site->expected.note);
    if (visits_.size() == 1)
        take_picture(*visit, "outcome", "Its outcome is marked");
    visit->deeds.push_back(mark == "cancel" ? "the outcome dialog was cancelled" : "marked " + mark);
    driver_.press(dialog, mark == "cancel" ? "cmdCancel" : "cmdSave");
}

} // namespace kestrune::tour
