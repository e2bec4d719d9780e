// A temporary directory for record-file pairs, with helpers to build records and to look at
// the files byte for byte.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "common/fileutil.h"
#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/keydef.h"
#include "dbase/recfiles.h"
#include "tempdir.h"

namespace ks::test {

using Bytes = std::vector<std::uint8_t>;

// Writes a length-prefixed string at `offset`.
inline void PutStr(Bytes& rec, std::size_t offset, const std::string& s) {
  rec[offset] = static_cast<std::uint8_t>(s.size());
  std::memcpy(&rec[offset + 1], s.data(), s.size());
}

inline Bytes Concat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const auto& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

// A small test file: records of `size` bytes keyed by a string (capacity `str_len` - 1) at
// offset 0 and one byte at `byte_at`; the record's last byte is free for a payload.
struct TagByteLayout {
  std::size_t size;
  std::uint8_t str_len;
  std::uint16_t byte_at;

  KeySet Keys() const {
    KeySet k;
    k.Declare("tag", Str, 0, str_len);
    k.Declare("kind", Int, byte_at, 1);
    return k;
  }
  Bytes Rec(const std::string& tag, std::uint8_t kind, std::uint8_t payload = 0) const {
    Bytes r(size, 0);
    PutStr(r, 0, tag);
    r[byte_at] = kind;
    r[size - 1] = payload;
    return r;
  }
  // The index entry: the string field, the byte, the record number.
  Bytes Entry(const std::string& tag, std::uint8_t kind, std::uint16_t recno) const {
    Bytes e(str_len + 3u, 0);
    PutStr(e, 0, tag);
    e[str_len] = kind;
    e[str_len + 1u] = static_cast<std::uint8_t>(recno & 0xFF);
    e[str_len + 2u] = static_cast<std::uint8_t>(recno >> 8);
    return e;
  }
};

// A temporary directory for record files (extensions KSX and IDX), read and written byte for
// byte or record by record.
class RecordDir : public TempDir {
 public:
  RecordDir() { record_extensions() = {"KSX", "IDX"}; }
  ~RecordDir() { record_extensions() = {}; }

  std::string Read(const std::string& name) const {
    return ReadWholeFile(path() + name).value_or("<missing>");
  }
  Bytes ReadBytes(const std::string& name) const {
    const std::string s = Read(name);
    return Bytes(s.begin(), s.end());
  }
  void WriteBytes(const std::string& name, const Bytes& b) const {
    Write(name, std::string(b.begin(), b.end()));
  }
  // Record `n` of the data file `name`, which holds records of `size` bytes.
  template <class T>
  T Record(const std::string& name, int n = 0, std::size_t size = sizeof(T)) const {
    const std::string data = Read(name);
    T r{};
    EXPECT_GE(data.size(), (n + 1) * size) << name;
    if (data.size() >= (n + 1) * size)
      std::memcpy(static_cast<void*>(&r), data.data() + n * size, std::min(size, sizeof r));
    return r;
  }
  // Adds records to a pair through the list editor's engine, as an editor adds them.
  template <class T>
  void Insert(const std::string& base, const KeySet& keys, const std::vector<T>& recs,
              std::size_t size = sizeof(T)) const {
    ksDataBase db(base, size, keys);
    ASSERT_EQ(db.Open(path()), ksDataBase::OpenResult::kOk);
    for (const T& r : recs) {
      const void* p = &r;
      if constexpr (std::is_same_v<T, Bytes>) p = r.data();
      ASSERT_TRUE(db.Insert(static_cast<const std::uint8_t*>(p)));
    }
  }
  template <class T>
  void Insert(RecordFileId id, const std::vector<T>& recs, std::size_t size = sizeof(T)) const {
    Insert(FileDef(id).base, FileDef(id).keys, recs, size);
  }
};

class PairTest : public ::testing::Test {
 protected:
  std::string Read(const std::string& name) const { return dir_.Read(name); }
  Bytes ReadBytes(const std::string& name) const { return dir_.ReadBytes(name); }
  void WriteBytes(const std::string& name, const Bytes& b) const { dir_.WriteBytes(name, b); }

  RecordDir dir_;
};

// Limits the size of files this process may write, so that a write past `bytes` fails the
// way a full disk does; the limit is lifted when the scope ends.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    old_handler_ = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &old_);
    rlimit lim = old_;
    lim.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &lim);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, old_handler_);
  }

 private:
  rlimit old_{};
  void (*old_handler_)(int) = nullptr;
};

}  // namespace ks::test
