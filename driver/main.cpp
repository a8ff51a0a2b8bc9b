// Entry point: the output stream gets the interpreter's own buffer and the
// fatal signals their handler, then the driver runs on a thread with a very
// large stack; its outcome becomes the process exit status (1 for a program
// that could not run, see driver.h).
#include <cstdio>

#include "driver/driver.h"
#include "driver/signals.h"
#include "driver/stack.h"
#include "terms/failure.h"
#ifdef TARN_NO_FAST_PATHS
#include "reduction/direct.h"
#endif
#ifdef TARN_STATS
#include <cinttypes>

#include "reduction/direct.h"
#include "reduction/machine.h"
#endif

int main(int argc, char** argv) {
  tarn::adoptOutputBuffer();
  tarn::installFatalSignalHandlers();
  tarn::endOnMemoryExhaustion();
#ifdef TARN_NO_FAST_PATHS
  tarn::setFastPaths(false);  // the test build that compares against the plain machine
#endif
  tarn::RunOutcome outcome;
  tarn::runWithLargeStack([&] { outcome = tarn::runProgram(argc, argv); });
  std::fflush(stdout);
#ifdef TARN_STATS
  std::fprintf(stderr, "steps %" PRIu64 "\n", tarn::machineSteps());
  std::fprintf(stderr, "direct %" PRIu64 " declined %" PRIu64 "\n", tarn::directCalls(), tarn::directDeclined());
#endif
  return tarn::processExitStatus(outcome);
}
