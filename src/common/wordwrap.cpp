#include "common/wordwrap.h"

namespace ks {

std::vector<std::string> WrapWords(const std::string& text, int width) {
  std::vector<std::string> lines;
  std::string line;
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find(' ', pos);
    if (end == std::string::npos) end = text.size();
    std::string word = text.substr(pos, end - pos);
    pos = end + 1;
    if (!line.empty() && static_cast<int>(line.size() + 1 + word.size()) > width) {
      lines.push_back(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

}  // namespace ks
