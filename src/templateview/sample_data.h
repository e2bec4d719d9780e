// The made-up data a template is previewed with: the first fileecho and the first system of
// the record files, sample files with long descriptions, and sample failed file requests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dbase/fileecho_rec.h"
#include "dbase/node_rec.h"
#include "shell/kestracfg.h"
#include "templates/template_processor.h"

namespace ks {

// How the viewer runs a template, in the order of the "View as" choices.
enum class ViewerKind : std::uint8_t {
  kSystemMessage = 0,  // a message to one system
  kFileReport = 1,     // a new-file report (report flag set)
  kRequestReply = 2,   // a file-request reply
  kFileechoList = 3,   // the same report run with its flag clear: a fileecho list
};

tpl::TemplateKind TemplateKindOf(ViewerKind kind);

// Sample files per file or bill block of a file report.
inline constexpr int kSampleFiles = 3;

// The reasons of the sample failed requests, one request each.
inline constexpr const char* kRequestErrors[] = {"File exceeds size limit", "Password error",
                                                 "File exceeds number of files limit",
                                                 "File not found"};

struct SampleSource {
  ViewerKind kind = ViewerKind::kFileReport;
  const KESTRAcfg* cfg = nullptr;
  FileMGRrec fileecho{};
  NodeMGRrec node{};
  std::string group_name;              // the name of the fileecho's group
  std::string version;                 // the program version
  std::vector<std::string> archivers;  // names of the archiver rows 1..10
  tpl::DateTime file_date;             // date and time of every sample file
  std::uint32_t seed = 1;              // the random averages of @avgfiles and @avgkb
  int files = kSampleFiles;            // files per file or bill block of a file report
};

class SampleData : public tpl::TemplateData {
 public:
  explicit SampleData(SampleSource source);

  std::optional<std::string> Value(tpl::Keyword k) override;
  bool FirstItem(tpl::Keyword block) override;
  bool NextItem(tpl::Keyword block) override;

  // The caller-defined macros of a file-request reply (request limits, remote mailer).
  static std::vector<std::pair<std::string, std::string>> RequestMacros();

 private:
  std::optional<std::string> FileValue(tpl::Keyword k) const;
  std::optional<std::string> SystemValue(tpl::Keyword k);
  void CountFile();
  int Files() const;
  std::uint32_t FileSize(int n) const { return 12345u * static_cast<std::uint32_t>(n); }

  SampleSource s_;
  int file_ = 0;     // the current sample file, 1-based; 0 outside file blocks
  int request_ = 0;  // the current failed request, 1-based
  std::uint64_t block_bytes_ = 0, total_bytes_ = 0;
  int block_files_ = 0, total_files_ = 0;
  std::uint32_t random_;
  std::string avg_files_, avg_kb_;
};

}  // namespace ks
