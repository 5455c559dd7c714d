#pragma once

#include "platform/browser.h"

class QWidget;

namespace kestrune {

// The embedded browser on Qt WebEngine.
class QtBrowser : public Browser {
public:
    // The browser's widget is a child of `place` and fills it.
    QtBrowser(QWidget& place, BrowserEvents& events);

    void Navigate(std::string_view url) override;
    void GoBack() override;
    void Reload() override;
    void Stop() override;
    [[nodiscard]] std::string LocationURL() const override;
    std::optional<PageDocument> take_image(const DocumentId& document, PageParts parts) override;
    void apply(const std::vector<PageEdit>& edits) override;
};

} // namespace kestrune
