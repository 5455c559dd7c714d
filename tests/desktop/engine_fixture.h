#pragma once

#include "platform/qt/engine_profile.h"
#include "platform/qt/qt_browser.h"
#include "tests/desktop/browser_probe.h"
#include "tests/desktop/site_server.h"
#include "tests/desktop/wait_until.h"

#include <QWidget>

#include <gmock/gmock.h>

#include <memory>

namespace kestrune {

// A browser on the real engine, a server of its own for its pages, and a note of what was told.
class EngineTest : public ::testing::Test {
protected:
    EngineTest() {
        place_.resize(800, 600);
        place_.show();
    }

    // Loads a page and waits for its document.
    PageDocument open(const std::string& url) {
        const std::size_t before = probe_.completed.size();
        browser_->Navigate(url);
        const bool came =
            wait_until([&] { return probe_.completed.size() > before && probe_.last().url == url; });
        EXPECT_TRUE(came) << url << " did not complete";
        return came ? probe_.last() : PageDocument{};
    }

    // Raises everything that is still under way: what a test says did not happen had its chance.
    void let_everything_happen() { open(server_.url("/end-of-test")); }

    [[nodiscard]] bool wait_for(const std::string& told, int times = 1) {
        return wait_until([&] { return probe_.count(told) >= times; });
    }

    [[nodiscard]] std::vector<std::string> link_texts(const PageDocument& document) const {
        std::vector<std::string> texts;
        for (const PageLink& link : document.links)
            texts.push_back(link.innertext);
        return texts;
    }

    PageDocument image_of(const PageDocument& document) {
        const std::optional<PageDocument> image = browser_->take_image(document.id, {true, true});
        EXPECT_TRUE(image.has_value());
        return image.value_or(PageDocument{});
    }

    static constexpr PageParts everything{true, true};
    SiteServer server_;
    QWidget place_;
    BrowserProbe probe_;
    std::shared_ptr<EngineProfile> profile_ = std::make_shared<EngineProfile>();
    std::unique_ptr<QtBrowser> browser_ = std::make_unique<QtBrowser>(place_, probe_, profile_);
};

} // namespace kestrune
