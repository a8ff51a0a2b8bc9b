// The fatal-signal line, the stack request under an address-space limit, and
// the running-builtin mark that the signal line names.
#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "driver/signals.h"
#include "driver/stack.h"
#include "runtime/builtins.h"

namespace tarn {
namespace {

std::string lineFor(int sig, std::string_view builtin, bool overflow, size_t mib) {
  char out[160];
  size_t n = fatalSignalLine(out, sig, builtin.data(), builtin.size(), overflow, mib);
  return std::string(out, n);
}

TEST(FatalSignalLine, NamesTheSignalAndTheBuiltinOrTheOverflow) {
  // (SIGSEGV in puts: the golden program crash_in_host_call_keeps_output; an
  // overflow on a stack of known size: tests/depth.)
  EXPECT_EQ(lineFor(SIGBUS, "refk", false, 0), "tarn: SIGBUS in the builtin refk\n");
  EXPECT_EQ(lineFor(SIGFPE, "", false, 0), "tarn: SIGFPE outside any builtin\n");
  EXPECT_EQ(lineFor(SIGILL, "", false, 0), "tarn: SIGILL outside any builtin\n");
  // An overflow is named as such even inside a builtin's call.
  EXPECT_EQ(lineFor(SIGSEGV, "road", true, 0), "tarn: SIGSEGV: stack overflow: a term nested too deep for the stack\n");
}

TEST(FatalSignalLine, StaysInsideItsBufferAndEndsTheLine) {
  std::string longName(500, 'q');
  std::string line = lineFor(SIGSEGV, longName, false, 0);
  EXPECT_EQ(line.size(), 160u);
  EXPECT_EQ(line.back(), '\n');
  EXPECT_EQ(line.substr(0, 33), "tarn: SIGSEGV in the builtin qqqq");
}

TEST(StackRequest, HalvesBelowHalfTheLimitButNotBelowAMillionLevels) {
  // Address-space limit, request. (ulimit -v 3000000 giving 1 GiB: tests/depth.)
  constexpr size_t GiB = size_t(1) << 30;
  const std::pair<size_t, size_t> rows[] = {{SIZE_MAX, 64 * GiB}, {128 * GiB, 64 * GiB},
                                            {128 * GiB - 1, 32 * GiB}, {16000000ull * 1024, 4 * GiB},
                                            {100ull << 20, kNeededStackBytes}, {0, kNeededStackBytes}};
  for (auto [limit, request] : rows) EXPECT_EQ(firstStackRequest(limit), request) << limit;
}

const Builtin* seenInside = nullptr;
const Builtin* seenAfterNested = nullptr;

Term recordRunning(const Builtin&, const Args&) {
  seenInside = runningBuiltin();
  return leafByte('K');
}

Term callNested(const Builtin&, const Args& args) {
  static const Builtin inner{"innr", 1, false, recordRunning, {}, Result::kNone, 0};
  Term r = callBuiltin(inner, App(leaf("innr"), args[0]));
  seenAfterNested = runningBuiltin();
  return r;
}

TEST(RunningBuiltin, IsMarkedAroundEachCallAndRestoredAfterNestedOnes) {
  static const Builtin outer{"outr", 1, false, callNested, {}, Result::kNone, 0};
  EXPECT_EQ(runningBuiltin(), nullptr);
  Term r = callBuiltin(outer, App(leaf("outr"), leaf("1")));
  EXPECT_EQ(r.first(), 'K');
  ASSERT_NE(seenInside, nullptr);
  EXPECT_EQ(seenInside->name, "innr");
  EXPECT_EQ(seenAfterNested, &outer);
  EXPECT_EQ(runningBuiltin(), nullptr);
}

}  // namespace
}  // namespace tarn
