// A text document read in portions: lines of at most 80 characters are produced from the file
// as far as the viewer needs them, so a long file opens at once.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace ks {

class DocSource {
 public:
  static constexpr std::size_t kLineWidth = 80;
  static constexpr std::size_t kPortion = 64 * 1024;  // bytes read at a time

  // The bytes [offset, offset+length) of `path` (length 0 = to the end of the file).
  DocSource(const std::string& path, std::uint64_t offset = 0, std::uint64_t length = 0);
  // Text held in memory (a generated preview, for instance).
  struct InMemory {};
  DocSource(InMemory, std::string text);
  ~DocSource();
  DocSource(const DocSource&) = delete;
  DocSource& operator=(const DocSource&) = delete;

  bool opened() const { return opened_; }

  // Reads further portions until line `n` (0-based) exists or the text ends; true if it does.
  bool Have(std::size_t n);
  // Reads everything.
  void LoadAll();
  bool complete() const { return complete_; }

  std::size_t loaded() const { return lines_.size(); }
  const std::string& line(std::size_t n) const { return lines_[n]; }

 private:
  bool ReadPortion();
  void Take(const char* data, std::size_t n);
  void EndLine();

  std::FILE* file_ = nullptr;
  bool opened_ = false;
  bool complete_ = false;
  std::uint64_t remaining_ = 0;  // bytes of the range not read yet
  std::vector<std::string> lines_;
  std::string partial_;
  bool have_partial_ = false;
};

}  // namespace ks
