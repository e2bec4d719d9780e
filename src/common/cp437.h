// Code page 437: every byte of record and screen text is a CP437 character. Conversion to and
// from Unicode happens only at the edges (terminal output, keyboard input, text files).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ks {

// The Unicode character that shows CP437 byte `c` (0x00 shows as a blank).
char32_t Cp437ToUnicode(std::uint8_t c);

// The CP437 byte for Unicode `u`, or -1 when CP437 has no such character.
int UnicodeToCp437(char32_t u);

// A plain ASCII stand-in for byte `c`, for terminals that cannot show anything else.
char Cp437ToAscii(std::uint8_t c);

// Encodes a Unicode character as UTF-8 and appends it to `out`.
void AppendUtf8(std::string& out, char32_t u);

// CP437 bytes to UTF-8 text.
std::string Cp437ToUtf8(std::string_view cp437);

// UTF-8 text to CP437 bytes; characters without a CP437 form become '?'.
std::string Utf8ToCp437(std::string_view utf8);

// The text with the letters a-z in capitals; every other byte stays (tags and masks compare
// this way).
std::string Upper(std::string text);

}  // namespace ks
