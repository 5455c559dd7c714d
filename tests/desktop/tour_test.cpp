#include "tools/tour/recording.h"
#include "tools/tour/report.h"
#include "tools/tour/tour.h"

#include "platform/qt/qt_user_interface.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace kestrune::tour {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto front_page = R"(<title>Front</title><a href="/form.html">Submit Software</a>)";
constexpr auto right_expectation = R"(description = A Site
link = Submit Software
status = Found Submit Link = 'Submit Software'
question = Yes | Link = 'Submit Software' | Do you want to go to this link
ends-at = /form.html
asked-for = /form.html
mark = Y
note = a note
)";

// Tours over one site whose file says what the test wants it to say.
class TourOfOneSite : public testing::Test {
protected:
    void write(const std::string& path, const std::string& text) const {
        const auto file = root() / path;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    [[nodiscard]] std::filesystem::path root() const { return folder_.path().toStdString(); }

    // What is wrong with the site, played against this site.txt.
    std::vector<std::string> problems_with(const std::string& site_file,
                                           std::chrono::milliseconds patience = drive::patience) {
        write("sites/a/site.txt", site_file);
        write("sites/a/index.html", front_page);
        write("sites/a/form.html", "<title>Form</title>");
        std::filesystem::create_directories(root() / "program");
        std::filesystem::create_directories(root() / "out");
        practice::PracticeServer server(practice::load_sites(root() / "sites"));
        QtUserInterface ui;
        Tour tour(ui, server, root() / "program", root() / "out");
        tour.set_patience(patience);
        visits_ = tour.play();
        write_index(root() / "out", visits_, server.sites());
        EXPECT_EQ(visits_.size(), 1U);
        return visits_.empty() ? std::vector<std::string>{"no visit"} : visits_.front().problems;
    }

    std::vector<Visit> visits_;

private:
    QTemporaryDir folder_;
};

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    return text.replace(text.find(what), what.size(), with);
}

// Long enough for the page to come, since what is awaited here never does.
constexpr std::chrono::milliseconds in_vain{4000};

TEST_F(TourOfOneSite, SiteThatDoesWhatItsFileSaysHasNoProblems) {
    EXPECT_THAT(problems_with(right_expectation), IsEmpty());
    std::ifstream index(root() / "out/index.html");
    const std::string page{std::istreambuf_iterator<char>(index), {}};
    EXPECT_THAT(page, HasSubstr("A Site"));
    for (const Picture& picture : visits_.front().pictures) {
        EXPECT_THAT(page, HasSubstr(picture.file));
        EXPECT_GT(std::filesystem::file_size(root() / "out" / picture.file), 1000U);
    }
    EXPECT_EQ(visits_.front().pictures.size(), 3U) << "the question, the end and the outcome dialog";
}

TEST_F(TourOfOneSite, QuestionThatTheFileDoesNotExpectIsAProblem) {
    EXPECT_THAT(problems_with("description = A Site\nlink = none\nends-at = /\nmark = P\n"),
                Contains(HasSubstr("unexpected question \"Link = 'Submit Software'\"")));
}

TEST_F(TourOfOneSite, QuestionInOtherWordsIsAProblem) {
    EXPECT_THAT(
        problems_with(replaced(right_expectation, "Do you want to go to this link", "Shall we go there")),
        Contains(HasSubstr("instead of \"Link = 'Submit Software'\": Shall we go there")));
}

TEST_F(TourOfOneSite, QuestionThatNeverComesIsAProblem) {
    const std::string two = std::string(right_expectation) + "question = No | Link = 'Add' | Another\n";
    EXPECT_THAT(problems_with(two, in_vain), Contains(HasSubstr("the question \"Link = 'Add'\" never came")));
}

TEST_F(TourOfOneSite, EndingAtAnotherPathIsAProblem) {
    EXPECT_THAT(
        problems_with(replaced(right_expectation, "ends-at = /form.html", "ends-at = /other.html"), in_vain),
        Contains(testing::ContainsRegex("the browser ended at .*/form.html, not at .*/other.html")));
}

