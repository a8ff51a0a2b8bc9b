// Entry point: the output stream gets the interpreter's own buffer and the
// fatal signals their handler, then the driver runs on a very large stack.
#include <cstdio>

#include "driver/driver.h"
#include "driver/signals.h"
#include "driver/stack.h"
#ifdef TARN_STATS
#include <cinttypes>

#include "reduction/machine.h"
#endif

int main(int argc, char** argv) {
  tarn::adoptOutputBuffer();
  tarn::installFatalSignalHandlers();
  int32_t status = 0;
  tarn::runWithLargeStack([&] { status = tarn::runDriver(argc, argv); });
  std::fflush(stdout);
#ifdef TARN_STATS
  std::fprintf(stderr, "steps %" PRIu64 "\n", tarn::machineSteps());
#endif
  return status;
}
