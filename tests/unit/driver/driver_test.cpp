// The statuses of the run sequence (the full 32-bit values, which a process
// exit would cut), and the process exit status made from them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "driver/driver.h"
#include "runtime/files.h"

namespace tarn {
namespace {

// A temporary file removed at the end of the test.
struct TempFile {
  std::string path;
  TempFile() {
    char name[] = "/tmp/tarn_driver_testXXXXXX";
    int fd = mkstemp(name);
    EXPECT_GE(fd, 0);
    close(fd);
    path = name;
  }
  ~TempFile() { std::remove(path.c_str()); }
  void write(std::string_view bytes) const {
    FILE* f = std::fopen(path.c_str(), "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
  }
};

// The full 32-bit status of each kind of run, and what reaches the host: 1
// for every run that could not take place, and the program's own status
// otherwise, even when that status is the failure marker 0x80000000 (whose
// low 8 bits, 0, the host keeps). The golden programs in
// tests/programs/driver check the streams.
TEST(Driver, StatusesOfTheRunSequence) {
  struct Row {
    const char* source;  // the program file's text; null: no such file
    bool withFile;       // false: no program argument at all
    int32_t status;
    bool couldNotRun;
    int exitStatus;
  };
  const Row rows[] = {
      {nullptr, false, 1, false, 1},                    // usage
      {nullptr, true, int32_t(0x80000000u), true, 1},   // missing file
      {"a\n(b", true, int32_t(0x80000000u), true, 1},   // bracket fault in the compile stage
      {"1", true, int32_t(0x80000000u), true, 1},       // a bare number is no function
      {"a\\4294967553", true, 257, false, 257},         // 2^32 + 257: the low 32 bits
      {"a\\2147483648", true, int32_t(0x80000000u), false, int(0x80000000u)},
      {"a\\0", true, 0, false, 0}};
  TempFile file;
  for (const Row& r : rows) {
    SCOPED_TRACE(r.source ? r.source : r.withFile ? "missing" : "usage");
    std::vector<std::string> args = {"tarn"};
    if (r.withFile) args.push_back(r.source ? file.path : "/nonexistent/dir/p.tarn");
    if (r.source) file.write(r.source);
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    RunOutcome outcome = runProgram(int(args.size()), argv.data());
    std::fflush(stdout);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(outcome.status, r.status);
    EXPECT_EQ(outcome.couldNotRun, r.couldNotRun);
    EXPECT_EQ(processExitStatus(outcome), r.exitStatus);
  }
}

TEST(Driver, NoArgumentsAtAllStops) {
  EXPECT_DEATH(runDriver(0, nullptr), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn
