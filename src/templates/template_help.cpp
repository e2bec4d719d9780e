#include "templates/template_help.h"

namespace ks::tpl {

namespace {

struct Row {
  const char* name;
  const char* kinds;
  const char* help;
  std::uint8_t cursor;
};

// The help list in its order: value macros by kind, the blocks, the control macros, the
// functions.
constexpr Row kRows[] = {
    {"@msgto", "1,2,3", "To whom this message is addressed", 0},
    {"@msgtoaka", "1,2,3", "Address to which this message is addressed", 0},
    {"@msgfrom", "1,2,3", "From whom this message is sent", 0},
    {"@msgsubject", "1,2,3", "Subject of this message", 0},
    {"@akatouse", "<all>", "Aka to use", 0},
    {"@systemname", "<all>", "System name", 0},
    {"@sysopname", "<all>", "SysOp name", 0},
    {"@phoneline1", "<all>", "Phone line 1", 0},
    {"@phoneline2", "<all>", "Phone line 2", 0},
    {"@phoneline3", "<all>", "Phone line 3", 0},
    {"@location", "<all>", "Location", 0},
    {"@flags", "<all>", "Flags", 0},
    {"@baud", "<all>", "Baud", 0},
    {"@prgname", "<all>", "Program name", 0},
    {"@prgversion", "<all>", "KESTRA program version", 0},
    {"@daynr", "<all>", "Day number (1-31)", 0},
    {"@dayofyear", "<all>", "Day of year (1-365)", 0},
    {"@day", "<all>", "Day", 0},
    {"@monthnr", "<all>", "Month number (1-12)", 0},
    {"@month", "<all>", "Month", 0},
    {"@year", "<all>", "Year (1980-xxxx)", 0},
    {"@hour", "<all>", "Hour", 0},
    {"@min", "<all>", "Minute", 0},
    {"@cookie", "<all>", "Fortune cookie", 0},
    {"@filename", "2,3,4", "File name", 0},
    {"@filedesc", "2,3,4", "File description", 0},
    {"@filesize", "2,3,4", "File size", 0},
    {"@filesizekb", "2,3,4", "File size in kilobytes", 0},
    {"@filecost", "2,3,4", "File cost", 0},
    {"@filedate", "2,3,4", "File date", 0},
    {"@fileyear", "2,3,4", "Year of file date", 0},
    {"@filemonth", "2,3,4", "Month of file date", 0},
    {"@fileday", "2,3,4", "Day of file date", 0},
    {"@filetime", "2,3,4", "File time", 0},
    {"@filehour", "2,3,4", "Hour of file time", 0},
    {"@filemin", "2,3,4", "Minute of file time", 0},
    {"@fileage", "2,3,4", "Age of the file in days", 0},
    {"@fileorigin", "2,3,4", "Origin address of this file", 0},
    {"@filefrom", "2,3,4", "Whom this file was received from", 0},
    {"@filecrc", "2,3,4", "Crc of the file", 0},
    {"@filereplace", "2,3,4", "Filemask this file replaces", 0},
    {"@filemagic", "2,3,4", "Magic name for this file", 0},
    {"@fileecho", "<all>", "Name of the fileecho", 0},
    {"@group", "<all>", "Group this fileecho belongs to", 0},
    {"@groupname", "<all>", "Name of the group", 0},
    {"@echodesc", "<all>", "Fileecho description", 0},
    {"@unitcost", "<all>", "Unit cost of files forwared in this fileecho", 0},
    {"@unitsize", "<all>", "Size of one unit", 0},
    {"@raidlevel", "<all>", "The RAID security level", 0},
    {"@raidflags", "<all>", "The RAID flags", 0},
    {"@systems", "1", "Systems connected to this fileecho", 0},
    {"@destdir", "1", "Fileecho destination directory", 0},
    {"@passthru", "1", "If fileecho is passthru, returns Yes, else No", 0},
    {"@blockbytes", "1,2", "Total bytes in current block", 0},
    {"@blockkb", "1,2", "Total Kb in current block", 0},
    {"@blockfiles", "1,2", "Total files in current block", 0},
    {"@totalbytes", "1,2", "Total bytes in current report", 0},
    {"@totalkb", "1,2", "Total Kb in current report", 0},
    {"@totalfiles", "1,2", "Total files in current report", 0},
    {"@billsubtotal", "3", "Total cost exc. percentage to add to bill", 0},
    {"@billaddperc", "3", "Percentage to add to bill", 0},
    {"@billtotal", "3", "Total cost inc. percentage to add to bill", 0},
    {"@invoicenr", "3", "Invoice number of current bill", 0},
    {"@echostat", "3", "Access character (+,-,*,&, )", 0},
    {"@avgfiles", "3", "Average files in this echo per month", 0},
    {"@avgkb", "3", "Average kb in this echo per month", 0},
    {"@echopassword", "3", "File echo password for this system", 0},
    {"@mgrpassword", "3", "AreaMgr password for this system", 0},
    {"@pktpassword", "3", "Packet password for this system", 0},
    {"@availgroups", "3", "Groups this system has access to", 0},
    {"@mailstat", "3", "Status for all non-fileattach messages", 0},
    {"@filestat", "3", "Status for all fileattach messages", 0},
    {"@ticmode", "3", "TIC file mode for this system", 0},
    {"@packmode", "3", "Packing mode for this system", 0},
    {"@template", "3", "Include template files for this system", 0},
    {"@notify", "3", "Send notify messages to this system", 0},
    {"@forward", "3", "Forward requests to uplink", 0},
    {"@autoadd", "3", "Allow auto add for this system", 0},
    {"@remote", "3", "Allow remote maintenance", 0},
    {"@compression", "3", "Compression type for this system", 0},
    {"@billing", "3", "Billing status for this system", 0},
    {"@billgroups", "3", "Groups for which this system should be billed", 0},
    {"@credit", "3", "System's credit level", 0},
    {"@warnlevel", "3", "Credit level at which to send a warning message", 0},
    {"@stoplevel", "3", "Credit level at which to stop sending files", 0},
    {"@addpercent", "3", "Percentage to add to systems bill", 0},
    {"@membership", "3", "Membership fee", 0},
    {"@systemstatus", "3", "Status of this system (Active or Passive)", 0},
    {"@conference", "3", "Name of the echomail conference", 0},
    {"@confdesc", "3", "Description of the echomail conference", 0},
    {"@requestname", "4", "Filename or magic name requested", 0},
    {"@requesterr", "4", "The reason why the file request was unsuccessful", 0},
    {"@downtime", "4", "The estimated download time for this file", 0},
    {"@rpflimit", "4", "The maximum number of files for this file request", 0},
    {"@rpslimit", "4", "The maximum number of kb's for this file request", 0},
    {"@rptlimit", "4", "The maximum time for this file request", 0},
    {"@remotemailer", "4", "Name of the remote mailer", 0},
    {"@remoteserial", "4", "Serial number of the remote mailer", 0},
    {"@remoteversion", "4", "Version of the remote mailer", 0},
    {"@sessiontype", "4", "The type of session (secure/unsecure/unlisted)", 0},
    {"@connectspeed", "4", "The connected baud rate", 0},
    {"@areabegin", "<fun>", "Begin a loop structured by area", 0},
    {"@groupbegin", "<fun>", "Begin a group block", 0},
    {"@filebegin", "<fun>", "Begin a loop structured by file", 0},
    {"@billbegin", "<fun>", "Begin a cost loop structured by file", 0},
    {"@requestbegin", "<fun>", "Begin a unsuccessful file request request loop", 0},
    {"@pendingbegin", "<fun>", "Begin a loop of pending requests", 0},
    {"@confbegin", "<fun>", "Begin a loop structured by conference", 0},
    {"@end", "<fun>", "End of a block or a test", 0},
    {"@else", "<fun>", "Start a new loop if previous test failed", 0},
    {"@overflow", "<fun>", "Print the next part of the overflow buffer", 0},
    {"@clearoverflow", "<fun>", "Empty the overflow buffer", 0},
    {"@filterdesc", "<fun>", "Remove carriage returns and ANSI from descriptions", 0},
    {"@filtercr", "<fun>", "Remove carriage returns from file descriptions", 0},
    {"@filteransi", "<fun>", "Remove ANSI sequences from file descriptions", 0},
    {"@nomsgoutput", "<fun>", "Do not write this message", 0},
    {"@closeoutput", "<fun>", "Close the output file", 0},
    {"@allowbreak", "<fun>", "The message may be split into parts here", 0},
    {"@forcebreak", "<fun>", "The message is split into parts here", 0},
    {"@just()", "<fun>", "@just(@id, [L|R], Size [,PadChar] [,R])", 6},
    {"@center()", "<fun>", "@center(@id ,Size [,PadChar] [,R])", 8},
    {"@copy()", "<fun>", "@copy(@id, begin [,num] [,R])", 6},
    {"@test()", "<fun>", "@test(@id, [=|<>], [@id|@const)", 6},
    {"@assign()", "<fun>", "@assign(@var, [@id|@const])", 8},
    {"@include()", "<fun>", "@include([d:]\\path\\filename.ext)", 9},
    {"@add()", "<fun>", "@add(@var, [@id|@const])", 5},
    {"@sub()", "<fun>", "@sub(@var, [@id|@const])", 5},
    {"@pos()", "<fun>", "@pos(@id, [@id|\"string\")", 5},
    {"@len()", "<fun>", "@len(@id)", 5},
    {"@openoutput()", "<fun>", "@openoutput([@id|@const], [rewrite|append]", 12},
    {"@setoflimit()", "<fun>", "@setoflimit(@var|@const)", 12},
    {"@uppercase()", "<fun>", "@uppercase(@id|\"string\")", 0},
    {"@lowercase()", "<fun>", "@lowercase(@id|\"string\")", 0},
    {"@capitalize()", "<fun>", "@capitalize(@id|\"string\")", 0},
    {"@includeapl()", "<fun>", "Include the lines of another template", 0},
};

}  // namespace

const std::vector<HelpItem>& HelpList() {
  static const std::vector<HelpItem> list = [] {
    std::vector<HelpItem> out;
    for (const Row& r : kRows) {
      HelpItem item;
      item.entry.name.set(r.name);
      item.entry.help.set(r.help);
      item.entry.cursor = r.cursor;
      item.kinds = r.kinds;
      out.push_back(std::move(item));
    }
    return out;
  }();
  return list;
}

}  // namespace ks::tpl
