#include "dbase/bbsfileareas.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "common/fileareaset.h"
#include "common/fileutil.h"

namespace ks {

namespace {

constexpr std::string_view kBlanks = " \t\r";

// Removes and returns the first blank-separated word of `line`.
std::string_view NextWord(std::string_view& line) {
  const auto start = std::min(line.size(), line.find_first_not_of(kBlanks));
  line.remove_prefix(start);
  const auto end = std::min(line.size(), line.find_first_of(kBlanks));
  const std::string_view word = line.substr(0, end);
  line.remove_prefix(end);
  return word;
}

std::string_view Trim(std::string_view s) {
  const auto start = s.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return s.substr(start, s.find_last_not_of(kBlanks) - start + 1);
}

std::optional<std::uint16_t> AreaNumber(std::string_view word) {
  if (word.empty() || word.size() > 5) return std::nullopt;
  unsigned n = 0;
  for (char c : word) {
    if (c < '0' || c > '9') return std::nullopt;
    n = n * 10 + static_cast<unsigned>(c - '0');
  }
  if (n >= FileAreaSet::kAreas) return std::nullopt;
  return static_cast<std::uint16_t>(n);
}

// The area of one line, or nothing for a comment or a malformed line.
std::optional<FileAreaName> ParseLine(std::string_view line) {
  line = Trim(line);
  if (line.empty() || line.front() == ';') return std::nullopt;
  const auto number = AreaNumber(NextWord(line));
  const std::string_view path = NextWord(line);
  if (!number || path.empty()) return std::nullopt;
  return FileAreaName{*number, std::string(path), std::string(Trim(line))};
}

}  // namespace

std::string BbsFileAreasFileName(const std::string& dir) {
  return AddSlash(dir) + "FILEAREA.LST";
}

std::vector<FileAreaName> LoadBbsFileAreas(const std::string& dir) {
  std::vector<FileAreaName> areas;
  const auto data = ReadWholeFile(BbsFileAreasFileName(dir));
  if (!data) return areas;
  std::string_view rest(*data);
  while (!rest.empty()) {
    const auto eol = std::min(rest.size(), rest.find('\n'));
    if (auto area = ParseLine(rest.substr(0, eol))) areas.push_back(std::move(*area));
    rest.remove_prefix(std::min(rest.size(), eol + 1));
  }
  // A stable sort keeps the first of equal numbers in front, where unique() keeps it.
  std::stable_sort(areas.begin(), areas.end(),
                   [](const auto& a, const auto& b) { return a.number < b.number; });
  areas.erase(std::unique(areas.begin(), areas.end(),
                          [](const auto& a, const auto& b) { return a.number == b.number; }),
              areas.end());
  return areas;
}

}  // namespace ks
