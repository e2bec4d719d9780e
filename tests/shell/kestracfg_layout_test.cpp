#include <gtest/gtest.h>

#include <set>

#include "layout_check.h"
#include "shell/kestracfg.h"
#include "shell/kestracfg_fields.h"

namespace ks {
namespace {

using test::ExpectTiles;

TEST(KestraCfgLayout, TopLevelFieldsCoverTheWholeRecord) {
  ExpectTiles(KestraCfgFields(), kSetupRecordSize, "KESTRAcfg");
}

TEST(KestraCfgLayout, EverySubStructIsCoveredByItsFields) {
  for (const auto& layout : KestraCfgSubLayouts())
    ExpectTiles(layout.fields, layout.size, layout.name);
}

TEST(KestraCfgLayout, PathStringsFormOneRunAndTheirNeighboursFollowDirectly) {
  const auto fields = KestraCfgFields();
  auto at = [&](std::size_t offset) -> const CfgField* {
    for (const auto& f : fields)
      if (f.offset == offset) return &f;
    return nullptr;
  };
  // Eighteen 61-byte strings at 1 + 61k, then the next field at 1099.
  for (std::size_t k = 0; k <= 18; ++k) {
    const CfgField* f = at(1 + 61 * k);
    ASSERT_NE(f, nullptr) << "nothing starts at " << 1 + 61 * k;
    EXPECT_FALSE(f->reserved) << f->name;
    if (k < 18) {
      EXPECT_EQ(f->size, 61u) << f->name;
    }
  }
  // The other 60-character strings are followed at once by a field of their own.
  for (const char* name :
       {"badLog", "tagPath", "echotossLog", "billingPath", "unwantedFile", "wantedFile"}) {
    const CfgField* f = FindCfgField(name);
    ASSERT_NE(f, nullptr);
    const CfgField* next = at(f->offset + 61);
    ASSERT_NE(next, nullptr) << "nothing follows " << name;
    EXPECT_FALSE(next->reserved) << name << " is followed by " << next->name;
  }
}

TEST(KestraCfgLayout, LastByteIsReservedAndArraysHoldTheirRows) {
  const auto fields = KestraCfgFields();
  const CfgField& last = fields.back();
  EXPECT_EQ(last.offset + last.size, kSetupRecordSize);
  EXPECT_EQ(last.size, 1u);
  EXPECT_TRUE(last.reserved);

  EXPECT_EQ(FindCfgField("uplinks")->size, kUplinkCount * sizeof(AreaMgrUplink));
  EXPECT_EQ(FindCfgField("domains")->size, kDomainCount * sizeof(DomainName));
  EXPECT_EQ(FindCfgField("originLines")->size, kOriginLineCount * 61);
  EXPECT_EQ(FindCfgField("dosPrograms")->size, sizeof(ExternalPrograms));
  EXPECT_EQ(sizeof(ExternalPrograms::archivers), kArchiverCount * sizeof(ArchiverDef));
  EXPECT_EQ(sizeof(ArchiverDef::signature), kSignatureBytes);
  EXPECT_GE(sizeof(KESTRAcfg::colourSet) - 1, kColourSetLength);
}

TEST(KestraCfgLayout, GroupSetsAreVisitedInRenumberingOrder) {
  KESTRAcfg cfg{};
  const auto sets = ConfigGroupSets(cfg);
  const auto* base = reinterpret_cast<const std::uint8_t*>(&cfg);
  auto offset = [&](const GroupSet* s) {
    return static_cast<std::size_t>(reinterpret_cast<const std::uint8_t*>(s) - base);
  };
  std::set<std::size_t> seen;
  for (const GroupSet* s : sets) {
    ASSERT_NE(s, nullptr);
    EXPECT_LE(offset(s) + sizeof(GroupSet), kSetupRecordSize);
    EXPECT_TRUE(seen.insert(offset(s)).second) << "a set is visited twice";
  }
  EXPECT_EQ(sets.front(), &cfg.fileechoListGroups);
  for (std::size_t i = 0; i < kUplinkCount; ++i) EXPECT_EQ(sets[1 + i], &cfg.uplinks[i].groups);
  EXPECT_EQ(sets[21], &cfg.requestProcessor.unlisted.groups);
  EXPECT_EQ(sets[22], &cfg.requestProcessor.unsecure.groups);
  EXPECT_EQ(sets[23], &cfg.requestProcessor.secure.groups);
}

}  // namespace
}  // namespace ks
