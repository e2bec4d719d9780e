// Fuzz target for the record database. Each input describes one record-file pair (which of the
// ten files, its data file, its index file) and a script of operations. The pair is written to
// a private temporary directory and then driven through the list editor's engine (ksDataBase),
// the keyed record file (TRecordFile) and the maintenance operations (BuildIndex,
// PackDataFile). After every step the files on disk are read back and checked against what
// the pair must keep: the index file mirrors the entries in memory, record numbers stay inside
// the data file, entries match the keys of their records and stay in order. A property that
// held once (or that a rebuild must establish) has to survive every later operation; a pair
// made hostile by the input (record numbers past the data, unsorted entries) is checked only
// for what still holds for it.
//
// Input layout:
//   byte 0     which file (biased towards the small NODEFILE and HATCH records)
//   byte 1     flags: bits 0-1 the index file (the bytes as they are, none, entries of data
//              records picked by the bytes, every keyed record sorted); bit 2 data records
//              given by their key fields and one more byte (Pair::extra_byte) only; bit 3 a
//              partial record at the end of the data file; bit 4 no data file; bit 5 the
//              maintenance operations first; bit 6 packs of MAREAS drop unlinked areas
//   byte 2     number of systems of FAREAS/MAREAS records; length of the partial record
//   byte 3     length of the operation script, taken from the end of the input
//   bytes 4-5  where the data bytes end and the index bytes begin
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "common/halt.h"
#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/maintain.h"
#include "dbase/recfiles.h"
#include "dbase/recordfile.h"

namespace {

using ks::KeyDef;
using ks::KeySet;
using Bytes = std::vector<std::uint8_t>;
using Files = std::map<std::string, Bytes>;

const char* g_phase = "";

[[noreturn]] void Fail(const char* what, int line) {
  std::fprintf(stderr, "dbase_fuzz: check failed in %s (line %d): %s\n", g_phase, line, what);
  std::abort();
}
#define CHECK(cond)                     \
  do {                                  \
    if (!(cond)) Fail(#cond, __LINE__); \
  } while (0)

// ---------------------------------------------------------------------------------------------
// The private directory: created once per process, emptied before every input, removed at exit.

std::string g_dir;

void RemoveDir() {
  std::error_code ec;
  if (!g_dir.empty()) std::filesystem::remove_all(g_dir, ec);
}

const std::string& Dir() {
  if (g_dir.empty()) {
    // tmpfs when there is one: the pack and the index writes flush their files to disk.
    std::string parent = "/dev/shm";
    if (::access(parent.c_str(), W_OK | X_OK) != 0)
      parent = std::filesystem::temp_directory_path().string();
    std::string tmpl = parent + "/ks-dbase-fuzz-XXXXXX";
    if (!::mkdtemp(tmpl.data())) {
      std::perror("mkdtemp");
      std::abort();
    }
    g_dir = tmpl + "/";
    std::atexit(RemoveDir);
  }
  return g_dir;
}

void ClearDir() {
  for (const auto& e : std::filesystem::directory_iterator(Dir())) {
    std::error_code ec;
    std::filesystem::remove_all(e.path(), ec);
  }
}

std::optional<Bytes> ReadFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  struct stat st;
  CHECK(::fstat(fd, &st) == 0);
  Bytes b(static_cast<std::size_t>(st.st_size));
  std::size_t done = 0;
  while (done < b.size()) {
    const ssize_t r = ::read(fd, b.data() + done, b.size() - done);
    CHECK(r > 0);
    done += static_cast<std::size_t>(r);
  }
  ::close(fd);
  return b;
}

void WriteFile(const std::string& path, const Bytes& b) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(b.data()), static_cast<std::streamsize>(b.size()));
  CHECK(out.good());
}

Files Snapshot() {
  Files f;
  for (const auto& e : std::filesystem::directory_iterator(Dir()))
    f[e.path().filename().string()] = ReadFile(e.path().string()).value_or(Bytes{});
  return f;
}

// ---------------------------------------------------------------------------------------------
// The pair under test.

struct Pair {
  const ks::RecordFileDef* def = nullptr;
  std::size_t systems = 0;
  std::size_t rs = 0;  // record size
  const KeySet* keys = nullptr;
  std::size_t k = 0, e = 0;    // key length, entry size
  std::size_t free_byte = 0;   // a record byte no key reads
  std::size_t extra_byte = 0;  // the zone of the last connected system, or the free byte
  bool drop_unlinked = false;  // MAREAS: packs drop areas with no connected system

  std::string data_name() const { return ks::DataFileName(Dir(), def->base); }
  std::string index_name() const { return ks::IndexFileName(Dir(), def->base); }
  std::string scratch_name() const { return ks::ScratchFileName(Dir(), def->base); }
  std::optional<Bytes> data() const { return ReadFile(data_name()); }
  std::optional<Bytes> index() const { return ReadFile(index_name()); }
  ks::PackProc proc() const {
    return drop_unlinked ? ks::EchomailPackProc(ks::kEchoPackDropUnlinked, systems)
                         : ks::PackProc{};
  }
};

std::uint16_t RecNoOf(const Pair& p, const std::uint8_t* entry) {
  return ks::EntryRecNo(entry, p.k);
}

Bytes KeyOf(const Pair& p, const std::uint8_t* record) {
  Bytes key(p.k);
  p.keys->MakeKey(record, key.data());
  return key;
}

