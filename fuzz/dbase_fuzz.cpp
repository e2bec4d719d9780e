// Fuzz target for the record database. Each input describes one record-file pair (which of the
// ten files, its data file, its index file) and a script of operations, run in a private
// directory through the list editor's engine (ksDataBase), the keyed record file (TRecordFile),
// BuildIndex and PackDataFile. After every step the files are read back: the index file mirrors
// the entries in memory, record numbers stay inside the data, entries hold their records' keys,
// and an order or a completeness that held once survives every later operation.
//
// Input layout:
//   byte 0     which file (biased towards the small NODEFILE and HATCH records)
//   byte 1     flags: bits 0-1 the index file (the bytes as they are, none, entries of data
//              records picked by the bytes, built by BuildIndex); bit 3 a partial record at
//              the end of the data file; bit 4 no data file; bit 5 the maintenance first
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
#include "fuzz_dir.h"

namespace {

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

const std::string& Dir() {
  return fuzz::PrivateDir("ks-dbase-fuzz");
}

std::map<std::string, Bytes> Snapshot() {
  std::map<std::string, Bytes> files;
  for (const std::string& name : ks::ListFiles(Dir()))
    files[name] = ks::ReadWholeFile(Dir() + name).value_or("");
  return files;
}

Bytes Join(const std::vector<Bytes>& v) {
  Bytes all;
  for (const Bytes& x : v) all += x;
  return all;
}

// ---------------------------------------------------------------------------------------------
// The pair under test and what its files must keep.

struct Pair {
  const ks::RecordFileDef* def = nullptr;
  std::size_t rs = 0;  // record size
  const ks::KeySet* keys = nullptr;
  std::size_t k = 0, e = 0;   // key length, entry size
  std::size_t free_byte = 0;  // a record byte no key reads

  std::string data_name() const { return ks::DataFileName(Dir(), def->base); }
  std::string index_name() const { return ks::IndexFileName(Dir(), def->base); }
  std::optional<Bytes> data() const { return ks::ReadWholeFile(data_name()); }
  std::optional<Bytes> index() const { return ks::ReadWholeFile(index_name()); }
  std::uint16_t RecNo(const Bytes& entry) const { return ks::EntryRecNo(U(entry), k); }
  // The key of record `r` of a data file image (of a record image for r = 0).
  Bytes Key(const Bytes& data, std::uint64_t r) const {
    Bytes key(k, '\0');
    keys->MakeKey(U(data) + r * rs, reinterpret_cast<std::uint8_t*>(key.data()));
    return key;
  }
  std::vector<Bytes> Split(const Bytes& index) const {
    std::vector<Bytes> v;
    for (std::size_t i = 0; i + e <= index.size(); i += e) v.push_back(index.substr(i, e));
    return v;
  }
  // Every entry refers to a whole record of the data file whose keys it holds.
  bool Fits(const std::vector<Bytes>& entries) const {
    ks::MappedFile data;
    data.Map(data_name());
    return ks::IndexFitsData(U(Join(entries)), entries.size(), data, rs, *keys);
  }
  bool Distinct(const std::vector<Bytes>& entries) const {
    std::set<std::uint16_t> seen;
    return std::all_of(entries.begin(), entries.end(),
                       [&](const Bytes& x) { return seen.insert(RecNo(x)).second; });
  }
  bool Sorted(const std::vector<Bytes>& entries) const {
    for (std::size_t i = 1; i < entries.size(); ++i)
      if (keys->Compare(U(entries[i]), U(entries[i - 1])) < 0) return false;
    return true;
  }
  // Exactly one fitting entry for every record with a key.
  bool Complete(const std::vector<Bytes>& entries, const Bytes& data) const {
    std::size_t keyed = 0;
    for (std::uint64_t r = 0; r < std::min<std::uint64_t>(data.size() / rs, ks::kMaxRecords); ++r)
      keyed += !keys->KeyEmpty(U(Key(data, r)));
    return keyed == entries.size() && Distinct(entries) && Fits(entries) &&
           std::none_of(entries.begin(), entries.end(),
                        [&](const Bytes& x) { return keys->KeyEmpty(U(x)); });
  }
  // The first keys of two entries are equal the way TRecordFile compares them: strings with
  // a..z folded to capitals, any other kind of key byte for byte.
  bool SameFirstKey(const Bytes& a, const Bytes& b) const {
    const ks::KeyDef& d = (*keys)[0];
    if (d.type != ks::Str) return a.compare(d.key_offset, d.length, b, d.key_offset, d.length) == 0;
    auto folded = [&](const Bytes& x) {
      Bytes s =
          x.substr(d.key_offset + 1, std::min<std::size_t>(U(x)[d.key_offset], d.length - 1u));
      for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
      return s;
    };
    return folded(a) == folded(b);
  }
};

// What a pack of `data` down to `entries` writes: each record an entry refers to, once, in
// entry order, a partial last record padded with zeros.
Bytes Packed(const Pair& p, const Bytes& data, const std::vector<Bytes>& entries) {
  Bytes out;
  std::set<std::uint16_t> seen;
  for (const Bytes& x : entries)
    if (std::uint64_t{p.RecNo(x)} * p.rs < data.size() && seen.insert(p.RecNo(x)).second) {
      Bytes rec = data.substr(std::uint64_t{p.RecNo(x)} * p.rs, p.rs);
      out += rec.append(p.rs - rec.size(), '\0');
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

  // A record for an insert or an update: a copy of `like` (a duplicate key), new key fields
  // from the script (now and then short strings of "aAbB", so that keys collide and differ in
  // letter case only), or no key at all; the byte no key reads from the script as well.
  Bytes Record(const Pair& p, const Bytes* like) {
    const std::uint8_t how = Next();
    Bytes r = like && (how & 3) == 1 ? *like : Bytes(p.rs, '\0');
    for (int i = 0; (how & 3) >= 2 && i < p.keys->count(); ++i) {
      const ks::KeyDef& d = (*p.keys)[i];
      for (std::size_t j = 0; j < d.length; ++j) r[d.rec_offset + j] = static_cast<char>(Next());
      if (d.type == ks::Str && (how & 4)) {
        r[d.rec_offset] = static_cast<char>(U(r)[d.rec_offset] % 4);
        for (std::size_t j = 1; j < d.length; ++j)
          r[d.rec_offset + j] = "aAbB"[U(r)[d.rec_offset + j] % 4];
      }
    }
    r[p.free_byte] = static_cast<char>(Next());
    return r;
  }

 private:
  const std::uint8_t* p_;
  std::size_t n_, i_ = 0;
};

// What is known to hold for an open pair beyond what always holds. Each flag, once set, must
// hold after every later operation (an operation that may end it clears it first).
struct State {
  bool fits = false;      // every entry holds its own record
  bool sorted = false;    // in the order inserts keep
  bool complete = false;  // one entry for every record with a key (ksDataBase)
};

void Carry(State& st, const State& now) {
  CHECK((!st.fits || now.fits) && (!st.sorted || now.sorted) && (!st.complete || now.complete));
  st = now;
}

// ---------------------------------------------------------------------------------------------
// ksDataBase

std::vector<Bytes> Entries(const Pair& p, const ks::ksDataBase& db) {
  std::vector<Bytes> v;
  for (int i = 0; i < db.count(); ++i)
    v.emplace_back(reinterpret_cast<const char*>(db.Key(i)), p.e);
  return v;
}

State Observe(const Pair& p, const ks::ksDataBase& db) {
  const auto v = Entries(p, db);
  State s;
  s.fits = p.Distinct(v) && p.Fits(v);
  s.sorted = p.Sorted(v);
  s.complete = p.Complete(v, p.data().value_or(""));
  return s;
}

// After every operation: the index file mirrors the entries, the data file holds whole
// records, every entry reads its record, and what held before still holds.
void CheckDb(const Pair& p, const ks::ksDataBase& db, State& st) {
  CHECK(db.is_open());
  const Bytes data = p.data().value_or("<missing>");
  CHECK(Join(Entries(p, db)) == p.index());
  CHECK(data.size() % p.rs == 0 &&
        static_cast<std::size_t>(db.data_records()) == data.size() / p.rs);
  CHECK(db.count() == 0 ? db.current() == -1 : db.current() >= 0 && db.current() < db.count());
  Bytes rec(p.rs, '\0');
  auto* r = reinterpret_cast<std::uint8_t*>(rec.data());
  for (int i = 0; i < db.count(); ++i)
    CHECK(db.ReadRecord(i, r) && rec == data.substr(std::uint64_t{db.RecNo(i)} * p.rs, p.rs));
  CHECK(!db.ReadRecord(db.count(), r) && db.Key(-1) == nullptr && db.Key(db.count()) == nullptr);
  Carry(st, Observe(p, db));
}

// Opens the pair and checks what the open did: a corrupt data file is left as it was, a pair
// whose index fits its data is opened as it is, a missing, damaged or misfit index is rebuilt
// and more than ten unreferenced records are packed away. False when the pair is not open.
bool OpenDb(const Pair& p, ks::ksDataBase& db, State& st) {
  const auto before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  const auto entries = p.Split(index.value_or(""));
  const bool whole = data && data->size() % p.rs == 0;
  const bool fits = whole && index && index->size() % p.e == 0 && p.Fits(entries);
  const bool packs = fits && entries.size() + 10 < data->size() / p.rs;

  const auto r = db.Open(Dir());
  if (data && !whole) {
    CHECK(r == ks::ksDataBase::OpenResult::kCorrupt && !db.is_open() && Snapshot() == before);
    return false;
  }
  CHECK(r == ks::ksDataBase::OpenResult::kOk && db.is_open());
  CHECK(db.current() == (db.count() > 0 ? 0 : -1));
  const State now = Observe(p, db);
  if (!data) {
    CHECK(db.count() == 0 && p.data() == "" && p.index() == "");
  } else if (fits && !packs) {
    CHECK(Snapshot() == before);
    Carry(st, now);
  } else {
    // Rebuilt, or packed down to the records the index referred to (in its order) and rebuilt.
    if (packs) CHECK(p.data().value_or("") == Packed(p, *data, entries));
    CHECK(now.fits && now.sorted && now.complete);
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
  Bytes got(p.rs, '\0'), back(p.rs, '\0');
  auto* g = reinterpret_cast<std::uint8_t*>(got.data());
  auto* b = reinterpret_cast<std::uint8_t*>(back.data());
  for (int step = 0; step < 64 && !s.done(); ++step) {
    const int n = db.count(), op = s.Next() % 6, pos = s.Pos(n);
    const bool valid = pos >= 0 && pos < n;
    const Bytes* like = valid && db.ReadRecord(pos, g) ? &got : nullptr;
    switch (op) {
      case 0:    // insert: appended to the data file, the entry current
      case 1: {  // rewrite: same record number, entry moved to where its key belongs
        const bool insert = op == 0;
        const Bytes rec = s.Record(p, like);
        // Record numbers are 16-bit: there is no room for a record past them.
        const int recno = insert ? db.data_records() : db.RecNo(pos);
        const bool ok = insert ? recno < static_cast<int>(ks::kMaxRecords) : valid;
        CHECK((insert ? db.Insert(U(rec)) : db.Rewrite(pos, U(rec))) == ok);
        CHECK(db.count() == n + (insert && ok));
        if (!ok) break;
        const int at = db.current();
        CHECK(db.RecNo(at) == recno &&
              Bytes(reinterpret_cast<const char*>(db.Key(at)), p.k) == p.Key(rec, 0));
        CHECK(db.ReadRecord(at, b) && back == rec);
        if (p.keys->KeyEmpty(U(p.Key(rec, 0)))) st.complete = false;
        break;
      }
      case 2: {  // remove: the entry goes, its record's key fields are zeroed
        const std::uint16_t recno = db.RecNo(pos);
        CHECK(db.Remove(pos) == valid && db.count() == n - valid);
        if (valid && st.fits) CHECK(p.keys->KeyEmpty(U(p.Key(*p.data(), recno))));
        break;
      }
      case 3: {  // write in place: a byte no key reads changes, the index stays
        const auto index = p.index();
        got[p.free_byte] = static_cast<char>(got[p.free_byte] ^ (s.Next() | 1));
        CHECK(db.WriteInPlace(pos, g) == valid);
        if (valid) CHECK(db.ReadRecord(pos, b) && back == got && p.index() == index);
        break;
      }
      case 4:  // close and open again
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

// Every entry holds its own record. The record-file classes copy no change of letter case
// alone into the first key: that key only has to be equal when folded.
bool FitsFolded(const Pair& p, const std::vector<Bytes>& entries) {
  const Bytes data = p.data().value_or("");
  return p.Distinct(entries) && std::all_of(entries.begin(), entries.end(), [&](const Bytes& x) {
           if ((std::uint64_t{p.RecNo(x)} + 1) * p.rs > data.size()) return false;
           const Bytes key = p.Key(data, p.RecNo(x));
           return p.keys->Compare(U(key), U(x)) == 0 ||
                  (p.SameFirstKey(key, x) &&
                   (p.keys->count() == 1 || p.keys->Compare(U(key), U(x), 2) == 0));
         });
}

void CheckRf(const Pair& p, const ks::TRecordFile& rf, State& st) {
  CHECK(rf.IsOpen());
  const Bytes data = p.data().value_or("<missing>");
  const auto entries = Entries(p, rf);
  // The index file holds the entries, and at most the partial entry an open left alone.
  const Bytes all = Join(entries), index = p.index().value_or("<missing>");
  CHECK(index.compare(0, all.size(), all) == 0 && index.size() < all.size() + p.e);
  Bytes rec(p.rs, '\0');
  CHECK(!rf.ReadRecordBytes(-1, rec.data()) && !rf.ReadRecordBytes(rf.Count(), rec.data()));
  for (int i = 0; i < rf.Count(); ++i)
    CHECK(rf.ReadRecordBytes(i, rec.data()) &&
          rec == data.substr(std::uint64_t{p.RecNo(entries[i])} * p.rs, p.rs));
  CHECK(!st.fits || FitsFolded(p, entries));
  // A sorted index finds every first key it holds.
  for (std::size_t i = 0; st.sorted && i < entries.size(); ++i) {
    const int j = rf.FindBytes(U(entries[i]) + (*p.keys)[0].key_offset);
    CHECK(j >= 0 && j < rf.Count() && p.SameFirstKey(entries[j], entries[i]));
  }
}

// After a rebuild: one entry for every whole record whose first key is set (a string by its
// length byte), each fitting its record, sorted.
void CheckRebuilt(const Pair& p, const ks::TRecordFile& rf, State& st) {
  const Bytes data = p.data().value_or("");
  const ks::KeyDef& d = (*p.keys)[0];
  std::size_t want = 0;
  for (std::uint64_t r = 0; r < std::min<std::uint64_t>(data.size() / p.rs, 0xFFFF); ++r) {
    const Bytes key = p.Key(data, r);
    want += d.type == ks::Str ? key[0] != 0 : key.find_first_not_of('\0') < d.length;
  }
  const auto entries = Entries(p, rf);
  CHECK(entries.size() == want && p.Distinct(entries) && p.Fits(entries));
  st.fits = st.sorted = true;
}

// Opens the pair: both files must exist. An index whose entries fit the data is taken as it is
// (whole entries only), any other is rebuilt from the data.
bool OpenRf(const Pair& p, ks::TRecordFile& rf, State& st) {
  const auto before = Snapshot();
  const auto index = p.index();
  CHECK(rf.Open(Dir()) == (p.data() && index));
  if (!rf.IsOpen()) return false;
  const auto entries = p.Split(*index);
  if (!p.Fits(entries)) {
    CheckRebuilt(p, rf, st);
    return true;
  }
  CHECK(Snapshot() == before && Entries(p, rf) == entries);
  return true;
}

void RunRecordFile(const Pair& p, Script& s) {
  g_phase = "TRecordFile";
  ks::TRecordFile rf(p.def->base, p.rs, *p.keys);
  State st;
  if (!OpenRf(p, rf, st)) return;
  CheckRf(p, rf, st);
  Bytes got(p.rs, '\0');
  for (int step = 0; step < 64 && !s.done(); ++step) {
    const int n = rf.Count(), op = s.Next() % 8, pos = s.Pos(n);
    const bool valid = pos >= 0 && pos < n;
    const Bytes* like = valid && rf.ReadRecordBytes(pos, got.data()) ? &got : nullptr;
    switch (op) {
      case 0: {  // add: the record goes to the end of the data file, the index is re-sorted
        const Bytes rec = s.Record(p, like);
        const std::uint64_t recno = p.data()->size() / p.rs;
        const bool room = recno < ks::kMaxRecords && n < 0xFFFF;
        CHECK(rf.AddBytes(rec.data()) == room && rf.Count() == n + room);
        if (!room) break;
        CHECK(p.data()->substr(recno * p.rs, p.rs) == rec);
        st.sorted = true;
        break;
      }
      case 1: {  // update: the record in place, its keys into the entry
        const Bytes rec = s.Record(p, like);
        const auto before = Entries(p, rf);
        CHECK(rf.UpdateBytes(pos, rec.data()) == valid);
        if (!valid) break;
        CHECK(p.data()->substr(std::uint64_t{p.RecNo(before[pos])} * p.rs, p.rs) == rec);
        if (!p.SameFirstKey(before[pos], p.Key(rec, 0))) st.sorted = true;
        break;
      }
      case 2:  // delete
        CHECK(rf.Delete(pos) == valid && rf.Count() == n - valid);
        break;
      case 3:  // rebuild from the data file
        rf.Rebuild();
        CheckRebuilt(p, rf, st);
        break;
      case 4: {  // pack: the records the index refers to, each once, in index order
        const Bytes image = Packed(p, *p.data(), Entries(p, rf));
        rf.Pack();
        CHECK(rf.IsOpen() && p.data() == image && rf.Count() == image.size() / p.rs);
        const auto after = Entries(p, rf);
        for (std::size_t i = 0; i < after.size(); ++i) CHECK(p.RecNo(after[i]) == i);
        CHECK(!ks::FileExists(ks::ScratchFileName(Dir(), p.def->base)));
        break;
      }
      case 5: {  // find a key from the script: found only when equal, always when sorted
        const Bytes key = p.Key(s.Record(p, nullptr), 0);
        const auto entries = Entries(p, rf);
        const int j = rf.FindBytes(U(key) + (*p.keys)[0].key_offset);
        CHECK(j < 0 ? !st.sorted ||
                          std::none_of(entries.begin(), entries.end(),
                                       [&](const Bytes& x) { return p.SameFirstKey(x, key); })
                    : j < n && p.SameFirstKey(entries[j], key));
        break;
      }
      case 6:  // close and open again
        rf.Close();
        CHECK(!rf.IsOpen() && rf.Count() == 0 && rf.FindBytes(U(got)) == -1);
        if (!OpenRf(p, rf, st)) return;
        break;
      default:
        return;
    }
    CheckRf(p, rf, st);
  }
}

// ---------------------------------------------------------------------------------------------
// PackDataFile and BuildIndex called directly, on the pair as it is.

void CheckPack(const Pair& p) {
  const auto before = Snapshot();
  const auto data = p.data();
  const auto index = p.index();
  const auto entries = p.Split(index.value_or(""));
  const bool past = data && std::any_of(entries.begin(), entries.end(), [&](const Bytes& x) {
                      return std::uint64_t{p.RecNo(x)} * p.rs >= data->size();
                    });
  bool ok = false;
  try {
    ok = ks::PackDataFile(Dir(), p.def->base, p.rs, *p.keys);
  } catch (const ks::ProgramHalt&) {
    // An entry past the data: the data file is left as it was.
    CHECK(past && Snapshot() == before);
    return;
  }
  CHECK(!past && ok == data.has_value());
  if (!ok) {
    CHECK(Snapshot() == before);
    return;
  }
  CHECK(!ks::FileExists(ks::ScratchFileName(Dir(), p.def->base)));
  const Bytes image = Packed(p, *data, entries);
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
  const auto index = p.index();
  CHECK(p.data() == data && index && index->size() % p.e == 0);
  const auto entries = p.Split(*index);
  CHECK(p.Complete(entries, *data) && p.Sorted(entries));
}

void RunMaintenance(const Pair& p) {
  for (const char* phase : {"PackDataFile", "PackDataFile after BuildIndex"}) {
    g_phase = phase;
    CheckPack(p);
    g_phase = "BuildIndex";
    CheckBuild(p);
  }
}

// ---------------------------------------------------------------------------------------------
// The pair from the input.

// Mostly the two small records (NODEFILE, HATCH), each of the others now and then.
constexpr int kPick[16] = {8, 8, 8, 8, 7, 7, 7, 7, 0, 1, 2, 3, 4, 5, 6, 9};  // RecordFileId

constexpr std::size_t kMaxDataBytes = 256 * 1024;

Pair MakePair(std::uint8_t which, std::uint8_t param) {
  Pair p;
  p.def = &ks::FileDef(static_cast<ks::RecordFileId>(kPick[which % 16]));
  // Small "Number of systems" keep the per-system records short; now and then the default.
  p.rs = p.def->RecordSize(param >= 250 ? ks::kDefaultSystemsPerArea : param % 9);
  p.keys = &p.def->keys;
  p.k = p.keys->length();
  p.e = p.keys->entry_size();
  std::vector<bool> used(p.rs);
  for (int i = 0; i < p.keys->count(); ++i)
    for (std::size_t j = 0; j < (*p.keys)[i].length; ++j) used[(*p.keys)[i].rec_offset + j] = true;
  p.free_byte = static_cast<std::size_t>(std::find(used.begin(), used.end(), false) - used.begin());
  return p;
}

// Entries of the records picked by the bytes, now and then one past the data.
Bytes PickedIndex(const Pair& p, const Bytes& data, const std::uint8_t* b, std::size_t n) {
  const std::uint64_t records = data.size() / p.rs;
  Bytes index;
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint64_t r = records == 0 || b[i] >= 250 ? records + b[i] % 3 : b[i] % records;
    Bytes entry = r < records ? p.Key(data, r) : Bytes(p.k, '\0');
    entry.resize(p.e);
    ks::SetEntryRecNo(reinterpret_cast<std::uint8_t*>(entry.data()), p.k,
                      static_cast<std::uint16_t>(r));
    index += entry;
  }
  return index;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  std::uint8_t head[6] = {};
  std::memcpy(head, input, std::min(size, sizeof head));
  const std::uint8_t* body = input + std::min(size, sizeof head);
  std::size_t body_size = size - std::min(size, sizeof head);
  const std::uint8_t flags = head[1], param = head[2];
  const std::size_t script_size = std::min<std::size_t>(head[3], body_size);
  body_size -= script_size;
  const std::size_t split = (head[4] | head[5] << 8) % (body_size + 1);
  const std::uint8_t* rest = body + split;
  const std::size_t rest_size = body_size - split;

  ks::record_extensions() = {"KSX", "IDX"};
  for (const std::string& name : ks::ListFiles(Dir())) std::remove((Dir() + name).c_str());
  const Pair p = MakePair(head[0], param);
  Bytes data(reinterpret_cast<const char*>(body), std::min(split, kMaxDataBytes) / p.rs * p.rs);
  if (flags & 0x08) data.append(1 + param % 13, '\x5A');  // a partial record
  if (!(flags & 0x10)) CHECK(ks::WriteFileAtomic(p.data_name(), data));
  if ((flags & 3) == 0)
    CHECK(
        ks::WriteFileAtomic(p.index_name(), Bytes(reinterpret_cast<const char*>(rest), rest_size)));
  if ((flags & 3) == 2)
    CHECK(ks::WriteFileAtomic(p.index_name(), PickedIndex(p, data, rest, rest_size)));
  if ((flags & 3) == 3 && !(flags & 0x10)) CHECK(ks::BuildIndex(Dir(), p.def->base, p.rs, *p.keys));

  Script script(body + body_size, script_size);
  if (flags & 0x20) RunMaintenance(p);
  RunDataBase(p, script);
  RunRecordFile(p, script);
  if (!(flags & 0x20)) RunMaintenance(p);
  return 0;
}
