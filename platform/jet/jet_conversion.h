#pragma once

#include "platform/table.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrune {

// The program's databases may come from Access. The program itself reads another format, so each Jet file is
// converted once: a new file takes its name, and the Jet file stays beside it, untouched, as "NAME (Access
// original).mdb". At every instant the name leads to one of the two, whole. A file that is broken, encrypted
// or lacks the table is left alone.

enum class JetOutcome : std::uint8_t {
    Converted,
    NotJet,    // nothing to do: no file, or of another format
    Encrypted, // or protected by a password
    NoTable,
    Damaged, // not every row that the file says it has could be read
    NotWritten,
    GivenUp, // by whoever waited for it
};

// What to tell a developer or the user of a tool, "converted" for instance.
const char* describe(JetOutcome outcome);

struct JetFile {
    std::string path;
    std::string table;
};

// The program's two databases in its folder.
std::vector<JetFile> jet_files_in(const std::string& folder);

struct JetProgress {
    std::int64_t done = 0; // rows
    std::int64_t total = 0;
};

// Under which name the original of a file is kept; a second original gets a number.
std::string kept_original_name(const std::string& path, int number);
// Under which name the new file grows. Left over after a power cut, it is overwritten by the next attempt.
std::string unfinished_name(const std::string& path);

// Converts one file here and now. libmdb can crash on a damaged file and take this process with it.
JetOutcome convert_jet_file(const JetFile& file, const CreateTable& create,
                            const std::function<void(JetProgress)>& progress);

// Converts files in processes of their own, so that libmdb can do no harm. Those are copies of this process:
// start them before it has threads.
class JetConversions {
public:
    // Looks at the files and starts what there is to do, which most often is nothing.
    JetConversions(const std::vector<JetFile>& files, const CreateTable& create);
    // Gives up what has not finished; the files are then as before.
    ~JetConversions();
    JetConversions(const JetConversions&) = delete;
    JetConversions& operator=(const JetConversions&) = delete;
    JetConversions(JetConversions&&) = delete;
    JetConversions& operator=(JetConversions&&) = delete;

    [[nodiscard]] bool running() const;
    // Waits until everything is done. progress is called about ten times a second, with the rows of all
    // files; when it returns false, what is not done yet is given up. One outcome for each file, in order.
    std::vector<JetOutcome> finish(const std::function<bool(JetProgress)>& progress = {});

private:
    class Child;
    std::vector<std::unique_ptr<Child>> children_;
};

} // namespace kestrune