// Record `r` of a data file image, or nullopt when the file has no whole record there.
std::optional<Bytes> RecordAt(const Pair& p, const Bytes& data, std::uint64_t r) {
  if ((r + 1) * p.rs > data.size()) return std::nullopt;
  return Bytes(data.begin() + static_cast<std::ptrdiff_t>(r * p.rs),
               data.begin() + static_cast<std::ptrdiff_t>((r + 1) * p.rs));
}

// The order TRecordFile keeps: the first key, with strings compared after folding a..z to
// capitals and other kinds of key compared like the generic comparison.
int FirstKeyOrder(const Pair& p, const std::uint8_t* a, const std::uint8_t* b) {
  const KeyDef& d = (*p.keys)[0];
  a += d.key_offset;
  b += d.key_offset;
  if (d.type == ks::Str) {
    auto folded = [&](const std::uint8_t* f) {
      std::string s(reinterpret_cast<const char*>(f + 1),
                    std::min<std::size_t>(f[0], d.length - 1u));
      for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
      return s;
    };
    const int r = folded(a).compare(folded(b));
    return r < 0 ? -1 : r > 0 ? 1 : 0;
  }
  KeySet one;
  one.Declare(d.name, d.type, 0, d.length);
  return one.Compare(a, b);
}

// A record counts for TRecordFile::Rebuild when its first key is set: a string by its length
// byte, anything else by any non-zero byte.
bool FirstKeyLive(const Pair& p, const std::uint8_t* record) {
  const KeyDef& d = (*p.keys)[0];
  const std::uint8_t* f = record + d.rec_offset;
  if (d.type == ks::Str) return f[0] != 0;
  return std::any_of(f, f + d.length, [](std::uint8_t c) { return c != 0; });
}

bool HasHostileRecNo(const Pair& p, const Bytes& index, std::size_t data_size) {
  for (std::size_t i = 0; i + p.e <= index.size(); i += p.e)
    if (std::uint64_t{RecNoOf(p, &index[i])} * p.rs >= data_size) return true;
  return false;
}

// What a pack of `data` down to the entries of `index` writes: each referenced record (a
// partial last record padded with zeros), passed through the pack procedure.
Bytes PackedImage(const Pair& p, const Bytes& data, const Bytes& index, const ks::PackProc& proc) {
  Bytes out;
  Bytes rec(ks::kMaxRecordSize);
  for (std::size_t i = 0; i + p.e <= index.size(); i += p.e) {
    const std::uint64_t at = std::uint64_t{RecNoOf(p, &index[i])} * p.rs;
    std::fill(rec.begin(), rec.end(), 0);
    std::memcpy(rec.data(), data.data() + at,
                static_cast<std::size_t>(std::min<std::uint64_t>(p.rs, data.size() - at)));
    std::size_t length = p.rs;
    if (proc) proc(rec.data(), length);
    out.insert(out.end(), rec.begin(), rec.begin() + static_cast<std::ptrdiff_t>(length));
  }
  return out;
}

// Nothing is written through an entry whose record number lies past the data: such a write
// must fail and leave the data file as it was.
bool RecordExists(const Pair& p, std::uint16_t recno) {
  return (std::uint64_t{recno} + 1) * p.rs <= p.data().value_or(Bytes{}).size();
}

// ---------------------------------------------------------------------------------------------
// The operation script.

class Script {
 public:
  Script(const std::uint8_t* p, std::size_t n) : p_(p), n_(n) {}
  bool done() const { return i_ >= n_; }
  std::uint8_t Next() { return i_ < n_ ? p_[i_++] : 0; }
  // A position from -1 to count (both ends out of range).
  int Pos(int count) { return static_cast<int>(Next() % (count + 2)) - 1; }

  // A record for an insert or an update: new key fields from the script, a copy of `like`
  // (a duplicate key), `like` with the letters of its first key swapped in case, or a record
  // with no key at all. A byte no key reads and the zone of the last connected system (which
  // decides whether a pack of MAREAS keeps the record) are set from the script as well.
  Bytes Record(const Pair& p, const Bytes* like) {
    Bytes r(p.rs, 0);
    const std::uint8_t how = Next();
    if (like && (how & 3) == 1) {
      r = *like;
    } else if (like && (how & 3) == 2) {
      r = *like;
      const KeyDef& d = (*p.keys)[0];
      for (std::size_t i = d.rec_offset; i < d.rec_offset + d.length; ++i)
        if ((r[i] | 0x20) >= 'a' && (r[i] | 0x20) <= 'z') r[i] ^= 0x20;
    } else if ((how & 3) != 3) {
      for (int i = 0; i < p.keys->count(); ++i) {
        const KeyDef& d = (*p.keys)[i];
        for (std::size_t j = 0; j < d.length; ++j) r[d.rec_offset + j] = Next();
        // Mostly short strings in the letters a few keys share, so that keys collide.
        if (d.type == ks::Str && (how & 4)) {
          r[d.rec_offset] %= 4;
          for (std::size_t j = 1; j < d.length; ++j)
            r[d.rec_offset + j] = "aAbB"[r[d.rec_offset + j] % 4];
        }
      }
    }
    r[p.free_byte] = Next();
    r[p.extra_byte] = Next();
    return r;
  }

 private:
  const std::uint8_t* p_;
  std::size_t n_, i_ = 0;
};

// ---------------------------------------------------------------------------------------------
// ksDataBase

// What is known to hold for the open pair. Each flag, once set, must hold after every later
// operation.
struct DbState {
  bool recnos_valid = false;  // every record number is inside the data file
  bool consistent = false;    // ...and unique, and each entry holds its record's key fields
  bool sorted = false;        // entries ordered by key 1 (while key 1 orders inserts)
  bool complete = false;      // entries are exactly the records with a key
};

