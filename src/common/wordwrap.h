// Breaking a text into lines at its blanks.
#pragma once

#include <string>
#include <vector>

namespace ks {

// The words of `text` (separated by single blanks) in lines of at most `width` characters;
// a word longer than that stands on a line of its own.
std::vector<std::string> WrapWords(const std::string& text, int width);

}  // namespace ks
