// A file opened for positioned reads and writes. Every operation reports failure through its
// result and never throws, so that file errors reach the caller as `false`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ks {

class RawFile {
 public:
  enum class Mode { kRead, kReadWrite, kCreate };  // kCreate truncates or creates

  RawFile() = default;
  ~RawFile() { Close(); }
  RawFile(RawFile&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
  RawFile& operator=(RawFile&& other) noexcept;
  RawFile(const RawFile&) = delete;
  RawFile& operator=(const RawFile&) = delete;

  bool Open(const std::string& path, Mode mode);
  void Close();
  bool is_open() const { return fd_ >= 0; }

  std::optional<std::uint64_t> Size() const;
  // Reads up to `n` bytes at `offset`; returns how many were read (short at the end of file
  // or on an error).
  std::size_t ReadAt(std::uint64_t offset, void* buf, std::size_t n) const;
  // Writes all `n` bytes at `offset`; false on a short write.
  bool WriteAt(std::uint64_t offset, const void* buf, std::size_t n);
  bool Truncate(std::uint64_t size);
  bool Sync();

 private:
  int fd_ = -1;
};

// A whole file mapped read-only into memory (an empty file maps to nothing).
class MappedFile {
 public:
  MappedFile() = default;
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  bool Map(const std::string& path);
  const std::uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }

 private:
  std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

// The file names of a pair: directory (a "/" is added when missing) + base + "." + the
// program-wide data or index extension, and base + ".$$$" for the pair's scratch file.
std::string DataFileName(const std::string& dir, const std::string& base);
std::string IndexFileName(const std::string& dir, const std::string& base);
std::string ScratchFileName(const std::string& dir, const std::string& base);

}  // namespace ks
