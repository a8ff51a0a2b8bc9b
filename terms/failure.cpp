// Fatal assertion and internal failure: print and abort, nothing else.
#include "terms/failure.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace tarn {

namespace {
FatalHook gFatalHook = nullptr;
}  // namespace

void setFatalHook(FatalHook hook) { gFatalHook = hook; }

void fatalAssertion(const char* file, int line) {
  if (gFatalHook) gFatalHook(file, line);
  std::fflush(stdout);
  std::fprintf(stderr, "ASSERTION FAILED:%s:%d\n", file, line);
  std::fflush(stderr);
  std::abort();
}

void endOnMemoryExhaustion() {
  std::set_new_handler([] { fatalAssertion(__FILE_NAME__, __LINE__); });
}

void internalFailure(const char* tag) {
  std::printf("REDVFAIL: %s\n", tag);
  std::fflush(stdout);
  fatalAssertion(__FILE_NAME__, __LINE__);
}

}  // namespace tarn
