// Fuzz target of the template processor: the input is a template and the caller's data. The
// first byte chooses the kind and how many items each block gets, the rest is split at the
// first zero byte into the template text and a text that is every value macro's value, the
// fortune cookie file and the file "inc" that @include(inc) reads. The run must end, in
// bounded output, for every input.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "fuzz_dir.h"
#include "templates/template_processor.h"

namespace {

class Data : public ks::tpl::TemplateData {
 public:
  Data(std::string value, int items) : value_(std::move(value)), items_(items) {}
  std::optional<std::string> Value(ks::tpl::Keyword k) override {
    return k == ks::tpl::Keyword::FileName ? std::to_string(current_) : value_;
  }
  bool FirstItem(ks::tpl::Keyword) override { return (current_ = 1) <= items_; }
  bool NextItem(ks::tpl::Keyword) override { return ++current_ <= items_; }

 private:
  std::string value_;
  int items_;
  int current_ = 0;
};

void WriteFile(const std::string& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), bytes.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 1) return 0;
  static const std::string& dir = fuzz::PrivateDir("template_fuzz");
  static const bool entered = ::chdir(dir.c_str()) == 0;
  if (!entered) std::abort();
  const auto kind = static_cast<ks::tpl::TemplateKind>(1 + bytes[0] % 4);
  const int items = (bytes[0] >> 2) % 4;
  const std::string_view input(reinterpret_cast<const char*>(bytes + 1), size - 1);
  const auto zero = input.find('\0');
  const std::string_view text = input.substr(0, zero);
  const std::string_view value =
      zero == std::string_view::npos ? std::string_view() : input.substr(zero + 1);
  WriteFile(dir + "COOKIE.DAT", value);
  WriteFile(dir + "inc", value);

  Data data{std::string(value), items};
  ks::tpl::TemplateProcessor p;
  ks::tpl::RunSettings settings;
  settings.template_dir = dir;
  settings.system_dir = dir;
  settings.now = {2026, 11, 24, 12, 0, 0};
  settings.seed = 1;
  settings.max_repeats = 2000;
  settings.local_files_only = true;
  if (p.LoadText(text, kind, &data, "To", "From", "Subject", settings) != ks::tpl::kLoaded)
    return 0;
  p.DefineMacro("RPFLIMIT", value.substr(0, 300));
  std::string piece;
  std::size_t pieces = 0, total = 0;
  while (p.NextLine(piece)) {
    ++pieces;
    total += piece.size();
    // Every piece is at most a line of output with its line end.
    if (piece.size() > 4 * ks::tpl::kLineLimit + ks::tpl::kOverflowLimit) std::abort();
  }
  (void)pieces;
  (void)total;
  p.Release();
  return 0;
}
