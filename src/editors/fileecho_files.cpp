// What follows a fileecho outside FAREAS: the files in its destination directory, moved
// along when the destination changes, and the hatch and magic entries that name it.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "common/fileutil.h"
#include "dbase/recordfile.h"
#include "editors/fileecho_parts.h"

namespace ks::fileecho {

namespace {

bool SameNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::toupper(static_cast<unsigned char>(x)) ==
                  std::toupper(static_cast<unsigned char>(y));
         });
}

// The name of the file in `dir` that `listed` names: itself when it exists, else the first
// file whose name differs only in case (FILES.BBS is often written in capitals).
std::string FindListed(const std::string& dir, const std::string& listed,
                       const std::vector<std::string>& present) {
  if (FileExists(dir + listed)) return listed;
  for (const auto& name : present)
    if (SameNoCase(name, listed)) return name;
  return {};
}

bool MoveFile(const std::string& from, const std::string& to) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::rename(from, to, ec);
  if (!ec) return true;
  // Another file system: copy, and remove the original only once the copy is whole.
  if (!fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec)) return false;
  fs::remove(from, ec);
  return true;
}

}  // namespace

std::vector<std::string> FilesBbsNames(std::string_view text) {
  std::vector<std::string> names;
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    if (line.empty()) continue;
    const char first = line.front();
    if (first == ' ' || first == '\t' || first == '\r' || first == ';' || first == '-') continue;
    const std::size_t stop = line.find_first_of(" \t\r");
    names.emplace_back(line.substr(0, stop));
  }
  return names;
}

int MoveListedFiles(const std::string& from, const std::string& to) {
  const std::string src = AddSlash(from), dst = AddSlash(to);
  const auto text = ReadWholeFile(src + "FILES.BBS");
  if (!text) return 0;
  const std::vector<std::string> present = ListFiles(src);
  int moved = 0;
  for (const auto& listed : FilesBbsNames(*text)) {
    const std::string name = FindListed(src, listed, present);
    if (name.empty() || SameNoCase(name, "FILES.BBS")) continue;
    if (MoveFile(src + name, dst + name)) ++moved;
  }
  return moved;
}

int RemoveHatchAndMagic(const std::string& dir, const std::string& tag) {
  int removed = 0;
  THatchFile hatch;
  if (hatch.Open(dir)) {
    for (int i = hatch.Count() - 1; i >= 0; --i) {
      HatchMGRrec r;
      if (hatch.ReadRecord(i, r) && SameNoCase(r.area.str(), tag) && hatch.Delete(i)) ++removed;
    }
    hatch.Close();
  }
  TMagicFile magic;
  if (magic.Open(dir)) {
    for (int i = magic.Count() - 1; i >= 0; --i) {
      MagicFileMgrRec r;
      if (magic.ReadRecord(i, r) &&
          (SameNoCase(r.fromArea.str(), tag) || SameNoCase(r.toArea.str(), tag)) && magic.Delete(i))
        ++removed;
    }
    magic.Close();
  }
  return removed;
}

}  // namespace ks::fileecho
