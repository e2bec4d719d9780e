// Readers of other programs' configuration files: each turns the bytes of one file into the
// list of areas (fileechos or conferences) it describes, or into a message that says where the
// file is wrong. They draw nothing and touch no file, so that the tests and the fuzz targets
// can call them on any bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/netaddr.h"

namespace ks {

// How a system is connected to an area, in the flag bits of a connected-system slot.
struct ImportLink {
  NetAddr address;
  std::uint8_t flags = 0;
  std::string password;  // TICK: the system's fileecho password, for a new node record
};

struct ImportArea {
  std::string tag;
  std::string description;
  std::string directory;  // fileechos: the destination directory
  std::string origin;
  bool passthrough = false;
  bool security = false;  // only connected systems may send
  bool visible = false;
  std::uint8_t group = 0;
  std::uint8_t base_type = 0;  // MsgBaseType
  std::uint16_t board = 0;
  std::string base_path;
  std::uint16_t days = 0;
  std::uint16_t msgs = 0;
  std::vector<ImportLink> links;
};

// A system the file describes besides its links (FastEcho's node records).
struct ImportNode {
  NetAddr address;
  std::string pkt_password;
  std::string mgr_password;
};

struct ImportList {
  bool fileechos = false;  // fileechos (FAREAS) rather than conferences (MAREAS)
  std::vector<ImportArea> areas;
  std::vector<ImportNode> nodes;
  std::size_t max_links = 255;  // systems taken per area at most
  std::string error;            // empty when the whole file was read
  bool ok() const { return error.empty(); }

  static ImportList Failed(std::string why) {
    ImportList l;
    l.error = std::move(why);
    return l;
  }
};

// The flag bits an imported link starts with: files or mail go both ways.
std::uint8_t DefaultLinkFlags();

// An address written the FidoNet way, possibly shortened: "z:n/f.p", "n/f", "f", ".p" (and
// "z:n/f@domain"); what is left out is taken from `previous`, except the point, which is 0
// unless written. The result becomes the new `previous`. False for anything else, and for zone
// or net 0.
bool ParseRelativeAddr(std::string_view text, NetAddr& previous, NetAddr& out);

// Text files. `main` is the address a file's first shortened address is relative to.
ImportList ParseTickCfg(std::string_view text, const NetAddr& main);
ImportList ParseFilebone(std::string_view text);
ImportList ParseSquishCfg(std::string_view text, const NetAddr& main);
ImportList ParseAreasBbs(std::string_view text, const NetAddr& main);

// Binary files.
ImportList ParseGecho100(std::string_view bytes);
ImportList ParseGecho120(std::string_view bytes);
ImportList ParseFastEcho146(std::string_view bytes);
ImportList ParseFmailAr(std::string_view bytes);

}  // namespace ks
