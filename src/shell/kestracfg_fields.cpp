#include "shell/kestracfg_fields.h"

#include <array>

#include "shell/kestracfg.h"

namespace ks {
namespace {

#define F(m) KS_FIELD(KESTRAcfg, m)
#define R(m) KS_RESERVED(KESTRAcfg, m)
constexpr std::array kTopLevel = {
    F(revision),
    F(dataPath),
    F(netmailPath),
    F(msgPath),
    F(inboundPath),
    F(logFile),
    F(msgLog),
    F(outboundMailPath),
    F(queuePath),
    F(ticPath),
    F(aliasFile),
    F(echoSemaphore),
    F(rcvdPath),
    F(ksxLog),
    F(badTicsPath),
    F(mgrLog),
    F(outboundPath),
    F(netmailOutPath),
    F(secInboundPath),
    F(sysopName),
    R(reserved1135),
    F(listPath),
    F(bbsName),
    F(maxBaud),
    F(nodelistFlags),
    F(location),
    R(reserved1325),
    F(phone),
    F(dosPrograms),
    F(os2Programs),
    F(domains),
    F(logStyle),
    F(mailerMode),
    F(dateFormat),
    F(processLocalRequests),
    F(replaceExtension),
    F(maxRequestAge),
    F(kestraPriority),
    F(rpPriority),
    F(numberOfSystems),
    F(msgCompatibility),
    F(keepExportedMsgs),
    F(maxMsgSize),
    F(lastHardDrive),
    F(daysOnHold),
    F(statFileSize),
    F(utcOffset),
    F(sortByGroups),
    F(swapMethod),
    F(redirectOutput),
    F(noVirusErrorlevel),
    F(filesToScan),
    F(eacVirusErrorlevel),
    F(eacErrorErrorlevel),
    F(longDescChar),
    F(longDescSpacesBefore),
    F(longDescSpacesAfter),
    F(longDescWidth),
    F(oneLineLongDesc),
    F(maxLongDescLines),
    F(reRequestRate),
    F(reRequestTimes),
    F(autoRemovePassthru),
    F(autoAddDelay),
    F(keepFileDate),
    F(updateDescriptIon),
    F(dupeCheck),
    F(delEmptyLines),
    F(filterAnsi),
    F(filterLongDesc),
    F(setUploader),
    F(addTagToDesc),
    F(invalidFlowExt),
    F(ticArchiveMasks),
    R(reserved9437),
    F(versionMajor),
    F(versionMinor),
    F(versionBuild),
    R(reserved9444),
    F(badLog),
    F(dupeLog),
    F(internet),
    F(requestProcessor),
    F(originLines),
    R(reserved11703),
    F(akaMatch),
    F(uplinks),
    R(reserved14884),
    F(confirmDelete),
    F(beepOnError),
    F(createMissingDirs),
    F(fileechoListGroups),
    F(filterString),
    R(reserved14963),
    F(logMask),
    F(nodeDefaults),
    R(reserved15167),
    F(tagPath),
    F(useAkaMatching),
    F(echoMailOption),
    F(downloadCounters),
    R(reserved15451),
    F(nextInvoice),
    F(echotossLog),
    F(addTearOrigin),
    F(addNpdKludge),
    F(addPgmKludge),
    F(tmpPath),
    R(reserved15585),
    F(templatePath),
    R(reserved15789),
    F(minHdSpace),
    F(colourSet),
    R(reserved15836),
    F(rpLog),
    R(reserved16019),
    F(maxTicArchiveSize),
    F(maxSizeToPack),
    R(reserved16092),
    F(billingPath),
    F(dupePath),
    R(reserved16218),
    F(unwantedFile),
    F(autoCleanUp),
    F(oldBillsPath),
    R(reserved16833),
    F(wantedFile),
    F(netmailSemaphore),
    R(reserved16959),
    F(speechFriendly),
    F(addresses),
    F(fakePoint),
    R(reserved17618),
    R(reservedLast),
};
#undef F
#undef R

constexpr std::array kArchiverDef = {
    KS_FIELD(ArchiverDef, packProgram),     KS_FIELD(ArchiverDef, packSwitches),
    KS_FIELD(ArchiverDef, bannerSwitches),  KS_FIELD(ArchiverDef, unpackProgram),
    KS_FIELD(ArchiverDef, unpackSwitches),  KS_FIELD(ArchiverDef, noDirsSwitches),
    KS_FIELD(ArchiverDef, signature),       KS_FIELD(ArchiverDef, signatureMask),
    KS_FIELD(ArchiverDef, signatureOffset), KS_FIELD(ArchiverDef, extension),
};

constexpr std::array kToolProgram = {
    KS_FIELD(ToolProgram, program),
    KS_FIELD(ToolProgram, switches),
};

constexpr std::array kExternalPrograms = {
    KS_FIELD(ExternalPrograms, archivers), KS_FIELD(ExternalPrograms, scan),
    KS_FIELD(ExternalPrograms, eac),       KS_FIELD(ExternalPrograms, gus),
    KS_FIELD(ExternalPrograms, editor),
};

constexpr std::array kDomainName = {
    KS_FIELD(DomainName, zone),
    KS_FIELD(DomainName, domain),
};

constexpr std::array kAkaMatchRow = {
    KS_FIELD(AkaMatchRow, zone),
    KS_FIELD(AkaMatchRow, net),
    KS_FIELD(AkaMatchRow, aka),
};

constexpr std::array kAreaMgrUplink = {
    KS_FIELD(AreaMgrUplink, type),          KS_FIELD(AreaMgrUplink, address),
    KS_FIELD(AreaMgrUplink, program),       KS_FIELD(AreaMgrUplink, password),
    KS_FIELD(AreaMgrUplink, plusPrefix),    KS_FIELD(AreaMgrUplink, groups),
    KS_FIELD(AreaMgrUplink, unconditional), KS_FIELD(AreaMgrUplink, areasFile),
    KS_FIELD(AreaMgrUplink, fileFormat),    KS_FIELD(AreaMgrUplink, originAka),
    KS_FIELD(AreaMgrUplink, direct),
};

constexpr std::array kRpSessionLimits = {
    KS_FIELD(RpSessionLimits, aliasFile), KS_FIELD(RpSessionLimits, groups),
    KS_FIELD(RpSessionLimits, listFile),  KS_FIELD(RpSessionLimits, maxFiles),
    KS_FIELD(RpSessionLimits, maxSizeKb), KS_FIELD(RpSessionLimits, maxTimeMin),
};

constexpr std::array kRequestProcessor = {
    KS_FIELD(RequestProcessor, active),
    KS_FIELD(RequestProcessor, reportTemplate),
    KS_FIELD(RequestProcessor, flagMode),
    KS_FIELD(RequestProcessor, ccSysop),
    KS_FIELD(RequestProcessor, inetMaxFiles),
    KS_FIELD(RequestProcessor, inetMaxSizeKb),
    KS_FIELD(RequestProcessor, inetReportTemplate),
    KS_FIELD(RequestProcessor, unlisted),
    KS_FIELD(RequestProcessor, unsecure),
    KS_FIELD(RequestProcessor, secure),
};

constexpr std::array kInternetSettings = {
    KS_FIELD(InternetSettings, address),        KS_FIELD(InternetSettings, emailClient),
    KS_FIELD(InternetSettings, inQueue),        KS_FIELD(InternetSettings, outQueue),
    KS_FIELD(InternetSettings, sentQueue),      KS_FIELD(InternetSettings, inSmtpExt),
    KS_FIELD(InternetSettings, outSmtpExt),     KS_FIELD(InternetSettings, resendRetry),
    KS_FIELD(InternetSettings, resendDelay),    KS_FIELD(InternetSettings, messageSizeKb),
    KS_FIELD(InternetSettings, uucpSiteName),   KS_FIELD(InternetSettings, uucpHostName),
    KS_FIELD(InternetSettings, spoolAgeDays),   KS_FIELD(InternetSettings, scanNetmail),
    KS_FIELD(InternetSettings, outlookAccount),
};

#define KS_LAYOUT(type, table) \
  CfgLayout {                  \
#type, sizeof(type), table \
  }
const std::array kSubLayouts = {
    KS_LAYOUT(ArchiverDef, kArchiverDef),           KS_LAYOUT(ToolProgram, kToolProgram),
    KS_LAYOUT(ExternalPrograms, kExternalPrograms), KS_LAYOUT(DomainName, kDomainName),
    KS_LAYOUT(AkaMatchRow, kAkaMatchRow),           KS_LAYOUT(AreaMgrUplink, kAreaMgrUplink),
    KS_LAYOUT(RpSessionLimits, kRpSessionLimits),   KS_LAYOUT(RequestProcessor, kRequestProcessor),
    KS_LAYOUT(InternetSettings, kInternetSettings),
};

}  // namespace

std::span<const CfgField> KestraCfgFields() {
  return kTopLevel;
}

std::span<const CfgLayout> KestraCfgSubLayouts() {
  return kSubLayouts;
}

const CfgField* FindCfgField(std::string_view name) {
  for (const auto& f : kTopLevel)
    if (f.name == name) return &f;
  return nullptr;
}

}  // namespace ks
