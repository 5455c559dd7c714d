#pragma once

#include "tests/desktop/engine_fixture.h"
#include "tests/desktop/painted.h"

#include <QTest>
#include <QWebEngineView>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace kestrune {

// Forms that are submitted to "/take", and what the server got there.
class EngineSubmission : public EngineTest {
protected:
    EngineSubmission() {
        server_.page("/end-of-test", "the end");
        server_.page("/take", "taken");
    }

    PageDocument open_page(std::string html, const std::string& charset = "utf-8") {
        server_.answer("/page", {std::move(html), 200, "text/html; charset=" + charset});
        return open(server_.url("/page"));
    }
    void click(const PageElement& element) { browser_->apply({{PageEdit::Kind::click, element.ref}}); }
    // Presses the button of that value in the first form.
    void press(const PageDocument& page, const std::string& value) {
        for (const PageElement& element : page.forms.at(0).elements) {
            if (element.value == value)
                return click(element);
        }
        FAIL() << "no button " << value;
    }
    void press_key(Qt::Key key) {
        EXPECT_TRUE(wait_until_painted(browser_->view()));
        QTest::keyClick(browser_->view().focusProxy(), key);
    }

    // The event of the navigation to the path, which must be the only one, after the server got the request.
    NavigateEvent event_of(const std::string& path = "/take") {
        const auto leads_there = [this, &path](const NavigateEvent& event) {
            return event.url.substr(0, event.url.find('?')) == server_.url(path);
        };
        EXPECT_TRUE(wait_until([&] {
            return server_.count_of(path) > 0 &&
                   std::any_of(probe_.navigations.begin(), probe_.navigations.end(), leads_there);
        }));
        EXPECT_EQ(std::count_if(probe_.navigations.begin(), probe_.navigations.end(), leads_there), 1);
        const auto found = std::find_if(probe_.navigations.begin(), probe_.navigations.end(), leads_there);
        return found == probe_.navigations.end() ? NavigateEvent{} : *found;
    }
    SiteServer::Request received(const std::string& path = "/take") {
        for (const SiteServer::Request& request : server_.requests()) {
            if (request.target.substr(0, request.target.find('?')) == path)
                return request;
        }
        ADD_FAILURE() << path << " was not asked for";
        return {};
    }
    // The headers that the program tells of, as the server received them.
    static std::string headers_of(const SiteServer::Request& request) {
        std::string headers;
        for (const char* name : {"Content-Type", "Referer"}) {
            if (const auto found = request.headers.find(name); found != request.headers.end())
                headers += std::string(name) + ": " + found->second + "\r\n";
        }
        return headers;
    }
    void expect_told_as_received(const NavigateEvent& event, const std::string& path = "/take") {
        const SiteServer::Request request = received(path);
        EXPECT_EQ(event.postdata, request.body);
        EXPECT_EQ(event.headers, headers_of(request));
    }
    static std::vector<std::string> values(const NavigateEvent& event) {
        std::vector<std::string> values;
        for (const PageForm& form : event.submitted.forms) {
            for (const PageElement& element : form.elements)
                values.push_back(element.value);
        }
        return values;
    }
};

} // namespace kestrune
