// The run sequence: usage, the start report, reading the program file, the
// four stages, and the exit status.
//
// Streams are not interchangeable here: "Error.\n" goes to the output stream,
// everything else the driver prints goes to the error stream. On Linux there
// is no binary mode to switch on and no socket layer to start: files are
// never translated, and sockets need no start-up.
#include "driver/driver.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "checks/run.h"
#include "driver/builtins.h"
#include "terms/failure.h"
#include "runtime/report.h"
#include "frontend/compile.h"
#include "numbers/model.h"

namespace tarn {

std::time_t startTime;

namespace {

constexpr int32_t kFailedStatus = int32_t(0x80000000u);

void printUsage() {
  std::fputs(
      "\\/\\oh usage     /\\   /  \\\n"
      "/\\uck_______/\\_/  \\_/    \\_\n"
      "<say>tarn file args...\n",
      stderr);
}

// The program file must open for reading. A directory opens on Linux but
// holds no program, and on the original host it does not open: it counts as
// unreadable.
bool programFileOpens(const char* path) {
  FILE* f = std::fopen(path, "r");
  if (!f) return false;
  struct stat st;
  bool directory = fstat(fileno(f), &st) == 0 && S_ISDIR(st.st_mode);
  std::fclose(f);
  return !directory;
}

void printStartReport(const char* path) {
  std::fputs("Error.\n", stdout);
  std::fflush(stdout);
  std::string text = " Type: Start\n Name: \"";
  text += escapedPath(path);
  text += "\"\nCould not read program file.\n\\/\n";
  std::fputs(text.c_str(), stderr);
}

constexpr RunOutcome kCouldNotRun{kFailedStatus, true};

// Failure path shared by every stage: reset the colours, then the banner.
RunOutcome fail(const Report& report) {
  std::string text = "\033[m";
  text += banner(report);
  std::fwrite(text.data(), 1, text.size(), stderr);
  return kCouldNotRun;
}

}  // namespace

RunOutcome runProgram(int argc, char** argv) {
  startTime = std::time(nullptr);  // kept although nothing reads it
  TARN_ASSERT(argc != 0);
  if (argc == 1) {
    printUsage();
    return {argc, false};
  }
  const char* path = argv[1];
  if (!programFileOpens(path)) {
    printStartReport(path);
    return kCouldNotRun;
  }
  std::string source = readProgramFile(path);

  installAllBuiltins();
  loadPrelude();
  Report report = compile(source);
  if (!report.ok()) return fail(report);
  // The program receives the address of argv[2]: a null-terminated vector
  // of its argument strings.
  report = checkAndRun(int64_t(reinterpret_cast<intptr_t>(&argv[2])));
  if (!report.ok()) return fail(report);

  int64_t result = termToInt64(mainTerm());
  return {int32_t(uint32_t(uint64_t(result))), false};  // the low 32 bits
}

int32_t runDriver(int argc, char** argv) { return runProgram(argc, argv).status; }

int processExitStatus(const RunOutcome& outcome) {
  // The host keeps only the low 8 bits of the status, and those of
  // 0x80000000 are 0, which would read as success: a run that could not
  // take place says so with 1 instead. A program that returns 2147483648
  // itself did run, and its status passes through like any other.
  if (outcome.couldNotRun) return 1;
  return outcome.status;
}

std::string readProgramFile(const char* path) {
  FILE* f = std::fopen(path, "r");
  TARN_ASSERT(f != nullptr);
  std::string text;
  // Blocks of 4095 bytes; each block is appended by its count, so NUL bytes
  // in the file are kept.
  char block[4096];
  for (;;) {
    size_t got = std::fread(block, 1, 4095, f);
    if (got == 0) break;
    block[got] = 0;
    text.append(block, got);
  }
  TARN_ASSERT(!std::ferror(f));
  TARN_ASSERT(std::fclose(f) == 0);
  return text;
}

std::string escapedPath(std::string_view path) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(path.size());
  for (char ch : path) {
    auto c = static_cast<unsigned char>(ch);
    if (c == '[' || c == ']' || c < 32 || c >= 127) {
      out += '[';
      out += kHex[c >> 4];
      out += kHex[c & 15];
      out += ']';
    } else {
      out += ch;
    }
  }
  return out;
}

}  // namespace tarn
