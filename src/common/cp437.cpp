#include "common/cp437.h"

#include <array>
#include <unordered_map>

namespace ks {

namespace {

// Bytes 0x00-0x1F and 0x7F-0xFF; 0x20-0x7E are ASCII.
constexpr char16_t kLow[32] = {0x0020, 0x263A, 0x263B, 0x2665, 0x2666, 0x2663, 0x2660, 0x2022,
                               0x25D8, 0x25CB, 0x25D9, 0x2642, 0x2640, 0x266A, 0x266B, 0x263C,
                               0x25BA, 0x25C4, 0x2195, 0x203C, 0x00B6, 0x00A7, 0x25AC, 0x21A8,
                               0x2191, 0x2193, 0x2192, 0x2190, 0x221F, 0x2194, 0x25B2, 0x25BC};

constexpr char16_t kHigh[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7,  // 80
    0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5,  // 88
    0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9,  // 90
    0x00FF, 0x00D6, 0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192,  // 98
    0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA,  // A0
    0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB,  // A8
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556,  // B0
    0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510,  // B8
    0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F,  // C0
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567,  // C8
    0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B,  // D0
    0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580,  // D8
    0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4,  // E0
    0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229,  // E8
    0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248,  // F0
    0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0,  // F8
};

// ASCII stand-ins for 0x80-0xDF: letters lose their accents, lines become - | +, shades #.
constexpr char kAsciiHigh[97] =
    "CueaaaaceeeiiiAA"   // 80
    "EaAooouuyOUcLYPf"   // 90
    "aiounNao?--%%!<>"   // A0
    "###||||+++|+++++"   // B0
    "++++-+||++==|=+="   // C0
    "==++++++++++####";  // D0

const std::unordered_map<char32_t, std::uint8_t>& ReverseMap() {
  static const auto* map = [] {
    auto* m = new std::unordered_map<char32_t, std::uint8_t>();
    for (int c = 255; c >= 1; --c) (*m)[Cp437ToUnicode(static_cast<std::uint8_t>(c))] = c;
    (*m)[U' '] = ' ';
    return m;
  }();
  return *map;
}

}  // namespace

char32_t Cp437ToUnicode(std::uint8_t c) {
  if (c < 0x20) return kLow[c];
  if (c < 0x7F) return c;
  if (c == 0x7F) return 0x2302;
  return kHigh[c - 0x80];
}

int UnicodeToCp437(char32_t u) {
  if (u >= 0x20 && u < 0x7F) return static_cast<int>(u);
  const auto& m = ReverseMap();
  auto it = m.find(u);
  return it == m.end() ? -1 : it->second;
}

char Cp437ToAscii(std::uint8_t c) {
  if (c >= 0x20 && c < 0x7F) return static_cast<char>(c);
  if (c < 0x20) return c == 0 ? ' ' : '*';
  if (c == 0x7F) return '^';
  if (c >= 0xE0) {
    static constexpr char kGreek[] = "abGpSsmtFTOd8fen=+><()/~o.. vn2# ";
    return kGreek[c - 0xE0];
  }
  return kAsciiHigh[c - 0x80];
}

void AppendUtf8(std::string& out, char32_t u) {
  if (u < 0x80) {
    out += static_cast<char>(u);
  } else if (u < 0x800) {
    out += static_cast<char>(0xC0 | (u >> 6));
    out += static_cast<char>(0x80 | (u & 0x3F));
  } else if (u < 0x10000) {
    out += static_cast<char>(0xE0 | (u >> 12));
    out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (u & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (u >> 18));
    out += static_cast<char>(0x80 | ((u >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (u & 0x3F));
  }
}

std::string Cp437ToUtf8(std::string_view cp437) {
  std::string out;
  out.reserve(cp437.size());
  for (unsigned char c : cp437) {
    // Control characters that text files use keep their meaning.
    if (c == '\n' || c == '\r' || c == '\t')
      out += static_cast<char>(c);
    else
      AppendUtf8(out, Cp437ToUnicode(c));
  }
  return out;
}

std::string Utf8ToCp437(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size();) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    char32_t u = c;
    std::size_t n = 1;
    if (c >= 0xF0 && i + 3 < s.size()) {
      u = ((c & 0x07) << 18) | ((s[i + 1] & 0x3F) << 12) | ((s[i + 2] & 0x3F) << 6) |
          (s[i + 3] & 0x3F);
      n = 4;
    } else if (c >= 0xE0 && i + 2 < s.size()) {
      u = ((c & 0x0F) << 12) | ((s[i + 1] & 0x3F) << 6) | (s[i + 2] & 0x3F);
      n = 3;
    } else if (c >= 0xC0 && i + 1 < s.size()) {
      u = ((c & 0x1F) << 6) | (s[i + 1] & 0x3F);
      n = 2;
    }
    i += n;
    if (u < 0x80) {
      out += static_cast<char>(u);
    } else {
      int b = UnicodeToCp437(u);
      out += b < 0 ? '?' : static_cast<char>(b);
    }
  }
  return out;
}

std::string Upper(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

}  // namespace ks