std::vector<const std::uint8_t*> Entries(const ks::ksDataBase& db) {
  std::vector<const std::uint8_t*> v;
  for (int i = 0; i < db.count(); ++i) v.push_back(db.Key(i));
  return v;
}

DbState Observe(const Pair& p, const ks::ksDataBase& db, const Bytes& data) {
  DbState s;
  const auto entries = Entries(db);
  const std::uint64_t records = data.size() / p.rs;
  s.recnos_valid = std::all_of(entries.begin(), entries.end(),
                               [&](const std::uint8_t* x) { return RecNoOf(p, x) < records; });
  std::set<std::uint16_t> seen;
  s.consistent = s.recnos_valid;
  for (const std::uint8_t* x : entries) {
    if (!s.consistent) break;
    const Bytes rec = *RecordAt(p, data, RecNoOf(p, x));
    s.consistent = seen.insert(RecNoOf(p, x)).second && KeyOf(p, rec.data()) == Bytes(x, x + p.k);
  }
  s.sorted = true;
  for (std::size_t i = 1; i < entries.size(); ++i)
    if (p.keys->Compare(entries[i], entries[i - 1], 1) < 0) s.sorted = false;
  s.complete = s.consistent;
  if (s.complete) {
    std::size_t keyed = 0;
    for (std::uint64_t r = 0; r < records; ++r) {
      const Bytes key = KeyOf(p, &data[r * p.rs]);
      keyed += p.keys->KeyEmpty(key.data()) ? 0 : 1;
    }
    s.complete = keyed == entries.size() &&
                 std::all_of(entries.begin(), entries.end(),
                             [&](const std::uint8_t* x) { return !p.keys->KeyEmpty(x); });
  }
  return s;
}

// The checks after every operation on an open pair: the index file mirrors the entries, the
// data file holds whole records, every entry reads its record, and what held before still holds.
void CheckDb(const Pair& p, const ks::ksDataBase& db, DbState& st) {
  CHECK(db.is_open());
  const auto data = p.data();
  const auto index = p.index();
  CHECK(data && index);
  CHECK(index->size() % p.e == 0);
  CHECK(index->size() / p.e == static_cast<std::size_t>(db.count()));
  for (int i = 0; i < db.count(); ++i)
    CHECK(std::memcmp(db.Key(i), &(*index)[static_cast<std::size_t>(i) * p.e], p.e) == 0);
  CHECK(data->size() % p.rs == 0);
  CHECK(static_cast<std::size_t>(db.data_records()) == data->size() / p.rs);
  CHECK(db.count() == 0 ? db.current() == -1 : db.current() >= 0 && db.current() < db.count());
  CHECK(db.Key(-1) == nullptr && db.Key(db.count()) == nullptr && db.RecNo(db.count()) == 0);
  Bytes rec(p.rs);
  for (int i = 0; i < db.count(); ++i) {
    const auto want = RecordAt(p, *data, db.RecNo(i));
    CHECK(db.ReadRecord(i, rec.data()) == want.has_value());
    if (want) CHECK(rec == *want);
  }
  CHECK(!db.ReadRecord(db.count(), rec.data()));

  DbState now = Observe(p, db, *data);
  CHECK(!st.recnos_valid || now.recnos_valid);
  CHECK(!st.consistent || now.consistent);
  CHECK(!st.sorted || db.active_key() != 1 || now.sorted);
  CHECK(!st.complete || now.complete);
  // Whatever holds now must hold from here on; inserts by another key may reorder.
  if (db.active_key() != 1) now.sorted = false;
  st = now;
}

// Opens the pair and checks what the open did: a corrupt data file and a halted pack leave the
// files as they were, a sound pair is opened as it is, a missing or damaged index is rebuilt
// and too many unreferenced records are packed away. False when the pair is not open.
bool OpenDb(const Pair& p, ks::ksDataBase& db, DbState& st) {
  const Files before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  const bool whole = data && data->size() % p.rs == 0;
  const std::uint64_t records = data ? data->size() / p.rs : 0;
  const bool index_usable =
      index && index->size() % p.e == 0 && index->size() / p.e <= ks::kMaxRecords;
  const bool packs_input = whole && index_usable && index->size() / p.e + 10 < records;
  const bool rebuilds = whole && (!index_usable || packs_input);

  ks::ksDataBase::OpenResult r;
  try {
    r = db.Open(Dir());
  } catch (const ks::ProgramHalt&) {
    CHECK(packs_input && HasHostileRecNo(p, *index, data->size()));
    CHECK(!db.is_open());
    CHECK(Snapshot() == before);
    return false;
  }
  if (data && !whole) {
    CHECK(r == ks::ksDataBase::OpenResult::kCorrupt);
    CHECK(!db.is_open());
    CHECK(Snapshot() == before);
    return false;
  }
  CHECK(r == ks::ksDataBase::OpenResult::kOk);
  CHECK(db.is_open());
  const auto data_now = p.data();
  CHECK(data_now);
  if (!data) {
    CHECK(db.count() == 0 && data_now->empty() && p.index() == Bytes{});
  } else if (packs_input && !HasHostileRecNo(p, *index, data->size())) {
    // The pack kept the records the index referred to, in its order; the index was rebuilt.
    CHECK(*data_now == PackedImage(p, *data, *index, {}));
  }
  const DbState old = st;
  DbState now = Observe(p, db, *data_now);
  if (rebuilds) {
    CHECK(now.recnos_valid && now.consistent && now.sorted && now.complete);
  } else if (data) {
    CHECK(Snapshot() == before);
    CHECK(!old.recnos_valid || now.recnos_valid);
    CHECK(!old.consistent || now.consistent);
    CHECK(!old.sorted || now.sorted);
    CHECK(!old.complete || now.complete);
  }
  CHECK(db.current() == (db.count() > 0 ? 0 : -1));
  if (db.active_key() != 1) now.sorted = false;
  st = now;
  return true;
}

