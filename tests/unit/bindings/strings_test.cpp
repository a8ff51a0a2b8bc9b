// strtod's end pointer, the one output of the string family that the golden
// programs in tests/programs/bindings_strings never read back.
#include <gtest/gtest.h>

#include <string>

#include "bindings/strings.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

using testing::address;
using testing::callNamed;

TEST(StringRows, StrtodStoresWhereItStopped) {
  const char* end = nullptr;
  std::string source = "1.5e3xyz";
  EXPECT_EQ(realValue(callNamed("strtod", address(source.c_str()), address(&end))), 1500.0);
  EXPECT_EQ(end, source.c_str() + 5);
}

}  // namespace
}  // namespace tarn
