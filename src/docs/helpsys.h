// The help system: F1 anywhere shows a topic of the help document KESTRA.DOC, found through
// its index KS_DOC.IDX, in the document viewer.
#pragma once

#include <optional>
#include <string>

#include "docs/docindex.h"

namespace ks {

inline constexpr const char* kHelpDocName = "KESTRA.DOC";
inline constexpr const char* kHelpIndexName = "KS_DOC.IDX";

class HelpSystem {
 public:
  // Reads the index of `doc_path`; false (and help stays closed) when either file is missing
  // or the index does not belong to the document.
  bool Open(const std::string& idx_path, const std::string& doc_path);
  void Close();
  bool is_open() const { return index_.has_value(); }

  // Shows `topic` in the viewer; topic 0 shows the main topic. Tells the user when help is
  // not available or the topic is missing.
  void Show(int topic);

  // The title of a topic (its first line in the document), or "" when there is none.
  std::string TopicTitle(int topic) const;

 private:
  std::optional<DocIndex> index_;
  std::string doc_path_;
  std::string idx_path_;
  int depth_ = 0;  // help opened from within help
};

// The topic shown for F1 where nothing more specific applies.
inline constexpr int kMainHelpTopic = 1;

}  // namespace ks
