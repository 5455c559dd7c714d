#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Rooms from the highest to the lowest; a file includes only files of its own room or of lower ones.
const std::vector<std::string> rooms{"app", "shell", "filling", "sessions", "library", "platform"};
const std::array<std::string, 4> logic_rooms{"shell", "filling", "sessions", "library"};
const std::array<std::string, 5> adapter_families{"qt", "sqlite", "jet", "disk", "memory"};

struct Source {
    std::string path;                 // relative to the source folder
    std::vector<std::string> own;     // files of ours that it includes
    std::vector<std::string> foreign; // what it includes in angle brackets
};

std::vector<Source> read_sources() {
    static const std::regex include_line("^\\s*#\\s*include\\s*([\"<])([^\">]+)[\">]");
    std::vector<Source> sources;
    const fs::path root = KESTRUNE_SOURCE_DIR;
    for (const std::string& room : rooms) {
        for (const auto& entry : fs::recursive_directory_iterator(root / room)) {
            const auto extension = entry.path().extension();
            if (extension != ".h" && extension != ".cpp")
                continue;
            Source source{fs::relative(entry.path(), root).generic_string(), {}, {}};
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                std::smatch match;
                if (!std::regex_search(line, match, include_line))
                    continue;
                (match[1] == "\"" ? source.own : source.foreign).push_back(match[2]);
            }
            sources.push_back(std::move(source));
        }
    }
    return sources;
}

std::string room_of(const std::string& path) { return path.substr(0, path.find('/')); }

std::string family_of(const std::string& path) {
    const auto first = path.find('/');
    const auto second = path.find('/', first + 1);
    return second == std::string::npos ? "" : path.substr(first + 1, second - first - 1);
}

bool is_logic(const Source& source) {
    const std::string room = room_of(source.path);
    return std::find(logic_rooms.begin(), logic_rooms.end(), room) != logic_rooms.end() ||
           (room == "platform" && family_of(source.path).empty());
}

std::ptrdiff_t height_of(const std::string& room) {
    return std::find(rooms.begin(), rooms.end(), room) - rooms.begin();
}

class Architecture : public ::testing::Test {
protected:
    const std::vector<Source> sources = read_sources();
};

TEST_F(Architecture, SourcesWereFound) { EXPECT_GT(sources.size(), 40U); }

TEST_F(Architecture, LogicIncludesNeitherQtNorSqlite) {
    static const std::regex forbidden("^(Q[A-Z]|Qt|qt|sqlite|gumbo|httplib|mdb)");
    for (const Source& source : sources) {
        if (!is_logic(source))
            continue;
        for (const std::string& header : source.foreign)
            EXPECT_FALSE(std::regex_search(header, forbidden))
                << source.path << " includes <" << header << ">";
        for (const std::string& header : source.own) {
            const std::string family = room_of(header) == "platform" ? family_of(header) : "";
            EXPECT_TRUE(family.empty()) << source.path << " includes the adapter header " << header;
        }
    }
}

TEST_F(Architecture, FilesIncludeOnlyDownwards) {
    for (const Source& source : sources) {
        for (const std::string& header : source.own) {
            if (header.find('/') == std::string::npos)
                continue; // made by the build
            EXPECT_GE(height_of(room_of(header)), height_of(room_of(source.path)))
                << source.path << " includes " << header;
        }
    }
}

TEST_F(Architecture, AdapterFamiliesDoNotKnowEachOther) {
    for (const Source& source : sources) {
        const std::string own_family = room_of(source.path) == "platform" ? family_of(source.path) : "";
        if (own_family.empty())
            continue;
        for (const std::string& header : source.own) {
            if (room_of(header) != "platform")
                continue;
            const std::string family = family_of(header);
            EXPECT_TRUE(family.empty() || family == own_family) << source.path << " includes " << header;
        }
    }
}

TEST_F(Architecture, IncludeGraphHasNoCycle) {
    std::map<std::string, std::vector<std::string>> graph;
    for (const Source& source : sources)
        graph[source.path] = source.own;
    std::set<std::string> done;
    std::vector<std::string> path;
    const std::function<void(const std::string&)> visit = [&](const std::string& file) {
        if (done.contains(file) || !graph.contains(file))
            return;
        const bool on_path = std::find(path.begin(), path.end(), file) != path.end();
        ASSERT_FALSE(on_path) << file << " includes itself by way of " << path.back();
        path.push_back(file);
        for (const std::string& next : graph.at(file))
            visit(next);
        path.pop_back();
        done.insert(file);
    };
    for (const auto& [file, includes] : graph)
        visit(file);
}

TEST_F(Architecture, EveryRoomAndFamilyIsThere) {
    for (const std::string& room : rooms)
        EXPECT_TRUE(fs::is_directory(fs::path(KESTRUNE_SOURCE_DIR) / room)) << room;
    for (const std::string& family : adapter_families)
        EXPECT_TRUE(fs::is_directory(fs::path(KESTRUNE_SOURCE_DIR) / "platform" / family)) << family;
}

} // namespace
