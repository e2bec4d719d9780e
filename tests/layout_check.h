// Checks that a byte map names every byte of its struct exactly once.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include "common/layout.h"

namespace ks::test {

// Sorted by offset, the fields must follow each other without gap or overlap and end exactly
// at the struct's size: then nothing overlaps, nothing lies outside and every byte is named.
inline void ExpectTiles(std::span<const LayoutField> table, std::size_t size,
                        std::string_view what) {
  std::vector<LayoutField> fields(table.begin(), table.end());
  std::stable_sort(fields.begin(), fields.end(),
                   [](const LayoutField& a, const LayoutField& b) { return a.offset < b.offset; });
  std::size_t next = 0;
  std::set<std::string_view> names;
  for (const auto& f : fields) {
    EXPECT_TRUE(names.insert(f.name).second) << what << ": " << f.name << " listed twice";
    EXPECT_GT(f.size, 0u) << what << ": " << f.name;
    EXPECT_EQ(f.offset, next) << what << ": " << f.name
                              << (f.offset < next ? " overlaps its predecessor" : " leaves a gap");
    EXPECT_LE(f.offset + f.size, size) << what << ": " << f.name << " lies outside";
    next = f.offset + f.size;
  }
  EXPECT_EQ(next, size) << what << ": the fields do not reach the end";
}

}  // namespace ks::test
