#include "docs/helpsys.h"

#include <cstdio>

#include "common/fileutil.h"
#include "docs/docviewer.h"
#include "tui/msgbox.h"

namespace ks {

namespace {
constexpr int kMaxDepth = 3;
}

bool HelpSystem::Open(const std::string& idx_path, const std::string& doc_path) {
  Close();
  doc_path_ = doc_path;
  idx_path_ = idx_path;
  auto size = FileSize(doc_path);
  if (!size) return false;
  index_ = ReadDocIndex(idx_path, *size);
  return index_.has_value();
}

void HelpSystem::Close() {
  index_.reset();
}

std::string HelpSystem::TopicTitle(int topic) const {
  if (!index_ || topic <= 0 || topic > 0xFFFF) return {};
  auto entry = index_->Find(static_cast<std::uint16_t>(topic));
  if (!entry) return {};
  std::FILE* f = std::fopen(doc_path_.c_str(), "rb");
  if (!f) return {};
  std::string title;
  if (std::fseek(f, static_cast<long>(entry->offset), SEEK_SET) == 0) {
    for (int ch; (ch = std::fgetc(f)) != EOF && ch != '\n' && title.size() < 80;)
      title += static_cast<char>(ch);
  }
  std::fclose(f);
  return title;
}

void HelpSystem::Show(int topic) {
  if (depth_ >= kMaxDepth) return;
  if (topic == 0) topic = kMainHelpTopic;
  if (!index_) {
    MessageBoxLines(
        {"Help is not available:", doc_path_, "or " + idx_path_, "is missing or damaged."}, {"Ok"});
    return;
  }
  auto entry =
      topic > 0 && topic <= 0xFFFF ? index_->Find(static_cast<std::uint16_t>(topic)) : std::nullopt;
  if (!entry) {
    ErrorBox("There is no help on topic " + std::to_string(topic) + " in " + kHelpDocName);
    return;
  }
  ++depth_;
  ViewDocument(doc_path_, TopicTitle(topic), entry->offset, entry->length);
  --depth_;
}

}  // namespace ks
