// The process family: error numbers between the host's and the language's,
// the environment and commands.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

#include "bindings/process.h"
#include "numbers/model.h"
#include "tests/unit/bindings/calls.h"

namespace tarn {
namespace {

using testing::call;
using testing::text;

TEST(ProcessRows, ErrnoIsTranslatedIntoTheLanguagesNumbers) {
  // host value, value the program reads
  const std::pair<int, int64_t> rows[] = {
      {ECONNABORTED, 106}, {ENOTSOCK, 128}, {EOPNOTSUPP, 130}, {EOVERFLOW, 132}, {EAGAIN, 140},
      {EWOULDBLOCK, 140},  {ENOENT, 2},     {EINTR, 4},        {EBADF, 9},       {EINVAL, 22},
      {ENOTDIR, 20},       {EDOM, 33},      {ERANGE, 34},      {0, 0}};
  for (auto [host, language] : rows) {
    EXPECT_EQ(languageErrorNumber(host), language) << host;
    errno = host;
    EXPECT_EQ(termToInt64(call("errno", {})), language) << host;
  }
  // And back, for the host calls that take a language number.
  EXPECT_EQ(hostErrorNumber(106), ECONNABORTED);
  EXPECT_EQ(hostErrorNumber(140), EAGAIN);
  EXPECT_EQ(hostErrorNumber(132), EOVERFLOW);
  EXPECT_EQ(hostErrorNumber(22), EINVAL);
}

TEST(ProcessRows, GetenvReadsTheNameWithItsBrackets) {
  setenv("TARN_UNIT_PROBE", "plain", 1);
  setenv("[TARN_UNIT_PROBE]", "bracketed", 1);
  EXPECT_STREQ(reinterpret_cast<const char*>(termToInt64(call("getenv", {blobLeaf("TARN_UNIT_PROBE")}))), "plain");
  EXPECT_STREQ(reinterpret_cast<const char*>(termToInt64(call("getenv", {leaf("[TARN_UNIT_PROBE]")}))), "bracketed");
  unsetenv("TARN_UNIT_PROBE");
  unsetenv("[TARN_UNIT_PROBE]");
  EXPECT_EQ(text(call("getenv", {blobLeaf("TARN_UNIT_PROBE")})), "0");
  EXPECT_EQ(text(call("getenv", {realLeaf(1)})), "Z");
}

TEST(ProcessRows, SystemGivesTheWaitStatus) {
  EXPECT_EQ(text(call("system", {blobLeaf("exit 3")})), "768");
  EXPECT_EQ(text(call("system", {blobLeaf("true")})), "0");
  EXPECT_EQ(text(call("raise", {int64ToTerm(0)})), "0");
  errno = 0;
  EXPECT_EQ(text(call("raise", {int64ToTerm(999)})), "01");
  EXPECT_EQ(text(call("errno", {})), "22");
}

}  // namespace
}  // namespace tarn
