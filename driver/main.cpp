// Entry point: the driver runs on a thread with a very large stack.
#include <cstdio>

#include "driver/driver.h"
#include "driver/stack.h"
#ifdef TARN_STATS
#include <cinttypes>

#include "reduction/machine.h"
#endif

int main(int argc, char** argv) {
  int32_t status = 0;
  tarn::runWithLargeStack([&] { status = tarn::runDriver(argc, argv); });
  std::fflush(stdout);
#ifdef TARN_STATS
  std::fprintf(stderr, "steps %" PRIu64 "\n", tarn::machineSteps());
#endif
  return status;
}
