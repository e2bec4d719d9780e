#include "templates/template_keywords.h"

#include <algorithm>
#include <array>

namespace ks::tpl {

namespace {

constexpr std::array<std::string_view, kKeywordCount> kNames = {
    "AKATOUSE",     "SYSTEMNAME",   "SYSOPNAME",     "PHONELINE1",  "PHONELINE2", "PHONELINE3",
    "LOCATION",     "FLAGS",        "BAUD",          "PRGVERSION",  "DAYNR",      "DAY",
    "MONTHNR",      "MONTH",        "YEAR",          "COOKIE",      "AREABEGIN",  "FILEBEGIN",
    "END",          "OVERFLOW",     "BLOCKBYTES",    "BLOCKKB",     "BLOCKFILES", "TOTALBYTES",
    "TOTALKB",      "TOTALFILES",   "GROUPBEGIN",    "ELSE",        "BILLBEGIN",  "FILECOST",
    "FILENAME",     "FILEDESC",     "FILESIZE",      "FILEDATE",    "FILETIME",   "FILEORIGIN",
    "FILEFROM",     "FILECRC",      "FILEREPLACE",   "FILEMAGIC",   "FILEECHO",   "GROUP",
    "GROUPNAME",    "ECHODESC",     "ECHOSTAT",      "AVGFILES",    "AVGKB",      "ECHOPASSWORD",
    "MGRPASSWORD",  "AVAILGROUPS",  "FILESTAT",      "MAILSTAT",    "TICMODE",    "PACKMODE",
    "TEMPLATE",     "NOTIFY",       "FORWARD",       "AUTOADD",     "REMOTE",     "COMPRESSION",
    "FILESIZEKB",   "MSGTO",        "MSGFROM",       "MSGSUBJECT",  "FILTERDESC", "NOMSGOUTPUT",
    "CLOSEOUTPUT",  "BILLING",      "BILLGROUPS",    "CREDIT",      "WARNLEVEL",  "STOPLEVEL",
    "ADDPERCENT",   "BILLADDPERC",  "BILLSUBTOTAL",  "BILLTOTAL",   "UNITCOST",   "UNITSIZE",
    "INVOICENR",    "FILEYEAR",     "FILEMONTH",     "FILEDAY",     "FILEHOUR",   "FILEMIN",
    "MSGTOAKA",     "DESTDIR",      "ALLOWBREAK",    "FORCEBREAK",  "MEMBERSHIP", "FILTERCR",
    "FILTERANSI",   "REQUESTBEGIN", "REQUESTNAME",   "REQUESTERR",  "PASSTHRU",   "PRGNAME",
    "SYSTEMSTATUS", "SYSTEMS",      "CLEAROVERFLOW", "DOWNTIME",    "RAIDLEVEL",  "RAIDFLAGS",
    "HOUR",         "MIN",          "DAYOFYEAR",     "FILEAGE",     "INCLUDEAPL", "PENDINGBEGIN",
    "CONFBEGIN",    "CONFERENCE",   "CONFDESC",      "PKTPASSWORD", "JUST",       "CENTER",
    "COPY",         "TEST",         "ASSIGN",        "INCLUDE",     "ADD",        "SUB",
    "POS",          "LEN",          "OPENOUTPUT",    "SETOFLIMIT",  "UPPERCASE",  "LOWERCASE",
    "CAPITALIZE",
};

// The names in alphabetical order with their keywords, for the look-up.
struct Sorted {
  std::array<std::pair<std::string_view, Keyword>, kKeywordCount> names;
  Sorted() {
    for (std::size_t i = 0; i < kKeywordCount; ++i) names[i] = {kNames[i], static_cast<Keyword>(i)};
    std::sort(names.begin(), names.end());
  }
};

}  // namespace

std::string_view KeywordName(Keyword k) {
  const auto i = static_cast<std::size_t>(k);
  return i < kKeywordCount ? kNames[i] : std::string_view();
}

std::optional<Keyword> FindKeyword(std::string_view upper_name) {
  static const Sorted sorted;
  const auto it = std::lower_bound(sorted.names.begin(), sorted.names.end(), upper_name,
                                   [](const std::pair<std::string_view, Keyword>& e,
                                      std::string_view n) { return e.first < n; });
  if (it == sorted.names.end() || it->first != upper_name) return std::nullopt;
  return it->second;
}

int FunctionCode(std::string_view upper_name) {
  const auto k = FindKeyword(upper_name);
  if (!k || *k < Keyword::Just) return 0;
  return static_cast<int>(*k) - static_cast<int>(Keyword::Just) + 1;
}

bool IsBlockBegin(Keyword k) {
  switch (k) {
    case Keyword::AreaBegin:
    case Keyword::FileBegin:
    case Keyword::GroupBegin:
    case Keyword::BillBegin:
    case Keyword::RequestBegin:
    case Keyword::PendingBegin:
    case Keyword::ConfBegin:
      return true;
    default:
      return false;
  }
}

}  // namespace ks::tpl
