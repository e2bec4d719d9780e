// Binary configuration files of GEcho, FastEcho and FMail, laid out as those programs write
// them, for the import tests and the import benchmark.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/netaddr.h"

namespace ks::test {

struct SampleArea {
  std::string tag;
  std::string description;
  std::string path;
  std::uint8_t format = 0;  // the file's own message base code
  std::vector<NetAddr> links;
};

class Bytes {
 public:
  explicit Bytes(std::size_t size) : b_(size, '\0') {}
  void U8(std::size_t at, std::uint8_t v) { b_[at] = static_cast<char>(v); }
  void U16(std::size_t at, std::uint16_t v) {
    U8(at, v & 0xFF);
    U8(at + 1, v >> 8);
  }
  void U32(std::size_t at, std::uint32_t v) {
    U16(at, v & 0xFFFF);
    U16(at + 2, v >> 16);
  }
  void Str(std::size_t at, const std::string& s) { b_.replace(at, s.size(), s); }
  void Addr(std::size_t at, const NetAddr& a) {
    U16(at, a.zone);
    U16(at + 2, a.net);
    U16(at + 4, a.node);
    U16(at + 6, a.point);
  }
  std::string& str() { return b_; }

 private:
  std::string b_;
};

// AREAFILE.GE: a 6-byte header, then per area a record of `rec` bytes (244, or 242 for the
// oldest files) and `slots` connections of 9 bytes.
inline std::string GechoFile(const std::vector<SampleArea>& areas, std::uint16_t slots,
                             std::uint8_t group, std::uint16_t rec = 244) {
  const std::size_t stride = rec + slots * 9u;
  Bytes b(6 + areas.size() * stride);
  b.U16(0, 6);
  b.U16(2, rec);
  b.U16(4, slots);
  const std::size_t shift = rec == 242 ? 2 : 0;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const std::size_t at = 6 + i * stride;
    const SampleArea& a = areas[i];
    b.Str(at, a.tag);
    b.Str(at + 51, a.description);
    b.Str(at + 112, a.path);
    b.Str(at + 163, "Origin of " + a.tag);
    b.U16(at + 224, 7);
    b.U8(at + 226, group);
    b.U16(at + 227, 0x0008);
    b.U16(at + 235 - shift, 500);
    b.U16(at + 237 - shift, 30);
    b.U8(at + 242 - shift, a.format);
    for (std::size_t k = 0; k < a.links.size() && k < slots; ++k) {
      b.Addr(at + rec + k * 9, a.links[k]);
      b.U8(at + rec + k * 9 + 8, k == 0 ? 0x01 : 0);
    }
  }
  return b.str();
}

// FASTECHO.CFG of revision 6: the configuration, `extension` bytes of extensions, the node
// records and the area records. Area i is conference i.
inline std::string FastEchoFile(const std::vector<NetAddr>& nodes,
                                const std::vector<SampleArea>& areas, std::size_t extension = 0) {
  constexpr std::size_t kConfig = 4644, kAreaRec = 190;
  const std::size_t max_areas = std::max<std::size_t>(areas.size(), 8);
  const std::size_t node_rec = 95 + (max_areas + 7) / 8;
  Bytes b(kConfig + extension + nodes.size() * node_rec + areas.size() * kAreaRec);
  b.U16(0, 6);
  b.U16(6, static_cast<std::uint16_t>(nodes.size()));
  b.U16(8, static_cast<std::uint16_t>(areas.size()));
  b.U16(0x1216, kAreaRec);
  b.U16(0x121A, static_cast<std::uint16_t>(max_areas));
  b.U16(0x121E, static_cast<std::uint16_t>(node_rec));
  b.U32(0x1220, static_cast<std::uint32_t>(extension));
  const std::size_t node_at = kConfig + extension;
  for (std::size_t n = 0; n < nodes.size(); ++n) {
    b.Addr(node_at + n * node_rec, nodes[n]);
    b.Str(node_at + n * node_rec + 27, "PKT" + std::to_string(n));
    b.Str(node_at + n * node_rec + 59, "Sysop of node");
  }
  const std::size_t area_at = node_at + nodes.size() * node_rec;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const std::size_t at = area_at + i * kAreaRec;
    b.Str(at, areas[i].tag);
    b.U16(at + 54, static_cast<std::uint16_t>(i));
    b.U8(at + 61, 2);  // group C
    b.U16(at + 62, areas[i].format);
    b.U16(at + 76, 14);
    b.Str(at + 82, areas[i].path);
    b.Str(at + 138, areas[i].description);
    for (const NetAddr& link : areas[i].links)
      for (std::size_t n = 0; n < nodes.size(); ++n)
        if (nodes[n] == link) {
          const std::size_t byte = node_at + n * node_rec + 95 + i / 8;
          b.U8(byte, static_cast<std::uint8_t>(b.str()[byte] | (0x80 >> (i % 8))));
        }
  }
  return b.str();
}

// FMAIL.AR: the 50-byte header and records of 1024 bytes (old layout) or 512 + 10 x 64.
inline std::string FmailFile(const std::vector<SampleArea>& areas, bool new_layout) {
  const std::size_t rec = new_layout ? 512 + 10 * 64 : 1024;
  Bytes b(50 + areas.size() * rec);
  b.Str(0, "FMail Area File");
  b.U16(32, new_layout ? 0x0110 : 0x0100);
  b.U16(34, 0x0402);
  b.U16(36, 50);
  b.U16(46, static_cast<std::uint16_t>(areas.size()));
  b.U16(48, static_cast<std::uint16_t>(rec));
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const std::size_t at = 50 + i * rec;
    b.Str(at, "AE");
    b.Str(at + 4, areas[i].tag);
    b.Str(at + 55, areas[i].description);
    b.U16(at + 106, 0x0001);
    b.Str(at + 111, areas[i].path);
    b.U16(at + 172, areas[i].format);  // the Hudson board, 0 for none
    b.U32(at + 235, 1u << 3);          // group D
    for (std::size_t k = 0; k < areas[i].links.size(); ++k) {
      const std::size_t c = at + (new_layout ? 512 + k * 10 : 247 + k * 8);
      b.Addr(c, areas[i].links[k]);
      if (new_layout) b.U16(c + 8, k == 0 ? 0x0004 : 0);
    }
  }
  return b.str();
}

}  // namespace ks::test
