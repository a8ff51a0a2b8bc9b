// Error numbers between the host's numbering and the language's.
#include "bindings/process.h"

#include <cerrno>

namespace tarn {

namespace {

// The numbers that Linux spells differently: (host, language).
constexpr std::array<std::array<int, 2>, 5> kRenumbered = {{
    {ECONNABORTED, 106},
    {ENOTSOCK, 128},
    {EOPNOTSUPP, 130},
    {EOVERFLOW, 132},
    {EAGAIN, 140},  // EWOULDBLOCK is the same number on Linux
}};
static_assert(EWOULDBLOCK == EAGAIN);

}  // namespace

int64_t languageErrorNumber(int hostNumber) {
  for (const auto& [host, language] : kRenumbered)
    if (hostNumber == host) return language;
  return hostNumber;
}

int hostErrorNumber(int64_t languageNumber) {
  for (const auto& [host, language] : kRenumbered)
    if (languageNumber == language) return host;
  return int(languageNumber);
}

int64_t process::currentErrorNumber() { return languageErrorNumber(errno); }

}  // namespace tarn
