#include "transfer/import_util.h"

namespace ks {

std::string_view Trim(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

std::vector<std::string_view> Words(std::string_view s) {
  std::vector<std::string_view> out;
  std::size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && IsBlank(s[i])) ++i;
    const std::size_t start = i;
    while (i < s.size() && !IsBlank(s[i])) ++i;
    if (i > start) out.push_back(s.substr(start, i - start));
  }
  return out;
}

std::vector<std::pair<int, std::string_view>> SplitLines(std::string_view text) {
  std::vector<std::pair<int, std::string_view>> out;
  int number = 0;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] != '\n' && text[i] != '\r') continue;
    if (i == text.size() && start == i) break;
    out.emplace_back(++number, text.substr(start, i - start));
    if (i + 1 < text.size() && text[i] == '\r' && text[i + 1] == '\n') ++i;
    start = i + 1;
  }
  return out;
}

std::string FixedStr(std::string_view b, std::size_t at, std::size_t size) {
  std::string_view s = b.substr(at, size);
  s = s.substr(0, s.find('\0'));
  return std::string(Trim(s));
}

}  // namespace ks
