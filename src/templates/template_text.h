// Text helpers of the template processor: template lines, where macros begin and end, the
// arguments of a function call, and the filters of file descriptions.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace ks::tpl {

// Cuts the next line off `rest` into `line`. Lines end in CR LF, LF or a lone CR; a Ctrl-Z ends
// the text. False when nothing is left.
bool NextTextLine(std::string_view& rest, std::string_view& line);

// The next line of an included text file (at most 255 characters kept), without its line end.
bool ReadIncludeLine(std::FILE* f, std::string& line);

// Where the first "@" that is not part of "@@" stands, or npos.
std::size_t FindMacro(std::string_view text);

// The length of the macro at the start of `text` (which begins with "@"): letters and digits,
// and everything inside parentheses (which nest; quoted text is taken whole).
std::size_t MacroEnd(std::string_view text);

// The pieces of a macro: its name (without "@", before any "(") and the text inside its outer
// parentheses; `call` is false for a value macro (no "(" or no final ")").
struct MacroParts {
  std::string_view name;
  std::string_view args;
  bool call = false;
};
MacroParts SplitMacro(std::string_view macro);

// The arguments of a call, split at the first four commas outside quotes and outside the
// parentheses of an argument that begins with "@"; each is trimmed and cut to 80 characters.
std::vector<std::string> SplitArguments(std::string_view args);

// Blanks off both ends.
std::string_view Trim(std::string_view s);

// A description with its carriage returns (and line feeds) made blanks and/or its ANSI escape
// sequences removed.
std::string FilterDescription(std::string_view text, bool cr, bool ansi);

// A whole number: optional sign and digits, after every "," is removed; false when it is none.
bool ParseWhole(std::string_view text, long long& out);
// A real number ("12.5", "-0.25"); false when it is none.
bool ParseReal(std::string_view text, double& out);
// A real number as short text: "0.3", "12", "1.25".
std::string RealText(double value);

}  // namespace ks::tpl