// The record of a random entry of `count`, for records that copy an existing key.
template <class ReadFn>
std::optional<Bytes> SomeRecord(int count, std::size_t size, Script& s, ReadFn read) {
  if (count == 0) return std::nullopt;
  Bytes rec(size);
  if (!read(static_cast<int>(s.Next() % count), rec.data())) return std::nullopt;
  return rec;
}

std::optional<Bytes> SomeRecord(const ks::ksDataBase& db, Script& s) {
  return SomeRecord(db.count(), db.record_size(), s,
                    [&](int i, std::uint8_t* r) { return db.ReadRecord(i, r); });
}

void RunDataBase(const Pair& p, Script& s) {
  g_phase = "ksDataBase";
  ks::ksDataBase db(p.def->base, p.rs, *p.keys);
  DbState st;
  if (!OpenDb(p, db, st)) return;
  CheckDb(p, db, st);
  Bytes got(p.rs);
  for (int step = 0; step < 64 && !s.done(); ++step) {
    const int n = db.count();
    switch (s.Next() % 8) {
      case 0: {  // insert: appended to the data file, entry in front of the first not less
        const auto like = SomeRecord(db, s);
        const Bytes rec = s.Record(p, like ? &*like : nullptr);
        const int recno = db.data_records();
        // Record numbers are 16-bit: a write through an entry past the data may have filled
        // them all, and then there is no room for another record.
        const bool room = recno < static_cast<int>(ks::kMaxRecords);
        CHECK(db.Insert(rec.data()) == room);
        if (!room) {
          CHECK(db.count() == n);
          break;
        }
        CHECK(db.count() == n + 1);
        const int at = db.current();
        CHECK(db.RecNo(at) == recno);
        CHECK(Bytes(db.Key(at), db.Key(at) + p.k) == KeyOf(p, rec.data()));
        CHECK(db.ReadRecord(at, got.data()) && got == rec);
        if (p.keys->KeyEmpty(db.Key(at))) st.complete = false;
        break;
      }
      case 1: {  // remove: the entry goes, its record's key fields are zeroed
        const int pos = s.Pos(n);
        const bool valid = pos >= 0 && pos < n;
        const std::uint16_t recno = db.RecNo(pos);
        CHECK(db.Remove(pos) == valid);
        if (!valid) break;
        CHECK(db.count() == n - 1);
        if (st.consistent) {
          const auto rec = RecordAt(p, *p.data(), recno);
          CHECK(rec && p.keys->KeyEmpty(KeyOf(p, rec->data()).data()));
        }
        break;
      }
      case 2: {  // rewrite: same record number, entry moved to where its key belongs
        const int pos = s.Pos(n);
        const bool valid = pos >= 0 && pos < n;
        std::optional<Bytes> like;
        if (valid && db.ReadRecord(pos, got.data())) like = got;
        const Bytes rec = s.Record(p, like ? &*like : nullptr);
        const std::uint16_t recno = db.RecNo(pos);
        const bool exists = valid && RecordExists(p, recno);
        CHECK(db.Rewrite(pos, rec.data()) == exists);
        if (!exists) break;
        CHECK(db.count() == n);
        const int at = db.current();
        CHECK(db.RecNo(at) == recno);
        CHECK(Bytes(db.Key(at), db.Key(at) + p.k) == KeyOf(p, rec.data()));
        CHECK(db.ReadRecord(at, got.data()) && got == rec);
        if (p.keys->KeyEmpty(db.Key(at))) st.complete = false;
        break;
      }
      case 3: {  // write in place: a byte no key reads changes, the index stays
        const int pos = s.Pos(n);
        const bool valid = pos >= 0 && pos < n;
        if (valid && db.ReadRecord(pos, got.data())) {
          const std::vector<const std::uint8_t*> keys_before = Entries(db);
          Bytes index_before;
          for (const std::uint8_t* x : keys_before)
            index_before.insert(index_before.end(), x, x + p.e);
          Bytes rec = got;
          rec[p.free_byte] = static_cast<std::uint8_t>(rec[p.free_byte] ^ (s.Next() | 1));
          CHECK(db.WriteInPlace(pos, rec.data()));
          CHECK(db.ReadRecord(pos, got.data()) && got == rec);
          CHECK(p.index() == index_before);
        } else if (!valid) {
          CHECK(!db.WriteInPlace(pos, got.data()));
        }
        break;
      }
      case 4: {  // duplicate check: a listed record is a duplicate of its own entry
        const int pos = s.Pos(n);
        const bool valid = pos >= 0 && pos < n;
        const auto like = SomeRecord(db, s);
        const Bytes rec = s.Record(p, like ? &*like : nullptr);
        const bool dup = db.IsDuplicate(rec.data(), pos);
        if (!db.unique) CHECK(!dup);
        if (valid && st.consistent && db.ReadRecord(pos, got.data()))
          CHECK(db.IsDuplicate(got.data(), -1) == db.unique);
        break;
      }
      case 5: {  // the list's settings
        const std::uint8_t what = s.Next();
        if (what % 3 == 0) {
          db.set_current(s.Pos(n) * (what & 8 ? 3 : 1));
        } else if (what % 3 == 1) {
          db.set_active_key(what / 3 % 7);
          CHECK(db.active_key() >= 1 && db.active_key() <= p.keys->count());
          if (db.active_key() != 1) st.sorted = false;
        } else {
          db.unique = !db.unique;
        }
        break;
      }
      case 6:  // close and open again
        db.Close();
        CHECK(!db.is_open() && db.count() == 0);
        if (!OpenDb(p, db, st)) return;
        break;
      default:
        return;
    }
    CheckDb(p, db, st);
  }
}

