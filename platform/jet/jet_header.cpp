#include "platform/jet/jet_header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <numeric>
#include <utility>

namespace kestrune {
namespace {

constexpr std::string_view magic{"\x00\x01\x00\x00Standard Jet DB\x00", 20};
constexpr std::size_t version_at = 0x14;
constexpr std::size_t scrambled_from = 0x18;
constexpr std::size_t page_key_at = 0x3e;
constexpr std::size_t page_key_size = 4;
constexpr std::size_t password_at = 0x42;
constexpr std::size_t jet3_password_size = 20;
constexpr std::size_t jet4_password_size = 40;
constexpr std::size_t created_at = 0x72;

using Bytes = std::array<unsigned char, jet_header_size>;

// The page's head is scrambled in every file, with RC4 and always this key.
void unscramble(Bytes& page) {
    constexpr std::array<unsigned char, 4> key{0xc7, 0xda, 0x39, 0x6b};
    std::array<unsigned char, 256> state{};
    std::iota(state.begin(), state.end(), static_cast<unsigned char>(0));
    unsigned char j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<unsigned char>(j + state[i] + key[i % key.size()]);
        std::swap(state[i], state[j]);
    }
    unsigned char i = 0;
    j = 0;
    for (std::size_t at = scrambled_from; at < page.size(); ++at) {
        ++i;
        j = static_cast<unsigned char>(j + state[i]);
        std::swap(state[i], state[j]);
        page[at] ^= state[static_cast<unsigned char>(state[i] + state[j])];
    }
}

// Jet 4 mixes the day on which the file was created into the password, so that "none" is not all zeros there.
std::array<unsigned char, 4> password_mask(const Bytes& page) {
    double created = 0;
    std::memcpy(&created, page.data() + created_at, sizeof created);
    if (!std::isfinite(created) || std::fabs(created) > 1e9)
        return {};
    const auto day = static_cast<std::uint32_t>(static_cast<std::int32_t>(created));
    return {static_cast<unsigned char>(day), static_cast<unsigned char>(day >> 8U),
            static_cast<unsigned char>(day >> 16U), static_cast<unsigned char>(day >> 24U)};
}

bool has_password(const Bytes& page, JetVersion version) {
    const bool jet4 = version == JetVersion::Jet4;
    const std::array<unsigned char, 4> mask = jet4 ? password_mask(page) : std::array<unsigned char, 4>{};
    const std::size_t size = jet4 ? jet4_password_size : jet3_password_size;
    for (std::size_t i = 0; i < size; ++i) {
        if (page[password_at + i] != mask[i % mask.size()])
            return true;
    }
    return false;
}

} // namespace

JetHeader read_jet_header(std::string_view bytes) {
    static_assert(std::endian::native == std::endian::little);
    JetHeader header;
    if (bytes.size() < jet_header_size || !bytes.starts_with(magic))
        return header;
    Bytes page{};
    std::copy_n(bytes.begin(), page.size(), page.begin());
    if (page[version_at] > 1)
        return header;
    header.is_jet = true;
    header.version = page[version_at] == 0 ? JetVersion::Jet3 : JetVersion::Jet4;
    unscramble(page);
    const auto key = page.begin() + page_key_at;
    header.encrypted = std::any_of(key, key + page_key_size, [](unsigned char c) { return c != 0; }) ||
                       has_password(page, header.version);
    return header;
}

bool is_jet_file(const std::string& path) {
    std::array<char, jet_header_size> bytes{};
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), bytes.size());
    return read_jet_header({bytes.data(), static_cast<std::size_t>(file.gcount())}).is_jet;
}

} // namespace kestrune
