#pragma once

#include <filesystem>
#include <memory>

class QTemporaryDir;
class QWebEngineProfile;

namespace kestrune {

class Downloads;
class EngineWaits;
class SiteData;

// What the pages of all windows share: cookies, site data, cache, downloads and the engine's settings. Every
// page is deleted before its profile; whoever owns a page holds the profile too.
class EngineProfile {
public:
    static constexpr int largest_cache = 256 << 20; // bytes

    // Site data is kept in "site data" in the folder; with none, or while another program has it, it is
    // forgotten when the profile ends.
    explicit EngineProfile(const std::filesystem::path& folder = {});
    ~EngineProfile();
    EngineProfile(const EngineProfile&) = delete;
    EngineProfile& operator=(const EngineProfile&) = delete;
    EngineProfile(EngineProfile&&) = delete;
    EngineProfile& operator=(EngineProfile&&) = delete;

    [[nodiscard]] QWebEngineProfile& engine() const { return *profile_; }
    [[nodiscard]] Downloads& downloads() const { return *downloads_; }
    [[nodiscard]] EngineWaits& waits() const { return *waits_; }
    // Null when nothing is kept.
    [[nodiscard]] SiteData* site_data() const { return site_data_.get(); }

    // Cookies at once; the cache and what else sites have stored when the program starts the next time.
    void forget_sites();

private:
    std::unique_ptr<SiteData> site_data_;
    std::unique_ptr<QTemporaryDir> temporary_;
    std::unique_ptr<EngineWaits> waits_;
    std::unique_ptr<QWebEngineProfile> profile_;
    std::unique_ptr<Downloads> downloads_;
};

} // namespace kestrune
