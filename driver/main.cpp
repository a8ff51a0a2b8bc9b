// Entry point: the driver runs on a thread with a very large stack; its
// outcome becomes the process exit status (1 for a program that could not
// run, see driver.h).
#include <cstdio>

#include "driver/driver.h"
#include "driver/stack.h"
#ifdef TARN_STATS
#include <cinttypes>

#include "reduction/machine.h"
#endif

int main(int argc, char** argv) {
  tarn::RunOutcome outcome;
  tarn::runWithLargeStack([&] { outcome = tarn::runProgram(argc, argv); });
  std::fflush(stdout);
#ifdef TARN_STATS
  std::fprintf(stderr, "steps %" PRIu64 "\n", tarn::machineSteps());
#endif
  return tarn::processExitStatus(outcome);
}
