// Error numbers between the host's and the language's, both ways. The
// environment, commands and the errno the rows leave are golden programs in
// tests/programs/bindings_process.
#include <gtest/gtest.h>

#include <cerrno>

#include "bindings/process.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

TEST(ProcessRows, ErrnoIsTranslatedIntoTheLanguagesNumbers) {
  // host value, value the program reads
  const std::pair<int, int64_t> rows[] = {
      {ECONNABORTED, 106}, {ENOTSOCK, 128}, {EOPNOTSUPP, 130}, {EOVERFLOW, 132}, {EAGAIN, 140},
      {EWOULDBLOCK, 140},  {ENOENT, 2},     {EINTR, 4},        {EBADF, 9},       {EINVAL, 22},
      {ENOTDIR, 20},       {EDOM, 33},      {ERANGE, 34},      {0, 0}};
  for (auto [host, language] : rows) {
    EXPECT_EQ(languageErrorNumber(host), language) << host;
    errno = host;
    EXPECT_EQ(termToInt64(testing::callNamed("errno")), language) << host;
  }
  // And back, for the host calls that take a language number.
  for (auto [language, host] :
       {std::pair{106, ECONNABORTED}, {140, EAGAIN}, {132, EOVERFLOW}, {128, ENOTSOCK}, {22, EINVAL}})
    EXPECT_EQ(hostErrorNumber(language), host) << language;
}

}  // namespace
}  // namespace tarn
