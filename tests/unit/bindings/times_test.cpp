// The time family's 36-byte record, copied field by field to and from the
// host's. The rows that read and write it through addresses are golden
// programs in tests/programs/bindings_time.
#include <gtest/gtest.h>

#include <cstring>
#include <ctime>

#include "bindings/times.h"

namespace tarn {
namespace {

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

}  // namespace
}  // namespace tarn