// ---------------------------------------------------------------------------------------------
// TRecordFile

struct RfState {
  bool synced = false;      // the index file holds exactly the entries in memory
  bool consistent = false;  // record numbers inside the data file and unique, keys match
  bool sorted = false;      // entries in first-key order
};

std::vector<Bytes> RfEntries(const Pair& p, const ks::TRecordFile& rf) {
  std::vector<Bytes> v(rf.Count(), Bytes(p.e));
  for (int i = 0; i < rf.Count(); ++i) rf.GetIndexBytes(i, v[static_cast<std::size_t>(i)].data());
  return v;
}

// An entry holds its record's keys: the first one as the file orders it (a change of letter
// case alone is not copied into the index), the others byte for byte.
bool RfKeysMatch(const Pair& p, const Bytes& entry, const Bytes& record) {
  const Bytes key = KeyOf(p, record.data());
  if (FirstKeyOrder(p, entry.data(), key.data()) != 0) return false;
  for (int i = 1; i < p.keys->count(); ++i) {
    const KeyDef& d = (*p.keys)[i];
    if (std::memcmp(&entry[d.key_offset], &key[d.key_offset], d.length) != 0) return false;
  }
  return true;
}

void CheckRf(const Pair& p, const ks::TRecordFile& rf, RfState& st) {
  CHECK(rf.IsOpen());
  const auto data = p.data();
  const auto index = p.index();
  CHECK(data && index);
  const auto entries = RfEntries(p, rf);
  if (st.synced) {
    Bytes all;
    for (const Bytes& x : entries) all.insert(all.end(), x.begin(), x.end());
    CHECK(all == *index);
  }
  Bytes rec(p.rs);
  Bytes zero(p.e, 0), out(p.e, 0xAA);
  rf.GetIndexBytes(rf.Count(), out.data());
  CHECK(out == zero);
  CHECK(!rf.ReadRecordBytes(-1, rec.data()) && !rf.ReadRecordBytes(rf.Count(), rec.data()));

  RfState now;
  now.consistent = true;
  std::set<std::uint16_t> seen;
  for (int i = 0; i < rf.Count(); ++i) {
    const Bytes& x = entries[static_cast<std::size_t>(i)];
    const auto want = RecordAt(p, *data, RecNoOf(p, x.data()));
    CHECK(rf.ReadRecordBytes(i, rec.data()) == want.has_value());
    if (want) CHECK(rec == *want);
    now.consistent = now.consistent && want && seen.insert(RecNoOf(p, x.data())).second &&
                     RfKeysMatch(p, x, *want);
  }
  now.sorted = true;
  for (std::size_t i = 1; i < entries.size(); ++i)
    if (FirstKeyOrder(p, entries[i].data(), entries[i - 1].data()) < 0) now.sorted = false;
  CHECK(!st.consistent || now.consistent);
  CHECK(!st.sorted || now.sorted);
  st.consistent = now.consistent;
  st.sorted = now.sorted;
  // A sorted index finds every first key it holds.
  if (now.sorted) {
    for (const Bytes& x : entries) {
      const int j = rf.FindBytes(x.data() + (*p.keys)[0].key_offset);
      CHECK(j >= 0 && j < rf.Count());
      CHECK(FirstKeyOrder(p, entries[static_cast<std::size_t>(j)].data(), x.data()) == 0);
    }
  }
}

std::unique_ptr<ks::TRecordFile> MakeRecordFile(const Pair& p) {
  if (p.drop_unlinked) {
    auto f = std::make_unique<ks::TMAreasFile>(p.systems);
    f->SetEchomailOption(ks::kEchoPackDropUnlinked);
    return f;
  }
  return std::make_unique<ks::TRecordFile>(p.def->base, p.rs, *p.keys);
}

bool OpenRf(const Pair& p, ks::TRecordFile& rf, RfState& st) {
  const auto data = p.data();
  const auto index = p.index();
  CHECK(rf.Open(Dir()) == (data && index));
  if (!rf.IsOpen()) return false;
  CHECK(rf.record_size() == p.rs && rf.entry_size() == p.e);
  CHECK(rf.Count() == std::min<std::size_t>(index->size() / p.e, 0xFFFF));
  // An index of whole entries is in memory as it is on disk.
  st.synced = index->size() % p.e == 0 && index->size() / p.e <= 0xFFFF;
  return true;
}

std::optional<Bytes> SomeRecord(const ks::TRecordFile& rf, Script& s) {
  return SomeRecord(rf.Count(), rf.record_size(), s,
                    [&](int i, std::uint8_t* r) { return rf.ReadRecordBytes(i, r); });
}

