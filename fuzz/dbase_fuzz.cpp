// Fuzz target for the record database. Each input describes one record-file pair (which of the
// ten files, its data file, its index file) and a script of operations. The pair is written to
// a private temporary directory and then driven through the list editor's engine (ksDataBase),
// the keyed record file (TRecordFile) and the maintenance operations (SortIndex, PackDataFile,
// BuildIndex). After every step the files on disk are read back and checked against what the
// pair must keep: the index file mirrors the entries in memory, every entry reads a whole record
// whose keys it holds, and an order or a completeness that held once survives every later
// operation. An index that does not fit its data (record numbers past the data, keys of other
// records) must be rebuilt when the pair is opened; the maintenance operations called directly
// get the hostile pair as it is.
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
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "common/fileutil.h"
#include "common/halt.h"
#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/maintain.h"
#include "dbase/recfiles.h"
#include "dbase/recordfile.h"

namespace {

using ks::KeyDef;
using Bytes = std::string;  // file contents, records, keys and entries alike

const char* g_phase = "";

[[noreturn]] void Fail(const char* what, int line) {
  std::fprintf(stderr, "dbase_fuzz: check failed in %s (line %d): %s\n", g_phase, line, what);
  std::abort();
}
#define CHECK(cond)                     \
  do {                                  \
    if (!(cond)) Fail(#cond, __LINE__); \
  } while (0)

const std::uint8_t* U(const Bytes& b) {
  return reinterpret_cast<const std::uint8_t*>(b.data());
}
Bytes B(const std::uint8_t* p, std::size_t n) {
  return Bytes(reinterpret_cast<const char*>(p), n);
}

// The private directory: created once per process (on tmpfs when there is one, since the pack
// and the index writes flush their files), emptied before every input, removed at exit.
std::string g_dir;

const std::string& Dir() {
  if (g_dir.empty()) {
    std::string parent = ::access("/dev/shm", W_OK | X_OK) == 0
                             ? "/dev/shm"
                             : std::filesystem::temp_directory_path().string();
    std::string tmpl = parent + "/ks-dbase-fuzz-XXXXXX";
    if (!::mkdtemp(tmpl.data())) std::abort();
    g_dir = tmpl + "/";
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(g_dir, ec);
    });
  }
  return g_dir;
}

std::map<std::string, Bytes> Snapshot() {
  std::map<std::string, Bytes> files;
  for (const std::string& name : ks::ListFiles(Dir()))
    files[name] = ks::ReadWholeFile(Dir() + name).value_or("");
  return files;
}

// ---------------------------------------------------------------------------------------------
// The pair under test.

struct Pair {
  const ks::RecordFileDef* def = nullptr;
  std::size_t systems = 0;
  std::size_t rs = 0;  // record size
  const ks::KeySet* keys = nullptr;
  std::size_t k = 0, e = 0;    // key length, entry size
  std::size_t free_byte = 0;   // a record byte no key reads
  std::size_t extra_byte = 0;  // the zone of the last connected system, or the free byte
  bool drop_unlinked = false;  // MAREAS: packs drop areas with no connected system

  std::string data_name() const { return ks::DataFileName(Dir(), def->base); }
  std::string index_name() const { return ks::IndexFileName(Dir(), def->base); }
  std::optional<Bytes> data() const { return ks::ReadWholeFile(data_name()); }
  std::optional<Bytes> index() const { return ks::ReadWholeFile(index_name()); }
  ks::PackProc proc() const {
    return drop_unlinked ? ks::EchomailPackProc(ks::kEchoPackDropUnlinked, systems)
                         : ks::PackProc{};
  }
  std::uint16_t RecNo(const Bytes& entry) const { return ks::EntryRecNo(U(entry), k); }
  Bytes Key(const std::uint8_t* record) const {
    Bytes key(k, '\0');
    keys->MakeKey(record, reinterpret_cast<std::uint8_t*>(key.data()));
    return key;
  }
  bool Empty(const Bytes& key) const { return keys->KeyEmpty(U(key)); }
  // Record `r` of a data file image, or nullopt when the file has no whole record there.
  std::optional<Bytes> Record(const Bytes& data, std::uint64_t r) const {
    if ((r + 1) * rs > data.size()) return std::nullopt;
    return data.substr(r * rs, rs);
  }
  std::vector<Bytes> Split(const Bytes& index) const {
    std::vector<Bytes> v;
    for (std::size_t i = 0; i + e <= index.size(); i += e) v.push_back(index.substr(i, e));
    return v;
  }
};

