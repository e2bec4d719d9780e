#include "common/netaddr.h"

#include <gtest/gtest.h>

namespace ks {
namespace {

TEST(NetAddr, FormatLeavesOutPointZero) {
  EXPECT_EQ(FormatAddr({2, 280, 5555, 0}), "2:280/5555");
  EXPECT_EQ(FormatAddr({2, 280, 5555, 7}), "2:280/5555.7");
  EXPECT_EQ(FormatAddr({65535, 65535, 65535, 65535}), "65535:65535/65535.65535");
}

TEST(NetAddr, ParseAcceptsFullAndShortForms) {
  EXPECT_EQ(ParseAddr("2:280/5555"), (NetAddr{2, 280, 5555, 0}));
  EXPECT_EQ(ParseAddr(" 1:2/3.4 "), (NetAddr{1, 2, 3, 4}));
}

TEST(NetAddr, ParseRefusesDamagedText) {
  for (const char* bad : {"", "2", "2:280", "2:280/", ":280/1", "2:/1", "2:280/1.", "2:280/1.x",
                          "2:280/65536", "a:b/c", "2:280/1/2", "-1:2/3", "2:280/1.2.3"})
    EXPECT_FALSE(ParseAddr(bad).has_value()) << bad;
}

}  // namespace
}  // namespace ks
