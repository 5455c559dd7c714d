#pragma once

#include "platform/browser.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace kestrune {

// Writes down what a browser tells its window.
class BrowserProbe : public BrowserEvents {
public:
    PageParts wanted_parts() override { return parts; }
    void BeforeNavigate2(NavigateEvent event) override {
        told.push_back((event.top_level ? "navigate " : "frame navigates ") + event.url);
        navigations.push_back(std::move(event));
    }
    void DocumentComplete(PageDocument image) override {
        told.push_back("complete " + image.url);
        completed.push_back(image);
        if (on_complete)
            on_complete(completed.back());
    }
    void CommandStateChange(int command, bool enable) override {
        told.push_back("command " + std::to_string(command) + (enable ? " on" : " off"));
        back = enable;
    }
    Browser* NewWindow2() override {
        told.emplace_back("new window");
        return on_new_window ? on_new_window() : nullptr;
    }

    bool ContextMenu(const ElementRef& field) override {
        menus.push_back(field.document);
        return on_menu && on_menu(field.document);
    }

    [[nodiscard]] int count(const std::string& what) const {
        return static_cast<int>(std::count(told.begin(), told.end(), what));
    }
    // What was told of navigations and documents, without the commands.
    [[nodiscard]] std::vector<std::string> road() const {
        std::vector<std::string> steps;
        for (const std::string& step : told) {
            if (!step.starts_with("command "))
                steps.push_back(step);
        }
        return steps;
    }
    [[nodiscard]] const PageDocument& last() const { return completed.back(); }
    void forget() {
        told.clear();
        navigations.clear();
        completed.clear();
    }

    PageParts parts{true, true};
    std::vector<std::string> told;
    std::vector<NavigateEvent> navigations;
    std::vector<PageDocument> completed;
    std::function<void(const PageDocument&)> on_complete;
    std::function<Browser*()> on_new_window;
    std::vector<DocumentId> menus; // documents that a menu was asked for in
    std::function<bool(const DocumentId&)> on_menu;
    bool back = false;
};

} // namespace kestrune
