#include <gtest/gtest.h>

#include <string>

#include "TivoraLogger.h"

namespace {

TEST(Format, FormatsLikePrintf) {
  EXPECT_EQ(tivora::format("%s/%s", "/data/local", "VEXA_TVR.dat"), "/data/local/VEXA_TVR.dat");
  EXPECT_EQ(tivora::format("[%d] %lu %.2f", -3, 7ul, 0.5), "[-3] 7 0.50");
  EXPECT_EQ(tivora::format("%s", ""), "");
}

TEST(Format, CutsAt1023Characters) {
  const std::string long_text(5000, 'a');
  const std::string result = tivora::format("<%s>", long_text.c_str());
  ASSERT_EQ(result.size(), 1023u);
  EXPECT_EQ(result.front(), '<');
  EXPECT_EQ(result.back(), 'a');
  EXPECT_EQ(tivora::format("%s", std::string(1023, 'b').c_str()).size(), 1023u);
}

TEST(Format, StopsAtAnEmbeddedTerminator) { EXPECT_EQ(tivora::format("ab%cde", '\0'), "ab"); }

}  // namespace
