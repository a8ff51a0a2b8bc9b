// Reading the program file, appending, escaped paths, the statuses of the
// run sequence (the full 32-bit values, which a process exit would cut), and
// the process exit status made from them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

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

// (Reading at the block boundaries and NUL bytes: the golden programs in
// tests/programs/driver.)
TEST(Driver, AppendFileAddsToTheEnd) {
  TempFile file;
  appendFile(file.path.c_str(), "ab");
  appendFile(file.path.c_str(), std::string_view("c\0d", 3));
  appendFile(file.path.c_str(), "");
  EXPECT_EQ(readProgramFile(file.path.c_str()), std::string_view("abc\0d", 5));
}

// (Brackets, spaces, quotes and UTF-8 bytes: the golden program missing_file.)
TEST(Driver, EscapedPathsAtTheClassEdges) {
  EXPECT_EQ(escapedPath(std::string_view("\x1f\x20\x7e\x7f\x80\xff", 6)), "[1F] ~[7F][80][FF]");
  EXPECT_EQ(escapedPath(""), "");
}

RunOutcome runWhole(std::vector<std::string> args, std::string& out, std::string& err) {
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  RunOutcome outcome = runProgram(int(args.size()), argv.data());
  std::fflush(stdout);
  out = testing::internal::GetCapturedStdout();
  err = testing::internal::GetCapturedStderr();
  return outcome;
}

int run(std::vector<std::string> args, std::string& out, std::string& err) {
  return runWhole(std::move(args), out, err).status;
}

// The full 32-bit statuses; the golden programs in tests/programs/driver
// check the streams.
TEST(Driver, StatusesOfTheRunSequence) {
  std::string out, err;
  EXPECT_EQ(run({"tarn"}, out, err), 1);
  EXPECT_EQ(run({"tarn", "/nonexistent/dir/p.tarn", "x"}, out, err), int32_t(0x80000000u));
  EXPECT_EQ(out, "Error.\n");
  TempFile file;
  file.write("a\n(b");
  EXPECT_EQ(run({"tarn", file.path}, out, err), int32_t(0x80000000u));
  file.write("a\\4294967553");  // 2^32 + 257: the low 32 bits
  EXPECT_EQ(run({"tarn", file.path}, out, err), 257);
}

// What reaches the host: 1 for every run that could not take place, and the
// program's own status otherwise, even when that status is the failure
// marker 0x80000000 (whose low 8 bits, 0, the host keeps).
TEST(Driver, ProcessExitStatusesOfTheRunSequence) {
  std::string out, err;
  RunOutcome usage = runWhole({"tarn"}, out, err);
  EXPECT_FALSE(usage.couldNotRun);
  EXPECT_EQ(processExitStatus(usage), 1);

  RunOutcome missing = runWhole({"tarn", "/nonexistent/dir/p.tarn"}, out, err);
  EXPECT_TRUE(missing.couldNotRun);
  EXPECT_EQ(missing.status, int32_t(0x80000000u));
  EXPECT_EQ(processExitStatus(missing), 1);

  TempFile file;
  file.write("a\n(b");  // bracket fault: fails in the compile stage
  RunOutcome unbalanced = runWhole({"tarn", file.path}, out, err);
  EXPECT_TRUE(unbalanced.couldNotRun);
  EXPECT_EQ(processExitStatus(unbalanced), 1);

  file.write("1");  // a bare number is no function of the argument vector
  RunOutcome notInteger = runWhole({"tarn", file.path}, out, err);
  EXPECT_TRUE(notInteger.couldNotRun);
  EXPECT_EQ(processExitStatus(notInteger), 1);

  file.write("a\\2147483648");
  RunOutcome marker = runWhole({"tarn", file.path}, out, err);
  EXPECT_FALSE(marker.couldNotRun);
  EXPECT_EQ(marker.status, int32_t(0x80000000u));
  EXPECT_EQ(processExitStatus(marker) & 0xFF, 0);
  EXPECT_EQ(err, "");

  file.write("a\\0");
  RunOutcome zero = runWhole({"tarn", file.path}, out, err);
  EXPECT_FALSE(zero.couldNotRun);
  EXPECT_EQ(processExitStatus(zero), 0);
}

TEST(Driver, ProcessExitStatusMapsOnlyTheFailedRuns) {
  EXPECT_EQ(processExitStatus({int32_t(0x80000000u), true}), 1);
  EXPECT_EQ(processExitStatus({int32_t(0x80000000u), false}), int(0x80000000u));
  EXPECT_EQ(processExitStatus({257, false}), 257);
  EXPECT_EQ(processExitStatus({-1, false}), -1);
  EXPECT_EQ(processExitStatus({0, false}), 0);
}

TEST(Driver, NoArgumentsAtAllStops) {
  EXPECT_DEATH(runDriver(0, nullptr), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn
