// The binary configurations: GEcho's AREAFILE.GE, FastEcho's FASTECHO.CFG and FMail's FMAIL.AR.
// Every count and size a file gives is checked against the file's length before a record is
// read, so that a damaged file is refused with its fault rather than read past its end.
#include <cstdint>
#include <string>
#include <string_view>

#include "dbase/fileecho_rec.h"
#include "dbase/record_common.h"
#include "transfer/import_parse.h"
#include "transfer/import_util.h"

namespace ks {
namespace {

NetAddr AddrAt(std::string_view b, std::size_t at) {
  return {Le16(b, at), Le16(b, at + 2), Le16(b, at + 4), Le16(b, at + 6)};
}

std::string Num(std::uint64_t n) {
  return std::to_string(n);
}

// A name that is empty or begins with a blank marks an unused record.
bool UnusedName(std::string_view b, std::size_t at) {
  return b[at] == '\0' || b[at] == ' ';
}

// A letter group 'A'..'Z' (0..25) becomes group 1..26.
std::uint8_t LetterGroup(unsigned index) {
  return index < 26 ? static_cast<std::uint8_t>(index + 1) : 0;
}

void AddLink(ImportArea& area, const NetAddr& a, std::uint8_t flags) {
  area.links.push_back({a, flags, {}});
}

ImportList ParseGecho(std::string_view b, bool v120) {
  if (b.size() < 6) return ImportList::Failed("the file is too short for its header");
  const std::size_t header = Le16(b, 0), rec = Le16(b, 2), slots = Le16(b, 4);
  if (rec != 244 && (v120 || rec != 242))
    return ImportList::Failed("area record size " + Num(rec) + " is not that of GEcho " +
                              (v120 ? "1.20 (244)" : "1.00 (242 or 244)"));
  if (header < 6 || header > b.size())
    return ImportList::Failed("header size " + Num(header) + " is wrong");
  const std::size_t stride = rec + slots * 9;
  const std::size_t count = (b.size() - header) / stride;
  if ((b.size() - header) % stride != 0)
    return ImportList::Failed("record " + Num(count + 1) + " is cut short");
  const std::size_t shift = rec == 242 ? 2 : 0;  // the oldest files have a shorter seen-by count
  ImportList out;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = header + i * stride;
    const std::uint16_t options = Le16(b, at + 227);
    if (UnusedName(b, at) || (options & 0x0010) || b[at + 241 - shift] != 0) continue;
    ImportArea a;
    a.tag = FixedStr(b, at, 51);
    a.description = FixedStr(b, at + 51, 61);
    a.base_path = FixedStr(b, at + 112, 51);
    a.origin = FixedStr(b, at + 163, 61);
    const auto group = static_cast<std::uint8_t>(b[at + 226]);
    a.group = v120 ? group : LetterGroup(static_cast<unsigned>(group - 'A'));
    a.security = options & 0x0002;
    a.visible = options & 0x0008;
    a.msgs = Le16(b, at + 235 - shift);
    a.days = Le16(b, at + 237 - shift);
    switch (static_cast<std::uint8_t>(b[at + 242 - shift])) {
      case 1:
        a.base_type = mbHudson;
        a.board = Le16(b, at + 224);
        break;
      case 2:
        a.base_type = mbMsg;
        break;
      case 3:
        a.base_type = mbJam;
        break;
      case 4:
        a.base_type = v120 ? mbPcBoard : mbNone;
        break;
      case 5:
        a.base_type = v120 ? mbSquish : mbNone;
        break;
      default:
        a.base_type = mbNone;
        break;
    }
    a.passthrough = (options & 0x0004) || b[at + 242 - shift] == 0;
    if (a.base_type != mbMsg && a.base_type != mbJam && a.base_type != mbPcBoard &&
        a.base_type != mbSquish)
      a.base_path.clear();
    for (std::size_t k = 0; k < slots; ++k) {
      const std::size_t c = at + rec + k * 9;
      const NetAddr addr = AddrAt(b, c);
      if (!addr.IsSet()) continue;
      const auto status = static_cast<std::uint8_t>(b[c + 8]);
      std::uint8_t flags = DefaultLinkFlags();
      if (status & 0x01) flags &= ~kSysReceiveFiles;
      if (status & 0x02) flags &= ~kSysSendFiles;
      if (status & 0x04) flags |= kSysPause;
      if (status & 0x08) flags |= kSysMandatory;
      AddLink(a, addr, flags);
    }
    out.areas.push_back(std::move(a));
  }
  return out;
}

}  // namespace

ImportList ParseGecho100(std::string_view bytes) {
  return ParseGecho(bytes, false);
}

ImportList ParseGecho120(std::string_view bytes) {
  return ParseGecho(bytes, true);
}

ImportList ParseFastEcho146(std::string_view b) {
  constexpr std::size_t kConfig = 4644;
  if (b.size() < kConfig)
    return ImportList::Failed("the file is too short: " + Num(b.size()) + " of at least " +
                              Num(kConfig) + " bytes");
  const std::uint16_t revision = Le16(b, 0);
  if (revision != 6)
    return ImportList::Failed("revision " + Num(revision) +
                              " is not that of FastEcho 1.42-1.46 (6)");
  const std::uint64_t nodes = Le16(b, 0x06), areas = Le16(b, 0x08);
  const std::uint64_t area_rec = Le16(b, 0x1216), max_areas = Le16(b, 0x121A);
  const std::uint64_t node_rec = Le16(b, 0x121E), extensions = Le32(b, 0x1220);
  const std::uint64_t bitmap = (max_areas + 7) / 8;
  if (area_rec < 190)
    return ImportList::Failed("area record size " + Num(area_rec) + " is below 190");
  if (node_rec < 95 + bitmap)
    return ImportList::Failed("node record size " + Num(node_rec) + " is too small for " +
                              Num(max_areas) + " areas");
  const std::uint64_t node_at = kConfig + extensions;
  const std::uint64_t area_at = node_at + nodes * node_rec;
  const std::uint64_t need = area_at + areas * area_rec;
  if (b.size() < need)
    return ImportList::Failed("the file is cut short: " + Num(b.size()) + " of " + Num(need) +
                              " bytes for " + Num(nodes) + " nodes and " + Num(areas) + " areas");
  ImportList out;
  std::vector<std::size_t> node_maps;  // where each node's area bitmap lies
  for (std::uint64_t n = 0; n < nodes; ++n) {
    const std::size_t at = static_cast<std::size_t>(node_at + n * node_rec);
    const NetAddr addr = AddrAt(b, at);
    if (!addr.IsSet()) continue;
    out.nodes.push_back({addr, FixedStr(b, at + 27, 9), FixedStr(b, at + 36, 9)});
    node_maps.push_back(at + 95);
  }
  for (std::uint64_t i = 0; i < areas; ++i) {
    const std::size_t at = static_cast<std::size_t>(area_at + i * area_rec);
    const std::uint16_t board = Le16(b, at + 52), conference = Le16(b, at + 54);
    const std::uint16_t flags = Le16(b, at + 62);
    if (UnusedName(b, at) || (board & 0x8000) || ((flags >> 4) & 0xF) != 0) continue;
    ImportArea a;
    a.tag = FixedStr(b, at, 52);
    // Groups A-Z, then 1-6: 0..31 become 1..32.
    const auto group = static_cast<std::uint8_t>(b[at + 61]);
    a.group = group < 32 ? static_cast<std::uint8_t>(group + 1) : 0;
    a.visible = !(Le16(b, at + 64) & 0x0400);
    a.days = Le16(b, at + 76);
    a.msgs = Le16(b, at + 78);
    a.base_path = FixedStr(b, at + 82, 56);
    a.description = FixedStr(b, at + 138, 52);
    switch (flags & 0xF) {
      case 0:
        a.base_type = mbHudson;
        a.board = board;
        a.base_path.clear();
        break;
      case 1:
        a.base_type = mbMsg;
        break;
      case 2:
        a.base_type = mbSquish;
        break;
      case 3:
        a.base_type = mbJam;
        break;
      default:
        a.passthrough = true;
        a.base_path.clear();
        break;
    }
    if (conference < max_areas) {
      const auto mask = static_cast<std::uint8_t>(0x80 >> (conference % 8));
      for (std::size_t n = 0; n < node_maps.size(); ++n)
        if (static_cast<std::uint8_t>(b[node_maps[n] + conference / 8]) & mask)
          AddLink(a, out.nodes[n].address, DefaultLinkFlags());
    }
    out.areas.push_back(std::move(a));
  }
  return out;
}

