// Small file-system helpers shared by the shell, the screens and the tools.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ks {

bool FileExists(const std::string& path);  // a regular file
bool DirExists(const std::string& path);
// Creates `path` with every missing directory above it; true when it exists afterwards.
bool MakeDirs(const std::string& path);
std::optional<std::uint64_t> FileSize(const std::string& path);

// A directory name with exactly one trailing "/" (an empty name stays empty).
std::string AddSlash(std::string dir);

// The directory part of `path` with a trailing "/", or "" when it has none.
std::string DirOf(const std::string& path);

// The whole file, or nothing when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path);

// Replaces `path` with `data` so that a crash leaves either the old or the new file: the data
// goes to a temporary file in the same directory, is flushed to disk, then renamed over the
// old one. On failure the old file is untouched, `error` says why, and false is returned.
bool WriteFileAtomic(const std::string& path, std::string_view data, std::string* error = nullptr);

// True when `name` is a temporary file that WriteFileAtomic leaves behind when the program is
// killed while replacing `target_suffix`-named files: any name + suffix, then "." and six
// letters or digits ("setup.ksx.a1B2c3", "FAREAS.IDX.Zz09xy"). The suffix is matched
// without regard to case.
bool IsAtomicWriteLeftover(const std::string& name, std::string_view target_suffix);

// Renames `from` over `to` and makes the rename itself durable (the directory is synced).
bool RenameDurable(const std::string& from, const std::string& to);
// Flushes the directory entry list of `dir` ("" = the current directory) to disk.
void SyncDir(const std::string& dir);

// The names (not paths) of the regular files in `dir`.
std::vector<std::string> ListFiles(const std::string& dir);

// Searches the directories of $PATH for an executable `name`.
std::optional<std::string> FindInPath(const std::string& name);

}  // namespace ks