void RunRecordFile(const Pair& p, Script& s) {
  g_phase = "TRecordFile";
  auto rf = MakeRecordFile(p);
  RfState st;
  if (!OpenRf(p, *rf, st)) return;
  CheckRf(p, *rf, st);
  Bytes got(p.rs);
  for (int step = 0; step < 64 && !s.done(); ++step) {
    const int n = rf->Count();
    switch (s.Next() % 8) {
      case 0: {  // add: the record goes to the end of the data file, the index is re-sorted
        const auto like = SomeRecord(*rf, s);
        const Bytes rec = s.Record(p, like ? &*like : nullptr);
        const std::uint64_t recno = p.data()->size() / p.rs;
        const bool room = recno < ks::kMaxRecords && n < 0xFFFF;
        CHECK(rf->AddBytes(rec.data()) == room);
        if (!room) {
          CHECK(rf->Count() == n);
          break;
        }
        CHECK(rf->Count() == n + 1);
        const auto entries = RfEntries(p, *rf);
        CHECK(std::any_of(entries.begin(), entries.end(), [&](const Bytes& x) {
          return RecNoOf(p, x.data()) == recno &&
                 Bytes(x.begin(), x.begin() + p.k) == KeyOf(p, rec.data());
        }));
        CHECK(RecordAt(p, *p.data(), recno) == rec);
        st.synced = st.sorted = true;
        break;
      }
      case 1: {  // update: the record in place, its keys into the entry
        const int pos = s.Pos(n);
        const bool valid = pos >= 0 && pos < n;
        std::optional<Bytes> like;
        if (valid && rf->ReadRecordBytes(pos, got.data())) like = got;
        const Bytes rec = s.Record(p, like ? &*like : nullptr);
        const auto before = RfEntries(p, *rf);
        const bool exists =
            valid && RecordExists(p, RecNoOf(p, before[static_cast<std::size_t>(pos)].data()));
        CHECK(rf->UpdateBytes(pos, rec.data()) == exists);
        if (!exists) break;
        const Bytes& old = before[static_cast<std::size_t>(pos)];
        CHECK(RecordAt(p, *p.data(), RecNoOf(p, old.data())) == rec);
        const Bytes key = KeyOf(p, rec.data());
        if (FirstKeyOrder(p, old.data(), key.data()) != 0) st.sorted = true;
        if (RfEntries(p, *rf) != before) st.synced = true;
        break;
      }
      case 2: {  // delete
        const int pos = s.Pos(n);
        const bool valid = pos >= 0 && pos < n;
        CHECK(rf->Delete(pos) == valid);
        if (!valid) break;
        CHECK(rf->Count() == n - 1);
        st.synced = true;
        break;
      }
      case 3: {  // rebuild: one entry per record whose first key is set, sorted
        const Bytes data = *p.data();
        rf->Rebuild();
        std::set<std::uint16_t> want;
        for (std::uint64_t r = 0; r < std::min<std::uint64_t>(data.size() / p.rs, 0xFFFF); ++r)
          if (FirstKeyLive(p, &data[r * p.rs])) want.insert(static_cast<std::uint16_t>(r));
        const auto entries = RfEntries(p, *rf);
        CHECK(entries.size() == want.size());
        std::set<std::uint16_t> have;
        for (const Bytes& x : entries) {
          have.insert(RecNoOf(p, x.data()));
          CHECK(Bytes(x.begin(), x.begin() + p.k) == KeyOf(p, &data[RecNoOf(p, x.data()) * p.rs]));
        }
        CHECK(have == want);
        st.synced = st.consistent = st.sorted = true;
        break;
      }
      case 4: {  // pack: the readable records the pack procedure keeps, in index order
        const Bytes data = *p.data();
        const auto before = RfEntries(p, *rf);
        Bytes readable;
        std::vector<Bytes> kept;
        const ks::PackProc proc = p.proc();
        Bytes copy(ks::kMaxRecordSize);
        for (const Bytes& x : before) {
          const auto rec = RecordAt(p, data, RecNoOf(p, x.data()));
          if (!rec) continue;
          readable.insert(readable.end(), x.begin(), x.end());
          std::fill(copy.begin(), copy.end(), 0);
          std::copy(rec->begin(), rec->end(), copy.begin());
          std::size_t length = p.rs;
          if (proc) proc(copy.data(), length);
          if (length) kept.push_back(x);
        }
        rf->Pack();
        CHECK(rf->IsOpen());
        CHECK(p.data() == PackedImage(p, data, readable, proc));
        const auto after = RfEntries(p, *rf);
        CHECK(after.size() == kept.size());
        for (std::size_t i = 0; i < after.size(); ++i) {
          CHECK(RecNoOf(p, after[i].data()) == i);
          CHECK(std::equal(after[i].begin(), after[i].begin() + p.k, kept[i].begin()));
        }
        CHECK(!std::filesystem::exists(p.scratch_name()));
        st.synced = true;
        break;
      }
      case 5: {  // find a key from the script: found only when equal, always when sorted
        const Bytes rec = s.Record(p, nullptr);
        const Bytes key = KeyOf(p, rec.data());
        const int j = rf->FindBytes(key.data() + (*p.keys)[0].key_offset);
        const auto entries = RfEntries(p, *rf);
        if (j >= 0) {
          CHECK(j < n &&
                FirstKeyOrder(p, entries[static_cast<std::size_t>(j)].data(), key.data()) == 0);
        } else if (st.sorted) {
          CHECK(std::none_of(entries.begin(), entries.end(), [&](const Bytes& x) {
            return FirstKeyOrder(p, x.data(), key.data()) == 0;
          }));
        }
        break;
      }
      case 6: {  // close and open again
        rf->Close();
        CHECK(!rf->IsOpen() && rf->Count() == 0 && rf->FindBytes(got.data()) == -1);
        const RfState keep = st;
        if (!OpenRf(p, *rf, st)) return;
        st.consistent = keep.consistent;
        st.sorted = keep.sorted;
        break;
      }
      default:
        return;
    }
    CheckRf(p, *rf, st);
  }
}

