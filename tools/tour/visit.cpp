#include "tools/tour/tour.h"

#include "library/site_library.h"
#include "platform/qt/qt_browser.h"
#include "shell/browser_window.h"
#include "tools/tour/painted.h"

#include <QAbstractItemModel>
#include <QTreeView>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <algorithm>

namespace kestrune::tour {
namespace {

using practice::Request;
using practice::Site;

std::string with_leading_zero(std::size_t number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

} // namespace

std::string Tour::end_address(const Site& site) const {
    return site.expected.ends_at.empty() ? "" : server_.address(site.name, site.expected.ends_at);
}

void Tour::let_happen(Visit& visit) {
    const std::string end = end_address(*visit.site);
    try {
        driver_.wait(end.empty() ? "the engine to give up"
                                 : "the browser to end at " + end + " with all questions asked",
                     [&] { return has_settled(visit); });
        wait_until_painted();
        driver_.wait("the page to come to rest", [&] { return has_settled(visit); });
    } catch (const drive::DriveError& error) {
        visit.problems.emplace_back(error.what());
    }
    check_visit(visit);
    take_picture(visit, "end", end.empty() ? "No page came" : "In the end");
}

bool Tour::has_settled(const Visit& visit) const {
    const practice::Expectation& expected = visit.site->expected;
    if (window_->busy() || questions_asked_ < expected.questions.size())
        return false;
    const std::string end = end_address(*visit.site);
    if (end.empty())
        return load_ended_;
    const auto asked = [&](const std::string& path) {
        const std::string address = server_.address(visit.site->name, path);
        const auto requests = server_.log().all();
        return std::ranges::any_of(requests, [&](const Request& request) {
            return server_.origin(request.site) + request.path == address;
        });
    };
    return browser_->LocationURL() == end && ui_.completed(end) && !window_->Timer1.Enabled.get() &&
           std::ranges::all_of(expected.asked_for, asked);
}

void Tour::check_visit(Visit& visit) {
    const practice::Expectation& expected = visit.site->expected;
    const std::string end = end_address(*visit.site);
    if (!end.empty() && browser_->LocationURL() != end)
        visit.problems.push_back("the browser ended at " + browser_->LocationURL() + ", not at " + end);
    for (std::size_t i = questions_asked_; i < expected.questions.size(); ++i)
        visit.problems.push_back("the question \"" + expected.questions.at(i).title + "\" never came");
    if (end.empty())
        visit.deeds.emplace_back("no page came");
    else
        visit.deeds.push_back((expected.link.empty() ? "stayed at " : "arrived at ") + expected.ends_at);
    check_requests(visit);
    check_status_texts(visit);
}

void Tour::check_requests(Visit& visit) {
    std::vector<std::string> asked;
    for (const Request& request : server_.log().all())
        asked.push_back(server_.origin(request.site) + request.path);
    const auto was_asked = [&](const std::string& path) {
        return std::ranges::find(asked, server_.address(visit.site->name, path)) != asked.end();
    };
    for (const std::string& path : visit.site->expected.asked_for) {
        if (!was_asked(path))
            visit.problems.push_back("the server was not asked for " + path);
    }
    for (const std::string& path : visit.site->expected.not_asked_for) {
        if (was_asked(path))
            visit.problems.push_back("the server was asked for " + path);
    }
}

void Tour::check_status_texts(Visit& visit) {
    auto from = statuses_.begin();
    for (const std::string& text : visit.site->expected.status) {
        const std::string wanted = server_.filled_in(visit.site->name, text);
        const auto found = std::find(from, statuses_.end(), wanted);
        if (found == statuses_.end())
            visit.problems.push_back("status panel 1 did not show \"" + wanted + "\" in its turn");
        else
            from = found + 1;
    }
}

void Tour::check_marked(Visit& visit) {
    const std::string mark = visit.mark();
    const bool told = std::ranges::find(statuses_, "Submit Status is updated") != statuses_.end();
    if (told != (mark != "cancel"))
        visit.problems.emplace_back(told ? "the status bar told of an update after Cancel"
                                         : "the status bar did not tell of the update");
    const std::string status = mark == "cancel" ? "N" : mark;
    const auto row = database_.open(library_, "select * from tblSubmitList where url = " +
                                                  SqlQuote(server_.home(visit.site->name)));
    if (row->at_end()) {
        visit.problems.emplace_back("its row has gone from the library");
        return;
    }
    if (row->text("status") != status)
        visit.problems.push_back("the library says " + row->text("status").value_or("Null") + ", not " +
                                 status);
    if (mark != "cancel" && row->text("note").value_or("") != visit.site->expected.note)
        visit.problems.push_back("the library's note is \"" + row->text("note").value_or("Null") + "\"");
    check_list_entry(visit, status);
}

void Tour::check_list_entry(Visit& visit, const std::string& status) {
    const auto& list =
        drive::Driver::find<QTreeView>(driver_.window(), visit.site->pad == "PAD" ? "lvwPAD" : "lvwNonPad");
    const QAbstractItemModel& model = *list.model();
    int column = 0;
    while (column < model.columnCount() &&
           model.headerData(column, Qt::Horizontal).toString() != QLatin1String("Status"))
        ++column;
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.index(row, 0).data().toString().toStdString() != visit.site->description)
            continue;
        const std::string shown = model.index(row, column).data().toString().toStdString();
        if (shown != status)
            visit.problems.push_back("its list entry shows \"" + shown + "\", not \"" + status + "\"");
        return;
    }
    visit.problems.emplace_back("its list entry has gone");
}

void Tour::take_picture(Visit& visit, std::string_view what, const std::string& caption) {
    const std::string file =
        with_leading_zero(visits_.size()) + "-" + visit.site->name + "-" + std::string(what) + ".png";
    if (!driver_.picture().save(QString::fromStdString((output_ / file).string())))
        throw drive::DriveError("cannot write " + file);
    visit.pictures.push_back({file, caption});
}

void Tour::wait_until_painted() {
    drive::Painting painting(*browser_->view().page());
    driver_.wait("the page to be painted",
                 [&] { return painting.frames() >= drive::Painting::with_words || painting.silent(); });
}

} // namespace kestrune::tour
