// The internal text editor: a full-screen editor for templates and the other text files of the
// configuration, used when no external editor is set up or the external one cannot be run.
// Files are code page 437 bytes; lines end in CR LF or LF, as the file had them.
#pragma once

#include <string>
#include <vector>

namespace ks {

inline constexpr int kEditorHelpTopic = 8;

// One row of the F2 pick list: the text inserted at the cursor, the row shown in the list,
// and the column inside `insert` where the cursor goes afterwards (0 = after the text).
struct PickEntry {
  std::string insert;
  std::string shown;
  int cursor = 0;
};

// Edits `path` full screen until F10 (save), F9 (abort) or Esc (done, asking "Save changes?"
// when something changed); true when the file was saved. A missing file opens empty and is
// created by saving; a file that cannot be read is not opened ("Unable to open file").
bool EditFile(const std::string& path, const std::vector<PickEntry>& picks = {});

}  // namespace ks
