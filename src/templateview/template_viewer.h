// The template viewer and the list of template files it is called from: a template runs
// through the template processor with sample data, and its output is shown in the document
// viewer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "shell/kestracfg.h"
#include "templateview/sample_data.h"

namespace ks {

inline constexpr int kTemplateEditorTopic = 41;
inline constexpr const char* kViewOutputName = "TMP.OUT";

struct TemplateContext {
  const KESTRAcfg* cfg = nullptr;
  std::string program_dir;  // with "/": TMP.OUT, and the templates when "Template" is empty
  std::string data_dir;     // with "/": the record files and the BBS file area list
  std::string version;      // @prgversion
  std::vector<std::string> archivers;  // names of the archiver rows 1..10
  // Opens a text file in the external or the internal editor.
  std::function<void(const std::string& path)> edit_file;
};

// Where the .APL files are: "Template" of the pathnames, or the program directory.
std::string TemplateDir(const TemplateContext& ctx);

// Runs template `name` (a file of the template directory) as `kind` with the sample data and
// shows the output under "View template". Tells the operator why when it cannot.
void ViewTemplate(const TemplateContext& ctx, const std::string& name, ViewerKind kind);

// Writes the output of template `name` run as `kind` to `out_path`; "" when done, else the
// message that tells why not ("/" splits lines). Used by ViewTemplate.
std::string WriteTemplateOutput(const TemplateContext& ctx, const std::string& name,
                                ViewerKind kind, const std::string& out_path,
                                int sample_files = kSampleFiles);

// Utilities › Template editor: the .APL files of the template directory.
void RunTemplateList(const TemplateContext& ctx);

}  // namespace ks
