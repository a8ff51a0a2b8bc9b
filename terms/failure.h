// Fatal outputs for internal faults.
//
// Contract: nothing that a program can get wrong comes through here. These are
// the two ways the interpreter stops when one of its own invariants breaks:
//   - a fatal assertion prints "ASSERTION FAILED:<file>:<line>\n" to the error
//     stream and aborts, with no cleanup;
//   - an internal failure prints "REDVFAIL: <tag>\n" to the output stream first,
//     then fails a fatal assertion.
#pragma once

namespace tarn {

[[noreturn]] void fatalAssertion(const char* file, int line);
[[noreturn]] void internalFailure(const char* tag);

// A test harness may take the fatal assertion over: the hook is called first,
// with the file and line, and leaves by throwing (a run never sets one; if the
// hook returns, the assertion prints and aborts as usual).
using FatalHook = void (*)(const char* file, int line);
void setFatalHook(FatalHook hook);

// Memory the host cannot grant ends the program as the node allocator's
// exhaustion does, with a fatal assertion, for every allocation made with
// `new` (the library's strings and containers included) rather than an
// uncaught exception.
void endOnMemoryExhaustion();

}  // namespace tarn

// TARN_ASSERT(cond): a fatal assertion when cond is false. Always on.
#define TARN_ASSERT(cond)                                  \
  do {                                                     \
    if (!(cond)) [[unlikely]]                              \
      ::tarn::fatalAssertion(__FILE_NAME__, __LINE__);     \
  } while (0)

// TARN_FAIL(): an unconditional fatal assertion at this place.
#define TARN_FAIL() ::tarn::fatalAssertion(__FILE_NAME__, __LINE__)
