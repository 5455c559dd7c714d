#pragma once

#include "platform/browser.h"

#include <chrono>
#include <memory>
#include <string>

class QWebEngineView;
class QWidget;

namespace kestrune {

class EngineProfile;

// The embedded browser on Qt WebEngine. A page side script in every frame (page/script.js) hands over images
// of documents and carries edits out.
class QtBrowser : public Browser {
public:
    // A document whose content stands waits this long for its stragglers before it counts as completed.
    static constexpr std::chrono::milliseconds straggler_time = std::chrono::seconds(10);
    // A page has this long to answer; one that is busy with itself does not hold the window up any longer.
    static constexpr std::chrono::milliseconds answer_time = std::chrono::seconds(3);

    // The browser's widget is a child of `place` and fills it. `events` outlives the browser. Windows of one
    // program share a profile; a page can only open windows of its own profile.
    QtBrowser(QWidget& place, BrowserEvents& events, std::shared_ptr<EngineProfile> profile);
    // With the profile that all browsers made this way share while one of them lives; keeps nothing on disk.
    QtBrowser(QWidget& place, BrowserEvents& events);
    ~QtBrowser() override;
    QtBrowser(const QtBrowser&) = delete;
    QtBrowser& operator=(const QtBrowser&) = delete;
    QtBrowser(QtBrowser&&) = delete;
    QtBrowser& operator=(QtBrowser&&) = delete;

    void Navigate(std::string_view url) override;
    void GoBack() override;
    void Reload() override;
    void Stop() override;
    [[nodiscard]] std::string LocationURL() const override;
    std::optional<PageDocument> take_image(const DocumentId& document, PageParts parts) override;
    void apply(const std::vector<PageEdit>& edits) override;

    void set_straggler_time(std::chrono::milliseconds time); // of documents that begin from now on
    void set_answer_time(std::chrono::milliseconds time);
    void set_page_deadline(std::chrono::milliseconds time); // see PageDeadline; of visits from now on
    // Whether the time of the page is counted: it is on its way, or has not stayed long enough yet.
    [[nodiscard]] bool deadline_runs() const;
    void set_hang_time(std::chrono::milliseconds time); // until a page is said not to answer

    // A word of the program's own above the page, until it is read. Plain text.
    void tell(const std::string& heading, const std::string& text);

    [[nodiscard]] QWebEngineView& view() const;

private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

} // namespace kestrune
