#include "platform/jet/jet_conversion.h"

#include "platform/database.h"
#include "platform/jet/descriptor.h"
#include "platform/jet/jet_header.h"
#include "platform/jet/jet_table.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t rows_between_progress = 500;
constexpr int most_originals = 1000;

// The file to convert, held so that no other program converts it at the same time.
class HeldFile {
public:
    explicit HeldFile(const std::string& path)
        : path_(path), file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (file_.valid())
            while (::flock(file_.get(), LOCK_EX) != 0 && errno == EINTR) {
            }
    }

    // Whether the path still leads to it; not when another program was faster.
    [[nodiscard]] bool in_place() const {
        struct stat here {};
        struct stat there {};
        return file_.valid() && ::fstat(file_.get(), &here) == 0 && ::stat(path_.c_str(), &there) == 0 &&
               here.st_dev == there.st_dev && here.st_ino == there.st_ino;
    }
    [[nodiscard]] mode_t mode() const {
        struct stat here {};
        return ::fstat(file_.get(), &here) == 0 ? here.st_mode & 07777U : 0644U;
    }
    [[nodiscard]] JetHeader header() const {
        std::array<char, jet_header_size> bytes{};
        const ssize_t got = ::pread(file_.get(), bytes.data(), bytes.size(), 0);
        return read_jet_header({bytes.data(), got < 0 ? 0 : static_cast<std::size_t>(got)});
    }

private:
    std::string path_;
    Descriptor file_;
};

bool same_file(const std::string& one, const std::string& other) {
    std::error_code failed;
    return fs::equivalent(one, other, failed) && !failed;
}

bool flush(const std::string& path, int flags) {
    const Descriptor opened{::open(path.c_str(), O_RDONLY | O_CLOEXEC | flags)};
    return opened.valid() && ::fsync(opened.get()) == 0;
}

// For a file system that has no second names.
bool copy_whole(const std::string& from, const std::string& to) {
    const std::string unfinished = unfinished_name(to);
    std::error_code failed;
    const bool copied = fs::copy_file(from, unfinished, fs::copy_options::overwrite_existing, failed) &&
                        flush(unfinished, 0) && ::rename(unfinished.c_str(), to.c_str()) == 0;
    if (!copied)
        ::unlink(unfinished.c_str());
    return copied;
}

bool keep_original(const std::string& path) {
    for (int number = 1; number <= most_originals; ++number) {
        const std::string kept = kept_original_name(path, number);
        if (::link(path.c_str(), kept.c_str()) == 0 || same_file(path, kept))
            return true;
        if (errno == EEXIST)
            continue;
        std::error_code failed;
        return (errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK) && !fs::exists(kept, failed) &&
               copy_whole(path, kept);
    }
    return false;
}

void copy_rows(const JetFile& file, const std::string& target, const CreateTable& create,
               const std::function<void(JetProgress)>& progress) {
    JetTable table{file.path, file.table};
    const auto writer = create(target, file.table, table.columns());
    const std::int64_t total = table.row_count();
    std::int64_t done = 0;
    progress({done, total});
    std::vector<TableValue> row;
    while (table.next(row)) {
        writer->add(row);
        if (++done % rows_between_progress == 0)
            progress({done, total});
        // Pages that lead in a circle yield rows for ever.
        if (done > 2 * total + 1000)
            break;
    }
    // libmdb passes over what it cannot read. Rather no conversion than one that loses a row.
    if (done != total)
        throw JetError("the file says that it has " + std::to_string(total) + " rows, but " +
                       std::to_string(done) + " were read");
    writer->finish();
}

JetOutcome put_in_place(const HeldFile& held, const std::string& path, const std::string& target) {
    if (!held.in_place())
        return JetOutcome::NotJet;
    ::chmod(target.c_str(), held.mode());
    if (!keep_original(path) || ::rename(target.c_str(), path.c_str()) != 0)
        return JetOutcome::NotWritten;
    const std::string folder = fs::path(path).parent_path().string();
    flush(folder.empty() ? "." : folder, O_DIRECTORY);
    return JetOutcome::Converted;
}

} // namespace

const char* describe(JetOutcome outcome) {
    switch (outcome) {
    case JetOutcome::Converted:
        return "converted";
    case JetOutcome::NotJet:
        return "no Access database";
    case JetOutcome::Encrypted:
        return "encrypted or protected by a password";
    case JetOutcome::NoTable:
        return "without the table that is wanted";
    case JetOutcome::Damaged:
        return "damaged";
    case JetOutcome::GivenUp:
        return "given up";
    case JetOutcome::NotWritten:
        break;
    }
    return "could not be written anew";
}

std::vector<JetFile> jet_files_in(const std::string& folder) {
    return {{folder + "/SubmitList.mdb", "tblSubmitList"}, {folder + "/referral2.mdb", "referral2"}};
}

std::string kept_original_name(const std::string& path, int number) {
    const fs::path file{path};
    std::string name = file.stem().string();
    name += " (Access original";
    if (number > 1)
        name.append(" ").append(std::to_string(number));
    name += ")";
    return (file.parent_path() / name.append(file.extension().string())).string();
}

std::string unfinished_name(const std::string& path) { return path + ".converting"; }

JetOutcome convert_jet_file(const JetFile& file, const CreateTable& create,
                            const std::function<void(JetProgress)>& progress) {
    const HeldFile held{file.path};
    if (!held.in_place() || !held.header().is_jet)
        return JetOutcome::NotJet;
    if (held.header().encrypted)
        return JetOutcome::Encrypted;
    const std::string target = unfinished_name(file.path);
    JetOutcome outcome = JetOutcome::NotWritten;
    try {
        copy_rows(file, target, create, progress);
        outcome = put_in_place(held, file.path, target);
    } catch (const NoSuchJetTable&) {
        outcome = JetOutcome::NoTable;
    } catch (const JetError&) {
        outcome = JetOutcome::Damaged;
    } catch (const DatabaseError&) {
        outcome = JetOutcome::NotWritten;
    }
    if (outcome != JetOutcome::Converted)
        ::unlink(target.c_str());
    return outcome;
}

} // namespace kestrune
