#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "shell/cfgupgrade.h"
#include "shell/kestracfg.h"

namespace ks {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Range {
  std::size_t first, last;  // inclusive
};

// A record of noise, so that a step writing where it should not shows up.
KESTRAcfg Noise(std::uint8_t revision, std::uint32_t seed = 12345) {
  KESTRAcfg rec;
  auto* p = reinterpret_cast<std::uint8_t*>(&rec);
  for (std::size_t i = 0; i < sizeof rec; ++i) {
    seed = seed * 1103515245u + 12345u;
    p[i] = static_cast<std::uint8_t>(seed >> 16);
  }
  rec.revision = revision;
  return rec;
}

Bytes Raw(const KESTRAcfg& rec) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  return Bytes(p, p + sizeof rec);
}

Range Of(std::size_t offset, std::size_t size) {
  return {offset, offset + size - 1};
}

#define FIELD(m) Of(offsetof(KESTRAcfg, m), sizeof(KESTRAcfg::m))
#define INET(m) \
  Of(offsetof(KESTRAcfg, internet) + offsetof(InternetSettings, m), sizeof(InternetSettings::m))

// The bytes each step may write, as the file format documents them.
std::vector<Range> StepRanges(int below) {
  const std::size_t rp = offsetof(KESTRAcfg, requestProcessor);
  switch (below) {
    case 2:
      return {{1, 61}, {15421, 15450}};
    case 3:
      return {{16088, 16091}, {15793, 15794}};
    case 7:
      return {{15118, 15118}, {15419, 15419}, {9477, 9732}, FIELD(addresses), FIELD(akaMatch)};
    case 8:
      return {FIELD(internet)};
    case 9:
      return {FIELD(reRequestRate), FIELD(reRequestTimes), FIELD(autoRemovePassthru),
              FIELD(autoAddDelay)};
    case 10: {
      std::vector<Range> r = {Of(rp + offsetof(RequestProcessor, inetMaxFiles), 2),
                              Of(rp + offsetof(RequestProcessor, inetMaxSizeKb), 4)};
      for (std::size_t s :
           {offsetof(RequestProcessor, unlisted), offsetof(RequestProcessor, unsecure),
            offsetof(RequestProcessor, secure)})
        r.push_back(Of(rp + s + offsetof(RpSessionLimits, maxFiles), 8));
      return r;
    }
    case 11:
      return {Of(offsetof(KESTRAcfg, longDescChar), 6)};
    case 12:
      return {Of(offsetof(KESTRAcfg, swapMethod), 6)};
    case 13:
      return {FIELD(delEmptyLines), FIELD(filterAnsi), FIELD(filterLongDesc), FIELD(filterString)};
    case 14:
      return {FIELD(addTearOrigin), FIELD(addNpdKludge), FIELD(addPgmKludge)};
    case 15: {
      std::vector<Range> r;
      for (std::size_t i = 0; i < kUplinkCount; ++i) {
        const std::size_t u = offsetof(KESTRAcfg, uplinks) + i * sizeof(AreaMgrUplink);
        r.push_back(Of(u + offsetof(AreaMgrUplink, originAka), 9));  // originAka, direct
      }
      return r;
    }
    case 16:
      return {FIELD(dupeCheck), FIELD(dupePath)};
    case 17:
      return {FIELD(speechFriendly), FIELD(fileechoListGroups)};
    case 18:
      return {INET(outlookAccount), INET(scanNetmail), FIELD(invalidFlowExt)};
  }
  ADD_FAILURE() << "no documented step below " << below;
  return {};
}

// Every byte that differs must lie in a range of a step that applies to `from`.
void ExpectOnlyStepBytesChanged(const Bytes& before, const Bytes& after, int from) {
  std::vector<bool> allowed(before.size(), false);
  for (const auto& step : RevisionSteps())
    if (step.below > from)
      for (const Range& r : StepRanges(step.below))
        for (std::size_t i = r.first; i <= r.last; ++i) allowed[i] = true;
  for (std::size_t i = 0; i < before.size(); ++i)
    if (before[i] != after[i]) {
      EXPECT_TRUE(allowed[i]) << "byte " << i << " changed upgrading from revision " << from;
    }
}

bool AllZero(const KESTRAcfg& rec, Range r) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  for (std::size_t i = r.first; i <= r.last; ++i)
    if (p[i] != 0) return false;
  return true;
}

std::uint16_t U16At(const KESTRAcfg& rec, std::size_t offset) {
  std::uint16_t v;
  std::memcpy(&v, reinterpret_cast<const std::uint8_t*>(&rec) + offset, 2);
  return v;
}

