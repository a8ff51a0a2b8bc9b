// What the host and the language hand each other besides a row's answer: the
// 36-byte time record, error numbers both ways, and strtod's end pointer.
// The rows' answers themselves are the golden programs in
// tests/programs/bindings_time, bindings_process and bindings_strings.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string>

#include "bindings/process.h"
#include "bindings/times.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

using testing::address;
using testing::callNamed;

TEST(TimeRecord, CopiesEveryFieldBothWays) {
  TimeRecord record{1, 2, 3, 4, 5, 6, 0, 7, 1};
  std::tm host = times::toHostTime(record);
  const int got[] = {host.tm_sec,  host.tm_min,  host.tm_hour, host.tm_mday, host.tm_mon,
                     host.tm_year, host.tm_wday, host.tm_yday, host.tm_isdst};
  const int want[] = {1, 2, 3, 4, 5, 6, 0, 7, 1};
  for (int i = 0; i < 9; i++) EXPECT_EQ(got[i], want[i]) << "field " << i;
  TimeRecord back{};
  times::fromHostTime(host, &back);
  EXPECT_EQ(std::memcmp(&back, &record, sizeof record), 0);
}

TEST(ErrorNumbers, TranslatedBetweenTheHostsAndTheLanguages) {
  // host value, value the program reads
  const std::pair<int, int64_t> rows[] = {
      {ECONNABORTED, 106}, {ENOTSOCK, 128}, {EOPNOTSUPP, 130}, {EOVERFLOW, 132}, {EAGAIN, 140},
      {EWOULDBLOCK, 140},  {ENOENT, 2},     {EINTR, 4},        {EBADF, 9},       {EINVAL, 22},
      {ENOTDIR, 20},       {EDOM, 33},      {ERANGE, 34},      {0, 0}};
  for (auto [host, language] : rows) {
    EXPECT_EQ(languageErrorNumber(host), language) << host;
    errno = host;
    EXPECT_EQ(termToInt64(callNamed("errno")), language) << host;
  }
  // And back, for the host calls that take a language number.
  for (auto [language, host] :
       {std::pair{106, ECONNABORTED}, {140, EAGAIN}, {132, EOVERFLOW}, {128, ENOTSOCK}, {22, EINVAL}})
    EXPECT_EQ(hostErrorNumber(language), host) << language;
}

TEST(Strtod, StoresWhereItStopped) {
  const char* end = nullptr;
  std::string source = "1.5e3xyz";
  EXPECT_EQ(realValue(callNamed("strtod", address(source.c_str()), address(&end))), 1500.0);
  EXPECT_EQ(end, source.c_str() + 5);
}

}  // namespace
}  // namespace tarn
