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

// Cookies have been deleted when the user asked for it; those there now are newer.
void forget_stored(const fs::path& storage) {
    std::error_code failed;
    for (fs::directory_iterator entry(storage, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        if (entry->path().filename().string().starts_with("Cookies"))
            continue;
        std::error_code kept;
        fs::remove_all(entry->path(), kept);
        if (kept)
            diagnostics::report("site data not forgotten", kept.message());
    }
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
    std::error_code failed;
    if (fs::remove(part(forget_name), failed)) {
        forget_stored(part(storage_name));
        fs::remove_all(part(cache_name), failed);
    }
    fs::remove_all(part(downloads_name), failed);
    for (const char* name : {storage_name, cache_name, downloads_name})
        make_private(part(name));
}

SiteData::~SiteData() = default;

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