// Revision 6 kept 32 addresses elsewhere and an aka-matching table of indexes into them.
TEST(CfgUpgrade, FromRevision6TheAddressListMovesAndTheAkaTableHoldsTheAddresses) {
  KESTRAcfg rec = Noise(6, 777);
  auto* p = reinterpret_cast<std::uint8_t*>(&rec);
  NetAddr old[kOldAddressCount] = {};  // the last four unused
  for (std::size_t i = 0; i < 28; ++i)
    old[i] = {static_cast<std::uint16_t>(1 + i % 4), static_cast<std::uint16_t>(280 + i),
              static_cast<std::uint16_t>(5555 + i), static_cast<std::uint16_t>(i % 3)};
  std::memcpy(p + kOldAddressOffset, old, sizeof old);
  OldAkaMatchRow rows[kAkaMatchCount];
  for (std::size_t i = 0; i < kAkaMatchCount; ++i)
    rows[i] = {0, static_cast<std::uint16_t>(77 + i), static_cast<std::uint8_t>(i)};  // empty
  rows[0] = {2, 280, 0};   // the main address
  rows[1] = {1, 0, 3};     // a whole zone, aka 3
  rows[2] = {3, 10, 40};   // an index beyond the list
  rows[5] = {2, 5, 30};    // an unused address
  rows[19] = {4, 99, 27};  // the last row, the last used aka
  std::memcpy(p + kOldAkaMatchOffset, rows, sizeof rows);
  const Bytes before = Raw(rec);
  ApplyRevisionSteps(rec);
  const Bytes after = Raw(rec);
  ExpectOnlyStepBytesChanged(before, after, 6);

  EXPECT_EQ(0, std::memcmp(after.data() + 17104, before.data() + kOldAddressOffset,
                           kOldAddressCount * sizeof(NetAddr)));
  EXPECT_TRUE(AllZero(rec, {17104 + kOldAddressCount * 8, 17104 + kAddressCount * 8 - 1}));
  EXPECT_TRUE(AllZero(rec, {9477, 9732})) << "the old list's place must be cleared";
  EXPECT_EQ(after[15118], 255);
  EXPECT_EQ(after[15419], 1);
  AkaMatchRow expected[kAkaMatchCount] = {};
  expected[0] = {2, 280, old[0]};
  expected[1] = {1, 0, old[3]};
  expected[2] = {3, 10, NetAddr{}};
  expected[5] = {2, 5, NetAddr{}};
  expected[19] = {4, 99, old[27]};
  EXPECT_EQ(0, std::memcmp(after.data() + 11824, expected, sizeof expected));
}

TEST(CfgUpgrade, FromRevision1EveryStepRuns) {
  KESTRAcfg rec = Noise(1, 4242);
  const Bytes before = Raw(rec);
  ApplyRevisionSteps(rec);
  ExpectOnlyStepBytesChanged(before, Raw(rec), 1);

  EXPECT_TRUE(AllZero(rec, {1, 61}));
  EXPECT_TRUE(AllZero(rec, {16088, 16091}));
  EXPECT_EQ(U16At(rec, 15793), 100);
  EXPECT_EQ(rec.internet.spoolAgeDays, 14);
  // Packed fields that are not aligned are copied before gtest takes them by reference.
  EXPECT_EQ(std::uint16_t{rec.requestProcessor.unlisted.maxFiles}, 5);
  EXPECT_EQ(rec.dupeCheck, dcCrcNameExt);
  EXPECT_EQ(rec.invalidFlowExt.str(), "N?O");
  // Revision and version bytes are the loader's business.
  EXPECT_EQ(rec.revision, 1);
}

TEST(CfgUpgrade, UplinksInUseTakeTheMainAddressAsOrigin) {
  KESTRAcfg rec = Noise(14, 99);
  rec.addresses[0] = {2, 280, 5555, 0};
  rec.uplinks[0].address = {2, 280, 1, 0};
  rec.uplinks[1].address = {};
  const std::string program = rec.uplinks[0].program.str();
  ApplyRevisionSteps(rec);
  EXPECT_EQ(rec.uplinks[0].originAka, (NetAddr{2, 280, 5555, 0}));
  EXPECT_EQ(rec.uplinks[0].direct, 0);
  EXPECT_EQ(rec.uplinks[0].program.str(), program);
  EXPECT_EQ(rec.uplinks[1].originAka, NetAddr{});
  EXPECT_EQ(rec.uplinks[1].direct, 0);
}

}  // namespace
}  // namespace ks
