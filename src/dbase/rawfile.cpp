#include "dbase/rawfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "common/fileutil.h"
#include "common/recordext.h"

namespace ks {

RawFile& RawFile::operator=(RawFile&& other) noexcept {
  if (this != &other) {
    Close();
    fd_ = other.fd_;
    other.fd_ = -1;
  }
  return *this;
}

bool RawFile::Open(const std::string& path, Mode mode) {
  Close();
  int flags = O_CLOEXEC;
  switch (mode) {
    case Mode::kRead:
      flags |= O_RDONLY;
      break;
    case Mode::kReadWrite:
      flags |= O_RDWR;
      break;
    case Mode::kCreate:
      flags |= O_RDWR | O_CREAT | O_TRUNC;
      break;
  }
  fd_ = ::open(path.c_str(), flags, 0644);
  if (fd_ < 0) return false;
  struct stat st;
  if (::fstat(fd_, &st) != 0 || !S_ISREG(st.st_mode)) {  // never a directory or a device
    Close();
    return false;
  }
  return true;
}

void RawFile::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

std::optional<std::uint64_t> RawFile::Size() const {
  struct stat st;
  if (fd_ < 0 || ::fstat(fd_, &st) != 0) return std::nullopt;
  return static_cast<std::uint64_t>(st.st_size);
}

std::size_t RawFile::ReadAt(std::uint64_t offset, void* buf, std::size_t n) const {
  if (fd_ < 0) return 0;
  auto* p = static_cast<char*>(buf);
  std::size_t done = 0;
  while (done < n) {
    const ssize_t r = ::pread(fd_, p + done, n - done, static_cast<off_t>(offset + done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += static_cast<std::size_t>(r);
  }
  return done;
}

bool RawFile::WriteAt(std::uint64_t offset, const void* buf, std::size_t n) {
  if (fd_ < 0) return false;
  const auto* p = static_cast<const char*>(buf);
  std::size_t done = 0;
  while (done < n) {
    const ssize_t r = ::pwrite(fd_, p + done, n - done, static_cast<off_t>(offset + done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) return false;
    done += static_cast<std::size_t>(r);
  }
  return true;
}

bool RawFile::Truncate(std::uint64_t size) {
  return fd_ >= 0 && ::ftruncate(fd_, static_cast<off_t>(size)) == 0;
}

bool RawFile::Sync() {
  return fd_ >= 0 && ::fsync(fd_) == 0;
}

MappedFile::~MappedFile() {
  if (data_) ::munmap(data_, size_);
}

bool MappedFile::Map(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st;
  bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  if (ok && st.st_size > 0) {
    void* p = ::mmap(nullptr, static_cast<std::size_t>(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    ok = p != MAP_FAILED;
    if (ok) {
      data_ = static_cast<std::uint8_t*>(p);
      size_ = static_cast<std::size_t>(st.st_size);
      ::madvise(p, size_, MADV_WILLNEED);
    }
  }
  ::close(fd);
  return ok;
}

std::string DataFileName(const std::string& dir, const std::string& base) {
  return AddSlash(dir) + base + "." + record_extensions().data;
}

std::string IndexFileName(const std::string& dir, const std::string& base) {
  return AddSlash(dir) + base + "." + record_extensions().index;
}

std::string ScratchFileName(const std::string& dir, const std::string& base) {
  return AddSlash(dir) + base + ".$$$";
}

}  // namespace ks