// The order TRecordFile keeps: its first key, a string compared with a..z folded to capitals,
// any other kind of key as the generic comparison orders it.
int FoldOrder(const Pair& p, const Bytes& a, const Bytes& b) {
  const KeyDef& d = (*p.keys)[0];
  if (d.type != ks::Str) {
    ks::KeySet one;
    one.Declare(d.name, d.type, 0, d.length);
    return one.Compare(U(a) + d.key_offset, U(b) + d.key_offset);
  }
  auto folded = [&](const Bytes& x) {
    Bytes s = x.substr(d.key_offset + 1, std::min<std::size_t>(U(x)[d.key_offset], d.length - 1u));
    for (char& c : s)
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return s;
  };
  const int r = folded(a).compare(folded(b));
  return (r > 0) - (r < 0);
}

// Entry `x` refers to a whole record of `data` whose keys it holds as the generic comparison
// sees them. The record-file classes copy no change of letter case alone into the first key:
// with `fold` the first key only has to be equal when folded.
bool Holds(const Pair& p, const Bytes& data, const Bytes& x, bool fold) {
  const auto rec = p.Record(data, p.RecNo(x));
  if (!rec) return false;
  const Bytes key = p.Key(U(*rec));
  if (p.keys->Compare(U(key), U(x)) == 0) return true;
  return fold && FoldOrder(p, key, x) == 0 &&
         (p.keys->count() == 1 || p.keys->Compare(U(key), U(x), 2) == 0);
}

// Every entry holds its record: an index that fits its data, which an open keeps.
bool Fits(const Pair& p, const Bytes& data, const std::vector<Bytes>& entries) {
  return std::all_of(entries.begin(), entries.end(),
                     [&](const Bytes& x) { return Holds(p, data, x, false); });
}

// Every entry holds its own record. An index may fit its data with two entries sharing a
// record; a write through one of them leaves the other behind.
bool Consistent(const Pair& p, const Bytes& data, const std::vector<Bytes>& entries, bool fold) {
  std::set<std::uint16_t> seen;
  return std::all_of(entries.begin(), entries.end(), [&](const Bytes& x) {
    return seen.insert(p.RecNo(x)).second && Holds(p, data, x, fold);
  });
}