// ---------------------------------------------------------------------------------------------
// BuildIndex, SortIndex and PackDataFile called directly.

void CheckPack(const Pair& p, bool index_sound) {
  const Files before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  bool ok = false;
  try {
    ok = ks::PackDataFile(Dir(), p.def->base, p.rs, *p.keys, p.proc());
  } catch (const ks::ProgramHalt&) {
    // An entry past the data: the data file is put back as it was.
    CHECK(!index_sound);
    CHECK(data && index && HasHostileRecNo(p, *index, data->size()));
    CHECK(Snapshot() == before);
    return;
  }
  if (!data) {
    CHECK(!ok && Snapshot() == before);
    return;
  }
  CHECK(ok);
  CHECK(!std::filesystem::exists(p.scratch_name()));
  const Bytes entries = index.value_or(Bytes{});
  CHECK(!HasHostileRecNo(p, entries, data->size()));
  const Bytes image = PackedImage(p, *data, entries, p.proc());
  if (image.empty()) {
    CHECK(!p.data() && !p.index());
  } else {
    CHECK(p.data() == image);
    CHECK(p.index() == index);
  }
}

// The index of the data file: an entry for every record whose key is not all zeros, sorted.
void CheckBuild(const Pair& p) {
  const auto data = p.data();
  CHECK(ks::BuildIndex(Dir(), p.def->base, p.rs, *p.keys));
  if (!data || data->empty()) {
    CHECK(!p.data() && !p.index());
    return;
  }
  CHECK(p.data() == data);
  const auto index = p.index();
  CHECK(index && index->size() % p.e == 0);
  std::set<std::uint16_t> want, have;
  for (std::uint64_t r = 0; r < std::min<std::uint64_t>(data->size() / p.rs, ks::kMaxRecords); ++r)
    if (!p.keys->KeyEmpty(KeyOf(p, &(*data)[r * p.rs]).data()))
      want.insert(static_cast<std::uint16_t>(r));
  for (std::size_t i = 0; i < index->size(); i += p.e) {
    const std::uint16_t r = RecNoOf(p, &(*index)[i]);
    CHECK(have.insert(r).second);
    CHECK(Bytes(index->begin() + static_cast<std::ptrdiff_t>(i),
                index->begin() + static_cast<std::ptrdiff_t>(i + p.k)) ==
          KeyOf(p, &(*data)[r * p.rs]));
    if (i > 0) CHECK(p.keys->Compare(&(*index)[i], &(*index)[i - p.e], 1) >= 0);
  }
  CHECK(have == want);
}

// Sorting the index file in place by a key number from the script: the same entries, in order
// from that key on; a key number that is not declared leaves the file as it is.
void CheckSort(const Pair& p, Script& s) {
  const auto index = p.index();
  if (!index) return;
  const int first = s.Next() % (p.keys->count() + 2);
  ks::RawFile f;
  CHECK(f.Open(p.index_name(), ks::RawFile::Mode::kReadWrite));
  CHECK(ks::SortIndex(f, *p.keys, first));
  f.Close();
  const auto sorted = p.index();
  CHECK(sorted && sorted->size() == index->size());
  if (!p.keys->Find(first)) {
    CHECK(sorted == index);
    return;
  }
  const std::size_t whole = index->size() / p.e * p.e;
  std::multiset<Bytes> a, b;
  for (std::size_t i = 0; i < whole; i += p.e) {
    a.emplace(index->begin() + static_cast<std::ptrdiff_t>(i),
              index->begin() + static_cast<std::ptrdiff_t>(i + p.e));
    b.emplace(sorted->begin() + static_cast<std::ptrdiff_t>(i),
              sorted->begin() + static_cast<std::ptrdiff_t>(i + p.e));
    if (i > 0) CHECK(p.keys->Compare(&(*sorted)[i], &(*sorted)[i - p.e], first) >= 0);
  }
  CHECK(a == b);
  CHECK(std::equal(index->begin() + static_cast<std::ptrdiff_t>(whole), index->end(),
                   sorted->begin() + static_cast<std::ptrdiff_t>(whole)));
}

void RunMaintenance(const Pair& p, Script& s) {
  g_phase = "SortIndex";
  if (s.Next() & 1) CheckSort(p, s);
  g_phase = "PackDataFile";
  CheckPack(p, false);
  g_phase = "BuildIndex";
  CheckBuild(p);
  g_phase = "PackDataFile after BuildIndex";
  CheckPack(p, true);
  g_phase = "BuildIndex after PackDataFile";
  CheckBuild(p);
}

// ---------------------------------------------------------------------------------------------
// The pair from the input.

// Mostly the two small records, each of the others now and then.
constexpr ks::RecordFileId kPick[16] = {
    ks::RecordFileId::kNodes,    ks::RecordFileId::kNodes,  ks::RecordFileId::kNodes,
    ks::RecordFileId::kNodes,    ks::RecordFileId::kHatch,  ks::RecordFileId::kHatch,
    ks::RecordFileId::kHatch,    ks::RecordFileId::kHatch,  ks::RecordFileId::kAreas,
    ks::RecordFileId::kReports,  ks::RecordFileId::kFAreas, ks::RecordFileId::kMAreas,
    ks::RecordFileId::kGroups,   ks::RecordFileId::kMagic,  ks::RecordFileId::kBbsAreas,
    ks::RecordFileId::kAllfiles,
};

