#pragma once

#include "platform/files.h"

namespace kestrune {

// Files on the disk of this machine.
class DiskFiles : public Files {
public:
    [[nodiscard]] std::string path(std::string_view folder, std::string_view name) const override;
    [[nodiscard]] bool file_exists(const std::string& path) const override;
    [[nodiscard]] bool folder_exists(const std::string& path) const override;
    bool create_folder(const std::string& path) override;
    [[nodiscard]] std::optional<std::vector<std::string>> list(const std::string& folder) const override;
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
    [[nodiscard]] std::unique_ptr<FileSequence> sequence(const std::string& folder,
                                                         std::vector<std::string> names) const override;
    bool write(const std::string& path, std::string_view bytes) override;
    bool remove(const std::string& path) override;
    bool move(const std::string& from, const std::string& to) override;
};

} // namespace kestrune
