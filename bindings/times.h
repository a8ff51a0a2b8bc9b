// Time: clock readings and the broken-down time record.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result. Time values are 64-bit (`time_t` is 8), and every
// time value and every `tm` record is reached through an integer address,
// except the two values of `difftime`.
//
// The `tm` record a program sees is `TimeRecord`: nine 32-bit fields, 36
// bytes. The host's `struct tm` starts with the same nine fields but is
// larger (Linux adds the zone offset and name), so `mktime`, `asctime` and
// `strftime` copy the program's 36 bytes into a host record for the call,
// and `mktime` writes the nine normalised fields back. `gmtime` and
// `localtime` return the host's static record as it is: its first 36 bytes
// have the layout below. `asctime`, `ctime`, `gmtime` and `localtime` answer
// with the host's static storage, which the next such call overwrites.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>

#include "bindings/frame.h"

namespace tarn {

// The language's `tm`, field for field the C library's, 4 bytes each.
struct TimeRecord {
  int32_t second;        // 0   tm_sec   seconds after the minute, 0..60
  int32_t minute;        // 4   tm_min   minutes after the hour, 0..59
  int32_t hour;          // 8   tm_hour  hours since midnight, 0..23
  int32_t dayOfMonth;    // 12  tm_mday  day of the month, 1..31
  int32_t month;         // 16  tm_mon   months since January, 0..11
  int32_t year;          // 20  tm_year  years since 1900
  int32_t dayOfWeek;     // 24  tm_wday  days since Sunday, 0..6
  int32_t dayOfYear;     // 28  tm_yday  days since January 1, 0..365
  int32_t daylightSaving;// 32  tm_isdst  >0 in effect, 0 not, <0 unknown
};
static_assert(sizeof(TimeRecord) == 36, "the language's tm is 36 bytes");
static_assert(offsetof(TimeRecord, dayOfMonth) == 12 && offsetof(TimeRecord, year) == 20 &&
              offsetof(TimeRecord, daylightSaving) == 32);
// gmtime and localtime hand out the host's record: its first nine fields
// must sit where TimeRecord puts them.
static_assert(offsetof(std::tm, tm_sec) == 0 && offsetof(std::tm, tm_min) == 4 &&
              offsetof(std::tm, tm_hour) == 8 && offsetof(std::tm, tm_mday) == 12 &&
              offsetof(std::tm, tm_mon) == 16 && offsetof(std::tm, tm_year) == 20 &&
              offsetof(std::tm, tm_wday) == 24 && offsetof(std::tm, tm_yday) == 28 &&
              offsetof(std::tm, tm_isdst) == 32 && sizeof(std::tm::tm_sec) == 4);
static_assert(sizeof(std::time_t) == 8, "time values are 64-bit");

namespace times {

// The nine fields as a host record, with the host's extra fields for the
// local zone (so that %z and %Z name the zone the host is in).
std::tm toHostTime(const TimeRecord& record);
void fromHostTime(const std::tm& host, TimeRecord* record);

// The bindings that take a record: copy in, call the host, copy back.
int64_t makeTime(TimeRecord* record);
char* formatAscii(const TimeRecord* record);
size_t formatTime(char* buffer, size_t size, const char* format, const TimeRecord* record);

}  // namespace times

inline constexpr auto kTimeBuiltins = std::to_array<Builtin>({
    host<times::formatAscii>("asctime", {ArgTest::kInteger}, Result::kSigned),
    host<::ctime>("ctime", {ArgTest::kInteger}, Result::kSigned),
    host<::difftime>("difftime", {ArgTest::kInteger, ArgTest::kInteger}, Result::kReal),
    host<::gmtime>("gmtime", {ArgTest::kInteger}, Result::kSigned),
    host<::localtime>("localtime", {ArgTest::kInteger}, Result::kSigned),
    host<times::makeTime>("mktime", {ArgTest::kInteger}, Result::kSigned),
    host<times::formatTime>("strftime", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger}, Result::kUnsigned),
    host<::time>("time", {ArgTest::kInteger}, Result::kSigned),
    constant<8>("time_t", Memory::kWrites),
});

}  // namespace tarn
