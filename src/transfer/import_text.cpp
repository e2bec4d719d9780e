// The text configurations: TIC.CFG, FILEBONE.NA/NO, SQUISH.CFG and AREAS.BBS.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dbase/fileecho_rec.h"
#include "dbase/record_common.h"
#include "transfer/import_parse.h"
#include "transfer/import_util.h"

namespace ks {
namespace {

bool Number(std::string_view s, std::uint16_t& out) {
  if (s.empty() || s.size() > 5) return false;
  unsigned v = 0;
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec != std::errc() || end != s.data() + s.size() || v > 0xFFFF) return false;
  out = static_cast<std::uint16_t>(v);
  return true;
}

bool IsDigits(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Upper(std::string_view s) {
  std::string u(s);
  for (char& c : u)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return u;
}

// A system listed twice is dropped when the area is added.
void AddLink(ImportArea& area, const NetAddr& a, std::uint8_t flags, std::string password = {}) {
  area.links.push_back({a, flags, std::move(password)});
}

std::string BadAddress(std::string_view word) {
  return "invalid address \"" + std::string(word.substr(0, 40)) + "\"";
}

}  // namespace

std::uint8_t DefaultLinkFlags() {
  return kSysSendFiles | kSysReceiveFiles;
}

bool ParseRelativeAddr(std::string_view text, NetAddr& previous, NetAddr& out) {
  const auto at = text.find('@');
  if (at != std::string_view::npos) text = text.substr(0, at);
  if (text.empty()) return false;
  NetAddr a = previous;
  a.point = 0;
  if (text[0] == '.') {
    if (!Number(text.substr(1), a.point)) return false;
  } else {
    const auto colon = text.find(':');
    if (colon != std::string_view::npos) {
      if (!Number(text.substr(0, colon), a.zone)) return false;
      text = text.substr(colon + 1);
      if (text.find('/') == std::string_view::npos) return false;
    }
    const auto slash = text.find('/');
    if (slash != std::string_view::npos) {
      if (!Number(text.substr(0, slash), a.net)) return false;
      text = text.substr(slash + 1);
    }
    const auto dot = text.find('.');
    if (!Number(text.substr(0, dot), a.node)) return false;
    if (dot != std::string_view::npos && !Number(text.substr(dot + 1), a.point)) return false;
  }
  if (a.zone == 0) return false;
  previous = out = a;
  return true;
}

ImportList ParseTickCfg(std::string_view text, const NetAddr& main) {
  ImportList out;
  out.fileechos = true;
  NetAddr previous = main;
  ImportArea* area = nullptr;
  for (const auto& [number, raw] : SplitLines(text)) {
    const std::string_view line = Trim(raw);
    if (line.empty() || line[0] == ';') continue;
    const std::string upper = Upper(line);
    const auto words = Words(line);
    if (Upper(words[0]) == "AREA") {
      if (words.size() < 3)
        return ImportList::Failed("line " + std::to_string(number) +
                                  ": AREA needs a directory and a tag");
      ImportArea a;
      a.directory = std::string(words[1].substr(0, 60));
      a.tag = std::string(words[2]);
      a.passthrough = upper.find("PASSTHRU") != std::string::npos;
      out.areas.push_back(std::move(a));
      area = &out.areas.back();
    } else if (line[0] >= '1' && line[0] <= '9' && area) {
      ImportLink link;
      if (!ParseRelativeAddr(words[0], previous, link.address))
        return ImportList::Failed("line " + std::to_string(number) + ": " + BadAddress(words[0]));
      std::string flags;
      if (words.size() > 1) link.password = std::string(words[1].substr(0, 20));
      for (std::size_t i = 2; i < words.size(); ++i) flags += Upper(words[i]);
      // The system gets the area's files unless "&"; it may send into the area with "*".
      link.flags = kSysSendFiles;
      if (flags.find('*') != std::string::npos) link.flags |= kSysReceiveFiles;
      if (flags.find('&') != std::string::npos) link.flags &= ~kSysSendFiles;
      ConnectedSystem slot{link.address, link.flags};
      if (flags.find('C') != std::string::npos)
        slot.set_status(msCrash);
      else if (flags.find('H') != std::string::npos)
        slot.set_status(msHold);
      AddLink(*area, link.address, slot.flags, std::move(link.password));
    }
  }
  out.max_links = 254;
  return out;
}

ImportList ParseFilebone(std::string_view text) {
  ImportList out;
  out.fileechos = true;
  for (const auto& [number, raw] : SplitLines(text)) {
    const auto words = Words(raw);
    if (words.size() < 2 || Upper(words[0]) != "AREA") continue;
    ImportArea a;
    a.tag = std::string(words[1]);
    if (words.size() > 4)
      a.description =
          std::string(Trim(raw.substr(static_cast<std::size_t>(words[4].data() - raw.data()))));
    out.areas.push_back(std::move(a));
  }
  return out;
}

ImportList ParseSquishCfg(std::string_view text, const NetAddr& main) {
  ImportList out;
  NetAddr primary = main;
  bool have_primary = false;
  for (const auto& [number, raw] : SplitLines(text)) {
    const std::string_view line = Trim(raw.substr(0, raw.find(';')));
    if (line.empty()) continue;
    const auto words = Words(line);
    const std::string keyword = Upper(words[0]);
    const std::string where = "line " + std::to_string(number) + ": ";
    if (keyword == "ADDRESS") {
      NetAddr a = primary, parsed;
      if (words.size() < 2 || !ParseRelativeAddr(words[1], a, parsed))
        return ImportList::Failed(where + BadAddress(words.size() < 2 ? "" : words[1]));
      if (!have_primary) primary = parsed;
      have_primary = true;
      continue;
    }
    if (keyword != "ECHOAREA") continue;
    if (words.size() < 3) return ImportList::Failed(where + "EchoArea needs a tag and a path");
    ImportArea a;
    a.tag = std::string(words[1]);
    a.base_type = mbMsg;
    a.base_path = std::string(words[2]);
    NetAddr previous = primary;
    for (std::size_t i = 3; i < words.size(); ++i) {
      const std::string_view w = words[i];
      if (w[0] == '-' || w[0] == '/') {
        const std::string flag = Upper(w.substr(1));
        if (flag.empty()) continue;
        std::uint16_t n = 0;
        if (flag[0] == '$') {
          a.base_type = mbSquish;
          if (flag.size() > 2 && flag[1] == 'M' && Number(flag.substr(2), n)) a.msgs = n;
          if (flag.size() > 2 && flag[1] == 'D' && Number(flag.substr(2), n)) a.days = n;
        } else if (flag == "0" || flag == "O") {
          a.passthrough = true;
        } else if (flag == "F") {
          a.base_type = mbMsg;
        } else if (flag[0] == 'X') {
          NetAddr addr;
          if (!ParseRelativeAddr(w.substr(2), previous, addr))
            return ImportList::Failed(where + BadAddress(w));
          AddLink(a, addr, DefaultLinkFlags() & ~kSysReceiveFiles);
        }
      } else if (w != "#") {
        NetAddr addr;
        if (!ParseRelativeAddr(w, previous, addr)) return ImportList::Failed(where + BadAddress(w));
        AddLink(a, addr, DefaultLinkFlags());
      }
    }
    if (a.passthrough) {
      a.base_type = mbNone;
      a.base_path.clear();
    }
    out.areas.push_back(std::move(a));
  }
  return out;
}

ImportList ParseAreasBbs(std::string_view text, const NetAddr& main) {
  ImportList out;
  bool origin_line = true;
  for (const auto& [number, raw] : SplitLines(text)) {
    std::string_view line = Trim(raw);
    if (line.empty() || line[0] == ';' || line[0] == '%' || line[0] == '-' || line[0] == '@')
      continue;
    if (origin_line) {  // "<origin> ! <sysop>"
      origin_line = false;
      continue;
    }
    ImportArea a;
    const auto semicolon = line.find(';');
    if (semicolon != std::string_view::npos) {
      a.description = std::string(Trim(line.substr(semicolon + 1)));
      line = line.substr(0, semicolon);
    }
    const auto words = Words(line);
    const std::string where = "line " + std::to_string(number) + ": ";
    if (words.size() < 2) return ImportList::Failed(where + "a message base and a tag expected");
    const std::string_view store = words[0];
    a.tag = std::string(words[1]);
    std::uint16_t board = 0;
    if (store == "P" || store == "p" || store[0] == '#') {
      a.passthrough = true;
    } else if (IsDigits(store)) {
      if (!Number(store, board) || board < 1 || board > 200)
        return ImportList::Failed(where + "board " + std::string(store.substr(0, 10)) +
                                  " is not 1-200");
      a.base_type = mbHudson;
      a.board = board;
    } else if (store[0] == '$') {
      a.base_type = mbSquish;
      a.base_path = std::string(store.substr(1));
    } else if (store[0] == '!') {
      a.base_type = mbJam;
      a.base_path = std::string(store.substr(1));
    } else {
      a.base_type = mbMsg;
      a.base_path = std::string(store);
    }
    NetAddr previous = main;
    for (std::size_t i = 2; i < words.size(); ++i) {
      NetAddr addr;
      if (!ParseRelativeAddr(words[i], previous, addr))
        return ImportList::Failed(where + BadAddress(words[i]));
      AddLink(a, addr, DefaultLinkFlags());
    }
    out.areas.push_back(std::move(a));
  }
  return out;
}

}  // namespace ks
