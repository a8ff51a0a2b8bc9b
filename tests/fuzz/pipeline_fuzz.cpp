// libFuzzer target over the whole pipeline: any bytes as a program text are
// compiled, checked and run, as `tarn` would run them, with three changes
// that exist only here:
//   - every builtin that touches the world outside the process or raw memory
//     (every row of the host binding families, and `abort`, `exit` and
//     `leak`) answers "Z", in a copy of the builtin table;
//   - the machines stop after a step budget, with the report tagged "steps";
//   - a fatal assertion (a specified end: the process would abort) throws
//     back to this harness instead, which counts it as an acceptable end.
// Acceptable ends are therefore a report, a value, a fatal assertion or the
// budget; anything the sanitizers see, a crash, a hang past libFuzzer's
// timeout or an exhausted memory limit is a finding.
//
// The trace file of numb additions is sent to /dev/null (the link wraps
// fopen), so that fuzzing never disturbs /tmp/both.bug, which tests read.
//
// The fuzzer runs on the interpreter's large stack, as `tarn` does: a few
// thousand nested brackets recurse deeper than the main stack holds in a
// sanitizer build.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bindings/maths.h"
#include "bindings/memory.h"
#include "bindings/process.h"
#include "bindings/sockets.h"
#include "bindings/stdio.h"
#include "bindings/strings.h"
#include "bindings/times.h"
#include "checks/run.h"
#include "driver/builtins.h"
#include "driver/stack.h"
#include "frontend/compile.h"
#include "numbers/model.h"
#include "reduction/machine.h"
#include "terms/failure.h"

extern "C" int LLVMFuzzerRunDriver(int* argc, char*** argv, int (*cb)(const uint8_t*, size_t));
extern "C" FILE* __real_fopen(const char* path, const char* mode);

// The numb trace goes nowhere; every other path opens as asked.
extern "C" FILE* __wrap_fopen(const char* path, const char* mode) {
  if (path && std::strcmp(path, "/tmp/both.bug") == 0) return __real_fopen("/dev/null", mode);
  return __real_fopen(path, mode);
}

namespace {

using namespace tarn;

// Steps per input: enough for the golden programs' small loops, small enough
// to keep thousands of inputs a second.
constexpr uint64_t kStepBudget = 200000;

struct FatalAssertion {
  const char* file;
  int line;
};

[[noreturn]] void throwAssertion(const char* file, int line) { throw FatalAssertion{file, line}; }

Term answerZ(const Builtin&, const Args&) { return leafByte('Z'); }

template <size_t N>
void addNames(std::set<std::string_view>& names, const std::array<Builtin, N>& family) {
  for (const Builtin& b : family) names.insert(b.name);
}

// The joined table with the outside world cut off.
std::vector<Builtin>& harnessTable() {
  static std::vector<Builtin> table = [] {
    std::set<std::string_view> cut = {"abort", "exit", "leak"};
    addNames(cut, kStdioBuiltins);
    addNames(cut, kMemoryBuiltins);
    addNames(cut, kSocketBuiltins);
    addNames(cut, kStringBuiltins);
    addNames(cut, kMathsBuiltins);
    addNames(cut, kTimeBuiltins);
    addNames(cut, kProcessBuiltins);
    std::vector<Builtin> rows(allBuiltinRows().begin(), allBuiltinRows().end());
    for (Builtin& b : rows) {
      if (!cut.count(b.name)) continue;
      b.handler = answerZ;
      b.writesMemory = false;
      b.result = Result::kNone;
    }
    return rows;
  }();
  return table;
}

// Each assertion site is told once, so that a fuzzing log lists them.
void noteAssertion(const FatalAssertion& a) {
  static std::set<std::pair<std::string, int>> seen;
  if (seen.emplace(a.file, a.line).second) std::fprintf(stderr, "fuzz: fatal assertion at %s:%d\n", a.file, a.line);
}

char* gNoArguments[] = {nullptr};

int runOneInput(const uint8_t* data, size_t size) {
  std::string_view source(reinterpret_cast<const char*>(data), size);
  try {
    loadPrelude();
    Report report = compile(source);
    if (!report.ok()) return 0;
    setStepLimit(machineSteps() + kStepBudget);
    report = checkAndRun(int64_t(reinterpret_cast<intptr_t>(&gNoArguments[0])));
    setStepLimit(UINT64_MAX);
    if (!report.ok()) return 0;
    (void)termToInt64(mainTerm());
  } catch (const FatalAssertion& a) {
    setStepLimit(UINT64_MAX);
    noteAssertion(a);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  installBuiltins(harnessTable());
  setFatalHook(throwAssertion);
  endOnMemoryExhaustion();
  int status = 0;
  runWithLargeStack([&] { status = LLVMFuzzerRunDriver(&argc, &argv, runOneInput); });
  return status;
}
