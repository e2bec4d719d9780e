#include "templateview/sample_data.h"

#include <cstdio>

#include "common/netaddr.h"
#include "templates/template_dates.h"
#include "tui/picklist.h"

namespace ks {

namespace {

using tpl::Keyword;

constexpr const char* kFlowNames[] = {"None",   "Hold",        "Crash",
                                      "Direct", "Hold Direct", "Crash Direct"};
constexpr const char* kUnitSizes[] = {"100kb", "1024kb", "file"};
constexpr const char* kBilling[] = {"Inactive", "Active", "Membership"};
constexpr double kSampleCost = 0.1;

std::string Money(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

std::string YesNo(bool b) {
  return b ? "Yes" : "No";
}

template <std::size_t N>
std::string Pick(const char* const (&names)[N], unsigned i) {
  return i < N ? names[i] : "";
}

std::string Groups(const GroupSet& set) {
  return NumberRangesText(256, [&](int g) { return set.Has(static_cast<std::uint8_t>(g)); });
}

}  // namespace

tpl::TemplateKind TemplateKindOf(ViewerKind kind) {
  switch (kind) {
    case ViewerKind::kSystemMessage:
      return tpl::TemplateKind::kSystemMessage;
    case ViewerKind::kRequestReply:
      return tpl::TemplateKind::kRequestReply;
    case ViewerKind::kFileechoList:
      return tpl::TemplateKind::kFileechoList;
    default:
      return tpl::TemplateKind::kFileReport;
  }
}

SampleData::SampleData(SampleSource source) : s_(std::move(source)), random_(s_.seed | 1) {
  const auto next = [this] {
    random_ ^= random_ << 13;
    random_ ^= random_ >> 17;
    random_ ^= random_ << 5;
    return random_;
  };
  avg_files_ = std::to_string(next() % 100);
  avg_kb_ = std::to_string(next() % 9999);
}

std::vector<std::pair<std::string, std::string>> SampleData::RequestMacros() {
  return {{"RPFLIMIT", "10"},        {"RPSLIMIT", "1024"},
          {"RPTLIMIT", "30"},        {"REMOTEMAILER", "BinkleyTerm"},
          {"REMOTESERIAL", "12345"}, {"REMOTEVERSION", "2.60"},
          {"SESSIONTYPE", "secure"}, {"CONNECTSPEED", "33600"}};
}

int SampleData::Files() const {
  return s_.kind == ViewerKind::kFileechoList ? 1 : s_.files;
}

void SampleData::CountFile() {
  const std::uint32_t size = FileSize(file_);
  block_bytes_ += size;
  total_bytes_ += size;
  ++block_files_;
  ++total_files_;
}

bool SampleData::FirstItem(Keyword block) {
  switch (block) {
    case Keyword::FileBegin:
    case Keyword::BillBegin:
      file_ = 1;
      block_bytes_ = 0;
      block_files_ = 0;
      CountFile();
      return true;
    case Keyword::RequestBegin:
      request_ = 1;
      return true;
    default:  // one area, group, pending item or conference
      return true;
  }
}

bool SampleData::NextItem(Keyword block) {
  switch (block) {
    case Keyword::FileBegin:
    case Keyword::BillBegin:
      if (file_ >= Files()) {
        file_ = 0;
        return false;
      }
      ++file_;
      CountFile();
      return true;
    case Keyword::RequestBegin:
      if (request_ >= static_cast<int>(std::size(kRequestErrors))) {
        request_ = 0;
        return false;
      }
      ++request_;
      return true;
    default:
      return false;
  }
}

std::optional<std::string> SampleData::Value(Keyword k) {
  const KESTRAcfg& c = *s_.cfg;
  const FileMGRrec& fe = s_.fileecho;
  if (auto v = FileValue(k)) return v;
  if (auto v = SystemValue(k)) return v;
  switch (k) {
    case Keyword::AkaToUse:
      return FormatAddr(c.addresses[fe.useAka < kAddressCount ? fe.useAka : 0]);
    case Keyword::SystemName:
      return c.bbsName.str();
    case Keyword::SysopName:
      return c.sysopName.str();
    case Keyword::PhoneLine1:
    case Keyword::PhoneLine2:
    case Keyword::PhoneLine3:
      return c.phone[static_cast<int>(k) - static_cast<int>(Keyword::PhoneLine1)].str();
    case Keyword::Location:
      return c.location.str();
    case Keyword::Flags:
      return c.nodelistFlags.str();
    case Keyword::Baud:
      return c.maxBaud.str();
    case Keyword::PrgVersion:
      return s_.version;
    case Keyword::Group:
      return std::to_string(fe.group);
    case Keyword::GroupName:
      return s_.group_name;
    case Keyword::UnitCost:
      return Money(kSampleCost);
    case Keyword::UnitSize:
      return Pick(kUnitSizes, fe.unitSize);
    case Keyword::RaidLevel:
      return std::to_string(fe.raidLevel);
    case Keyword::RaidFlags:
      return std::string(fe.raidDistribution == rdOpen ? "Open" : "Filebone") +
             (fe.raidHatching == rhAnyone ? ", hatching by anyone" : ", no hatching") +
             (fe.raidReturnChannel ? ", return channel" : "");
    case Keyword::Systems: {
      int n = 0;
      const std::size_t slots = std::min<std::size_t>(c.numberOfSystems, kMaxSystems);
      for (std::size_t i = 0; i < slots; ++i)
        if (fe.systems[i].address.zone != 0) ++n;
      return std::to_string(n);
    }
    case Keyword::DestDir:
      return fe.destination.str();
    case Keyword::PassThru:
      return YesNo(fe.Has(kFePassThrough));
    case Keyword::BlockBytes:
      return std::to_string(block_bytes_);
    case Keyword::BlockKb:
      return std::to_string((block_bytes_ + 1023) / 1024);
    case Keyword::BlockFiles:
      return std::to_string(block_files_);
    case Keyword::TotalBytes:
      return std::to_string(total_bytes_);
    case Keyword::TotalKb:
      return std::to_string((total_bytes_ + 1023) / 1024);
    case Keyword::TotalFiles:
      return std::to_string(total_files_);
    case Keyword::RequestName:
      return std::string("FILE");
    case Keyword::RequestErr:
      return request_ > 0 ? kRequestErrors[request_ - 1] : "";
    case Keyword::DownTime:
      return std::string("00:01");
    case Keyword::Conference:
      return std::string("SAMPLE.CONFERENCE");
    case Keyword::ConfDesc:
      return std::string("Sample conference for view template");
    default:
      return std::nullopt;
  }
}

// The values of the current sample file (and of the fileecho outside file blocks).
std::optional<std::string> SampleData::FileValue(Keyword k) const {
  const bool list = s_.kind == ViewerKind::kFileechoList;
  const bool in_file = file_ > 0;
  const tpl::DateTime& d = s_.file_date;
  switch (k) {
    case Keyword::FileEcho:
      return in_file ? "TESTECHO" : s_.fileecho.tag.str();
    case Keyword::EchoDesc:
      return in_file ? "Test file echo for view template" : s_.fileecho.description.str();
    case Keyword::FileName:
      if (s_.kind == ViewerKind::kRequestReply) return std::string("*.*");
      return list ? "TEST.ZIP" : "SAMPLE" + std::to_string(std::max(file_, 1)) + ".ZIP";
    case Keyword::FileDesc:
      if (list) return std::string("This is a test description");
      return "This is the description for file number " + std::to_string(std::max(file_, 1)) +
             ". " + "It has been lengthened so that it will not fit on one " +
             "line. This will cause an overflow, which can be usefull " +
             "for testing the @overflow macro.";
    case Keyword::FileReplace:
      return std::string(list ? "AST*.ZIP" : "TMP*.*");
    case Keyword::FileMagic:
      return std::string(list ? "AWESOME" : "SAMPLE-MAGIC");
    case Keyword::FileCrc:
      return std::string("12345678");
    case Keyword::FileCost:
      return Money(kSampleCost);
    case Keyword::FileSize:
      return std::to_string(FileSize(std::max(file_, 1)));
    case Keyword::FileSizeKb:
      return std::to_string((FileSize(std::max(file_, 1)) + 1023) / 1024);
    case Keyword::FileDate:
      return tpl::FormatDate(
          tpl::DateFormat(static_cast<tpl::DateOrder>(std::min<int>(s_.cfg->dateFormat, 2))), d);
    case Keyword::FileTime:
      return tpl::FormatDate(tpl::kTimeFormat, d, true);
    case Keyword::FileYear:
      return std::to_string(d.year);
    case Keyword::FileMonth:
      return tpl::FormatDate("%mm%", d);
    case Keyword::FileDay:
      return tpl::FormatDate("%dd%", d);
    case Keyword::FileHour:
      return tpl::FormatDate("%hh%", d, true);
    case Keyword::FileMin:
      return tpl::FormatDate("%mm%", d, true);
    case Keyword::FileAge:
      return std::string("0");
    case Keyword::FileOrigin:
      return FormatAddr(s_.cfg->addresses[0]);
    case Keyword::FileFrom:
      return FormatAddr(s_.node.address);
    default:
      return std::nullopt;
  }
}

// The values of the sample system (the first node record) and its bill.
std::optional<std::string> SampleData::SystemValue(Keyword k) {
  const NodeMGRrec& n = s_.node;
  switch (k) {
    case Keyword::MsgToAka:
      return FormatAddr(n.address);
    case Keyword::EchoStat: {
      const std::string tag = s_.fileecho.tag.str();
      const char first =
          tag.empty() ? ' ' : static_cast<char>(std::toupper(static_cast<unsigned char>(tag[0])));
      return std::string(1, first < 'F'   ? ' '
                            : first < 'K' ? '+'
                            : first < 'P' ? '-'
                            : first < 'U' ? '&'
                                          : '*');
    }
    case Keyword::AvgFiles:
      return avg_files_;
    case Keyword::AvgKb:
      return avg_kb_;
    case Keyword::EchoPassword:
      return n.ticPassword.str();
    case Keyword::MgrPassword:
      return n.areaMgrPassword.str();
    case Keyword::PktPassword:
      return n.pktPassword.str();
    case Keyword::AvailGroups:
      return Groups(n.groups);
    case Keyword::BillGroups:
      return Groups(n.billGroups);
    case Keyword::MailStat:
      return Pick(kFlowNames, n.otherMailStatus);
    case Keyword::FileStat:
      return Pick(kFlowNames, n.fileAttachStatus);
    case Keyword::TicMode:
      return n.ticMode == tmAdvanced ? "Advanced TIC file" : "Normal TIC file";
    case Keyword::PackMode:
      return n.packMode == pmNoPacking  ? "No packing"
             : n.packMode == pmAllFiles ? "Pack ALL files"
                                        : "Pack TIC files";
    case Keyword::Template:
      return YesNo(n.Has(kNodeIncludeTemplate));
    case Keyword::Notify:
      return YesNo(n.Has(kNodeSendNotifyList));
    case Keyword::Forward:
      return YesNo(n.Has(kNodeForwardRequests));
    case Keyword::AutoAdd:
      return YesNo(n.Has(kNodeAllowAutoAdd));
    case Keyword::Remote:
      return YesNo(n.Has(kNodeRemoteMaint));
    case Keyword::Compression:
      if (n.compression >= 1 && n.compression <= s_.archivers.size())
        return s_.archivers[n.compression - 1u];
      return std::string("No compression");
    case Keyword::Billing:
      return Pick(kBilling, n.billing);
    case Keyword::Credit:
      return Money(n.credit);
    case Keyword::WarnLevel:
      return Money(n.warnLevel);
    case Keyword::StopLevel:
      return Money(n.stopLevel);
    case Keyword::AddPercent:
    case Keyword::BillAddPerc:
      return Money(n.addPercent);
    case Keyword::Membership:
      return Money(n.membershipFee);
    case Keyword::BillSubtotal:
      return Money(kSampleCost * Files());
    case Keyword::BillTotal:
      return Money(kSampleCost * Files() * (1 + n.addPercent / 100));
    case Keyword::InvoiceNr:
      return std::string("1");
    case Keyword::SystemStatus:
      return std::string(n.Has(kNodeInactive) ? "Passive" : "Active");
    default:
      return std::nullopt;
  }
}

}  // namespace ks
