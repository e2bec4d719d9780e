// Pieces the readers of foreign configuration files share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ks {

// Blanks between words: space, tab, form feed, vertical tab and the DOS end-of-file mark.
inline bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\v' || c == '\x1a';
}

std::string_view Trim(std::string_view s);
std::vector<std::string_view> Words(std::string_view s);

// The lines of a text with their numbers from 1; a line ends at CR LF, LF or a lone CR.
std::vector<std::pair<int, std::string_view>> SplitLines(std::string_view text);

// Little-endian numbers and zero-terminated strings of a binary file; the caller has checked
// that the bytes are there.
inline std::uint16_t Le16(std::string_view b, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<std::uint8_t>(b[at]) |
                                    static_cast<std::uint8_t>(b[at + 1]) << 8);
}
inline std::uint32_t Le32(std::string_view b, std::size_t at) {
  return Le16(b, at) | static_cast<std::uint32_t>(Le16(b, at + 2)) << 16;
}
// The characters of a `size`-byte array up to its first zero byte (all of them when there is
// none), blanks at either end removed.
std::string FixedStr(std::string_view b, std::size_t at, std::size_t size);

}  // namespace ks
