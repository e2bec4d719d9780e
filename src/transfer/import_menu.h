// The "Import data" window: one importer per foreign file. Each asks where the file is, reads
// it whole, and only when all of it could be read adds its areas and systems, showing each
// area's tag as it goes and a summary at the end.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "transfer/import_parse.h"
#include "transfer/transfer.h"

namespace ks {

inline constexpr std::uint8_t kImportTopic = 31;

class GenMsgImportObj {
 public:
  explicit GenMsgImportObj(std::string file_name) : file_name_(std::move(file_name)) {}
  virtual ~GenMsgImportObj() = default;

  // Asks for the file, reads it and adds what it holds; every outcome ends in a message.
  void Run(const TransferContext& ctx) const;
  // The areas and systems of the file's bytes; `main` is the system's main address.
  virtual ImportList Parse(std::string_view bytes, const NetAddr& main) const = 0;
  // The file as the other program names it ("AREAFILE.GE").
  const std::string& file_name() const { return file_name_; }

 protected:
  // The path of the file to read: asks for the directory that holds file_name() and finds the
  // file there without regard to case. Nothing when the operator gave up or it is not there
  // (which has been told).
  virtual std::optional<std::string> AskPath(const TransferContext& ctx) const;

 private:
  std::string file_name_;
};

class Gecho100MsgImportObj : public GenMsgImportObj {
 public:
  Gecho100MsgImportObj() : GenMsgImportObj("AREAFILE.GE") {}
  ImportList Parse(std::string_view b, const NetAddr&) const override { return ParseGecho100(b); }
};

class Gecho120MsgImportOBj : public GenMsgImportObj {
 public:
  Gecho120MsgImportOBj() : GenMsgImportObj("AREAFILE.GE") {}
  ImportList Parse(std::string_view b, const NetAddr&) const override { return ParseGecho120(b); }
};

class FastEcho146MsgImportObj : public GenMsgImportObj {
 public:
  FastEcho146MsgImportObj() : GenMsgImportObj("FASTECHO.CFG") {}
  ImportList Parse(std::string_view b, const NetAddr&) const override {
    return ParseFastEcho146(b);
  }
};

class Fmail146MsgImportObj : public GenMsgImportObj {
 public:
  Fmail146MsgImportObj() : GenMsgImportObj("FMAIL.AR") {}
  ImportList Parse(std::string_view b, const NetAddr&) const override { return ParseFmailAr(b); }
};

class SquishMsgImportObj : public GenMsgImportObj {
 public:
  SquishMsgImportObj() : GenMsgImportObj("SQUISH.CFG") {}
  ImportList Parse(std::string_view b, const NetAddr& main) const override {
    return ParseSquishCfg(b, main);
  }
};

class AreasBBSMsgImportObj : public GenMsgImportObj {
 public:
  AreasBBSMsgImportObj() : GenMsgImportObj("AREAS.BBS") {}
  ImportList Parse(std::string_view b, const NetAddr& main) const override {
    return ParseAreasBbs(b, main);
  }
};

// The two fileecho sources ask for the path and name of the file.
class TickImportObj : public GenMsgImportObj {
 public:
  TickImportObj() : GenMsgImportObj("TIC.CFG") {}
  ImportList Parse(std::string_view b, const NetAddr& main) const override {
    return ParseTickCfg(b, main);
  }

 protected:
  std::optional<std::string> AskPath(const TransferContext& ctx) const override;
};

class FileboneImportObj : public GenMsgImportObj {
 public:
  FileboneImportObj() : GenMsgImportObj("FILEBONE.NA") {}
  ImportList Parse(std::string_view b, const NetAddr&) const override { return ParseFilebone(b); }

 protected:
  std::optional<std::string> AskPath(const TransferContext& ctx) const override;
};

// The file `name` in `dir`, matched without regard to case; empty when there is none.
std::string FindFileNoCase(const std::string& dir, const std::string& name);

void RunImportMenu(const TransferContext& ctx);

}  // namespace ks
