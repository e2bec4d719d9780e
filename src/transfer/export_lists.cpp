#include "transfer/export_lists.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "common/fileutil.h"
#include "common/netaddr.h"
#include "dbase/rawfile.h"
#include "dbase/recordfile.h"

namespace ks {

namespace {

constexpr std::size_t kNameWidth = 41;

// How much of a fileecho record the lists need: through the group, through the destination.
constexpr std::size_t kThroughDescription = offsetof(FileMGRrec, group) + 1;
constexpr std::size_t kThroughDestination = offsetof(FileMGRrec, maxSize);

// FAREAS read through its index. The index is read and checked against the data file here:
// the record file class's own check on opening costs more than the whole list. The data file
// is mapped, so each record costs a copy of only the bytes a list needs.
class FileechoReader {
 public:
  explicit FileechoReader(const TransferContext& ctx)
      : systems_(ctx.cfg->numberOfSystems),
        record_size_(FileDef(RecordFileId::kFAreas).RecordSize(systems_)) {}

  bool Open(const std::string& dir) {
    if (Load(dir) && Fits()) return true;
    // An index that does not fit its data file (one left from a pack cut short) is rebuilt
    // by the record file class when it opens the pair.
    TFAreasFile areas(systems_);
    return areas.Open(dir) && Load(dir);
  }
  int Count() const { return static_cast<int>(index_.size()); }
  std::size_t systems() const { return systems_; }

  // The record of index entry i; nothing when the entry refers to no whole record.
  const std::uint8_t* Record(int i) const {
    const std::uint64_t at =
        std::uint64_t{index_[static_cast<std::size_t>(i)].recno} * record_size_;
    if (at + record_size_ > data_->size()) return nullptr;
    return data_->data() + at;
  }
  // Its first `bytes` bytes copied into `rec` (the rest of `rec` is left as it was).
  bool Read(int i, FileMGRrec& rec, std::size_t bytes) const {
    const std::uint8_t* p = Record(i);
    if (!p) return false;
    std::memcpy(&rec, p, std::min(bytes, record_size_));
    return true;
  }

 private:
  bool Load(const std::string& dir) {
    const std::string base = FileDef(RecordFileId::kFAreas).base;
    const auto index = ReadWholeFile(IndexFileName(dir, base));
    data_.emplace();
    if (!index || !FileExists(DataFileName(dir, base)) || !data_->Map(DataFileName(dir, base)))
      return false;
    const std::size_t n = std::min<std::size_t>(index->size() / sizeof(FileMGRidx), 0xFFFF);
    index_.resize(n);
    std::memcpy(index_.data(), index->data(), n * sizeof(FileMGRidx));
    return true;
  }
  // Every entry refers to a whole record with its own tag and group.
  bool Fits() const {
    for (int i = 0; i < Count(); ++i) {
      const std::uint8_t* rec = Record(i);
      const FileMGRidx& e = index_[static_cast<std::size_t>(i)];
      if (!rec || std::memcmp(rec, &e.tag, 1 + e.tag.size()) != 0 ||
          rec[offsetof(FileMGRrec, group)] != e.group)
        return false;
    }
    return true;
  }

