#pragma once
#include <cstdint>
#include <string>

namespace quillon {

// A four-character record or sub-record tag, read as the little-endian 32-bit value of its bytes.
using Tag = std::uint32_t;

constexpr Tag tag(const char (&s)[5]) {
    return Tag(std::uint8_t(s[0])) | Tag(std::uint8_t(s[1])) << 8 | Tag(std::uint8_t(s[2])) << 16 |
           Tag(std::uint8_t(s[3])) << 24;
}

// The four characters of a tag, as they stand in the file.
inline std::string tagText(Tag t) {
    return {char(t & 0xFF), char((t >> 8) & 0xFF), char((t >> 16) & 0xFF), char((t >> 24) & 0xFF)};
}

} // namespace quillon
