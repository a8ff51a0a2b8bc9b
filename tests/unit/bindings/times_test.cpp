// The time family: the 36-byte record copied to and from the host's, and
// the rows that read it through addresses.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "bindings/times.h"
#include "numbers/model.h"
#include "tests/unit/bindings/calls.h"

namespace tarn {
namespace {

using testing::address;
using testing::call;
using testing::text;
const char* hostText(const Term& t) { return reinterpret_cast<const char*>(termToInt64(t)); }

// Runs the tests of this file in the zone UTC, and puts the zone back after.
class TimeRows : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* zone = std::getenv("TZ");
    hadZone_ = zone != nullptr;
    if (hadZone_) savedZone_ = zone;
    setenv("TZ", "UTC0", 1);
    tzset();
  }
  void TearDown() override {
    if (hadZone_) setenv("TZ", savedZone_.c_str(), 1);
    else unsetenv("TZ");
    tzset();
  }

 private:
  bool hadZone_ = false;
  std::string savedZone_;
};

// 2004-09-10 05:53:05 UTC, a Friday, day 254 of a leap year.
constexpr std::time_t kFixed = 1094795585;

TEST_F(TimeRows, RecordCopiesEveryField) {
  TimeRecord record{1, 2, 3, 4, 5, 6, 0, 7, 1};
  std::tm host = times::toHostTime(record);
  EXPECT_EQ(host.tm_sec, 1);
  EXPECT_EQ(host.tm_min, 2);
  EXPECT_EQ(host.tm_hour, 3);
  EXPECT_EQ(host.tm_mday, 4);
  EXPECT_EQ(host.tm_mon, 5);
  EXPECT_EQ(host.tm_year, 6);
  EXPECT_EQ(host.tm_wday, 0);
  EXPECT_EQ(host.tm_yday, 7);
  EXPECT_EQ(host.tm_isdst, 1);
  TimeRecord back{};
  times::fromHostTime(host, &back);
  EXPECT_EQ(std::memcmp(&back, &record, sizeof record), 0);
}

TEST_F(TimeRows, GmtimeGivesTheHostsRecordInTheLanguagesLayout) {
  Term record = call("gmtime", {address(&kFixed)});
  EXPECT_EQ(hostText(record), reinterpret_cast<const char*>(std::gmtime(&kFixed)));
  const auto* fields = reinterpret_cast<const TimeRecord*>(termToInt64(record));
  EXPECT_EQ(fields->second, 5);
  EXPECT_EQ(fields->minute, 53);
  EXPECT_EQ(fields->hour, 5);
  EXPECT_EQ(fields->dayOfMonth, 10);
  EXPECT_EQ(fields->month, 8);
  EXPECT_EQ(fields->year, 104);
  EXPECT_EQ(fields->dayOfWeek, 5);
  EXPECT_EQ(fields->dayOfYear, 253);
  EXPECT_EQ(fields->daylightSaving, 0);
  EXPECT_STREQ(hostText(call("asctime", {record})), "Fri Sep 10 05:53:05 2004\n");
  EXPECT_STREQ(hostText(call("ctime", {address(&kFixed)})), "Fri Sep 10 05:53:05 2004\n");
}

TEST_F(TimeRows, MktimeNormalisesAndWritesBackNineFieldsOnly) {
  // January 32nd, 2000, 00:00:60 in a record followed by guard bytes.
  struct {
    TimeRecord record;
    int32_t guard[4];
  } memory{{60, 0, 0, 32, 0, 100, 9, 99, 0}, {-1, -1, -1, -1}};
  EXPECT_EQ(termToInt64(call("mktime", {address(&memory.record)})), 949363260);
  EXPECT_EQ(memory.record.second, 0);
  EXPECT_EQ(memory.record.minute, 1);
  EXPECT_EQ(memory.record.dayOfMonth, 1);
  EXPECT_EQ(memory.record.month, 1);
  EXPECT_EQ(memory.record.dayOfWeek, 2);  // Tuesday, February 1st
  EXPECT_EQ(memory.record.dayOfYear, 31);
  for (int32_t g : memory.guard) EXPECT_EQ(g, -1);
  EXPECT_STREQ(hostText(call("asctime", {address(&memory.record)})), "Tue Feb  1 00:01:00 2000\n");
}

TEST_F(TimeRows, StrftimeReadsTheRecordAndTheLocalZone) {
  TimeRecord record{5, 53, 5, 10, 8, 104, 5, 253, 0};
  char buffer[64];
  Term n = call("strftime", {address(buffer), int64ToTerm(sizeof buffer), blobLeaf("%F %T %j %Z"), address(&record)});
  EXPECT_STREQ(buffer, "2004-09-10 05:53:05 254 UTC");
  EXPECT_EQ(text(n), "27");
  // A literal format is passed with its brackets.
  call("strftime", {address(buffer), int64ToTerm(sizeof buffer), leaf("[%Y]"), address(&record)});
  EXPECT_STREQ(buffer, "[2004]");
  EXPECT_EQ(text(call("strftime", {leaf("[b]"), int64ToTerm(64), leaf("[%Y]"), address(&record)})), "Z");
}

TEST_F(TimeRows, ClockAndDifferences) {
  std::time_t stored = 0;
  int64_t now = termToInt64(call("time", {address(&stored)}));
  EXPECT_EQ(now, int64_t(stored));
  EXPECT_GE(termToInt64(call("time", {int64ToTerm(0)})), now);
  EXPECT_EQ(realValue(call("difftime", {int64ToTerm(10), int64ToTerm(4)})), 6.0);
  EXPECT_EQ(text(call("time_t", {})), "8");
}

}  // namespace
}  // namespace tarn
