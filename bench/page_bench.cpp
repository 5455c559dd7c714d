// What page processing adds to a page's load, against fetching the same content from the engine with nothing
// in between. Both run on the same loaded page, in turn. And the time from a page's load event to its filled
// form, by the page's own clock.

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

// A page whose form is on record, loaded and filled anew each time.
class FilledPage : public BrowserEvents {
public:
    FilledPage(SiteServer& server, const std::string& path, const std::string& postdata)
        : url_(server.url(path)) {
        place_.resize(870, 500);
        place_.show();
        records_.add({"k", "record", {"Form", url_, server.url("/taken"), postdata, "", ""}});
        state_.gstrCurMode = playback_mode;
        QObject::connect(&browser_.view(), &QWebEngineView::titleChanged, &browser_.view(),
                         [this](const QString& title) {
                             bool number = false;
                             const double time = title.toDouble(&number);
                             if (number) {
                                 milliseconds_ = time;
                                 loop_.quit();
                             }
                         });
    }

    // Milliseconds from the load event until the last recorded field has heard of its value.
    double fill() {
        state_.strLastUrl.clear();
        milliseconds_ = -1;
        browser_.Navigate(url_);
        while (milliseconds_ < 0)
            loop_.exec();
        return milliseconds_;
    }

    PageParts wanted_parts() override { return kestrune::wanted_parts(processing()); }
    void BeforeNavigate2(NavigateEvent /*event*/) override {}
    void DocumentComplete(PageDocument image) override {
        if (image.url == url_)
            OnDocumentComplete(processing(), std::move(image));
    }
    void CommandStateChange(int /*command*/, bool /*enable*/) override {}
    Browser* NewWindow2() override { return nullptr; }

private:
    PageProcessing processing() {
        return {state_, browser_, ui_, status_, timer_, txtUrl_, records_, prompt_, manual_, automatic_};
    }

    std::string url_;
    double milliseconds_ = -1;
    QEventLoop loop_;
    QWidget place_;
    QtBrowser browser_{place_, *this};
    MemoryUserInterface ui_;
    PageState state_;
    StatusBar status_{"StatusBar1"};
    Timer timer_{"Timer1"};
    TextBox txtUrl_{"txtUrl"};
    ListView records_{"lvwPermanent", {"Type", "Url", "Action", "Postdata", "Header", "Frame"}};
    MenuItem prompt_{"mnuPromptFill", ""};
    MenuItem manual_{"mnuManualClick", "", true};
    MenuItem automatic_{"mnuAutoClick", ""};
};

// A form of so many fields, the first `recorded` of which are on record; the page tells in its title how long
// it took from its load event to the last of them.
std::string form_page(std::size_t fields, std::size_t recorded) {
    std::string page = "<!DOCTYPE html><title>Form</title><form action=/taken method=post>";
    for (std::size_t i = 0; i < fields; ++i)
        page += "<p>Field " + std::to_string(i) + " <input name=f" + std::to_string(i) + ">";
    return page +
           "<input type=submit></form><script>let loaded = 0; onload = () => { loaded = performance.now() };"
           "document.forms[0].elements.f" +
           std::to_string(recorded - 1) +
           ".addEventListener('change', () => { document.title = performance.now() - loaded })</script>";
}

void measure_filling(SiteServer& server, const std::string& name, std::size_t fields, std::size_t recorded) {
    const std::string path = "/fill-" + std::to_string(fields);
    server.page(path, form_page(fields, recorded));
    std::string postdata;
    for (std::size_t i = 0; i < recorded; ++i)
        postdata += (i == 0 ? "f" : "&f") + std::to_string(i) + "=value+number+" + std::to_string(i);
    const auto page = std::make_shared<FilledPage>(server, path, postdata);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [page](benchmark::State& state) {
                                     for (auto _ : state)
                                         state.SetIterationTime(page->fill() / 1000);
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

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
    kestrune::measure_filling(server, "20 fields filled", 20, 20);
    kestrune::measure_filling(server, "200 fields, 60 filled", 200, 60);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
