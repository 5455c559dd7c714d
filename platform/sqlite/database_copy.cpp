#include "platform/sqlite/database_copy.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrune {
namespace {

[[noreturn]] void fail(const std::string& what) {
    throw DatabaseError(what + ": " + std::strerror(errno)); // NOLINT(concurrency-mt-unsafe): one thread.
}

// A file of its own in the folder of the target, gone again unless it takes the target's name.
class Unfinished {
public:
    explicit Unfinished(const std::string& target) : path_(target + ".XXXXXX") {
        const int file = ::mkostemp(path_.data(), O_CLOEXEC);
        if (file < 0)
            fail("cannot create " + target);
        ::close(file);
    }
    ~Unfinished() { ::unlink(path_.c_str()); }
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;
    Unfinished(Unfinished&&) = delete;
    Unfinished& operator=(Unfinished&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    void become(const std::string& target) const {
        const int file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
        const bool flushed = file >= 0 && ::fsync(file) == 0;
        if (file >= 0)
            ::close(file);
        if (!flushed || std::rename(path_.c_str(), target.c_str()) != 0)
            fail("cannot write " + target);
    }

private:
    std::string path_;
};

struct Finish {
    void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

void copy_pages(const SqliteConnection& source, SqliteConnection& target) {
    // The copy is nobody's until it has its name, so nothing need be undone or flushed on the way.
    target.run("PRAGMA journal_mode = OFF");
    target.run("PRAGMA synchronous = OFF");
    std::unique_ptr<sqlite3_backup, Finish> backup{
        sqlite3_backup_init(target.get(), "main", source.get(), "main")};
    if (!backup)
        target.fail("cannot copy");
    if (sqlite3_backup_step(backup.get(), -1) != SQLITE_DONE ||
        sqlite3_backup_finish(backup.release()) != SQLITE_OK)
        target.fail("cannot copy");
}

} // namespace

void copy_database(const SqliteConnection& source, const std::string& to) {
    const Unfinished unfinished{to};
    {
        SqliteConnection target = SqliteConnection::create(unfinished.path());
        copy_pages(source, target);
    }
    struct stat original {};
    if (::stat(std::string(source.file()).c_str(), &original) == 0)
        ::chmod(unfinished.path().c_str(), (original.st_mode & 0777U) | S_IWUSR);
    unfinished.become(to);
}

} // namespace kestrune
