// The time family's record copies between the language's 36-byte `tm` and
// the host's.
#include "bindings/times.h"

namespace tarn::times {

std::tm toHostTime(const TimeRecord& record) {
  std::tm host{};
  host.tm_sec = record.second;
  host.tm_min = record.minute;
  host.tm_hour = record.hour;
  host.tm_mday = record.dayOfMonth;
  host.tm_mon = record.month;
  host.tm_year = record.year;
  host.tm_wday = record.dayOfWeek;
  host.tm_yday = record.dayOfYear;
  host.tm_isdst = record.daylightSaving;
  // The language's record has no zone fields: the host's local zone stands
  // in for them, as it does on a host whose tm has none.
  tzset();
  bool summer = record.daylightSaving > 0 && daylight;
  host.tm_gmtoff = -timezone + (summer ? 3600 : 0);
  host.tm_zone = tzname[summer ? 1 : 0];
  return host;
}

void fromHostTime(const std::tm& host, TimeRecord* record) {
  record->second = host.tm_sec;
  record->minute = host.tm_min;
  record->hour = host.tm_hour;
  record->dayOfMonth = host.tm_mday;
  record->month = host.tm_mon;
  record->year = host.tm_year;
  record->dayOfWeek = host.tm_wday;
  record->dayOfYear = host.tm_yday;
  record->daylightSaving = host.tm_isdst;
}

// mktime normalises the fields it was given; the program sees them normalised.
int64_t makeTime(TimeRecord* record) {
  std::tm host = toHostTime(*record);
  std::time_t t = std::mktime(&host);
  fromHostTime(host, record);
  return t;
}

char* formatAscii(const TimeRecord* record) {
  std::tm host = toHostTime(*record);
  return std::asctime(&host);
}

size_t formatTime(char* buffer, size_t size, const char* format, const TimeRecord* record) {
  std::tm host = toHostTime(*record);
  return std::strftime(buffer, size, format, &host);
}

}  // namespace tarn::times
