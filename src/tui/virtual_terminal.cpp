#include "tui/virtual_terminal.h"

#include <cstdio>
#include <map>

#include "tui/keys.h"

namespace ks {

VirtualTerminal::VirtualTerminal(int width, int height)
    : width_(width), height_(height), cells_(static_cast<std::size_t>(width * height)) {}

namespace {

// Named keys of a script: the bytes each stands for.
const std::map<std::string, std::vector<std::uint8_t>, std::less<>>& KeyNames() {
  static const auto* names = [] {
    auto* m = new std::map<std::string, std::vector<std::uint8_t>, std::less<>>{
        {"Enter", {key::kEnter}},
        {"Esc", {key::kEsc}},
        {"Tab", {key::kTab}},
        {"S-Tab", {0, key::kShiftTab}},
        {"BS", {key::kBackspace}},
        {"Space", {' '}},
        {"Up", {0, key::kUp}},
        {"Down", {0, key::kDown}},
        {"Left", {0, key::kLeft}},
        {"Right", {0, key::kRight}},
        {"Home", {0, key::kHome}},
        {"End", {0, key::kEnd}},
        {"PgUp", {0, key::kPgUp}},
        {"PgDn", {0, key::kPgDn}},
        {"Ins", {0, key::kIns}},
        {"Del", {0, key::kDel}},
        {"lt", {'<'}},
        {"C-Y", {25}},
        {"C-Home", {0, key::kCtrlHome}},
        {"C-End", {0, key::kCtrlEnd}},
    };
    for (int i = 1; i <= 10; ++i)
      (*m)["F" + std::to_string(i)] = {0, static_cast<std::uint8_t>(key::kF1 + i - 1)};
    for (char c = 'A'; c <= 'Z'; ++c) (*m)[std::string("Alt-") + c] = {0, key::AltScanCode(c)};
    return m;
  }();
  return *names;
}

}  // namespace

void VirtualTerminal::Keys(std::string_view script) {
  for (std::size_t i = 0; i < script.size(); ++i) {
    if (script[i] == '<') {
      std::size_t end = script.find('>', i);
      if (end == std::string_view::npos) throw std::invalid_argument("unclosed < in key script");
      auto name = script.substr(i + 1, end - i - 1);
      int w = 0, h = 0;
      if (std::sscanf(std::string(name).c_str(), "Resize %dx%d", &w, &h) == 2) {
        keys_.push_back({0, w, h});
        i = end;
        continue;
      }
      auto it = KeyNames().find(name);
      if (it == KeyNames().end())
        throw std::invalid_argument("unknown key <" + std::string(name) + ">");
      for (std::uint8_t b : it->second) keys_.push_back({b});
      i = end;
    } else {
      keys_.push_back({static_cast<std::uint8_t>(script[i])});
    }
  }
}

void VirtualTerminal::Present(const std::vector<Cell>& cells, const std::vector<bool>& dirty) {
  for (int y = 0; y < height_; ++y) {
    if (!dirty.empty() && !dirty[static_cast<std::size_t>(y)]) continue;
    for (int x = 0; x < width_; ++x) {
      auto i = static_cast<std::size_t>(y * width_ + x);
      cells_[i] = cells[i];
    }
  }
  ++presents_;
}

void VirtualTerminal::SetCursor(CursorShape shape, int col, int row) {
  shape_ = shape;
  col_ = col;
  row_ = row;
}

std::uint8_t VirtualTerminal::ReadByte() {
  for (;;) {
    if (keys_.empty()) throw KeysExhausted();
    const Step step = keys_.front();
    keys_.pop_front();
    if (step.width == 0) return step.key;
    Resize(step.width, step.height);
  }
}

void VirtualTerminal::Resize(int width, int height) {
  width_ = width;
  height_ = height;
  cells_.assign(static_cast<std::size_t>(width * height), Cell{});
  NotifyResize();
}

void VirtualTerminal::Close(int keepRows) {
  closed_ = true;
  kept_rows_ = keepRows;
}

std::string VirtualTerminal::Row(int row) const {
  std::string s;
  if (row < 1 || row > height_) return s;
  for (int x = 0; x < width_; ++x)
    s += static_cast<char>(cells_[static_cast<std::size_t>((row - 1) * width_ + x)].ch);
  return s;
}

bool VirtualTerminal::Contains(std::string_view text) const {
  for (int y = 1; y <= height_; ++y)
    if (Row(y).find(text) != std::string::npos) return true;
  return false;
}

Cell VirtualTerminal::At(int col, int row) const {
  if (col < 1 || row < 1 || col > width_ || row > height_) return {};
  return cells_[static_cast<std::size_t>((row - 1) * width_ + (col - 1))];
}

std::uint8_t VirtualTerminal::AttrOf(std::string_view text) const {
  for (int y = 1; y <= height_; ++y) {
    auto x = Row(y).find(text);
    if (x != std::string::npos) return At(static_cast<int>(x) + 1, y).attr;
  }
  throw std::invalid_argument("not on screen: " + std::string(text));
}

std::string VirtualTerminal::Dump() const {
  std::string s;
  for (int y = 1; y <= height_; ++y) s += Row(y) + "\n";
  return s;
}

}  // namespace ks
