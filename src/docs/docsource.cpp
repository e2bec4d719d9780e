#include "docs/docsource.h"

#include <algorithm>
#include <limits>

namespace ks {

DocSource::DocSource(const std::string& path, std::uint64_t offset, std::uint64_t length) {
  file_ = std::fopen(path.c_str(), "rb");
  if (!file_) {
    complete_ = true;
    return;
  }
  opened_ = true;
  if (offset && std::fseek(file_, static_cast<long>(offset), SEEK_SET) != 0) {
    complete_ = true;
    return;
  }
  remaining_ = length ? length : std::numeric_limits<std::uint64_t>::max();
}

DocSource::DocSource(InMemory, std::string text) : opened_(true) {
  Take(text.data(), text.size());
  if (have_partial_) EndLine();
  complete_ = true;
}

DocSource::~DocSource() {
  if (file_) std::fclose(file_);
}

void DocSource::EndLine() {
  lines_.push_back(std::move(partial_));
  partial_.clear();
  have_partial_ = false;
}

void DocSource::Take(const char* data, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const char ch = data[i];
    if (ch == '\n') {
      EndLine();
      continue;
    }
    if (ch == '\r' || ch == '\x1A') continue;  // CR of CR/LF files, DOS end-of-file mark
    have_partial_ = true;
    if (ch == '\t') {
      partial_.append(8 - partial_.size() % 8, ' ');
    } else {
      partial_ += ch;
    }
    // Longer lines continue on the next line.
    while (partial_.size() > kLineWidth) {
      std::string rest = partial_.substr(kLineWidth);
      partial_.resize(kLineWidth);
      EndLine();
      partial_ = std::move(rest);
      have_partial_ = true;
    }
  }
}

bool DocSource::ReadPortion() {
  if (complete_) return false;
  std::vector<char> buf(kPortion);
  const std::size_t want =
      static_cast<std::size_t>(std::min<std::uint64_t>(remaining_, buf.size()));
  const std::size_t got = want ? std::fread(buf.data(), 1, want, file_) : 0;
  remaining_ -= got;
  Take(buf.data(), got);
  if (got < want || remaining_ == 0 || got == 0) {
    if (have_partial_) EndLine();
    complete_ = true;
    std::fclose(file_);
    file_ = nullptr;
  }
  return true;
}

bool DocSource::Have(std::size_t n) {
  while (lines_.size() <= n && ReadPortion()) {
  }
  return n < lines_.size();
}

void DocSource::LoadAll() {
  while (ReadPortion()) {
  }
}

}  // namespace ks