// What a pack of `data` down to `entries` writes: each record an entry refers to, once, in
// entry order (a partial last record padded with zeros, or left out with `whole_only`), passed
// through the pack procedure. `kept` receives the entries whose record was written.
Bytes PackedImage(const Pair& p, const Bytes& data, const std::vector<Bytes>& entries,
                  const ks::PackProc& proc, bool whole_only, std::vector<Bytes>* kept = nullptr) {
  Bytes out;
  std::set<std::uint16_t> seen;
  for (const Bytes& x : entries) {
    const std::uint64_t at = std::uint64_t{p.RecNo(x)} * p.rs;
    if (!seen.insert(p.RecNo(x)).second || at >= data.size()) continue;
    if (whole_only && at + p.rs > data.size()) continue;
    Bytes rec(ks::kMaxRecordSize, '\0');
    data.copy(rec.data(), p.rs, at);
    std::size_t length = p.rs;
    if (proc) proc(reinterpret_cast<std::uint8_t*>(rec.data()), length);
    out += rec.substr(0, length);
    if (length && kept) kept->push_back(x);
  }
  return out;
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
  Bytes Record(const Pair& p, const std::optional<Bytes>& like) {
    Bytes r(p.rs, '\0');
    const std::uint8_t how = Next();
    const KeyDef& first = (*p.keys)[0];
    if (like && (how & 3) == 1) {
      r = *like;
    } else if (like && (how & 3) == 2) {
      r = *like;
      for (std::size_t i = first.rec_offset; i < first.rec_offset + first.length; ++i)
        if ((r[i] | 0x20) >= 'a' && (r[i] | 0x20) <= 'z') r[i] ^= 0x20;
    } else if ((how & 3) != 3) {
      for (int i = 0; i < p.keys->count(); ++i) {
        const KeyDef& d = (*p.keys)[i];
        for (std::size_t j = 0; j < d.length; ++j) r[d.rec_offset + j] = static_cast<char>(Next());
        // Mostly short strings in the letters a few keys share, so that keys collide.
        if (d.type == ks::Str && (how & 4)) {
          r[d.rec_offset] = static_cast<char>(U(r)[d.rec_offset] % 4);
          for (std::size_t j = 1; j < d.length; ++j)
            r[d.rec_offset + j] = "aAbB"[U(r)[d.rec_offset + j] % 4];
        }
      }
    }
    r[p.free_byte] = static_cast<char>(Next());
    r[p.extra_byte] = static_cast<char>(Next());
    return r;
  }

  // The record of a random one of `count` entries, read by `read`, for copies of a key.
  template <class ReadFn>
  std::optional<Bytes> Some(int count, std::size_t size, ReadFn read) {
    Bytes rec(size, '\0');
    if (count == 0 || !read(Next() % count, reinterpret_cast<std::uint8_t*>(rec.data())))
      return std::nullopt;
    return rec;
  }

 private:
  const std::uint8_t* p_;
  std::size_t n_, i_ = 0;
};

// What is known to hold for an open pair beyond what always holds. Each flag, once set, must
// hold after every later operation (an operation that may end it clears it first).
struct State {
  bool consistent = false;  // every entry holds its own record
  bool sorted = false;      // in the order inserts keep
  bool complete = false;    // the entries are exactly the records with a key (ksDataBase)
  bool synced = false;      // the index file holds exactly the entries in memory (TRecordFile)
};

void Carry(const State& before, const State& now) {
  CHECK(!before.consistent || now.consistent);
  CHECK(!before.sorted || now.sorted);
  CHECK(!before.complete || now.complete);
}

// ---------------------------------------------------------------------------------------------
// ksDataBase

std::vector<Bytes> Entries(const Pair& p, const ks::ksDataBase& db) {
  std::vector<Bytes> v;
  for (int i = 0; i < db.count(); ++i) v.push_back(B(db.Key(i), p.e));
  return v;
}

State Observe(const Pair& p, const ks::ksDataBase& db, const Bytes& data) {
  const auto entries = Entries(p, db);
  State s;
  s.consistent = Consistent(p, data, entries, false);
  s.sorted = db.active_key() == 1;  // an order by another key is not carried on
  for (std::size_t i = 1; i < entries.size(); ++i)
    s.sorted = s.sorted && p.keys->Compare(U(entries[i]), U(entries[i - 1])) >= 0;
  std::size_t keyed = 0;
  for (std::uint64_t r = 0; r < data.size() / p.rs; ++r)
    keyed += !p.Empty(p.Key(U(data) + r * p.rs));
  s.complete = s.consistent && keyed == entries.size() &&
               std::none_of(entries.begin(), entries.end(),
                            [&](const Bytes& x) { return p.Empty(x.substr(0, p.k)); });
  return s;
}

