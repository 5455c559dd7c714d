#include "sessions/record_files.h"

#include "platform/code_page.h"
#include "platform/diagnostics.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdint>

namespace kestrune {
namespace {

constexpr std::string_view extension = ".xml";

// Backup of a profile that could not be written; the earlier profile has the profile's own name there.
constexpr std::string_view unsaved_profile_name = "Kestrune_not_saved.xml";

bool is_xml(std::string_view name) {
    return name.size() >= extension.size() &&
           lower_case(name.substr(name.size() - extension.size())) == extension;
}

std::string file_name_of(std::string_view url) { return UrlToFileName(url).append(extension); }

// Some file systems do not tell letter case apart.
bool is_profile(std::string_view file_name) { return equal_ignoring_case(file_name, profile_file_name); }

// A name that fits every file system, still different for different names (64-bit FNV-1a of the whole name).
std::string shortened(std::string_view name) {
    constexpr std::size_t kept = 120;
    constexpr std::string_view digits = "0123456789abcdef";
    std::uint64_t hash = 14695981039346656037U;
    for (const char byte : name)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    std::string result{name.substr(0, kept)};
    result += '_';
    for (int shift = 60; shift >= 0; shift -= 4)
        result += digits[(hash >> static_cast<unsigned>(shift)) & 0x0FU];
    return result.append(extension);
}

} // namespace

RecordFiles::RecordFiles(Files& files, const std::string& program_folder)
    : files_(files), session_(files.path(program_folder, "session")),
      backup_(files.path(program_folder, "backup")) {}

void RecordFiles::prepare() {
    if (!files_.folder_exists(session_) && !files_.create_folder(session_))
        diagnostics::report("session folder", "cannot be created");
}

std::vector<std::string> RecordFiles::names() const {
    auto found = files_.list(session_).value_or(std::vector<std::string>{});
    std::erase_if(found, [](const std::string& name) { return !is_xml(name); });
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<RecordSession> RecordFiles::record_for(std::string_view url) const {
    std::string text;
    if (!ReadTextFile(files_, session_path(file_name_of(url)), text))
        return std::nullopt;
    RecordSession record;
    ParseSessionXml(text, record);
    if (record.Type == type_preference)
        return std::nullopt;
    return record;
}

void RecordFiles::write(const RecordSession& record) {
    const std::string name = file_name_of(record.Url);
    const std::string bytes = XmlFileBytes(BuildSessionXml(record));
    if (is_profile(name)) {
        write_backup(shortened(name), bytes);
        return;
    }
    prepare();
    const std::string path = session_path(name);
    if (files_.file_exists(path)) {
        const auto old = files_.read(path);
        if (old == bytes)
            return;
        if (old)
            write_backup(name, *old);
        else
            move_to_backup(name);
    }
    if (!files_.write(path, bytes))
        write_backup(name, bytes);
}

void RecordFiles::write_profile(std::string_view text) {
    const std::string bytes = bytes_of_text(text);
    const std::string path = session_path(profile_file_name);
    prepare();
    // A copy is kept rather than the file moved, so that there is a profile at every instant of a good save.
    if (files_.file_exists(path)) {
        const auto old = files_.read(path);
        if (old == bytes)
            return;
        if (!old || !write_backup(profile_file_name, *old))
            move_to_backup(profile_file_name);
    }
    if (files_.write(path, bytes))
        return;
    if (files_.file_exists(path))
        move_to_backup(profile_file_name);
    write_backup(unsaved_profile_name, bytes);
}

void RecordFiles::remove(std::string_view url) {
    const std::string name = file_name_of(url);
    const std::string path = session_path(name);
    if (is_profile(name) || !files_.file_exists(path))
        return;
    // The user's word stands even where nothing can be kept.
    if (!move_to_backup(name) && !files_.remove(path))
        diagnostics::report("record file", "cannot be deleted");
}

void RecordFiles::put_away(std::string_view name) { move_to_backup(name); }

bool RecordFiles::move_to_backup(std::string_view name) {
    if (!files_.folder_exists(backup_))
        files_.create_folder(backup_);
    return files_.move(session_path(name), backup_path(name));
}

bool RecordFiles::write_backup(std::string_view name, std::string_view bytes) {
    if (!files_.folder_exists(backup_))
        files_.create_folder(backup_);
    if (files_.write(backup_path(name), bytes) || files_.write(backup_path(shortened(name)), bytes))
        return true;
    diagnostics::report("record backup", "cannot be written");
    return false;
}

} // namespace kestrune