ImportList ParseFmailAr(std::string_view b) {
  constexpr std::size_t kHeader = 50;
  if (b.size() < kHeader) return ImportList::Failed("the file is too short for its header");
  if (b.substr(0, 5) != "FMail")
    return ImportList::Failed("the file does not begin with \"FMail\"");
  const std::uint16_t revision = Le16(b, 32);
  if (revision != 0x0100 && revision != 0x0110)
    return ImportList::Failed("revision " + Num(revision >> 8) + "." + Num(revision & 0xFF) +
                              " is not known (1.0 and 1.16 are)");
  if (Le16(b, 34) != 0x0402) return ImportList::Failed("the file is not an FMail area file");
  const std::size_t header = Le16(b, 36), total = Le16(b, 46), rec = Le16(b, 48);
  if (header < kHeader) return ImportList::Failed("header size " + Num(header) + " is below 50");
  const bool old_layout = rec < 1152;
  if (rec < (old_layout ? 247 + 64 * 8 : 522))
    return ImportList::Failed("record size " + Num(rec) + " is too small");
  const std::uint64_t need = header + std::uint64_t{total} * rec;
  if (b.size() < need) {
    const std::uint64_t whole = b.size() < header ? 0 : (b.size() - header) / rec;
    return ImportList::Failed("record " + Num(whole + 1) + " of " + Num(total) + " is cut short");
  }
  ImportList out;
  for (std::size_t i = 0; i < total; ++i) {
    const std::size_t at = header + i * rec;
    if (b.substr(at, 2) != "AE")
      return ImportList::Failed("record " + Num(i + 1) + " does not begin with \"AE\"");
    const std::uint16_t options = Le16(b, at + 106);
    if (UnusedName(b, at + 4) || (options & 0x0100)) continue;  // local areas are not echoes
    ImportArea a;
    a.tag = FixedStr(b, at + 4, 51);
    a.description = FixedStr(b, at + 55, 51);
    a.security = options & 0x0004;
    a.visible = true;
    a.base_path = FixedStr(b, at + 111, 61);
    a.board = Le16(b, at + 172);
    a.origin = FixedStr(b, at + 174, 59);
    const std::uint32_t groups = Le32(b, at + 235);
    for (unsigned g = 0; g < 26; ++g)
      if (groups & (1u << g)) {
        a.group = LetterGroup(g);
        break;
      }
    a.msgs = Le16(b, at + 241);
    a.days = Le16(b, at + 243);
    if (a.board != 0) {
      a.base_type = mbHudson;
      a.base_path.clear();
    } else if (!a.base_path.empty()) {
      a.base_type = mbJam;
    } else {
      a.passthrough = true;
    }
    const std::size_t list = old_layout ? 247 : 512, step = old_layout ? 8 : 10;
    const std::size_t slots = old_layout ? 64 : (rec - 512) / 10;
    for (std::size_t k = 0; k < slots; ++k) {
      const std::size_t c = at + list + k * step;
      const NetAddr addr = AddrAt(b, c);
      if (!addr.IsSet()) break;
      std::uint8_t flags = DefaultLinkFlags();
      if (!old_layout) {
        const std::uint16_t f = Le16(b, c + 8);
        if (f & 1) flags &= ~kSysReceiveFiles;
        if (f & 2) flags &= ~kSysSendFiles;
        if (f & 4) flags |= kSysMandatory;
      }
      AddLink(a, addr, flags);
    }
    out.areas.push_back(std::move(a));
  }
  return out;
}

}  // namespace ks
