// Reading the program file, appending, escaped paths, and the statuses of the
// run sequence (the full 32-bit values, which a process exit would cut).
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

int run(std::vector<std::string> args, std::string& out, std::string& err) {
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  int status = runDriver(int(args.size()), argv.data());
  std::fflush(stdout);
  out = testing::internal::GetCapturedStdout();
  err = testing::internal::GetCapturedStderr();
  return status;
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

TEST(Driver, NoArgumentsAtAllStops) {
  EXPECT_DEATH(runDriver(0, nullptr), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn
