#include "dbase/systems_resize.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "common/fileutil.h"
#include "dbase/rawfile.h"

namespace ks {
namespace {

constexpr std::size_t kChunk = 1 << 20;  // bytes per write of the new file
constexpr const char* kTempInfix = ".resize";

std::string BaseName(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool Fail(std::string* error, const std::string& text) {
  if (error) *error = text;
  return false;
}

// Live records of `file` (records of `record_size` bytes) with a used slot at or beyond slot
// `from`, looking at the slots before `to`.
std::size_t CountLosing(const MappedFile& file, const RecordFileDef& def, std::size_t record_size,
                        std::size_t from, std::size_t to) {
  std::vector<std::uint8_t> key(def.keys.length());
  std::size_t losing = 0;
  for (std::size_t at = 0; at + record_size <= file.size(); at += record_size) {
    const std::uint8_t* rec = file.data() + at;
    def.keys.MakeKey(rec, key.data());
    if (def.keys.KeyEmpty(key.data())) continue;  // a deleted record
    for (std::size_t slot = from; slot < to; ++slot) {
      const std::uint8_t* zone = rec + def.fixed_size + slot * sizeof(ConnectedSystem);
      if (zone[0] != 0 || zone[1] != 0) {
        ++losing;
        break;
      }
    }
  }
  return losing;
}

// True when a temporary file of `temp_size` bytes with records of `systems` slots holds as many
// records as the area file of `data_size` bytes (when there is one) holds of some number of
// slots: a temporary file cut short is never taken for a finished one.
bool TempIsComplete(std::uint64_t temp_size, std::optional<std::uint64_t> data,
                    const RecordFileDef& def, std::uint8_t systems) {
  const std::size_t size = def.RecordSize(systems);
  if (temp_size % size != 0) return false;
  if (!data) return true;
  const std::uint64_t count = temp_size / size, data_size = *data;
  if (count == 0) return data_size == 0;
  if (data_size % count != 0) return false;
  const std::uint64_t per = data_size / count;
  return per >= def.fixed_size && (per - def.fixed_size) % sizeof(ConnectedSystem) == 0 &&
         (per - def.fixed_size) / sizeof(ConnectedSystem) <= kMaxSystems;
}

// The N of "<name>.resize<N>" for an area file called `name`, or -1 when `file` is no such name.
int TempSystems(const std::string& file, const std::string& name) {
  const std::string prefix = name + kTempInfix;
  if (file.size() <= prefix.size() || file.size() > prefix.size() + 3 ||
      file.compare(0, prefix.size(), prefix) != 0)
    return -1;
  int n = 0;
  for (std::size_t i = prefix.size(); i < file.size(); ++i) {
    if (file[i] < '0' || file[i] > '9') return -1;
    n = n * 10 + (file[i] - '0');
  }
  return n <= static_cast<int>(kMaxSystems) ? n : -1;
}

}  // namespace

std::string AreaFileSurvey::name() const {
  return BaseName(path);
}

AreaFileSurvey SurveyAreaFile(const std::string& path, const RecordFileDef& def,
                              std::uint8_t old_systems, std::uint8_t new_systems) {
  AreaFileSurvey s;
  s.path = path;
  s.def = &def;
  s.old_systems = old_systems;
  s.new_systems = new_systems;
  const auto size = FileSize(path);
  if (!size) return s;
  s.size = *size;
  const std::size_t old_size = def.RecordSize(old_systems), new_size = def.RecordSize(new_systems);
  s.fits_old = s.size % old_size == 0;
  s.fits_new = s.size % new_size == 0;
  if (s.fits_old && old_systems != new_systems && s.size > 0) {
    s.action = ResizeAction::kRewrite;
    if (new_systems < old_systems) {
      MappedFile file;
      if (!file.Map(path)) {
        s.action = ResizeAction::kError;
        s.error = s.name() + ": cannot be read";
        return s;
      }
      s.losing = CountLosing(file, def, old_size, new_systems, old_systems);
    }
  } else if (s.fits_new) {
    s.action = ResizeAction::kUnchanged;
  } else {
    s.action = ResizeAction::kError;
    s.error = s.name() + ": " + std::to_string(s.size) + " bytes is not a whole number of " +
              std::to_string(old_size) + "-byte records";
  }
  return s;
}

std::vector<AreaFileSurvey> SurveyAreaFiles(const std::string& dir, std::uint8_t old_systems,
                                            std::uint8_t new_systems) {
  std::vector<AreaFileSurvey> surveys;
  for (RecordFileId id : {RecordFileId::kFAreas, RecordFileId::kMAreas}) {
    const RecordFileDef& def = FileDef(id);
    surveys.push_back(SurveyAreaFile(DataFileName(dir, def.base), def, old_systems, new_systems));
  }
  return surveys;
}

std::string ResizeTempName(const std::string& path, std::uint8_t systems) {
  return path + kTempInfix + std::to_string(systems);
}

bool WriteResizedFile(const AreaFileSurvey& s, const ResizeProgress& progress, std::string* error) {
  const RecordFileDef& def = *s.def;
  const std::size_t in_size = def.RecordSize(s.old_systems);
  const std::size_t out_size = def.RecordSize(s.new_systems);
  const std::size_t kept =
      def.fixed_size + std::min(s.old_systems, s.new_systems) * sizeof(ConnectedSystem);
  const std::string temp = ResizeTempName(s.path, s.new_systems);
  MappedFile in;
  if (!in.Map(s.path) || in.size() % in_size != 0)
    return Fail(error, s.name() + ": cannot be read");
  RawFile out;
  if (!out.Open(temp, RawFile::Mode::kCreate))
    return Fail(error, BaseName(temp) + ": " + std::strerror(errno));
  // The new file takes the place of the old one with its permissions.
  struct stat st;
  if (::stat(s.path.c_str(), &st) == 0) ::chmod(temp.c_str(), st.st_mode & 07777);
  // Whole records go out in blocks of about kChunk bytes.
  const std::size_t count = in.size() / in_size;
  const std::size_t batch = std::max<std::size_t>(1, kChunk / out_size);
  std::vector<std::uint8_t> buf(batch * out_size);
  bool ok = true;
  for (std::size_t first = 0; ok && first < count; first += batch) {
    const std::size_t n = std::min(batch, count - first);
    const std::uint8_t* from = in.data() + first * in_size;
    std::uint8_t* to = buf.data();
    for (std::size_t r = 0; r < n; ++r, from += in_size, to += out_size) {
      std::memcpy(to, from, kept);
      std::memset(to + kept, 0, out_size - kept);
    }
    ok = out.WriteAt(std::uint64_t{first} * out_size, buf.data(), n * out_size);
    if (ok && progress) progress(first + n, count);
  }
  ok = ok && out.Sync();
  const int saved = errno;
  out.Close();
  if (!ok) {
    ::unlink(temp.c_str());
    return Fail(error, BaseName(temp) + ": " + std::strerror(saved ? saved : EIO));
  }
  return true;
}

bool InstallResizedFiles(const std::vector<AreaFileSurvey>& surveys, std::string* error) {
  bool ok = true;
  for (const AreaFileSurvey& s : surveys) {
    if (s.action != ResizeAction::kRewrite) continue;
    const std::string temp = ResizeTempName(s.path, s.new_systems);
    if (::rename(temp.c_str(), s.path.c_str()) != 0) {
      ok = Fail(error, BaseName(temp) + ": " + std::strerror(errno));
      continue;
    }
    SyncDir(DirOf(s.path));
  }
  return ok;
}

void DiscardResizedFiles(const std::vector<AreaFileSurvey>& surveys) {
  for (const AreaFileSurvey& s : surveys)
    if (s.action == ResizeAction::kRewrite) ::unlink(ResizeTempName(s.path, s.new_systems).c_str());
}

ResizeRecovery RecoverSystemsResize(const std::string& dir, std::uint8_t systems) {
  ResizeRecovery result;
  const std::vector<std::string> files = ListFiles(dir);
  for (RecordFileId id : {RecordFileId::kFAreas, RecordFileId::kMAreas}) {
    const RecordFileDef& def = FileDef(id);
    const std::string data = DataFileName(dir, def.base);
    const std::string name = BaseName(data);
    for (const std::string& file : files) {
      const int n = TempSystems(file, name);
      if (n < 0) continue;
      const std::string temp = DirOf(data) + file;
      const auto temp_size = FileSize(temp);
      if (n == systems && temp_size && TempIsComplete(*temp_size, FileSize(data), def, systems) &&
          RenameDurable(temp, data)) {
        ++result.completed;
      } else if (::unlink(temp.c_str()) == 0) {
        ++result.removed;
      }
    }
  }
  return result;
}

}  // namespace ks
