#pragma once

#include <filesystem>
#include <memory>

class QWebEngineProfile;

namespace kestrune {

// What the pages of all windows share: cookies, site data, cache and the engine's settings. Every page is
// deleted before its profile; whoever owns a page holds the profile too.
class EngineProfile {
public:
    // Site data is kept in the folder; with none it is forgotten when the profile ends.
    explicit EngineProfile(const std::filesystem::path& folder = {});
    ~EngineProfile();
    EngineProfile(const EngineProfile&) = delete;
    EngineProfile& operator=(const EngineProfile&) = delete;
    EngineProfile(EngineProfile&&) = delete;
    EngineProfile& operator=(EngineProfile&&) = delete;

    [[nodiscard]] QWebEngineProfile& engine() const { return *profile_; }

private:
    std::unique_ptr<QWebEngineProfile> profile_;
};

} // namespace kestrune
