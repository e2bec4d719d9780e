// Helpers the benchmarks share: timing, medians, a temporary directory, whole-file I/O.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "common/halt.h"

namespace bench {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

[[noreturn]] inline void Die(const std::string& what) {
  std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what.c_str());
  throw ks::ProgramHalt{1};
}

inline double Ms(Clock::duration d) {
  return std::chrono::duration<double, std::milli>(d).count();
}

inline double TimeMs(const std::function<void()>& fn) {
  const auto start = Clock::now();
  fn();
  return Ms(Clock::now() - start);
}

inline double CpuMs() {
  timespec t;
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// Wall-clock and CPU times (user and system) of the runs of one measurement. The CPU time
// hardly changes with other load on the machine; the wall time also holds the waits for the
// disk.
struct Samples {
  std::vector<double> wall, cpu;

  void Measure(const std::function<void()>& fn) {
    const double cpu_start = CpuMs();
    wall.push_back(TimeMs(fn));
    cpu.push_back(CpuMs() - cpu_start);
  }
};

inline double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  const std::size_t n = v.size();
  return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// The directory all files live in; removed with everything in it when the benchmark ends.
class TempDir {
 public:
  TempDir() {
    std::string name = (fs::temp_directory_path() / "ksetup-bench-XXXXXX").string();
    if (!::mkdtemp(name.data())) Die("cannot create a temporary directory");
    path_ = name;
  }
  ~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

inline void WriteWhole(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) Die("cannot create " + path);
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t w = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (w <= 0) Die("cannot write " + path);
    done += static_cast<std::size_t>(w);
  }
  ::close(fd);
}

inline std::vector<std::uint8_t> ReadWhole(const std::string& path) {
  std::vector<std::uint8_t> bytes;
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return bytes;
  std::uint8_t buf[1 << 16];
  ssize_t r;
  while ((r = ::read(fd, buf, sizeof buf)) > 0) bytes.insert(bytes.end(), buf, buf + r);
  ::close(fd);
  return bytes;
}

// The plain file operation a rewrite is measured against: `path` read with 1 MiB read()
// calls, `out_bytes` written to a new file beside it, flushed, and the copy removed.
inline void PlainCopy(const std::string& path, std::uint64_t out_bytes) {
  static std::vector<std::uint8_t> buf(1 << 20);
  const std::string copy = path + ".copy";
  const int in = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const int out = ::open(copy.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (in < 0 || out < 0) Die("cannot copy " + path);
  ssize_t r;
  std::uint64_t left = out_bytes;
  while ((r = ::read(in, buf.data(), buf.size())) > 0) {
    const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(left, std::uint64_t(r)));
    if (n && ::write(out, buf.data(), n) != static_cast<ssize_t>(n)) Die("cannot write " + copy);
    left -= n;
  }
  while (left > 0) {  // a growing change writes more than it reads
    const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(left, buf.size()));
    if (::write(out, buf.data(), n) != static_cast<ssize_t>(n)) Die("cannot write " + copy);
    left -= n;
  }
  if (::fsync(out) != 0) Die("fsync failed on " + copy);
  ::close(in);
  ::close(out);
  ::unlink(copy.c_str());
}

// The main function of a benchmark: the number of runs from the first argument (default 5),
// and a message and status 1 for an error.
inline int BenchMain(int argc, char** argv, const char* name, int (*run)(int runs)) {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  try {
    return run(runs);
  } catch (const ks::ProgramHalt& halt) {
    return halt.status ? halt.status : 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s: %s\n", name, e.what());
    return 1;
  }
}

}  // namespace bench
