#include "transfer/import_menu.h"

#include <chrono>
#include <filesystem>
#include <memory>

#include "common/cp437.h"
#include "common/fileutil.h"
#include "common/wordwrap.h"
#include "transfer/import_add.h"
#include "tui/dialog.h"
#include "tui/inputline.h"
#include "tui/menu.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {
namespace {

constexpr int kPathLength = 255;

// The path and name of a file, asked for in a box with the prompt above the entry line.
std::optional<std::string> AskFileName(const TransferContext& ctx, const std::string& prompt) {
  constexpr int kWidth = 76;
  const auto lines = WrapWords(prompt, kWidth - 4);  // a long prompt takes two lines
  const Dialog d = Dialog::Centred(kWidth, static_cast<int>(lines.size()) + 3, "Import data");
  for (std::size_t i = 0; i < lines.size(); ++i)
    scr().WriteStr(d.left() + 2, d.top() + 1 + static_cast<int>(i), ui().colours[kWindowText],
                   lines[i]);
  auto name = InputLine(d.left() + 2, d.top() + 1 + static_cast<int>(lines.size()), kWidth - 4,
                        kPathLength, ctx.current_dir, ui().colours[kDataInput]);
  if (!name || name->empty()) return std::nullopt;
  return AbsoluteName(ctx, *name);
}

// The box that shows the tag being added; drawn at most every 50 ms, so that a large file is
// not held up by the terminal.
class AddingBox {
 public:
  AddingBox() {
    if (ui().screen) dialog_.emplace(Dialog::Centred(kWidth, 3, "Import data"));
  }
  void Show(const std::string& tag) {
    if (!dialog_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - shown_ < std::chrono::milliseconds(50)) return;
    shown_ = now;
    const auto& c = ui().colours;
    scr().WriteStr(dialog_->left() + 2, dialog_->top() + 1, c[kWindowText],
                   KeyText("Adding ~" + tag + "~", c[kWindowText], c[kWindowKey]), kWidth - 4);
    scr().Flush();
  }

 private:
  static constexpr int kWidth = 50;
  std::optional<Dialog> dialog_;
  std::chrono::steady_clock::time_point shown_{};
};

std::string Cut(const std::string& s) {
  return s.size() > 70 ? "..." + s.substr(s.size() - 67) : s;
}

}  // namespace

std::string FindFileNoCase(const std::string& dir, const std::string& name) {
  const std::string exact = AddSlash(dir) + name;
  if (FileExists(exact)) return exact;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec))
    if (Upper(it->path().filename().string()) == Upper(name) && FileExists(it->path().string()))
      return it->path().string();
  return {};
}

std::optional<std::string> GenMsgImportObj::AskPath(const TransferContext& ctx) const {
  const auto dir = AskText(file_name(), "Directory: ", kPathLength, ctx.current_dir);
  if (!dir || dir->empty()) return std::nullopt;
  const std::string path = FindFileNoCase(AbsoluteName(ctx, *dir), file_name());
  return path.empty() ? AddSlash(AbsoluteName(ctx, *dir)) + file_name() : path;
}

std::optional<std::string> TickImportObj::AskPath(const TransferContext& ctx) const {
  return AskFileName(ctx, "Enter the path and file name of the TICK configuration file to import");
}

std::optional<std::string> FileboneImportObj::AskPath(const TransferContext& ctx) const {
  return AskFileName(
      ctx, "Enter the path and file name of the FILEBONE.NA/NO configuration file to import");
}

void GenMsgImportObj::Run(const TransferContext& ctx) const {
  const auto path = AskPath(ctx);
  if (!path) return;
  const auto bytes = FileExists(*path) ? ReadWholeFile(*path) : std::nullopt;
  if (!bytes) {
    MessageBoxLines({"Path", Cut(*path), " not found"}, {"Ok"}, kImportTopic);
    return;
  }
  const ImportList list = Parse(*bytes, ctx.cfg->addresses[0]);
  if (!list.ok()) {
    MessageBoxLines({Cut(*path), list.error, "", "Nothing was imported"}, {"Ok"}, kImportTopic);
    return;
  }
  ImportTarget target;
  target.data_dir = ctx.data_dir;
  target.systems = ctx.cfg->numberOfSystems;
  target.node_defaults = ctx.cfg->nodeDefaults;
  ImportResult result;
  {
    AddingBox box;
    result = AddImported(list, target, [&box](const std::string& tag) { box.Show(tag); });
  }
  if (!result.error.empty()) {
    MessageBoxLines({Cut(result.error)}, {"Ok"}, kImportTopic);
    if (result.areas == 0 && result.systems == 0) return;
  }
  MessageBoxLines(SummaryLines(result), {"Ok"}, kImportTopic);
}

void RunImportMenu(const TransferContext& ctx) {
  static const MenuDef def = {
      "Import data",
      36,
      9,
      64,
      20,
      false,
      kImportTopic,
      {
          {"", "TICK configuration", "Import the TICK fileecho and system configuration (TIC.CFG)",
           0},
          {"", "FILEBONE.NA/NO", "Import ~ALL~ the fileechos in the FILEBONE.NA/NO fileecho list",
           0},
          {"", "GEcho 1.00 - areafile", "Import ~ALL~ the conferences in the GEcho Area manager",
           0},
          {"", "GEcho 1.20 - areafile", "Import ~ALL~ the conferences in the GEcho Area manager",
           0},
          {"", "FastEcho - fastecho.cfg",
           "Import ~ALL~ the conferences in the FastEcho configuration", 0},
          {"", "FMail - fmail.ar", "Import ~ALL~ the conferences in the FMail configuration", 0},
          {"", "SQUISH - squish.cfg", "Import ~ALL~ the conferences in the SQUISH configuration",
           0},
          {"", "AREAS.BBS", "Import ~ALL~ the conferences in the AREAS.BBS file", 0},
      },
  };
  RunMenu(def, [&ctx](int choice) {
    std::unique_ptr<GenMsgImportObj> importer;
    switch (choice) {
      case 1:
        importer = std::make_unique<TickImportObj>();
        break;
      case 2:
        importer = std::make_unique<FileboneImportObj>();
        break;
      case 3:
        importer = std::make_unique<Gecho100MsgImportObj>();
        break;
      case 4:
        importer = std::make_unique<Gecho120MsgImportOBj>();
        break;
      case 5:
        importer = std::make_unique<FastEcho146MsgImportObj>();
        break;
      case 6:
        importer = std::make_unique<Fmail146MsgImportObj>();
        break;
      case 7:
        importer = std::make_unique<SquishMsgImportObj>();
        break;
      case 8:
        importer = std::make_unique<AreasBBSMsgImportObj>();
        break;
      default:
        return;
    }
    importer->Run(ctx);
  });
}

}  // namespace ks