// The checks after every operation on an open pair: the index file mirrors the entries, the
// data file holds whole records, every entry reads its record, and what held before still holds.
void CheckDb(const Pair& p, const ks::ksDataBase& db, State& st) {
  CHECK(db.is_open());
  const auto data = p.data();
  const auto index = p.index();
  CHECK(data && index);
  const auto entries = Entries(p, db);
  Bytes all;
  for (const Bytes& x : entries) all += x;
  CHECK(all == *index);
  CHECK(data->size() % p.rs == 0);
  CHECK(static_cast<std::size_t>(db.data_records()) == data->size() / p.rs);
  CHECK(db.count() == 0 ? db.current() == -1 : db.current() >= 0 && db.current() < db.count());
  CHECK(db.Key(-1) == nullptr && db.Key(db.count()) == nullptr && db.RecNo(db.count()) == 0);
  Bytes rec(p.rs, '\0');
  auto* r = reinterpret_cast<std::uint8_t*>(rec.data());
  for (int i = 0; i < db.count(); ++i)
    CHECK(db.ReadRecord(i, r) && rec == *p.Record(*data, db.RecNo(i)));
  CHECK(!db.ReadRecord(db.count(), r));
  const State now = Observe(p, db, *data);
  Carry(st, now);
  st = now;
}

// Opens the pair and checks what the open did: a corrupt data file is left as it was, a pair
// whose index fits its data is opened as it is, a missing, damaged or misfit index is rebuilt
// and more than ten unreferenced records are packed away. False when the pair is not open.
bool OpenDb(const Pair& p, ks::ksDataBase& db, State& st) {
  const auto before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  const bool whole = data && data->size() % p.rs == 0;
  const auto entries = p.Split(index.value_or(""));
  const bool fits = whole && index && index->size() % p.e == 0 &&
                    entries.size() <= ks::kMaxRecords && Fits(p, *data, entries);
  const bool packs = fits && entries.size() + 10 < data->size() / p.rs;

  const auto r = db.Open(Dir());
  if (data && !whole) {
    CHECK(r == ks::ksDataBase::OpenResult::kCorrupt && !db.is_open());
    CHECK(Snapshot() == before);
    return false;
  }
  CHECK(r == ks::ksDataBase::OpenResult::kOk && db.is_open());
  CHECK(db.current() == (db.count() > 0 ? 0 : -1));
  const Bytes data_now = p.data().value_or("<missing>");
  const State now = Observe(p, db, data_now);
  if (!data) {
    CHECK(db.count() == 0 && data_now.empty() && p.index() == "");
  } else if (fits && !packs) {
    CHECK(Snapshot() == before);
    Carry(st, now);
  } else {
    // Rebuilt, or packed down to the records the index referred to (in its order) and rebuilt.
    if (packs) CHECK(data_now == PackedImage(p, *data, entries, {}, false));
    CHECK(now.consistent && now.sorted && now.complete);
  }
  st = now;
  return true;
}

