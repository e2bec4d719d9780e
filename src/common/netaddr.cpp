#include "common/netaddr.h"

#include <charconv>

namespace ks {

std::string FormatAddr(const NetAddr& a) {
  std::string s =
      std::to_string(a.zone) + ":" + std::to_string(a.net) + "/" + std::to_string(a.node);
  if (a.point != 0) s += "." + std::to_string(a.point);
  return s;
}

namespace {

// Reads one decimal part up to `stop` (or the end when stop is 0).
bool TakeNumber(std::string_view& s, char stop, std::uint16_t& out) {
  std::size_t end = stop ? s.find(stop) : s.size();
  if (end == std::string_view::npos || end == 0) return false;
  unsigned v = 0;
  auto [p, ec] = std::from_chars(s.data(), s.data() + end, v);
  if (ec != std::errc() || p != s.data() + end || v > 0xFFFF) return false;
  out = static_cast<std::uint16_t>(v);
  s.remove_prefix(stop ? end + 1 : end);
  return true;
}

}  // namespace

std::optional<NetAddr> ParseAddr(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  NetAddr a;
  if (!TakeNumber(text, ':', a.zone) || !TakeNumber(text, '/', a.net)) return std::nullopt;
  if (text.find('.') != std::string_view::npos) {
    if (!TakeNumber(text, '.', a.node) || !TakeNumber(text, 0, a.point)) return std::nullopt;
  } else if (!TakeNumber(text, 0, a.node)) {
    return std::nullopt;
  }
  return a;
}

}  // namespace ks