constexpr std::size_t kMaxDataBytes = 256 * 1024;

Pair MakePair(std::uint8_t which, std::uint8_t flags, std::uint8_t param) {
  Pair p;
  p.def = &ks::FileDef(kPick[which % 16]);
  // Small "Number of systems" keep the per-system records short; now and then the default.
  p.systems = param >= 250 ? ks::kDefaultSystemsPerArea : param % 9;
  p.rs = p.def->RecordSize(p.systems);
  p.keys = &p.def->keys;
  p.k = p.keys->length();
  p.e = p.keys->entry_size();
  std::vector<bool> used(p.rs);
  for (int i = 0; i < p.keys->count(); ++i)
    for (std::size_t j = 0; j < (*p.keys)[i].length; ++j) used[(*p.keys)[i].rec_offset + j] = true;
  p.free_byte = static_cast<std::size_t>(std::find(used.begin(), used.end(), false) - used.begin());
  p.extra_byte =
      p.def->per_system && p.systems > 0 ? p.rs - sizeof(ks::ConnectedSystem) : p.free_byte;
  p.drop_unlinked = p.def->id == ks::RecordFileId::kMAreas && (flags & 0x40);
  return p;
}

Bytes MakeData(const Pair& p, const std::uint8_t* b, std::size_t n, std::uint8_t flags,
               std::uint8_t param) {
  Bytes data;
  if (flags & 0x04) {
    // Records given by their key fields and the extra byte only.
    for (std::size_t at = 0; at + p.k + 1 <= n && data.size() + p.rs <= kMaxDataBytes;
         at += p.k + 1) {
      Bytes rec(p.rs, 0);
      std::size_t from = at;
      for (int i = 0; i < p.keys->count(); ++i) {
        const KeyDef& d = (*p.keys)[i];
        std::memcpy(&rec[d.rec_offset], b + from, d.length);
        from += d.length;
      }
      rec[p.extra_byte] = b[from];
      data.insert(data.end(), rec.begin(), rec.end());
    }
  } else {
    data.assign(b, b + std::min(n, kMaxDataBytes) / p.rs * p.rs);
  }
  if (flags & 0x08) data.resize(data.size() + 1 + param % 13, 0x5A);
  return data;
}

Bytes MakeIndex(const Pair& p, const Bytes& data, const std::uint8_t* b, std::size_t n,
                std::uint8_t flags) {
  const std::uint64_t records = data.size() / p.rs;
  Bytes index;
  auto add = [&](std::uint64_t r) {
    Bytes entry(p.e, 0);
    if (r < records) p.keys->MakeKey(&data[r * p.rs], entry.data());
    ks::SetEntryRecNo(entry.data(), p.k, static_cast<std::uint16_t>(r));
    index.insert(index.end(), entry.begin(), entry.end());
  };
  switch (flags & 3) {
    case 0:  // the bytes as they are
      index.assign(b, b + n);
      break;
    case 2:  // entries of records picked by the bytes, now and then one past the data
      for (std::size_t i = 0; i < n; ++i)
        add(records == 0 || b[i] >= 250 ? records + b[i] % 3 : b[i] % records);
      break;
    case 3: {  // every record with a key, sorted as a rebuild sorts
      for (std::uint64_t r = 0; r < records; ++r) {
        const Bytes key = KeyOf(p, &data[r * p.rs]);
        if (!p.keys->KeyEmpty(key.data())) add(r);
      }
      std::vector<Bytes> entries;
      for (std::size_t i = 0; i < index.size(); i += p.e)
        entries.emplace_back(index.begin() + static_cast<std::ptrdiff_t>(i),
                             index.begin() + static_cast<std::ptrdiff_t>(i + p.e));
      std::stable_sort(entries.begin(), entries.end(), [&](const Bytes& x, const Bytes& y) {
        return p.keys->Compare(x.data(), y.data(), 1) < 0;
      });
      index.clear();
      for (const Bytes& x : entries) index.insert(index.end(), x.begin(), x.end());
      break;
    }
  }
  return index;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  std::uint8_t head[6] = {};
  std::memcpy(head, input, std::min(size, sizeof head));
  const std::uint8_t* body = input + std::min(size, sizeof head);
  std::size_t body_size = size - std::min(size, sizeof head);
  const std::uint8_t which = head[0], flags = head[1], param = head[2];
  const std::size_t script_size = std::min<std::size_t>(head[3], body_size);
  body_size -= script_size;
  const std::size_t split = (head[4] | head[5] << 8) % (body_size + 1);

  ks::record_extensions() = {"KSX", "IDX"};
  ClearDir();
  const Pair p = MakePair(which, flags, param);
  const Bytes data = MakeData(p, body, split, flags, param);
  if (!(flags & 0x10)) WriteFile(p.data_name(), data);
  if ((flags & 3) != 1)
    WriteFile(p.index_name(), MakeIndex(p, data, body + split, body_size - split, flags));

  Script script(body + body_size, script_size);
  if (flags & 0x20) RunMaintenance(p, script);
  RunDataBase(p, script);
  RunRecordFile(p, script);
  if (!(flags & 0x20)) RunMaintenance(p, script);
  return 0;
}
