#include "moxvc/version.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/library.hpp"

namespace mox::test {
namespace {

using Version = PerGeneration;

TEST_P(Version, Record) {
  const auto query = lib(MOX_FN(moxvcGetLibVersion));
  const MoxLibraryVersion* record = query();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(query(), record);
  EXPECT_EQ(record->major, 6);
  EXPECT_EQ(record->minor, 1);
  EXPECT_EQ(record->majorBuild, 137);
  EXPECT_EQ(record->build, 799);
  const std::string code = GetParam();
  const char cpu[4] = {code[0], code[1], 0, 0};
  EXPECT_EQ(std::memcmp(record->targetCpu, cpu, 4), 0);
  EXPECT_EQ(std::string(record->name), "libmoxvc" + code + ".so.6.1");
  EXPECT_STREQ(record->version, "6.1 build 137.56");
  EXPECT_STREQ(record->buildDate, "Mar 17 2010");
}

MOX_INSTANTIATE_GENERATIONS(Version);

}  // namespace
}  // namespace mox::test
