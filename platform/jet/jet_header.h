#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune {

enum class JetVersion : std::uint8_t { Jet3, Jet4 };

// What the first page of a database file says about it.
struct JetHeader {
    bool is_jet = false; // Jet 3 or 4; the formats that came after it count as foreign
    JetVersion version = JetVersion::Jet4;
    // Its pages are scrambled, or it opens with a password only. The program has none to offer.
    bool encrypted = false;
};

// `bytes` are the file's first; with fewer than jet_header_size of them it is no Jet database.
JetHeader read_jet_header(std::string_view bytes);
inline constexpr std::size_t jet_header_size = 0x98;

// Whether the file at the path begins as a Jet database. False when it cannot be read.
bool is_jet_file(const std::string& path);

} // namespace kestrune