void RunDataBase(const Pair& p, Script& s) {
  g_phase = "ksDataBase";
  ks::ksDataBase db(p.def->base, p.rs, *p.keys);
  State st;
  if (!OpenDb(p, db, st)) return;
  CheckDb(p, db, st);
  Bytes got(p.rs, '\0');
  auto* g = reinterpret_cast<std::uint8_t*>(got.data());
  auto some = [&] {
    return s.Some(db.count(), p.rs, [&](int i, std::uint8_t* r) { return db.ReadRecord(i, r); });
  };
  for (int step = 0; step < 64 && !s.done(); ++step) {
    const int n = db.count();
    const int op = s.Next() % 8, pos = s.Pos(n);
    const bool valid = pos >= 0 && pos < n;
    switch (op) {
      case 0:    // insert: appended to the data file, the entry current
      case 2: {  // rewrite: same record number, entry moved to where its key belongs
        const bool insert = op == 0;
        std::optional<Bytes> like = insert ? some() : std::nullopt;
        if (!insert && valid && db.ReadRecord(pos, g)) like = got;
        const Bytes rec = s.Record(p, like);
        // Record numbers are 16-bit: there is no room for a record past them.
        const int recno = insert ? db.data_records() : db.RecNo(pos);
        const bool ok = insert ? recno < static_cast<int>(ks::kMaxRecords) : valid;
        CHECK((insert ? db.Insert(U(rec)) : db.Rewrite(pos, U(rec))) == ok);
        CHECK(db.count() == n + (insert && ok));
        if (!ok) break;
        const int at = db.current();
        CHECK(db.RecNo(at) == recno && B(db.Key(at), p.k) == p.Key(U(rec)));
        CHECK(db.ReadRecord(at, g) && got == rec);
        if (p.Empty(p.Key(U(rec)))) st.complete = false;
        break;
      }
      case 1: {  // remove: the entry goes, its record's key fields are zeroed
        const std::uint16_t recno = db.RecNo(pos);
        CHECK(db.Remove(pos) == valid);
        if (!valid) break;
        CHECK(db.count() == n - 1);
        if (st.consistent) CHECK(p.Empty(p.Key(U(*p.Record(*p.data(), recno)))));
        break;
      }
      case 3:  // write in place: a byte no key reads changes, the index stays
        if (valid && db.ReadRecord(pos, g)) {
          const auto index = p.index();
          got[p.free_byte] = static_cast<char>(got[p.free_byte] ^ (s.Next() | 1));
          const Bytes rec = got;
          CHECK(db.WriteInPlace(pos, U(rec)));
          CHECK(db.ReadRecord(pos, g) && got == rec && p.index() == index);
        } else {
          CHECK(!db.WriteInPlace(pos, g));
        }
        break;
      case 4: {  // duplicate check: a listed record is a duplicate of its own entry
        const Bytes rec = s.Record(p, some());
        if (db.IsDuplicate(U(rec), pos)) CHECK(db.unique);
        if (valid && st.consistent && db.ReadRecord(pos, g))
          CHECK(db.IsDuplicate(g, -1) == db.unique);
        break;
      }
      case 5: {  // the list's settings
        const std::uint8_t what = s.Next();
        if (what % 3 == 0) {
          db.set_current(pos * (what & 8 ? 3 : 1));
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

std::vector<Bytes> Entries(const Pair& p, const ks::TRecordFile& rf) {
  std::vector<Bytes> v(rf.Count(), Bytes(p.e, '\0'));
  for (int i = 0; i < rf.Count(); ++i) rf.GetIndexBytes(i, v[static_cast<std::size_t>(i)].data());
  return v;
}

bool FoldSorted(const Pair& p, const std::vector<Bytes>& entries) {
  for (std::size_t i = 1; i < entries.size(); ++i)
    if (FoldOrder(p, entries[i], entries[i - 1]) < 0) return false;
  return true;
}

void CheckRf(const Pair& p, const ks::TRecordFile& rf, State& st) {
  CHECK(rf.IsOpen());
  const auto data = p.data();
  const auto index = p.index();
  CHECK(data && index);
  const auto entries = Entries(p, rf);
  if (st.synced) {
    Bytes all;
    for (const Bytes& x : entries) all += x;
    CHECK(all == *index);
  }
  Bytes out(p.e, '\xAA'), rec(p.rs, '\0');
  rf.GetIndexBytes(rf.Count(), out.data());
  CHECK(out == Bytes(p.e, '\0'));
  CHECK(!rf.ReadRecordBytes(-1, rec.data()) && !rf.ReadRecordBytes(rf.Count(), rec.data()));
  for (int i = 0; i < rf.Count(); ++i)
    CHECK(rf.ReadRecordBytes(i, rec.data()) && rec == *p.Record(*data, p.RecNo(entries[i])));
  State now = st;
  now.consistent = Consistent(p, *data, entries, true);
  now.sorted = FoldSorted(p, entries);
  Carry(st, now);
  st = now;
  // A sorted index finds every first key it holds.
  if (now.sorted)
    for (const Bytes& x : entries) {
      const int j = rf.FindBytes(U(x) + (*p.keys)[0].key_offset);
      CHECK(j >= 0 && j < rf.Count() && FoldOrder(p, entries[j], x) == 0);
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

// After a rebuild: one entry per record whose first key is set (a string by its length byte),
// each once, sorted.
void CheckRebuilt(const Pair& p, const ks::TRecordFile& rf, const Bytes& data, State& st) {
  const KeyDef& d = (*p.keys)[0];
  std::set<std::uint16_t> want, have;
  for (std::uint64_t r = 0; r < std::min<std::uint64_t>(data.size() / p.rs, 0xFFFF); ++r) {
    const Bytes key = p.Key(U(data) + r * p.rs);
    if (d.type == ks::Str ? key[0] != 0 : key.find_first_not_of('\0') < d.length)
      want.insert(static_cast<std::uint16_t>(r));
  }
  const auto entries = Entries(p, rf);
  for (const Bytes& x : entries) have.insert(p.RecNo(x));
  CHECK(have == want && Consistent(p, data, entries, true) && FoldSorted(p, entries));
  st.synced = st.consistent = st.sorted = true;
}

// Opens the pair: both files must exist. An index whose entries fit the data is taken as it is
// (whole entries only), any other is rebuilt from the data.
bool OpenRf(const Pair& p, ks::TRecordFile& rf, State& st) {
  const auto before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  CHECK(rf.Open(Dir()) == (data && index));
  if (!rf.IsOpen()) return false;
  auto entries = p.Split(*index);
  if (entries.size() > 0xFFFF) entries.resize(0xFFFF);
  if (!Fits(p, *data, entries)) {
    CheckRebuilt(p, rf, *data, st);
    return true;
  }
  CHECK(Snapshot() == before && Entries(p, rf) == entries);
  st.synced = index->size() == entries.size() * p.e;
  return true;
}

void RunRecordFile(const Pair& p, Script& s) {
  g_phase = "TRecordFile";
  auto rf = MakeRecordFile(p);
  State st;
  if (!OpenRf(p, *rf, st)) return;
  CheckRf(p, *rf, st);
  Bytes got(p.rs, '\0');
  auto some = [&] {
    return s.Some(rf->Count(), p.rs,
                  [&](int i, std::uint8_t* r) { return rf->ReadRecordBytes(i, r); });
  };
  for (int step = 0; step < 64 && !s.done(); ++step) {
    const int n = rf->Count();
    const int op = s.Next() % 8, pos = s.Pos(n);
    const bool valid = pos >= 0 && pos < n;
    switch (op) {
      case 0: {  // add: the record goes to the end of the data file, the index is re-sorted
        const Bytes rec = s.Record(p, some());
        const std::uint64_t recno = p.data()->size() / p.rs;
        const bool room = recno < ks::kMaxRecords && n < 0xFFFF;
        CHECK(rf->AddBytes(rec.data()) == room);
        CHECK(rf->Count() == n + room);
        if (!room) break;
        const auto entries = Entries(p, *rf);
        CHECK(std::any_of(entries.begin(), entries.end(), [&](const Bytes& x) {
          return p.RecNo(x) == recno && x.substr(0, p.k) == p.Key(U(rec));
        }));
        CHECK(p.Record(*p.data(), recno) == rec);
        st.synced = st.sorted = true;
        break;
      }
      case 1: {  // update: the record in place, its keys into the entry
        std::optional<Bytes> like;
        if (valid && rf->ReadRecordBytes(pos, got.data())) like = got;
        const Bytes rec = s.Record(p, like);
        const auto before = Entries(p, *rf);
        CHECK(rf->UpdateBytes(pos, rec.data()) == valid);
        if (!valid) break;
        CHECK(p.Record(*p.data(), p.RecNo(before[pos])) == rec);
        if (FoldOrder(p, before[pos], p.Key(U(rec))) != 0) st.sorted = true;
        if (Entries(p, *rf) != before) st.synced = true;
        break;
      }
      case 2:  // delete
        CHECK(rf->Delete(pos) == valid);
        CHECK(rf->Count() == n - valid);
        st.synced = st.synced || valid;
        break;
      case 3:  // rebuild from the data file
        rf->Rebuild();
        CheckRebuilt(p, *rf, *p.data(), st);
        break;
      case 4: {  // pack: the records the pack procedure keeps, each once, in index order
        const Bytes data = *p.data();
        std::vector<Bytes> kept;
        const Bytes image = PackedImage(p, data, Entries(p, *rf), p.proc(), true, &kept);
        rf->Pack();
        CHECK(rf->IsOpen() && p.data() == image);
        const auto after = Entries(p, *rf);
        CHECK(after.size() == kept.size());
        for (std::size_t i = 0; i < after.size(); ++i)
          CHECK(p.RecNo(after[i]) == i && after[i].substr(0, p.k) == kept[i].substr(0, p.k));
        CHECK(!ks::FileExists(ks::ScratchFileName(Dir(), p.def->base)));
        st.synced = true;
        break;
      }
      case 5: {  // find a key from the script: found only when equal, always when sorted
        const Bytes key = p.Key(U(s.Record(p, std::nullopt)));
        const int j = rf->FindBytes(U(key) + (*p.keys)[0].key_offset);
        const auto entries = Entries(p, *rf);
        if (j >= 0)
          CHECK(j < n && FoldOrder(p, entries[j], key) == 0);
        else if (st.sorted)
          CHECK(std::none_of(entries.begin(), entries.end(),
                             [&](const Bytes& x) { return FoldOrder(p, x, key) == 0; }));
        break;
      }
      case 6:  // close and open again
        rf->Close();
        CHECK(!rf->IsOpen() && rf->Count() == 0 && rf->FindBytes(U(got)) == -1);
        if (!OpenRf(p, *rf, st)) return;
        break;
      default:
        return;
    }
    CheckRf(p, *rf, st);
  }
}

// ---------------------------------------------------------------------------------------------
// SortIndex, PackDataFile and BuildIndex called directly, on the pair as it is.

// The entries of the index file by a key number from the script: the same whole entries, in
// order from that key on; a key number that is not declared leaves their order as it is.
void CheckSort(const Pair& p, Script& s) {
  const auto index = p.index();
  if (!index) return;
  const int first = s.Next() % (p.keys->count() + 2);
  CHECK(ks::SortIndex(p.index_name(), *p.keys, first));
  const auto before = p.Split(*index), after = p.Split(p.index().value_or(""));
  CHECK(p.index()->size() == before.size() * p.e);
  if (!p.keys->Find(first)) {
    CHECK(after == before);
    return;
  }
  CHECK(std::multiset<Bytes>(before.begin(), before.end()) ==
        std::multiset<Bytes>(after.begin(), after.end()));
  for (std::size_t i = 1; i < after.size(); ++i)
    CHECK(p.keys->Compare(U(after[i]), U(after[i - 1]), first) >= 0);
}

void CheckPack(const Pair& p) {
  const auto before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  const auto entries = p.Split(index.value_or(""));
  const bool hostile = data && std::any_of(entries.begin(), entries.end(), [&](const Bytes& x) {
                         return std::uint64_t{p.RecNo(x)} * p.rs >= data->size();
                       });
  bool ok = false;
  try {
    ok = ks::PackDataFile(Dir(), p.def->base, p.rs, *p.keys, p.proc());
  } catch (const ks::ProgramHalt&) {
    // An entry past the data: the data file is left as it was.
    CHECK(hostile && Snapshot() == before);
    return;
  }
  CHECK(ok == data.has_value() && !hostile);
  if (!ok) {
    CHECK(Snapshot() == before);
    return;
  }
  CHECK(!ks::FileExists(ks::ScratchFileName(Dir(), p.def->base)));
  const Bytes image = PackedImage(p, *data, entries, p.proc(), false);
  if (image.empty())
    CHECK(!p.data() && !p.index());
  else
    CHECK(p.data() == image && p.index() == index);
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
  const auto entries = p.Split(*index);
  std::set<std::uint16_t> want, have;
  for (std::uint64_t r = 0; r < std::min<std::uint64_t>(data->size() / p.rs, ks::kMaxRecords); ++r)
    if (!p.Empty(p.Key(U(*data) + r * p.rs))) want.insert(static_cast<std::uint16_t>(r));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    CHECK(have.insert(p.RecNo(entries[i])).second);
    CHECK(entries[i].substr(0, p.k) == p.Key(U(*data) + p.RecNo(entries[i]) * p.rs));
    if (i > 0) CHECK(p.keys->Compare(U(entries[i]), U(entries[i - 1])) >= 0);
  }
  CHECK(have == want);
}

void RunMaintenance(const Pair& p, Script& s) {
  g_phase = "SortIndex";
  if (s.Next() & 1) CheckSort(p, s);
  g_phase = "PackDataFile";
  CheckPack(p);
  g_phase = "BuildIndex";
  CheckBuild(p);
  g_phase = "PackDataFile after BuildIndex";
  CheckPack(p);
  g_phase = "BuildIndex after PackDataFile";
  CheckBuild(p);
}

// ---------------------------------------------------------------------------------------------
// The pair from the input.

// Mostly the two small records (NODEFILE, HATCH), each of the others now and then.
constexpr int kPick[16] = {8, 8, 8, 8, 7, 7, 7, 7, 0, 1, 2, 3, 4, 5, 6, 9};  // RecordFileId

constexpr std::size_t kMaxDataBytes = 256 * 1024;

Pair MakePair(std::uint8_t which, std::uint8_t flags, std::uint8_t param) {
  Pair p;
  p.def = &ks::FileDef(static_cast<ks::RecordFileId>(kPick[which % 16]));
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
      Bytes rec(p.rs, '\0');
      std::size_t from = at;
      for (int i = 0; i < p.keys->count(); ++i) {
        const KeyDef& d = (*p.keys)[i];
        std::memcpy(&rec[d.rec_offset], b + from, d.length);
        from += d.length;
      }
      rec[p.extra_byte] = static_cast<char>(b[from]);
      data += rec;
    }
  } else {
    data = B(b, std::min(n, kMaxDataBytes) / p.rs * p.rs);
  }
  if (flags & 0x08) data.append(1 + param % 13, '\x5A');
  return data;
}

Bytes MakeIndex(const Pair& p, const Bytes& data, const std::uint8_t* b, std::size_t n,
                std::uint8_t flags) {
  const std::uint64_t records = data.size() / p.rs;
  std::vector<std::uint8_t> index;
  auto add = [&](std::uint64_t r) {
    Bytes entry = r < records ? p.Key(U(data) + r * p.rs) : Bytes(p.k, '\0');
    entry.resize(p.e);
    ks::SetEntryRecNo(reinterpret_cast<std::uint8_t*>(entry.data()), p.k,
                      static_cast<std::uint16_t>(r));
    index.insert(index.end(), entry.begin(), entry.end());
  };
  switch (flags & 3) {
    case 0:  // the bytes as they are
      return B(b, n);
    case 2:  // entries of records picked by the bytes, now and then one past the data
      for (std::size_t i = 0; i < n; ++i)
        add(records == 0 || b[i] >= 250 ? records + b[i] % 3 : b[i] % records);
      break;
    case 3:  // every record with a key, sorted as a rebuild sorts
      for (std::uint64_t r = 0; r < records; ++r)
        if (!p.Empty(p.Key(U(data) + r * p.rs))) add(r);
      ks::SortIndexEntries(index, *p.keys);
      break;
  }
  return B(index.data(), index.size());
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
  for (const std::string& name : ks::ListFiles(Dir())) std::remove((Dir() + name).c_str());
  const Pair p = MakePair(which, flags, param);
  const Bytes data = MakeData(p, body, split, flags, param);
  if (!(flags & 0x10)) CHECK(ks::WriteFileAtomic(p.data_name(), data));
  if ((flags & 3) != 1)
    CHECK(ks::WriteFileAtomic(p.index_name(),
                              MakeIndex(p, data, body + split, body_size - split, flags)));

  Script script(body + body_size, script_size);
  if (flags & 0x20) RunMaintenance(p, script);
  RunDataBase(p, script);
  RunRecordFile(p, script);
  if (!(flags & 0x20)) RunMaintenance(p, script);
  return 0;
}
