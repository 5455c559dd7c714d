#pragma once

#include "platform/files.h"
#include "sessions/record_session.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

// Name of the product profile's file, which lies among the record files.
inline constexpr std::string_view profile_file_name = "Kestrune.xml";

// The record files in the session folder. Whatever is replaced or deleted there, and what could not be
// written under its own name, is kept as the last generation of that name in the folder "backup" beside it,
// for the user to mend a mistake by hand. Nothing throws and failures are not told: a record that could not
// be written is missing from the next load.
class RecordFiles {
public:
    // program_folder holds (or will hold) the folders "session" and "backup". files outlives this object.
    RecordFiles(Files& files, const std::string& program_folder);

    // Full path of the session folder.
    [[nodiscard]] const std::string& gstrSessionPath() const { return session_; }
    // Creates the session folder when it is missing.
    void prepare();

    // Names of the record files, and of the profile's, in order of name: all that end in ".xml" in any case.
    [[nodiscard]] std::vector<std::string> names() const;
    // The files of these names, to be read in this order.
    [[nodiscard]] std::unique_ptr<FileSequence> sequence(std::vector<std::string> names) const {
        return files_.sequence(session_, std::move(names));
    }
    // The record kept under the file name of this address, if there is one.
    [[nodiscard]] std::optional<RecordSession> record_for(std::string_view url) const;

    // Writes the record under the name of its address, in place of what is there. The profile's file is never
    // replaced by a record: such a record is kept as a backup alone.
    void write(const RecordSession& record);
    // Writes the product profile's file, whose text ends without a line break, in place of the earlier one.
    // When the new one cannot be written the earlier one is gone from the session folder too, and both are
    // kept as backups as far as that is possible.
    void write_profile(std::string_view text);
    // Removes the record file of the address, if there is one.
    void remove(std::string_view url);
    // Puts a file away that its record no longer fits. It stays when it cannot be kept as a backup.
    void put_away(std::string_view name);

private:
    [[nodiscard]] std::string session_path(std::string_view name) const {
        return files_.path(session_, name);
    }
    [[nodiscard]] std::string backup_path(std::string_view name) const { return files_.path(backup_, name); }
    bool move_to_backup(std::string_view name);
    bool write_backup(std::string_view name, std::string_view bytes);

    Files& files_;
    std::string session_;
    std::string backup_;
};

} // namespace kestrune
