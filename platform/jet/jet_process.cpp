#include "platform/diagnostics.h"
#include "platform/jet/descriptor.h"
#include "platform/jet/jet_conversion.h"
#include "platform/jet/jet_header.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrune {
namespace {

using Clock = std::chrono::steady_clock;

// An outcome is told as this exit code or one above it, so that no exit of libmdb's own is taken for one.
constexpr int first_exit_code = 64;

constexpr std::chrono::milliseconds between_progress{100};
// libmdb walks in circles in some damaged files.
constexpr std::chrono::seconds longest_silence{60};

void quieten() {
    const Descriptor nowhere{::open("/dev/null", O_RDWR | O_CLOEXEC)};
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nowhere.get(), stream);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

[[noreturn]] void convert_and_exit(const JetFile& file, const CreateTable& create, int news, pid_t parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(first_exit_code + static_cast<int>(JetOutcome::NotWritten));
    quieten();
    JetOutcome outcome = JetOutcome::Damaged;
    try {
        outcome = convert_jet_file(file, create, [news](JetProgress progress) {
            [[maybe_unused]] const ssize_t written = ::write(news, &progress, sizeof progress);
        });
    } catch (...) {
        outcome = JetOutcome::Damaged;
    }
    ::_exit(first_exit_code + static_cast<int>(outcome));
}

} // namespace

// One file, and the process that converts it.
class JetConversions::Child {
public:
    Child(const JetFile& file, const CreateTable& create) : path_(file.path) {
        std::array<int, 2> ends{};
        if (!is_jet_file(file.path)) {
            outcome_ = JetOutcome::NotJet;
            return;
        }
        outcome_ = JetOutcome::NotWritten;
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
        news_ = Descriptor{ends[0]};
        const Descriptor to_parent{ends[1]};
        const pid_t parent = ::getpid();
        process_ = ::fork();
        if (process_ == 0)
            convert_and_exit(file, create, to_parent.get(), parent);
        if (process_ > 0)
            outcome_.reset();
    }
    ~Child() { give_up(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    Child(Child&&) = delete;
    Child& operator=(Child&&) = delete;

    [[nodiscard]] bool running() const { return !outcome_; }
    [[nodiscard]] JetOutcome outcome() const { return *outcome_; }
    [[nodiscard]] JetProgress progress() const { return progress_; }
    [[nodiscard]] int news() const { return running() ? news_.get() : -1; }

    // There is something to read, or the process has ended.
    void take_news() {
        JetProgress heard;
        const ssize_t got = ::read(news_.get(), &heard, sizeof heard);
        if (got == static_cast<ssize_t>(sizeof heard)) {
            progress_ = heard;
            heard_ = Clock::now();
        } else if (got == 0 || errno != EINTR) {
            end();
        }
    }
    void give_up() {
        if (!running())
            return;
        ::kill(process_, SIGKILL);
        end();
        // It may just have done its work before it was ended.
        if (outcome_ == JetOutcome::Damaged && is_jet_file(path_))
            outcome_ = JetOutcome::GivenUp;
    }
    void check_silence() {
        if (running() && Clock::now() - heard_ > longest_silence)
            ::kill(process_, SIGKILL);
    }

private:
    void end() {
        int status = 0;
        while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        outcome_ = JetOutcome::Damaged;
        const int told = WIFEXITED(status) ? WEXITSTATUS(status) - first_exit_code : -1;
        if (told >= 0 && told <= static_cast<int>(JetOutcome::NotWritten))
            outcome_ = static_cast<JetOutcome>(told);
        else // ended from outside or by the library it uses: it could not tidy up
            ::unlink(unfinished_name(path_).c_str());
        progress_.done = progress_.total;
        if (outcome_ != JetOutcome::Converted && outcome_ != JetOutcome::NotJet)
            diagnostics::report("a database made with Access is left as it is: " + path_,
                                describe(*outcome_));
    }

    std::string path_;
    Descriptor news_;
    pid_t process_ = -1;
    std::optional<JetOutcome> outcome_;
    JetProgress progress_;
    Clock::time_point heard_ = Clock::now();
};

JetConversions::JetConversions(const std::vector<JetFile>& files, const CreateTable& create) {
    for (const JetFile& file : files)
        children_.push_back(std::make_unique<Child>(file, create));
}

JetConversions::~JetConversions() = default;

bool JetConversions::running() const {
    for (const auto& child : children_) {
        if (child->running())
            return true;
    }
    return false;
}

std::vector<JetOutcome> JetConversions::finish(const std::function<bool(JetProgress)>& progress) {
    auto told = Clock::now();
    while (running()) {
        std::vector<pollfd> waiting;
        for (const auto& child : children_)
            waiting.push_back({child->news(), POLLIN, 0});
        ::poll(waiting.data(), waiting.size(), static_cast<int>(between_progress.count()));
        JetProgress sum;
        for (std::size_t i = 0; i < children_.size(); ++i) {
            Child& child = *children_[i];
            if (waiting[i].fd >= 0 && waiting[i].revents != 0)
                child.take_news();
            child.check_silence();
            sum.done += child.progress().done;
            sum.total += child.progress().total;
        }
        if (progress && Clock::now() - told >= between_progress) {
            told = Clock::now();
            if (!progress(sum))
                for (const auto& child : children_)
                    child->give_up();
        }
    }
    std::vector<JetOutcome> outcomes;
    for (const auto& child : children_)
        outcomes.push_back(child->outcome());
    return outcomes;
}

} // namespace kestrune
