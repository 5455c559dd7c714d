#include "platform/qt/site_data.h"

#include "platform/diagnostics.h"

#include <QFile>
#include <QLockFile>

#include <system_error>

namespace kestrune {
namespace {

namespace fs = std::filesystem;

constexpr const char* storage_name = "storage";
constexpr const char* cache_name = "cache";
constexpr const char* downloads_name = "downloads";
constexpr const char* forget_name = "forget";

QString as_qt(const fs::path& path) { return QString::fromStdU16String(path.u16string()); }

bool make_private(const fs::path& folder) {
    std::error_code failed;
    fs::create_directories(folder, failed);
    fs::permissions(folder, fs::perms::owner_all, failed);
    return fs::is_directory(folder, failed);
}

// The engine deleted the cookies when the user asked for it: those there now are newer, unless the program
// was killed before that was written down.
bool is_to_stay(const fs::path& stored, fs::file_time_type asked) {
    std::error_code failed;
    const auto written = fs::last_write_time(stored, failed);
    return stored.filename().string().starts_with("Cookies") && !failed && written > asked;
}

// False when something could not be deleted.
bool forget_stored(const fs::path& storage, fs::file_time_type asked) {
    bool all = true;
    std::error_code failed;
    for (fs::directory_iterator entry(storage, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        if (is_to_stay(entry->path(), asked))
            continue;
        std::error_code kept;
        fs::remove_all(entry->path(), kept);
        if (kept)
            diagnostics::report("site data not forgotten", kept.message());
        all = all && !kept;
    }
    return all && !failed;
}

} // namespace

SiteData::SiteData(const fs::path& program_folder) : folder_(program_folder / "site data") {
    if (!make_private(folder_))
        return;
    auto lock = std::make_unique<QLockFile>(as_qt(part("lock")));
    lock->setStaleLockTime(0); // a program may run for weeks; one that has died is seen by its number
    if (!lock->tryLock(0)) {
        diagnostics::report("site data", "in use by another program, or not to be written");
        return;
    }
    lock_ = std::move(lock);
    forget_if_asked();
    std::error_code failed;
    fs::remove_all(part(downloads_name), failed);
    for (const char* name : {storage_name, cache_name, downloads_name})
        make_private(part(name));
}

SiteData::~SiteData() = default;

void SiteData::forget_if_asked() {
    std::error_code failed;
    const auto asked = fs::last_write_time(part(forget_name), failed);
    if (failed)
        return;
    const bool all = forget_stored(part(storage_name), asked);
    fs::remove_all(part(cache_name), failed);
    // Last: a program that is killed over it goes on with it when it starts again.
    if (all && !failed)
        fs::remove(part(forget_name), failed);
}

QString SiteData::storage() const { return as_qt(part(storage_name)); }

QString SiteData::cache() const { return as_qt(part(cache_name)); }

QString SiteData::downloads() const { return as_qt(part(downloads_name)); }

void SiteData::forget_at_next_start() { set_note(QString::fromLatin1(forget_name), QStringLiteral("1")); }

QString SiteData::note(const QString& name) const {
    QFile file(as_qt(folder_) + u'/' + name);
    return lock_ && file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void SiteData::set_note(const QString& name, const QString& text) {
    QFile file(as_qt(folder_) + u'/' + name);
    if (lock_ && file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
}

} // namespace kestrune