  std::size_t systems_, record_size_;
  std::vector<FileMGRidx> index_;
  std::optional<MappedFile> data_;
};

void AppendNameField(std::string& out, std::string_view name) {
  out += name;
  if (name.size() < kNameWidth) out.append(kNameWidth - name.size(), ' ');
}

std::string Upper(std::string_view s) {
  std::string u(s);
  for (char& c : u)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return u;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\x1A';
}

// The first word of `line` from `pos` on, and `pos` moved behind it.
std::string_view NextWord(std::string_view line, std::size_t& pos) {
  while (pos < line.size() && IsBlank(line[pos])) ++pos;
  const std::size_t start = pos;
  while (pos < line.size() && !IsBlank(line[pos])) ++pos;
  return line.substr(start, pos - start);
}

std::uint64_t AddrKey(const NetAddr& a) {
  return std::uint64_t{a.zone} << 48 | std::uint64_t{a.net} << 32 | std::uint64_t{a.node} << 16 |
         a.point;
}

}  // namespace

std::string NameField(std::string_view name) {
  std::string out;
  AppendNameField(out, name);
  return out;
}

std::optional<std::string> FileechoListText(const TransferContext& ctx, const GroupSet& groups,
                                            bool descriptions) {
  FileechoReader areas(ctx);
  if (!areas.Open(ctx.data_dir)) return std::nullopt;
  std::string out;
  out.reserve(static_cast<std::size_t>(areas.Count()) * (descriptions ? 80 : 42));
  FileMGRrec rec;
  for (int i = 0; i < areas.Count(); ++i) {
    if (!areas.Read(i, rec, kThroughDescription) || !groups.Has(rec.group)) continue;
    AppendNameField(out, rec.tag.str());
    if (descriptions) out += rec.description.str();
    out += '\n';
  }
  return out;
}

std::optional<std::string> CrossCheckText(const TransferContext& ctx) {
  FileechoReader areas(ctx);
  if (!areas.Open(ctx.data_dir)) return std::nullopt;
  std::string out = ReportTitle(ctx, " List of unlisted fileechos") + "\n\n";
  out += "The following FILEBONE.xx and TAG files were scanned:\n\n\n";
  std::unordered_set<std::string> listed;
  for (const AreaMgrUplink& uplink : ctx.cfg->uplinks) {
    if (uplink.areasFile.empty()) continue;
    const std::string path = UplinkListPath(ctx, uplink.areasFile.str());
    const auto text = ReadWholeFile(path);
    if (!text) continue;
    out += path + '\n';
    AddListedTags(*text, static_cast<AreasFileFormat>(uplink.fileFormat), listed);
  }
  out += "  " + std::string(76, '-') + '\n';
  out += "The following fileechos were not listed in the above file(s):\n\n\n";
  FileMGRrec rec;
  for (int i = 0; i < areas.Count(); ++i) {
    if (!areas.Read(i, rec, sizeof rec.tag)) continue;
    const std::string tag = rec.tag.str();
    if (!listed.contains(Upper(tag))) out += tag + '\n';
  }
  return out;
}

std::optional<std::string> NodeBreakdownText(const TransferContext& ctx) {
  FileechoReader areas(ctx);
  TNodeFile nodes;
  if (!areas.Open(ctx.data_dir) || !nodes.Open(ctx.data_dir)) return std::nullopt;

  // One pass over the fileechos: their names, and for every connected address the positions
  // of the fileechos that list it, in index order.
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(areas.Count()));
  std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> connected;
  for (int i = 0; i < areas.Count(); ++i) {
    const std::uint8_t* rec = areas.Record(i);
    if (!rec) continue;
    PStr<40> tag;
    std::memcpy(&tag, rec, sizeof tag);
    const auto position = static_cast<std::uint32_t>(names.size());
    names.push_back(tag.str());
    const std::uint8_t* slot = rec + offsetof(FileMGRrec, systems);
    for (std::size_t s = 0; s < areas.systems(); ++s, slot += sizeof(ConnectedSystem)) {
      NetAddr a;
      std::memcpy(&a, slot, sizeof a);
      if (a.zone == 0) continue;
      auto& list = connected[AddrKey(a)];
      if (list.empty() || list.back() != position) list.push_back(position);
    }
  }

  std::string out = ReportTitle(ctx, "  Nodes -> Fileechos break down") + "\n\n";
  NodeMGRrec node;
  for (int i = 0; i < nodes.Count(); ++i) {
    if (!nodes.ReadRecord(i, node)) continue;
    out += FormatAddr(node.address) + '\n' + node.sysop.str() + "\n  ";
    const auto found = connected.find(AddrKey(node.address));
    if (found != connected.end()) {
      int on_line = 0;
      for (const std::uint32_t position : found->second) {
        AppendNameField(out, names[position]);
        if (++on_line == 2) {
          out += "\n  ";
          on_line = 0;
        }
      }
    }
    out += "\n\n";
  }
  return out;
}

std::optional<std::string> DestDirsText(const TransferContext& ctx) {
  FileechoReader areas(ctx);
  if (!areas.Open(ctx.data_dir)) return std::nullopt;
  std::string out = ReportTitle(ctx, " Fileecho area destination directories") + "\n\n";
  out.reserve(out.size() + static_cast<std::size_t>(areas.Count()) * 80);
  FileMGRrec rec;
  for (int i = 0; i < areas.Count(); ++i) {
    if (!areas.Read(i, rec, kThroughDestination)) continue;
    AppendNameField(out, rec.tag.str());
    out += rec.destination.str();
    out += '\n';
  }
  return out;
}

void AddListedTags(std::string_view text, AreasFileFormat format,
                   std::unordered_set<std::string>& tags) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    std::size_t pos = 0;
    std::string_view word = NextWord(line, pos);
    if (word.empty() || word[0] == ';') continue;
    if (format == afFilebone) {
      if (Upper(word) != "AREA") continue;
      word = NextWord(line, pos);
      if (word.empty()) continue;
    }
    tags.insert(Upper(word));
  }
}

std::string UplinkListPath(const TransferContext& ctx, const std::string& name) {
  if (name.empty() || name[0] == '/') return name;
  const std::string tag_path = ctx.cfg->tagPath.str();
  return (tag_path.empty() ? ctx.program_dir : AddSlash(tag_path)) + name;
}

}  // namespace ks
