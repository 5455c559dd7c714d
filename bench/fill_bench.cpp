// What "Multi-input" costs on a large page, against a bare walk of the same page, and for how long at most
// the window stands still meanwhile.

#include "filling/fill_menu.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_ui.h"
#include "platform/qt/qt_browser.h"
#include "platform/qt/qt_desktop.h"
#include "tests/desktop/site_server.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

namespace kestrune {
namespace {

// Every node of the page, every field's name and value.
constexpr const char* walk = R"((function () {
    const walker = document.createTreeWalker(document);
    let seen = 0;
    while (walker.nextNode()) {
        const node = walker.currentNode;
        seen += node.nodeType === 3 ? node.data.length : node.localName === 'input' ? node.name.length + node.value.length : 1;
    }
    return seen;
})())";

class Completion : public BrowserEvents {
public:
    PageParts wanted_parts() override { return {}; }
    void BeforeNavigate2(NavigateEvent /*event*/) override {}
    void DocumentComplete(PageDocument image) override {
        document = std::move(image);
        loop.quit();
    }
    void CommandStateChange(int /*command*/, bool /*enable*/) override {}
    Browser* NewWindow2() override { return nullptr; }

    PageDocument document;
    QEventLoop loop;
};

// Ticks as often as the event loop lets it, and notes the longest time without.
class Heart {
public:
    Heart() {
        beat_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&beat_, &QTimer::timeout, &beat_, [this] { note(); });
        clock_.start();
        beat_.start(1);
    }
    [[nodiscard]] double longest() {
        note();
        return static_cast<double>(longest_) / 1e6;
    }

private:
    void note() {
        longest_ = std::max(longest_, clock_.nsecsElapsed());
        clock_.restart();
    }

    QTimer beat_;
    QElapsedTimer clock_;
    qint64 longest_ = 0;
};

class ShownForm {
public:
    ShownForm(SiteServer& server, const std::string& path) {
        place_.resize(870, 500);
        place_.show();
        browser_.set_answer_time(std::chrono::minutes(1));
        browser_.Navigate(server.url(path));
        while (completion_.document.url != server.url(path))
            completion_.loop.exec();
        for (const ProfileField& field : ProfileFields())
            (profile_.*field.box).Text = (profile_.*field.box).Name;
        script(QStringLiteral("document.forms[0].elements[0].focus()"));
    }

    // As the menu does it, until the page has taken everything in. Returns the fields written.
    std::size_t fill() {
        auto image = browser_.take_image(completion_.document.id, parts_for_entry(fill_all));
        if (!image)
            std::abort();
        std::size_t written = 0;
        {
            LivePage page{browser_, *std::move(image)};
            const auto report = FillFromMenu(page, profile_, fill_all);
            if (report)
                written = static_cast<std::size_t>(std::count_if(
                    report->begin(), report->end(), [](const FieldReport& field) { return field.written; }));
        }
        script(QStringLiteral("1"));
        return written;
    }

    QVariant script(const QString& code) {
        QVariant heard;
        QEventLoop loop;
        browser_.view().page()->runJavaScript(code, QWebEngineScript::ApplicationWorld,
                                              [&](const QVariant& value) {
                                                  heard = value;
                                                  loop.quit();
                                              });
        loop.exec();
        return heard;
    }

private:
    QWidget place_;
    Completion completion_;
    QtBrowser browser_{place_, completion_};
    MemoryUserInterface ui_;
    MemoryFiles files_;
    FrmPreference profile_{ui_, files_};
};

constexpr std::array<const char*, 8> labels{"Program name", "Version",      "Download URL", "E-mail",
                                            "Description",  "File size KB", "Company name", "Home page"};
constexpr std::size_t bytes_per_field = 1000;

std::string page_of(std::size_t fields, bool table) {
    std::string page = table ? "<!DOCTYPE html><form><table>" : "<!DOCTYPE html><form>";
    for (std::size_t i = 0; i < fields; ++i) {
        const std::string box = "<input name=field" + std::to_string(i) + ">";
        const std::string label = labels.at(i % labels.size());
        page += table ? "<tr><td>" + label + ":</td><td>" + box + "</td></tr><tr><td colspan=2>"
                      : "<p>" + label + ": " + box + "</p><p>";
        while (page.size() < (i + 1) * bytes_per_field)
            page += "A small program that <b>does one thing</b>, does it well and asks for nothing else. ";
        page += table ? "</td></tr>" : "</p>";
    }
    return page + (table ? "</table></form>" : "</form>");
}

void compare(SiteServer& server, std::size_t fields, bool table) {
    const std::string path = (table ? "/table" : "/paragraphs") + std::to_string(fields);
    server.page(path, page_of(fields, table));
    const auto shown = std::make_shared<ShownForm>(server, path);
    const std::string name = std::to_string(fields) + " fields in " + (table ? "a table" : "paragraphs");
    benchmark::RegisterBenchmark((name + "/filled").c_str(),
                                 [shown, fields](benchmark::State& state) {
                                     double longest = 0;
                                     for (auto _ : state) {
                                         Heart heart;
                                         if (shown->fill() != fields)
                                             std::abort();
                                         longest = std::max(longest, heart.longest());
                                     }
                                     state.counters["longest_pause_ms"] = longest;
                                 })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/walked").c_str(),
                                 [shown](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(shown->script(QString::fromLatin1(walk)));
                                 })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace
} // namespace kestrune

int main(int argc, char** argv) {
    const kestrune::QtDesktop desktop(argc, argv);
    benchmark::Initialize(&argc, argv);
    kestrune::SiteServer server;
    for (const bool table : {true, false}) {
        for (const std::size_t fields : {625U, 1250U, 2500U, 5000U})
            kestrune::compare(server, fields, table);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
