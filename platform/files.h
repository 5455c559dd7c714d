#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Files that are read one after the other.
class FileSequence {
public:
    FileSequence() = default;
    virtual ~FileSequence() = default;
    FileSequence(const FileSequence&) = delete;
    FileSequence& operator=(const FileSequence&) = delete;
    FileSequence(FileSequence&&) = delete;
    FileSequence& operator=(FileSequence&&) = delete;

    // Reads all bytes of the next file; nothing when it cannot be read, and behind the last one.
    [[nodiscard]] virtual std::optional<std::string> next() = 0;
};

// File system access. Paths are the platform's own; nothing throws.
class Files {
public:
    Files() = default;
    virtual ~Files() = default;
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;
    Files(Files&&) = delete;
    Files& operator=(Files&&) = delete;

    // `name` in `folder`, with the platform's separator.
    [[nodiscard]] virtual std::string path(std::string_view folder, std::string_view name) const = 0;

    // A file, not a folder.
    [[nodiscard]] virtual bool file_exists(const std::string& path) const = 0;
    [[nodiscard]] virtual bool folder_exists(const std::string& path) const = 0;
    // Creates one folder (its parent exists), open to its owner only. False when it could not.
    virtual bool create_folder(const std::string& path) = 0;
    // The names of the files (not folders) in a folder, in the order the file system lists them; nothing when
    // it cannot be read. No sizes: they would cost a call of the system for each file.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> list(const std::string& folder) const = 0;
    // All bytes of a file; nothing when it cannot be read.
    [[nodiscard]] virtual std::optional<std::string> read(const std::string& path) const = 0;
    // The files of these names in a folder, in this order; for a great many of them faster than `read` for
    // each. The sequence does not outlive this object.
    [[nodiscard]] virtual std::unique_ptr<FileSequence> sequence(const std::string& folder,
                                                                 std::vector<std::string> names) const = 0;
    // Replaces or creates a file, readable by its owner only. It reaches the disk whole or not at all; false
    // in the latter case, and an earlier file of that name is then unchanged.
    virtual bool write(const std::string& path, std::string_view bytes) = 0;
    virtual bool remove(const std::string& path) = 0;
    // Gives a file another path on the same file system, replacing what is there. False, and nothing changed,
    // when it could not.
    virtual bool move(const std::string& from, const std::string& to) = 0;
};

} // namespace kestrune
