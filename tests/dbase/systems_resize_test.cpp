#include "dbase/systems_resize.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "area_image.h"
#include "dbase/maintain.h"
#include "pair_fixture.h"

namespace ks {
namespace {

using test::AreaImage;
const RecordFileDef& kFA = FileDef(RecordFileId::kFAreas);
const RecordFileDef& kMA = FileDef(RecordFileId::kMAreas);

TEST(SystemsResize, SurveyDecidesByTheFileSize) {
  // Record 0 loses systems going to 100, record 1 fills exactly 100 slots, record 3 is deleted.
  const std::vector<int> used = {150, 100, 0, -150};
  struct Case {
    const char* what;
    int file_systems;  // -1: no file
    std::string tail;  // bytes after the records
    std::uint8_t old_systems, new_systems;
    ResizeAction action;
    std::size_t losing;
  } cases[] = {
      {"old size", 200, "", 200, 100, ResizeAction::kRewrite, 1},
      {"growing", 200, "", 200, 255, ResizeAction::kRewrite, 0},
      {"new size already", 100, "", 200, 100, ResizeAction::kUnchanged, 0},
      {"same number", 200, "", 200, 200, ResizeAction::kUnchanged, 0},
      {"neither", 200, "x", 200, 100, ResizeAction::kError, 0},
      {"missing", -1, "", 200, 100, ResizeAction::kNothing, 0},
      {"empty", 0, "", 200, 100, ResizeAction::kUnchanged, 0},
  };
  for (const Case& c : cases) {
    test::RecordDir dir;
    if (c.file_systems > 0) dir.Write("FAREAS.KSX", AreaImage(kFA, c.file_systems, used) + c.tail);
    if (c.file_systems == 0) dir.Write("FAREAS.KSX", "");
    const AreaFileSurvey s = SurveyAreaFiles(dir.path(), c.old_systems, c.new_systems)[0];
    EXPECT_EQ(s.action, c.action) << c.what;
    EXPECT_EQ(s.losing, c.losing) << c.what;
    EXPECT_EQ(s.error.empty(), c.action != ResizeAction::kError) << c.what;
  }
}

// Each record keeps its fixed part and as many systems as fit; the index built before stays
// valid, since order and number of the records do not change.
TEST(SystemsResize, RewriteKeepsFixedPartAndCutsOrFillsSlots) {
  const std::vector<int> used = {0, 3, 255, -40, 120};
  const std::pair<int, int> changes[] = {{200, 100}, {100, 255}, {255, 0}};
  for (const RecordFileDef* def : {&kFA, &kMA}) {
    for (const auto& [from, to] : changes) {
      test::RecordDir dir;
      const std::string data = DataFileName(dir.path(), def->base);
      dir.Write(def->base + std::string(".KSX"), AreaImage(*def, from, used));
      ASSERT_TRUE(BuildIndex(dir.path(), def->base, def->RecordSize(from), def->keys));
      const auto o = static_cast<std::uint8_t>(from), n = static_cast<std::uint8_t>(to);
      const std::vector<AreaFileSurvey> s = {SurveyAreaFile(data, *def, o, n)};
      std::uint64_t done = 0, total = 0;
      std::string error;
      ASSERT_TRUE(WriteResizedFile(
          s[0], [&](std::uint64_t d, std::uint64_t t) { done = d, total = t; }, &error))
          << error;
      EXPECT_EQ(done, used.size());
      EXPECT_EQ(total, used.size());
      EXPECT_TRUE(ReadWholeFile(data) == AreaImage(*def, from, used)) << "not yet installed";
      ASSERT_TRUE(InstallResizedFiles(s, &error)) << error;
      EXPECT_FALSE(FileExists(ResizeTempName(data, n)));
      std::vector<int> kept = used;  // the systems the old records had room for
      for (int& k : kept) k = std::clamp(k, -from, from);
      EXPECT_TRUE(ReadWholeFile(data) == AreaImage(*def, to, kept)) << def->base << " " << to;
      const std::string index = *ReadWholeFile(IndexFileName(dir.path(), def->base));
      MappedFile mapped;
      ASSERT_TRUE(mapped.Map(data));
      EXPECT_TRUE(IndexFitsData(reinterpret_cast<const std::uint8_t*>(index.data()),
                                index.size() / def->keys.entry_size(), mapped, def->RecordSize(to),
                                def->keys));
    }
  }
}

// A temporary file of the configured number replaces its area file when it is complete; any
// other is deleted, and names that are no temporary file of a change stay.
TEST(SystemsResize, RecoveryFinishesOnlyAChangeThatWasStored) {
  const std::vector<int> used = {5, 150, 0};
  const std::string old_data = AreaImage(kFA, 200, used), new_data = AreaImage(kFA, 100, used);
  struct Case {
    const char* what;
    std::string temp;
    std::uint8_t configured;
    bool finished;
  } cases[] = {
      {"stored", new_data, 100, true},
      {"not stored", new_data, 200, false},
      {"cut short", new_data.substr(0, 1000), 100, false},
      {"records missing", new_data.substr(0, FileechoRecordSize(100)), 100, false},
  };
  for (const Case& c : cases) {
    test::RecordDir dir;
    dir.Write("FAREAS.KSX", old_data);
    dir.Write("FAREAS.KSX.resize100", c.temp);
    dir.Write("MAREAS.KSX.resize7", "");
    dir.Write("FAREAS.KSX.resized", "x");
    const ResizeRecovery r = RecoverSystemsResize(dir.path(), c.configured);
    EXPECT_EQ(r.completed, c.finished ? 1 : 0) << c.what;
    EXPECT_EQ(r.removed, c.finished ? 1 : 2) << c.what;
    EXPECT_TRUE(dir.Read("FAREAS.KSX") == (c.finished ? new_data : old_data)) << c.what;
    EXPECT_FALSE(dir.Has("FAREAS.KSX.resize100") || dir.Has("MAREAS.KSX.resize7")) << c.what;
    EXPECT_TRUE(dir.Has("FAREAS.KSX.resized")) << c.what;
  }
}

}  // namespace
}  // namespace ks