TEST_F(TourOfOneSite, StatusTextThatIsNotShownIsAProblem) {
    EXPECT_THAT(problems_with(std::string(right_expectation) + "status = All is well\n"),
                Contains(HasSubstr("status panel 1 did not show \"All is well\"")));
}

TEST_F(TourOfOneSite, ForbiddenRequestIsAProblem) {
    EXPECT_THAT(problems_with(std::string(right_expectation) + "not-asked-for = /form.html\n"),
                Contains("the server was asked for /form.html"));
}

TEST_F(TourOfOneSite, EveryVisitUpToTheLastMarkIsPlayed) {
    write("sites/a/site.txt", replaced(right_expectation, "mark = Y", "mark = N, cancel, P"));
    write("sites/a/index.html", front_page);
    write("sites/a/form.html", "<title>Form</title>");
    std::filesystem::create_directories(root() / "program");
    std::filesystem::create_directories(root() / "out");
    practice::PracticeServer server(practice::load_sites(root() / "sites"));
    QtUserInterface ui;
    Tour tour(ui, server, root() / "program", root() / "out");
    const auto& visits = tour.play();
    ASSERT_EQ(visits.size(), 3U);
    for (const Visit& visit : visits)
        EXPECT_THAT(visit.problems, IsEmpty());
}

constexpr auto recorded_form =
    R"(<style>body, form { margin: 0 } input { display: block; width: 200px }</style>
<form action="/take.html" method="post"><input name="a"><input type="submit" name="go" value="Send"></form>
<p>words</p>)";

// One site that is submitted by hand, recorded and played back.
class RecordingOfOneSite : public TourOfOneSite {
protected:
    std::vector<Replayed> recorded(const std::string& site_file,
                                   std::chrono::milliseconds patience = drive::patience) {
        write("sites/a/site.txt", site_file);
        write("sites/a/index.html", recorded_form);
        write("sites/a/take.html", "thanks");
        std::filesystem::create_directories(root() / "program");
        server_ = std::make_unique<practice::PracticeServer>(practice::load_sites(root() / "sites"));
        QtUserInterface ui;
        RecordingTour tour(ui, *server_, root() / "program");
        tour.set_patience(patience);
        return tour.play();
    }

private:
    std::unique_ptr<practice::PracticeServer> server_; // the visits point into it
};

TEST_F(RecordingOfOneSite, FormIsSentByHandAndPlayedBackTheSame) {
    const auto visits = recorded("description = A\nhand = / | click 20 10; type x y; enter\n");
    ASSERT_EQ(visits.size(), 1U);
    EXPECT_THAT(visits[0].problems, IsEmpty());
    ASSERT_EQ(visits[0].by_hand.size(), 1U);
    EXPECT_EQ(visits[0].by_hand[0].body, "a=x+y&go=Send");
    EXPECT_TRUE(visits[0].same());
    EXPECT_THAT(fidelity_table(visits), HasSubstr("1 of 1 sites sent the same both times."));
}

TEST_F(RecordingOfOneSite, RequestsThatDifferWithoutARuleAreAProblem) {
    const auto visits = recorded("description = A\nhand = / | click 20 10; type C++; enter\n");
    ASSERT_EQ(visits.size(), 1U);
    EXPECT_EQ(visits[0].replayed.at(0).body, "a=C++&go=Send");
    EXPECT_THAT(visits[0].problems, Contains("the requests differ"));
}

TEST_F(RecordingOfOneSite, RequestsThatAreTheSameAgainstTheFileAreAProblem) {
    const auto visits =
        recorded("description = A\nhand = / | click 20 10; type x; enter\ndiffers = a rule\n");
    ASSERT_EQ(visits.size(), 1U);
    EXPECT_THAT(visits[0].problems, Contains("the requests are the same though its file says why not"));
}

TEST_F(RecordingOfOneSite, SubmissionThatDoesNotComeIsAProblem) {
    const auto visits = recorded("description = A\nhand = / | click 20 10; type x\n", in_vain);
    ASSERT_EQ(visits.size(), 1U);
    EXPECT_THAT(visits[0].problems, Contains(HasSubstr("in vain for the submission by hand")));
}

} // namespace
} // namespace kestrune::tour
