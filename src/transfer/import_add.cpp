#include "transfer/import_add.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "common/fileutil.h"
#include "dbase/recordfile.h"
#include "editors/node_pages.h"

namespace ks {
namespace {

std::string UpperTag(const std::string& tag) {
  std::string u = tag.substr(0, 40);
  for (char& c : u)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return u;
}

std::uint64_t AddrKey(const NetAddr& a) {
  return std::uint64_t{a.zone} << 48 | std::uint64_t{a.net} << 32 | std::uint64_t{a.node} << 16 |
         a.point;
}

std::string OpenError(const TRecordFile& f) {
  return f.data_file_name() + (FileExists(f.data_file_name()) && FileExists(f.index_file_name())
                                   ? " is corrupt"
                                   : " file not found");
}

// Fills a record's fixed part from the area; the connected systems are set by the caller.
void Fill(FileMGRrec& r, const ImportArea& a) {
  r.tag = a.tag;
  r.description = a.description;
  r.destination = a.directory;
  r.group = a.group;
  if (a.passthrough) r.options |= kFePassThrough;
  if (a.security) r.options |= kFeSecurity;
  if (a.visible) r.options |= kFeVisible;
}

void Fill(EchoMGRrec& r, const ImportArea& a) {
  r.tag = a.tag;
  r.description = a.description;
  r.group = a.group;
  r.area.type = a.passthrough ? static_cast<std::uint8_t>(mbNone) : a.base_type;
  r.area.board = a.board;
  r.area.path = a.base_path;
  r.origin = a.origin;
  if (a.passthrough) r.options |= kEmPassThrough;
  if (a.security) r.options |= kEmSecurity;
  if (a.visible) r.options |= kEmVisible;
  r.daysToKeep = a.days;
  r.maxMsgs = a.msgs;
}

}  // namespace

ImportResult AddImported(const ImportList& list, const ImportTarget& target,
                         const std::function<void(const std::string& tag)>& progress) {
  ImportResult result;
  const std::size_t slots = std::min({target.systems, list.max_links, kMaxSystems});
  result.slots = slots;
  std::unique_ptr<TRecordFile> areas;
  if (list.fileechos)
    areas = std::make_unique<TFAreasFile>(target.systems);
  else
    areas = std::make_unique<TMAreasFile>(target.systems);
  TNodeFile nodes;
  if (!areas->Open(target.data_dir)) {
    result.error = OpenError(*areas);
    return result;
  }
  if (!nodes.Open(target.data_dir)) {
    result.error = OpenError(nodes);
    return result;
  }

  std::unordered_set<std::string> tags;
  tags.reserve(areas->Count() + list.areas.size());
  for (int i = 0; i < areas->Count(); ++i) {
    FileMGRidx e;  // the echomail index entry has the same layout
    areas->GetIndexBytes(i, &e);
    tags.insert(UpperTag(e.tag.str()));
  }
  std::unordered_set<std::uint64_t> known;
  known.reserve(nodes.Count() + list.nodes.size());
  for (int i = 0; i < nodes.Count(); ++i) known.insert(AddrKey(nodes.GetIndex(i).address));

  std::vector<std::uint8_t> node_bytes;
  auto add_node = [&](const NetAddr& a, const std::string& tic, const std::string& pkt,
                      const std::string& mgr) {
    if (!known.insert(AddrKey(a)).second) return;
    NodeMGRrec n{};
    n.address = a;
    n.sysop = "Sysop";
    ApplyNodeDefaults(target.node_defaults, n);
    n.ticPassword = tic;
    n.pktPassword = pkt;
    n.areaMgrPassword = mgr;
    const auto* p = reinterpret_cast<const std::uint8_t*>(&n);
    node_bytes.insert(node_bytes.end(), p, p + sizeof n);
  };
  for (const auto& n : list.nodes) add_node(n.address, {}, n.pkt_password, n.mgr_password);

  const std::size_t size = areas->record_size();
  std::vector<std::uint8_t> area_bytes;
  auto fe = std::make_unique<FileMGRrec>();
  auto em = std::make_unique<EchoMGRrec>();
  std::unordered_set<std::uint64_t> linked;
  std::size_t added = 0;
  for (const auto& a : list.areas) {
    if (a.tag.empty() || !tags.insert(UpperTag(a.tag)).second) continue;
    if (progress) progress(a.tag.substr(0, 40));
    ConnectedSystem* systems;
    if (list.fileechos) {
      *fe = FileMGRrec{};
      Fill(*fe, a);
      systems = fe->systems;
    } else {
      *em = EchoMGRrec{};
      Fill(*em, a);
      systems = em->systems;
    }
    linked.clear();
    std::size_t used = 0;
    bool cut = false;
    for (const auto& l : a.links) {
      if (!linked.insert(AddrKey(l.address)).second) continue;
      add_node(l.address, l.password, {}, {});
      if (used == slots)
        cut = true;
      else
        systems[used++] = {l.address, l.flags};
    }
    if (cut) result.cut.push_back(a.tag.substr(0, 40));
    const auto* p = list.fileechos ? reinterpret_cast<const std::uint8_t*>(fe.get())
                                   : reinterpret_cast<const std::uint8_t*>(em.get());
    area_bytes.insert(area_bytes.end(), p, p + size);
    ++added;
  }

  const std::size_t new_nodes = node_bytes.size() / sizeof(NodeMGRrec);
  if (areas->Count() + added > 0xFFFF || nodes.Count() + new_nodes > 0xFFFF) {
    result.cut.clear();
    result.error = "More than 65535 records would be needed";
    return result;
  }
  // The node records first: an area never refers to a system that is not there.
  if (!nodes.AddManyBytes(node_bytes.data(), new_nodes)) {
    result.error = "Unable to write " + nodes.data_file_name();
    return result;
  }
  result.systems = static_cast<std::uint16_t>(new_nodes);
  if (!areas->AddManyBytes(area_bytes.data(), added)) {
    result.error = "Unable to write " + areas->data_file_name();
    return result;
  }
  result.areas = static_cast<std::uint16_t>(added);
  return result;
}

std::vector<std::string> SummaryLines(const ImportResult& r) {
  if (r.areas == 0 && r.systems == 0) return {"0 fileechos and 0 systems added"};
  std::vector<std::string> lines;
  if (r.areas) lines.push_back(std::to_string(r.areas) + " areas added");
  if (r.systems) lines.push_back(std::to_string(r.systems) + " systems added");
  lines.insert(lines.end(),
               {"", "Note: KESTRA has many different options. Please check",
                "the configuration of the imported fileechos and systems", "before continuing"});
  if (!r.cut.empty()) {
    lines.push_back("");
    lines.push_back("Only the first " + std::to_string(r.slots) + " systems were connected to:");
    constexpr std::size_t kShown = 5;
    std::string names;
    for (std::size_t i = 0; i < std::min(kShown, r.cut.size()); ++i)
      names += (i ? " " : "") + r.cut[i];
    lines.push_back(names.substr(0, 70));
    if (r.cut.size() > kShown)
      lines.push_back("and " + std::to_string(r.cut.size() - kShown) + " more areas");
  }
  return lines;
}

}  // namespace ks
