#include "tools/practice/practice_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <set>
#include <sstream>

namespace kestrune::practice {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr auto patience = 30s;

class Practice : public testing::Test {
protected:
    Practice() : root_(std::filesystem::path(testing::TempDir()) / ("served-" + test_name())) {
        std::filesystem::remove_all(root_);
    }
    ~Practice() override { std::filesystem::remove_all(root_); }

    static std::string test_name() { return testing::UnitTest::GetInstance()->current_test_info()->name(); }

    void write(const std::string& path, const std::string& text) const {
        std::filesystem::create_directories((root_ / path).parent_path());
        std::ofstream(root_ / path, std::ios::binary) << text;
    }
    void site(const std::string& name, const std::string& more = "") const {
        write(name + "/site.txt", "description = " + name + "\nleave-out = a test\n" + more);
    }
    void serve(int port = 0) { server_ = std::make_unique<PracticeServer>(load_sites(root_), port); }

    [[nodiscard]] httplib::Client client(const std::string& name) const {
        httplib::Client client(server_->origin(name));
        client.set_read_timeout(patience);
        return client;
    }
    httplib::Result get(const std::string& name, const std::string& path) const {
        return client(name).Get(path);
    }

    const std::filesystem::path root_;
    std::unique_ptr<PracticeServer> server_;
};

// Local addresses at which something listens on the port, in the kernel's notation.
std::set<std::string> listening_at(int port) {
    std::ostringstream wanted;
    wanted << std::hex << std::uppercase << port;
    std::set<std::string> found;
    for (const auto* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        std::ifstream stream(table);
        std::string line;
        while (std::getline(stream, line)) {
            std::istringstream words(line);
            std::string number;
            std::string local;
            std::string remote;
            std::string state;
            words >> number >> local >> remote >> state;
            const auto colon = local.find(':');
            if (state == "0A" && colon != std::string::npos && local.substr(colon + 1) == wanted.str())
                found.insert(local.substr(0, colon));
        }
    }
    return found;
}

TEST_F(Practice, EachSiteHasAnAddressOfItsOwnOnOnePort) {
    site("a");
    site("b");
    write("a/index.html", "this is a");
    write("b/index.html", "this is b");
    serve();
    const std::string port = std::to_string(server_->port());
    EXPECT_EQ(server_->origin("a"), "http://127.0.1.1:" + port);
    EXPECT_EQ(server_->origin("b"), "http://127.0.1.2:" + port);
    EXPECT_EQ(get("a", "/")->body, "this is a");
    EXPECT_EQ(get("b", "/")->body, "this is b");
}

TEST_F(Practice, NothingListensAnywhereButOnLoopback) {
    site("a");
    site("b");
    serve();
    // 127.0.1.1 and 127.0.1.2, lowest byte last.
    EXPECT_THAT(listening_at(server_->port()), testing::ElementsAre("0101007F", "0201007F"));
    server_->stop();
    EXPECT_THAT(listening_at(server_->port()), testing::IsEmpty());
}

TEST_F(Practice, PortThatIsTakenIsAnErrorThatNamesTheAddress) {
    site("a");
    site("b");
    serve();
    const int port = server_->port();
    try {
        const PracticeServer second(load_sites(root_), port);
        FAIL() << "two servers on one port";
    } catch (const PracticeServerError& error) {
        EXPECT_EQ(error.what(), "port " + std::to_string(port) + " is taken at 127.0.1.1");
    }
    server_->stop();
    EXPECT_NO_THROW(PracticeServer(load_sites(root_), port)) << "the port was not let go";
}

TEST_F(Practice, PagesNameOtherSitesByPlaceholder) {
    site("a");
    site("b");
    write("a/index.html", "<iframe src=\"{{site:b}}/x\"> {{origin}}");
    write("a/raw.gif", "{{site:b}}");
    serve();
    EXPECT_EQ(get("a", "/")->body, "<iframe src=\"" + server_->origin("b") + "/x\"> " + server_->origin("a"));
    EXPECT_EQ(get("a", "/raw.gif")->body, "{{site:b}}");
}

TEST_F(Practice, GeneratedPageHoldsTheLinksThatWereAskedFor) {
    site("a");
    write("a/index.html", "<ol>{{links:5000}}</ol><a href=\"/add\">Add</a>");
    serve();
    const std::string body = get("a", "/")->body;
    EXPECT_THAT(body, HasSubstr("/entry/5000.html"));
    std::size_t links = 0;
    for (auto at = body.find("<a "); at != std::string::npos; at = body.find("<a ", at + 1))
        ++links;
    EXPECT_EQ(links, 5001U);
}

TEST_F(Practice, RequestIsInTheLogWithMethodPathHeadersAndBodyBytes) {
    site("a");
    write("a/form.html", "ok");
    serve();
    const std::string body("x=1\0&y=\xFF\r\n", 10);
    const auto answer = client("a").Post("/form.html?q=1%202", {{"X-Extra", "yes"}}, body,
                                         "application/x-www-form-urlencoded");
    EXPECT_EQ(answer->status, 200);
    const auto noted = server_->log().wait_for("a", "/form.html", patience);
    ASSERT_TRUE(noted);
    EXPECT_EQ(noted->method, "POST");
    EXPECT_EQ(noted->target, "/form.html?q=1%202");
    EXPECT_EQ(noted->header("x-extra"), "yes");
    EXPECT_EQ(noted->header("Content-Type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(noted->header("REMOTE_ADDR"), "");
    EXPECT_EQ(noted->body, body);
}

TEST_F(Practice, BytesOfAMultipartBodyArriveAsTheyWereSent) {
    site("a");
    write("a/up", "ok");
    serve();
    const std::string body = "--B\r\nContent-Disposition: form-data; name=\"n\"\r\n\r\nv\r\n--B--\r\n";
    ASSERT_EQ(client("a").Post("/up", body, "multipart/form-data; boundary=B")->status, 200);
    EXPECT_EQ(server_->log().wait_for("a", "/up", patience)->body, body);
}

TEST_F(Practice, FormOfManyKilobytesIsTaken) {
    site("a");
    write("a/up", "ok");
    serve();
    const std::string body = "x=" + std::string(100'000, 'y');
    ASSERT_EQ(client("a").Post("/up", body, "application/x-www-form-urlencoded")->status, 200);
    EXPECT_EQ(server_->log().wait_for("a", "/up", patience)->body, body);
}

TEST_F(Practice, LogsOfSitesAreApart) {
    site("a");
    site("b");
    serve();
    get("a", "/one");
    get("b", "/two");
    EXPECT_EQ(server_->log().of_site("a").size(), 1U);
    EXPECT_TRUE(server_->log().was_asked("b", "/two"));
    EXPECT_FALSE(server_->log().was_asked("a", "/two"));
    server_->log().clear();
    EXPECT_TRUE(server_->log().all().empty());
}

TEST_F(Practice, WaitingForARequestEndsWhenItComes) {
    site("a");
    serve();
    auto waiting =
        std::async(std::launch::async, [&] { return server_->log().wait_for("a", "/late", patience); });
    get("a", "/early");
    get("a", "/late");
    EXPECT_TRUE(waiting.get());
}

TEST_F(Practice, WaitingForARequestThatNeverComesEndsWithNothing) {
    site("a");
    serve();
    EXPECT_FALSE(server_->log().wait_for("a", "/never", 10ms));
}

TEST_F(Practice, BehavioursOfAPathAreCarriedOut) {
    site("a",
         "redirect /old = /new.html\nredirect /away = {{site:b}}/x\ncode /away = 307\ncode /gone.html = 410\n"
         "type /new.html = text/html; charset=windows-1252\n"
         "header * = Content-Security-Policy: frame-src {{site:b}}\ndelay /new.html = 1\n");
    site("b");
    write("a/new.html", "new");
    write("a/gone.html", "gone but here");
    serve();
    const auto old = get("a", "/old");
    EXPECT_EQ(old->status, 302);
    EXPECT_EQ(old->get_header_value("Location"), "/new.html");
    const auto away = get("a", "/away");
    EXPECT_EQ(away->status, 307);
    EXPECT_EQ(away->get_header_value("Location"), server_->origin("b") + "/x");
    const auto gone = get("a", "/gone.html");
    EXPECT_EQ(gone->status, 410);
    EXPECT_EQ(gone->body, "gone but here");
    const auto page = get("a", "/new.html");
    EXPECT_EQ(page->get_header_value("Content-Type"), "text/html; charset=windows-1252");
    EXPECT_EQ(page->get_header_value("Content-Security-Policy"), "frame-src " + server_->origin("b"));
}

TEST_F(Practice, MissingPageAndTheSiteFileAreNotFound) {
    site("a");
    serve();
    EXPECT_EQ(get("a", "/nothing")->status, 404);
    EXPECT_EQ(get("a", "/site.txt")->status, 404);
    EXPECT_EQ(get("a", "/..%2f..%2fetc/passwd")->status, 404);
}

TEST_F(Practice, DelayedAnswerWaitsItsTime) {
    site("a", "delay / = 80\n");
    write("a/index.html", "x");
    serve();
    const auto before = std::chrono::steady_clock::now();
    ASSERT_EQ(get("a", "/")->status, 200);
    EXPECT_GE(std::chrono::steady_clock::now() - before, 80ms);
}

TEST_F(Practice, HangingAnswerSendsHalfOfTheFileUntilItIsReleased) {
    site("a", "hang /half = body\n");
    write("a/half", "12345678");
    serve();
    std::promise<std::string> half;
    std::string got;
    auto whole = std::async(std::launch::async, [&] {
        return client("a").Get("/half", [&](const char* data, std::size_t size) {
            got.append(data, size);
            if (got.size() == 4)
                half.set_value(got);
            return true;
        });
    });
    auto first = half.get_future();
    ASSERT_EQ(first.wait_for(patience), std::future_status::ready);
    EXPECT_EQ(first.get(), "1234");
    server_->release("a", "/half");
    ASSERT_TRUE(whole.get());
    EXPECT_EQ(got, "12345678");
}

TEST_F(Practice, SilentPathAnswersOnceItIsReleased) {
    site("a", "hang /signal = silent\n");
    serve();
    auto answer = std::async(std::launch::async, [&] { return get("a", "/signal"); });
    ASSERT_TRUE(server_->log().wait_for("a", "/signal", patience));
    server_->release("a", "/signal");
    EXPECT_EQ(answer.get()->status, 204);
}

TEST_F(Practice, ServerStopsWhileRequestsHang) {
    site("a", "hang /signal = silent\nhang /half = body\ndelay /slow = 3600000\n");
    write("a/half", "12345678");
    serve();
    std::vector<std::future<bool>> answers;
    for (const std::string path : {"/signal", "/half", "/slow"}) {
        answers.push_back(std::async(std::launch::async, [this, path] {
            const auto result = get("a", path);
            return result && result->status == 200;
        }));
        ASSERT_TRUE(server_->log().wait_for("a", path, patience));
    }
    server_->stop();
    EXPECT_FALSE(answers.at(0).get());
    EXPECT_FALSE(answers.at(1).get());
    answers.at(2).wait();
}

TEST_F(Practice, OtherPagesAnswerWhileManyRequestsHang) {
    site("a", "hang /signal = silent\n");
    write("a/index.html", "here");
    serve();
    std::vector<std::future<void>> hanging;
    for (int i = 0; i < 12; ++i) {
        const std::string target = "/signal?" + std::to_string(i);
        hanging.push_back(std::async(std::launch::async, [this, target] { get("a", target); }));
        ASSERT_TRUE(server_->log().wait_for([&](const Request& request) { return request.target == target; },
                                            patience));
    }
    EXPECT_EQ(get("a", "/")->body, "here");
    server_->stop();
}

TEST_F(Practice, SiteThatIsNotServedRefusesConnections) {
    site("a", "served = no\n");
    site("b");
    serve();
    const auto result = get("a", "/");
    EXPECT_FALSE(result);
    EXPECT_EQ(result.error(), httplib::Error::Connection);
    EXPECT_EQ(get("b", "/")->status, 404);
}

TEST_F(Practice, ListenerHearsOfEachRequest) {
    site("a");
    serve();
    std::promise<std::string> heard;
    server_->log().set_listener([&](const Request& request) { heard.set_value(request.path); });
    get("a", "/x");
    auto path = heard.get_future();
    ASSERT_EQ(path.wait_for(patience), std::future_status::ready);
    EXPECT_EQ(path.get(), "/x");
    server_->log().set_listener(nullptr);
}

TEST_F(Practice, UnknownSiteIsAnError) {
    site("a");
    serve();
    EXPECT_THROW((void)server_->origin("nobody"), std::out_of_range);
}

} // namespace
} // namespace kestrune::practice
