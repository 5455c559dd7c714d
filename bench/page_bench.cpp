// What page processing adds to a page's load, against fetching the same content from the engine with nothing
// in between. Both run on the same loaded page, in turn.

#include "filling/page_processing.h"
#include "platform/memory/memory_ui.h"
#include "platform/qt/qt_browser.h"
#include "platform/qt/qt_desktop.h"
#include "tests/desktop/site_server.h"

#include <QEventLoop>
#include <QTimer>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

namespace kestrune {
namespace {

// The content that an image holds, taken by one script and handed over as one text: the form tags in the
// page's source, and every link with its text as shown.
constexpr const char* same_content = R"((function () {
    const source = document.documentElement.innerHTML;
    const tags = source.match(/<form [^>]*>/gi) || [];
    return JSON.stringify({url: location.href, tags, links: Array.from(document.links, (link) => link.innerText)});
})())";

class Completion : public BrowserEvents {
public:
    PageParts wanted_parts() override { return {.links = true, .forms = false}; }
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

// A page on show in the real engine.
class ShownPage {
public:
    ShownPage(SiteServer& server, const std::string& path) {
        place_.resize(870, 500);
        place_.show();
        browser_.Navigate(server.url(path));
        while (completion_.document.url != server.url(path))
            completion_.loop.exec();
    }

    // As the window does it: image and all that is looked for in it.
    std::size_t process() {
        auto image = browser_.take_image(completion_.document.id, {.links = true, .forms = false});
        if (!image)
            std::abort();
        const std::size_t links = image->links.size();
        state_.bFindLinkFlag = true;
        state_.lngFormCount = 0;
        OnDocumentComplete(
            {state_, browser_, ui_, status_, timer_, txtUrl_, records_, prompt_, manual_, automatic_},
            *std::move(image));
        return links;
    }

    std::size_t fetch_bare() {
        QString text;
        QEventLoop loop;
        browser_.view().page()->runJavaScript(QString::fromLatin1(same_content),
                                              QWebEngineScript::ApplicationWorld, [&](const QVariant& value) {
                                                  text = value.toString();
                                                  loop.quit();
                                              });
        loop.exec();
        return static_cast<std::size_t>(text.size());
    }

private:
    QWidget place_;
    Completion completion_;
    QtBrowser browser_{place_, completion_};
    MemoryUserInterface ui_;
    PageState state_;
    StatusBar status_{"StatusBar1"};
    Timer timer_{"Timer1"};
    TextBox txtUrl_{"txtUrl"};
    ListView records_{"lvwPermanent", {"Type", "Url", "Action", "Postdata", "Header", "Frame"}};
    MenuItem prompt_{"mnuPromptFill", "", true};
    MenuItem manual_{"mnuManualClick", ""};
    MenuItem automatic_{"mnuAutoClick", "", true};
};

// A directory page of about this size: headings, paragraphs, a form and links none of which is the right one.
std::string page_of(std::size_t bytes, std::size_t links) {
    std::string page =
        "<!DOCTYPE html><title>Directory</title><form action=/search method=get><input name=q></form>";
    const std::string filler =
        "<p>A small program that does one thing, does it well and asks for nothing else.</p>\n";
    const std::size_t step = links == 0 ? bytes : bytes / links;
    for (std::size_t i = 0; i < links; ++i) {
        page += "<div><a href=/program/" + std::to_string(i) + ">Program number " + std::to_string(i) +
                "</a></div>";
        while (page.size() < (i + 1) * step)
            page += filler;
    }
    return page;
}

void compare(SiteServer& server, const std::string& name, const std::string& page) {
    const std::string path = "/" + std::to_string(page.size());
    server.page(path, page);
    const auto shown = std::make_shared<ShownPage>(server, path);
    benchmark::RegisterBenchmark((name + "/processed").c_str(),
                                 [shown](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(shown->process());
                                 })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/bare").c_str(),
                                 [shown](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(shown->fetch_bare());
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
    kestrune::compare(server, "50 KB, 100 links", kestrune::page_of(50'000, 100));
    kestrune::compare(server, "1 MB, 500 links", kestrune::page_of(1'000'000, 500));
    kestrune::compare(server, "5 MB, 2,000 links", kestrune::page_of(5'000'000, 2000));
    kestrune::compare(server, "10,000 links", kestrune::page_of(900'000, 10'000));
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
