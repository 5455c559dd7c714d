#pragma once

#include <QString>

#include <filesystem>
#include <memory>

class QLockFile;

namespace kestrune {

// The folder "site data" in the program's folder: what sites have stored, the cache, and downloads that are
// not complete. It belongs to one running program at a time and can be read by its owner alone.
class SiteData {
public:
    // Takes the folder, and puts in order what a program that was killed or told to forget has left there.
    explicit SiteData(const std::filesystem::path& program_folder);
    ~SiteData();
    SiteData(const SiteData&) = delete;
    SiteData& operator=(const SiteData&) = delete;
    SiteData(SiteData&&) = delete;
    SiteData& operator=(SiteData&&) = delete;

    // False when another program has it or it cannot be written.
    [[nodiscard]] bool taken() const { return lock_ != nullptr; }
    [[nodiscard]] QString storage() const;
    [[nodiscard]] QString cache() const;
    [[nodiscard]] QString downloads() const;

    // What sites have stored besides cookies goes when the folder is taken the next time: the engine has it
    // open until then.
    void forget_at_next_start();

    // A note that outlives the program, such as what the user has been told; "" when there is none.
    [[nodiscard]] QString note(const QString& name) const;
    void set_note(const QString& name, const QString& text);

private:
    void forget_if_asked();
    [[nodiscard]] std::filesystem::path part(const char* name) const { return folder_ / name; }

    std::filesystem::path folder_;
    std::unique_ptr<QLockFile> lock_;
};

} // namespace kestrune
