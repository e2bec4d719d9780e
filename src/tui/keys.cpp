#include "tui/keys.h"

namespace ks::key {

std::uint8_t AltScanCode(char letter) {
  // The PC keyboard's letter rows: QWERTYUIOP, ASDFGHJKL, ZXCVBNM.
  static constexpr std::uint8_t kScan[26] = {30, 48, 46, 32, 18, 33, 34, 35, 23, 36, 37, 38, 50,
                                             49, 24, 25, 16, 19, 31, 20, 22, 47, 17, 45, 21, 44};
  if (letter >= 'a' && letter <= 'z') return kScan[letter - 'a'];
  if (letter >= 'A' && letter <= 'Z') return kScan[letter - 'A'];
  return 0;
}

}  // namespace ks::key
